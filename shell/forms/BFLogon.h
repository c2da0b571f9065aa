// The sign-on window, where the program starts: finds the data, names the workstation, signs a user on.
#pragma once

#include <QLabel>
#include <QPushButton>

#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"

namespace dw {

class BFLogon : public ui::Form {
 public:
  BFLogon();

  ui::TextBox userName{"Text1"};
  ui::TextBox password{"Text2"};
  QLabel workstation;
  QPushButton okButton{"&OK"};
  QPushButton cancelButton{"Cancel"};

  bool Activated = false;  ///< the first activation has begun
  int Attempts = 0;        ///< failed tries

  /// Asks for this machine's name until it has at most 20 characters, and keeps it. False if the user enters
  /// none.
  bool AskWorkstationName();
  void DisableSignOnControls() { EnableControls(false); }
  void EnableSignOnControls() { EnableControls(true); }

 protected:
  void OnLoad() override;
  void OnActivate() override;
  void OnUnload() override;

 private:
  void LayOut();
  void EnableControls(bool enable);
  /// The steps of the first activation. The form closes if they find no workstation name.
  void Start();
  void SignOn();
};

/// Shows the sign-on window.
void ShowLogon();

}  // namespace dw
