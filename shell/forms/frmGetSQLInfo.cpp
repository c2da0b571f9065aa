#include "shell/forms/frmGetSQLInfo.h"

#include <QVBoxLayout>

#include "platform/controls/Layout.h"

namespace dw {

frmGetSQLInfo::frmGetSQLInfo() : Form("frmGetSQLInfo") {
  setWindowTitle("SQL Server Information");
  trusted.setText("Use Trusted Connection?");
  trusted.setObjectName("chkTrusted");
  testButton.setText("&Test Connection");
  testButton.setObjectName("TestButton");
  okButton.setText("&OK");
  okButton.setObjectName("OKButton");
  cancelButton.setText("Cancel");
  cancelButton.setObjectName("CancelButton");
  instructions.setText(
      "Enter the SQL Server Name, and the User ID and Password you will use to access the SQL database used "
      "in this application. If you do not know what to enter here, contact your System Administrator for "
      "assistance.");
  instructions.setObjectName("lblPrompts");
  password.setEchoMode(QLineEdit::Password);
  confirmedPassword.setEchoMode(QLineEdit::Password);
  LayOut();

  userId.onLeave = [this] { return Left(); };
  confirmedPassword.onLeave = [this] { return Left(); };
  ui::OnClick(trusted, [this] { EnableLogin(); });
  ui::OnClick(testButton, [this] { TestServerLogin(Login(), SQLDB); });
  ui::OnClick(okButton, [this] {
    if (!Validate()) return;
    SaveServerLogin(AppID, Login());
    Unload();
  });
  ui::OnClick(cancelButton, [this] { Unload(); });
}

void frmGetSQLInfo::LayOut() {
  instructions.setTextFormat(Qt::PlainText);
  instructions.setWordWrap(true);
  for (ui::TextBox* field : {&server, &userId, &password, &confirmedPassword}) {
    ui::SetWidth(*field, ui::kTextWidth);
    field->SelectOnEntry();
  }
  auto* rows = new ui::FieldRows;
  rows->Row("SQL Server Name", {&server});
  rows->addWidget(&trusted, rows->rowCount(), 1);
  rows->Row("User ID", {&userId});
  rows->Row("Password", {&password});
  rows->Row("Confirm Password", {&confirmedPassword});

  auto* all = new QVBoxLayout(this);
  all->addWidget(&instructions);
  all->addSpacing(6);
  all->addLayout(rows);
  all->addStretch(1);
  all->addSpacing(6);
  all->addLayout(ui::ButtonRow({&testButton, &okButton, &cancelButton}));
  ui::TabOrder(
      {&server, &trusted, &userId, &password, &confirmedPassword, &testButton, &okButton, &cancelButton});
  SetDefault(&okButton);
  SetCancel(&cancelButton);
}

void frmGetSQLInfo::OnActivate() {
  if (activated_) return;
  activated_ = true;
  const ServerLogin login = ReadServerLogin(AppID);
  server.SetText(login.server);
  trusted.setChecked(login.trusted);
  userId.SetText(login.userId);
  password.SetText(login.password);
  confirmedPassword.SetText(login.confirmed);
  EnableLogin();
  server.setFocus();
}

ServerLogin frmGetSQLInfo::Login() const {
  return {server.Text(), trusted.isChecked(), userId.Text(), password.Text(), confirmedPassword.Text()};
}

void frmGetSQLInfo::EnableLogin() {
  for (ui::TextBox* field : {&userId, &password, &confirmedPassword}) field->setEnabled(!trusted.isChecked());
}

bool frmGetSQLInfo::Validate() {
  ui::TextBox* faulty = nullptr;
  switch (CheckServerLogin(Login())) {
    case LoginFault::UserId:
      faulty = &userId;
      break;
    case LoginFault::Password:
      faulty = &password;
      break;
    case LoginFault::None:
      return true;
  }
  // Setting the focus makes another field lose it; its check must not report the same error again.
  correcting_ = true;
  faulty->setFocus();
  correcting_ = false;
  return false;
}

bool frmGetSQLInfo::Left() { return correcting_ || CancelPressed() || Validate(); }

}  // namespace dw
