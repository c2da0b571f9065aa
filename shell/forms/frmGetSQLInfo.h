// The window that asks for the database server and how to log in there.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <string>

#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"
#include "shell/ServerLogin.h"

namespace dw {

class frmGetSQLInfo : public ui::Form {
 public:
  frmGetSQLInfo();

  std::string AppID;  ///< the application code of the settings
  std::string SQLDB;  ///< the database that the test opens

  ui::TextBox server{"Text1"};  ///< the server
  QCheckBox trusted;
  ui::TextBox userId{"Text2"};             ///< the user
  ui::TextBox password{"Text3"};           ///< the password
  ui::TextBox confirmedPassword{"Text4"};  ///< the password again
  QPushButton testButton, okButton, cancelButton;
  QLabel instructions;

 protected:
  void OnActivate() override;

 private:
  void LayOut();
  ServerLogin Login() const;
  void EnableLogin();
  bool Validate();
  bool Left();

  bool activated_ = false;
  bool correcting_ = false;  ///< the focus is being moved to the wrong field
};

}  // namespace dw
