// A window that is left alone while work in it lets events run.
#pragma once

#include <QPointer>

class QWidget;

namespace ui {

/// For as long as it lives the window takes no keys and no mouse, so that work which waits for others is not
/// begun a second time, and its window not ended under it. The focus comes back to where it was.
class NoInput {
 public:
  explicit NoInput(QWidget& window);
  ~NoInput();
  NoInput(const NoInput&) = delete;
  NoInput& operator=(const NoInput&) = delete;

 private:
  QPointer<QWidget> window_;
  QPointer<QWidget> focused_;
};

}  // namespace ui
