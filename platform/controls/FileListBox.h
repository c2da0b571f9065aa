// The list of the files in a directory that match a pattern.
#pragma once

#include <QListWidget>
#include <functional>
#include <string>

namespace ui {

class FileListBox : public QListWidget {
 public:
  /// `pattern`: names with "*" for any characters and "?" for one, with ";" between several names; ignores
  /// case.
  explicit FileListBox(const char* name, std::string pattern = "*");

  const std::string& Path() const { return path_; }
  const std::string& Pattern() const { return pattern_; }
  /// False, after a box, if the directory cannot be read; the old one stays then.
  bool SetPath(const std::string& path);
  void SetPattern(const std::string& pattern);
  /// The name of the chosen file; empty without one.
  std::string FileName() const;
  /// Called after the directory or the pattern has changed.
  std::function<void()> onChange;

 private:
  bool Read(const std::string& path, const std::string& pattern);

  std::string path_;
  std::string pattern_;
};

}  // namespace ui
