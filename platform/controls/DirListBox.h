// The list of directories: the path from the root to the present one, and the directories in it.
#pragma once

#include <QTreeWidget>
#include <functional>
#include <string>

namespace ui {

/// A double click or Enter on another directory enters it. Hidden directories are shown only on the way.
class DirListBox : public QTreeWidget {
 public:
  explicit DirListBox(const char* name);

  /// The present directory, without a separator at its end (but "/" itself). Empty at first.
  const std::string& Path() const { return path_; }
  /// Makes a directory the present one. False, after a box, if it cannot be read; the old one stays then.
  bool SetPath(const std::string& path);
  /// Called after the user or SetPath has changed the present directory.
  std::function<void()> onChange;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  /// Without fold signs: nothing can be folded here.
  void drawBranches(QPainter*, const QRect&, const QModelIndex&) const override {}

 private:
  void EnterCurrent();

  std::string path_;
};

}  // namespace ui
