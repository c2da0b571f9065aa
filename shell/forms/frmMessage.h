// The system's notice: reports a long step and blocks nothing.
#pragma once

#include <QLabel>
#include <QStatusBar>
#include <string>

#include "platform/controls/Form.h"

namespace dw {

class frmMessage : public ui::Form {
 public:
  frmMessage();

  QLabel picture;
  QLabel message;
  QStatusBar statusBar;

  /// Draws the window now, because the program will be busy next.
  void Refresh();
  /// Keys typed meanwhile go to the window that comes after the notice.
  bool TakesKeys() const override { return false; }
};

/// Shows the notice, or changes the title and text of the notice that is shown.
void ShowMessageForm(const std::string& title, const std::string& text);
void HideMessageForm();

}  // namespace dw
