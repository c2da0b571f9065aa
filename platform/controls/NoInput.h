// Keeps the user's input from a window while work in it lets events run.
#pragma once

#include <QPointer>

class QWidget;

namespace ui {

/// For as long as it lives, the window takes no keys and no mouse. While work waits for other users, nobody
/// can start it a second time or end its window. The focus comes back to where it was.
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
