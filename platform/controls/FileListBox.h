// The list of the files in a directory that fit a pattern.
#pragma once

#include <QListWidget>
#include <functional>
#include <string>

namespace ui {

class FileListBox : public QListWidget {
 public:
  /// `pattern`: names with "*" for any letters and "?" for one, several with ";" between them, whatever the
  /// case of the letters.
  explicit FileListBox(const char* name, std::string pattern = "*");

  const std::string& Path() const { return path_; }
  const std::string& Pattern() const { return pattern_; }
  /// False, after a box, where the directory cannot be read; the old one stays then.
  bool SetPath(const std::string& path);
  void SetPattern(const std::string& pattern);
  /// The name of the file that is chosen; empty while none is.
  std::string FileName() const;
  /// The directory or the pattern is another one.
  std::function<void()> onChange;

 private:
  bool Read(const std::string& path, const std::string& pattern);

  std::string path_;
  std::string pattern_;
};

}  // namespace ui
