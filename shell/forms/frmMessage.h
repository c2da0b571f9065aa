// The notice of the system: reports a long step, blocks nothing.
#pragma once

#include <QLabel>
#include <QStatusBar>
#include <string>

#include "platform/controls/Form.h"

namespace dw {

class frmMessage : public ui::Form {
 public:
  frmMessage();

  QLabel Image1;
  QLabel lblMessage;
  QStatusBar stsBar;

  /// Draws the window now: whoever shows a notice is about to keep the program busy.
  void Refresh();
  /// What is typed meanwhile is for the window that comes after the notice.
  bool TakesKeys() const override { return false; }
};

/// Shows the notice, or gives the one that is shown another title and text.
void ShowMessageForm(const std::string& title, const std::string& text);
void HideMessageForm();

}  // namespace dw
