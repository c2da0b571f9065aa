#include "platform/controls/NoInput.h"

#include <QWidget>

namespace ui {

NoInput::NoInput(QWidget& window) : window_(&window), focused_(window.focusWidget()) {
  window.setEnabled(false);
}

NoInput::~NoInput() {
  if (!window_) return;
  window_->setEnabled(true);
  if (focused_) focused_->setFocus();
}

}  // namespace ui
