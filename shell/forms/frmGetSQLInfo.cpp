#include "shell/forms/frmGetSQLInfo.h"

#include <QVBoxLayout>

#include "platform/controls/Layout.h"

namespace dw {

frmGetSQLInfo::frmGetSQLInfo() : Form("frmGetSQLInfo") {
  setWindowTitle("SQL Server Information");
  chkTrusted.setText("Use Trusted Connection?");
  chkTrusted.setObjectName("chkTrusted");
  TestButton.setText("&Test Connection");
  TestButton.setObjectName("TestButton");
  OKButton.setText("&OK");
  OKButton.setObjectName("OKButton");
  CancelButton.setText("Cancel");
  CancelButton.setObjectName("CancelButton");
  lblPrompts.setText(
      "Enter the SQL Server Name, and the User ID and Password you will use to access the SQL database used "
      "in this application. If you do not know what to enter here, contact your System Administrator for "
      "assistance.");
  lblPrompts.setObjectName("lblPrompts");
  Text3.setEchoMode(QLineEdit::Password);
  Text4.setEchoMode(QLineEdit::Password);
  LayOut();

  Text2.onLeave = [this] { return Left(); };
  Text4.onLeave = [this] { return Left(); };
  ui::OnClick(chkTrusted, [this] { EnableLogin(); });
  ui::OnClick(TestButton, [this] { TestServerLogin(Login(), SQLDB); });
  ui::OnClick(OKButton, [this] {
    if (!Validate()) return;
    SaveServerLogin(AppID, Login());
    Unload();
  });
  ui::OnClick(CancelButton, [this] { Unload(); });
}

void frmGetSQLInfo::LayOut() {
  lblPrompts.setTextFormat(Qt::PlainText);
  lblPrompts.setWordWrap(true);
  for (ui::TextBox* field : {&Text1, &Text2, &Text3, &Text4}) {
    ui::SetWidth(*field, ui::kTextWidth);
    field->SelectOnEntry();
  }
  auto* rows = new ui::FieldRows;
  rows->Row("SQL Server Name", {&Text1});
  rows->addWidget(&chkTrusted, rows->rowCount(), 1);
  rows->Row("User ID", {&Text2});
  rows->Row("Password", {&Text3});
  rows->Row("Confirm Password", {&Text4});

  auto* all = new QVBoxLayout(this);
  all->addWidget(&lblPrompts);
  all->addSpacing(6);
  all->addLayout(rows);
  all->addStretch(1);
  all->addSpacing(6);
  all->addLayout(ui::ButtonRow({&TestButton, &OKButton, &CancelButton}));
  ui::TabOrder({&Text1, &chkTrusted, &Text2, &Text3, &Text4, &TestButton, &OKButton, &CancelButton});
  SetDefault(&OKButton);
  SetCancel(&CancelButton);
}

void frmGetSQLInfo::OnActivate() {
  if (activated_) return;
  activated_ = true;
  const ServerLogin login = ReadServerLogin(AppID);
  Text1.SetText(login.server);
  chkTrusted.setChecked(login.trusted);
  Text2.SetText(login.userId);
  Text3.SetText(login.password);
  Text4.SetText(login.confirmed);
  EnableLogin();
  Text1.setFocus();
}

ServerLogin frmGetSQLInfo::Login() const {
  return {Text1.Text(), chkTrusted.isChecked(), Text2.Text(), Text3.Text(), Text4.Text()};
}

void frmGetSQLInfo::EnableLogin() {
  for (ui::TextBox* field : {&Text2, &Text3, &Text4}) field->setEnabled(!chkTrusted.isChecked());
}

bool frmGetSQLInfo::Validate() {
  ui::TextBox* faulty = nullptr;
  switch (CheckServerLogin(Login())) {
    case LoginFault::UserId:
      faulty = &Text2;
      break;
    case LoginFault::Password:
      faulty = &Text3;
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
