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
  userName.setToolTip("Enter your Brackenfel user name for this application.");
  password.setToolTip("Enter the password that goes with the user name in this application.");
  password.setEchoMode(QLineEdit::Password);
  password.setStyleSheet("QLineEdit { lineedit-password-character: 42 }");
  workstation.setObjectName("WorkstationLabel");
  workstation.setTextFormat(Qt::PlainText);
  workstation.setToolTip("This is the name of the Brackenfel workstation on which you are logging.");
  okButton.setObjectName("OKButton");
  cancelButton.setObjectName("Cancel");
  LayOut();

  ui::OnClick(okButton, [this] { SignOn(); });
  ui::OnClick(cancelButton, [this] { Unload(); });
  SetDefault(&okButton);
  SetCancel(&cancelButton);
}

void BFLogon::LayOut() {
  auto* picture = new QLabel;
  picture->setPixmap(ApplicationIcon().pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatioF()));

  auto* fields = new ui::FieldRows;
  for (ui::TextBox* box : {&userName, &password})
    box->setMinimumWidth(fontMetrics().averageCharWidth() * (ui::kTextWidth - 8));
  fields->Row("User Name:", {&userName});
  fields->Row("Password:", {&password});
  fields->Row("Workstation:", {&workstation});
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
  all->addLayout(ui::ButtonRow({&okButton, &cancelButton}));
  ui::TabOrder({&userName, &password, &okButton, &cancelButton});
}

void BFLogon::EnableControls(bool enable) {
  for (QWidget* control : std::initializer_list<QWidget*>{&okButton, &cancelButton, &userName, &password})
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
  if (alive && Loaded() && workstation.text().isEmpty()) Unload();
}

void BFLogon::Start() {
  const QPointer<BFLogon> alive(this);
  SetDataSourceKind();
  CleanOldSettings();
  const bool located = LocateData();
  // All forms may have been closed during the search for the data.
  if (!located || !alive || !Loaded()) return;

  const bool known = !CurrentUserName.empty() && CurrentUserName != "UnknownUser";
  if (known) userName.SetText(CurrentUserName);
  (known ? password : userName).setFocus();
  workstation.setText(QString::fromStdString(sys::GetSetting(kFamily, kFamilySection, kWorkstationKey)));
  if (workstation.text().isEmpty()) {
    const bool named = AskWorkstationName();
    if (!named || !alive || !Loaded()) return;
  }
  WorkstationName = workstation.text().toStdString();
  SettleFirstRun();
}

bool BFLogon::AskWorkstationName() {
  const QPointer<BFLogon> alive(this);
  for (;;) {
    const std::string answer = screen::InputBox(
        "Your workstation does not have a Brackenfel name.\r\rYou must provide it a name and report it to "
        "your\rSystem Administrator before access is allowed.",
        "Brackenfel for Windows Login Setup");
    if (!alive) return false;
    const QString name = QString::fromStdString(answer);
    workstation.setText(name);
    if (name.isEmpty()) return false;
    if (name.size() <= kLongestName) break;
    screen::MessageBox("The workstation name should be 20 characters or less. Please re-enter.",
                       screen::Icon::Information);
  }
  KeepSetting(kFamily, kFamilySection, kWorkstationKey, workstation.text().toStdString());
  return true;
}

void BFLogon::SignOn() {
  const QPointer<BFLogon> alive(this);
  DisableSignOnControls();
  const SignOnResult result = CheckSignOn(userName.Text(), password.Text());
  if (!alive || !Loaded()) return;
  switch (result) {
    case SignOnResult::Passed:
      // Show the name as the table spells it.
      userName.SetText(CurrentUserName);
      Unload();
      break;
    case SignOnResult::Refused:
      Unload();
      break;
    case SignOnResult::TryAgain:
      ++Attempts;
      // In a retry, typing replaces the old text.
      userName.SelectOnEntry();
      password.SelectOnEntry();
      EnableSignOnControls();
      userName.setFocus();
      userName.selectAll();
      break;
  }
}

void BFLogon::OnUnload() {
  if (!SignedOn) return;
  CurrentUserName = userName.Text();
  WriteAccessLogIn();
  if (ClosingAllForms()) return;
  auto& startup = ui::The<Startup>();
  startup.LoadForm();
  hide();
  startup.ShowForm();
}

void ShowLogon() { ui::The<BFLogon>().ShowForm(); }

}  // namespace dw
