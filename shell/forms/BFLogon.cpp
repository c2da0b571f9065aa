#include "shell/forms/BFLogon.h"

#include <QGridLayout>
#include <QPointer>
#include <QVBoxLayout>

#include "data/BrackenfelGlobals.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"
#include "platform/system/Settings.h"
#include "shell/DataLocation.h"
#include "shell/SignOn.h"
#include "shell/forms/AppIcon.h"
#include "shell/forms/CloseChildForm.h"
#include "shell/forms/SingleInstance.h"
#include "shell/forms/Startup.h"

namespace dw {
namespace {

constexpr const char* kFamily = "Brackenfel Software";
constexpr const char* kFamilySection = "Settings";
constexpr const char* kWorkstationKey = "Workstation Name";
constexpr qsizetype kLongestName = 20;
constexpr int kPictureSize = 48;

}  // namespace

BFLogon::BFLogon() : Form("BFLogon") {
  BeginSignOn();
  setWindowTitle("Brackenfel for Windows Logon");
  Text1.setToolTip("Enter your Brackenfel user name for this application.");
  Text2.setToolTip("Enter the password that goes with the user name in this application.");
  Text2.setEchoMode(QLineEdit::Password);
  Text2.setStyleSheet("QLineEdit { lineedit-password-character: 42 }");
  WorkstationLabel.setObjectName("WorkstationLabel");
  WorkstationLabel.setTextFormat(Qt::PlainText);
  WorkstationLabel.setToolTip("This is the name of the Brackenfel workstation on which you are logging.");
  OKButton.setObjectName("OKButton");
  Cancel.setObjectName("Cancel");
  LayOut();

  ui::OnClick(OKButton, [this] { SignOn(); });
  ui::OnClick(Cancel, [this] { Unload(); });
  SetDefault(&OKButton);
  SetCancel(&Cancel);
}

void BFLogon::LayOut() {
  auto* picture = new QLabel;
  picture->setPixmap(ApplicationIcon().pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatioF()));

  auto* fields = new ui::FieldRows;
  for (ui::TextBox* box : {&Text1, &Text2})
    box->setMinimumWidth(fontMetrics().averageCharWidth() * (ui::kTextWidth - 8));
  fields->Row("User Name:", {&Text1});
  fields->Row("Password:", {&Text2});
  fields->Row("Workstation:", {&WorkstationLabel});
  fields->setVerticalSpacing(8);

  auto* row = new QHBoxLayout;
  row->setSpacing(18);
  row->addWidget(picture, 0, Qt::AlignTop);
  row->addLayout(fields, 1);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(18, 16, 18, 14);
  all->addLayout(row);
  all->addSpacing(12);
  all->addStretch(1);
  all->addLayout(ui::ButtonRow({&OKButton, &Cancel}));
  ui::TabOrder({&Text1, &Text2, &OKButton, &Cancel});
}

void BFLogon::EnableControls(bool enable) {
  for (QWidget* control : std::initializer_list<QWidget*>{&OKButton, &Cancel, &Text1, &Text2})
    control->setEnabled(enable);
}

void BFLogon::OnLoad() {
  if (ActivatePreviousInstance()) Unload();
}

void BFLogon::OnActivate() {
  if (Activated) return;
  Activated = true;
  const QPointer<BFLogon> alive(this);
  Start();
  if (alive && Loaded() && WorkstationLabel.text().isEmpty()) Unload();
}

void BFLogon::Start() {
  const QPointer<BFLogon> alive(this);
  SetDataSourceKind();
  CleanOldSettings();
  bool ok = false;
  LocateData(ok);
  // All forms may have been closed during the search for the data.
  if (!ok || !alive || !Loaded()) return;

  const bool known = !CurrentUserName.empty() && CurrentUserName != "UnknownUser";
  if (known) Text1.SetText(CurrentUserName);
  (known ? Text2 : Text1).setFocus();
  WorkstationLabel.setText(QString::fromStdString(sys::GetSetting(kFamily, kFamilySection, kWorkstationKey)));
  if (WorkstationLabel.text().isEmpty()) {
    AskWorkstationName(ok);
    if (!ok || !alive || !Loaded()) return;
  }
  WorkstationName = WorkstationLabel.text().toStdString();
  SettleFirstRun();
}

void BFLogon::AskWorkstationName(bool& ok) {
  const QPointer<BFLogon> alive(this);
  ok = false;
  for (;;) {
    const std::string answer = screen::InputBox(
        "Your workstation does not have a Brackenfel name.\r\rYou must provide it a name and report it to "
        "your\rSystem Administrator before access is allowed.",
        "Brackenfel for Windows Login Setup");
    if (!alive) return;
    const QString name = QString::fromStdString(answer);
    WorkstationLabel.setText(name);
    if (name.isEmpty()) return;
    if (name.size() <= kLongestName) break;
    screen::MessageBox("The workstation name should be 20 characters or less. Please re-enter.",
                       screen::Icon::Information);
  }
  ok = true;
  KeepSetting(kFamily, kFamilySection, kWorkstationKey, WorkstationLabel.text().toStdString());
}

void BFLogon::SignOn() {
  const QPointer<BFLogon> alive(this);
  DisableSignOnControls();
  const SignOnResult result = CheckSignOn(Text1.Text(), Text2.Text());
  if (!alive || !Loaded()) return;
  switch (result) {
    case SignOnResult::Passed:
      // Show the name as the table spells it.
      Text1.SetText(CurrentUserName);
      Unload();
      break;
    case SignOnResult::Refused:
      Unload();
      break;
    case SignOnResult::TryAgain:
      ++Attempts;
      // In a retry, typing replaces the old text.
      Text1.SelectOnEntry();
      Text2.SelectOnEntry();
      EnableSignOnControls();
      Text1.setFocus();
      Text1.selectAll();
      break;
  }
}

void BFLogon::OnUnload() {
  if (!SignedOn) return;
  CurrentUserName = Text1.Text();
  WriteAccessLogIn();
  if (ClosingAllForms()) return;
  auto& startup = ui::The<Startup>();
  startup.LoadForm();
  hide();
  startup.ShowForm();
}

void ShowLogon() { ui::The<BFLogon>().ShowForm(); }

}  // namespace dw
