#include "shell/forms/GetDataPath.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPointer>
#include <QVBoxLayout>

#include "data/Application.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/controls/DirectoryEntries.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "shell/DataLocation.h"
#include "shell/ReleaseCopy.h"
#include "shell/forms/ProgramEnd.h"
#include "shell/forms/frmGetSQLInfo.h"

namespace dw {

GetDataPath::GetDataPath() : Form("GetDataPath") {
  setWindowTitle("Get Database Location");
  Label1.setText(
      "The database file name will appear below when you have selected a directory in which it exists.");
  Label3.setText("WARNING:");
  Label4.setText(
      "This is part of the Setup procedure for your computer. Please contact your System Administrator on "
      "instructions to procede or click Cancel to quit for now.");
  cmdOK.setText("&OK");
  cmdCancel.setText("Cancel");
  cmdLocate.setText("&Locate");
  cmdCDInstall.setText("&CD Install");
  Label1.setObjectName("Label1");
  Label3.setObjectName("Label3");
  Label4.setObjectName("Label4");
  cmdOK.setObjectName("cmdOK");
  cmdCancel.setObjectName("cmdCancel");
  cmdLocate.setObjectName("cmdLocate");
  cmdCDInstall.setObjectName("cmdCDInstall");
  LayOut();
  Connect();
}

void GetDataPath::LayOut() {
  for (QLabel* label : {&Label1, &Label4}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
  }
  QFont bold = Label3.font();
  bold.setBold(true);
  Label3.setFont(bold);
  Dir1.setAccessibleName("Directories");
  File1.setAccessibleName("Files");
  const int line = fontMetrics().height();
  for (QWidget* list : std::initializer_list<QWidget*>{&Dir1, &File1}) {
    list->setMinimumWidth(fontMetrics().averageCharWidth() * 34);
    list->setMinimumHeight(line * 12);
  }

  auto* drive = new QHBoxLayout;
  drive->addWidget(ui::Prompt("Select Drive:", Drive1));
  drive->addWidget(&Drive1, 1);
  auto* path = new QHBoxLayout;
  path->addWidget(ui::Prompt("Data Path:", txtDataPath));
  path->addWidget(&txtDataPath, 1);
  auto* warning = new QHBoxLayout;
  warning->addWidget(&Label3, 0, Qt::AlignTop);
  warning->addWidget(&Label4, 1);

  for (QHBoxLayout* row : {drive, path, warning}) row->setSpacing(10);

  auto* grid = new QGridLayout;
  grid->addLayout(drive, 0, 0);
  grid->addWidget(&Label1, 0, 1, Qt::AlignBottom);
  grid->addWidget(&Dir1, 1, 0);
  grid->addWidget(&File1, 1, 1);
  grid->addLayout(path, 2, 0, 1, 2);
  grid->addLayout(warning, 3, 0, 1, 2);
  grid->setRowStretch(1, 1);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(1, 1);
  grid->setHorizontalSpacing(14);
  grid->setVerticalSpacing(10);

  auto* all = new QVBoxLayout(this);
  all->addLayout(grid, 1);
  all->addSpacing(6);
  all->addLayout(ui::ButtonRow({&cmdLocate, &cmdCDInstall, &cmdOK, &cmdCancel}));
  ui::TabOrder({&Drive1, &Dir1, &File1, &txtDataPath, &cmdLocate, &cmdCDInstall, &cmdOK, &cmdCancel});
  SetDefault(&cmdOK);
  SetCancel(&cmdCancel);
}

void GetDataPath::Connect() {
  Drive1.onChange = [this] { DriveChosen(); };
  Dir1.onChange = [this] { DirectoryChosen(); };
  File1.onChange = [this] { ShowChosen(); };
  txtDataPath.onChange = [this] { EnableButtons(!busy_); };
  ui::OnClick(cmdOK, [this] { Accept(); });
  ui::OnClick(cmdCancel, [this] {
    cancelled_ = true;
    Unload();
  });
  ui::OnClick(cmdLocate, [this] { Locate(); });
  ui::OnClick(cmdCDInstall, [this] { InstallFromDisc(); });
}

void GetDataPath::OnLoad() {
  if (AppID.empty()) AppID = kApplicationCode;
  DriveChosen();
}

void GetDataPath::OnActivate() {
  if (activated_) return;
  activated_ = true;
  FileName = BareFileName(FileName);
  File1.SetPattern(FileName);
  const QString name = QString::fromStdString(FileName);
  Label1.setText("The " + name +
                 " file name will appear below when you have selected a directory in which it exists.");
  setWindowTitle("Get " + name + " Database Location");
  Drive1.setFocus();
}

void GetDataPath::OnUnload() { stopped_ = true; }

void GetDataPath::closeEvent(QCloseEvent* event) {
  if (!searching_) {
    Form::closeEvent(event);
    return;
  }
  stopped_ = true;
  event->ignore();
}

void GetDataPath::DriveChosen() {
  if (following_) return;
  const std::string drive = Drive1.Drive();
  if (Dir1.SetPath(drive.empty() ? "/" : drive)) return;
  // The drive is not ready: back to the one that is shown.
  following_ = true;
  Drive1.SetDrive(Dir1.Path());
  following_ = false;
}

void GetDataPath::DirectoryChosen() {
  const bool following = std::exchange(following_, true);
  Drive1.SetDrive(Dir1.Path());
  following_ = following;
  if (!File1.SetPath(Dir1.Path())) File1.clear();
  ShowChosen();
}

void GetDataPath::ShowChosen() {
  found_.clear();
  txtDataPath.SetText(File1.count() > 0 ? Dir1.Path() : "");
  EnableButtons(!busy_);
}

void GetDataPath::EnableButtons(bool enable) {
  busy_ = !enable;
  // OK needs a directory.
  cmdOK.setEnabled(enable && !txtDataPath.Text().empty());
  for (QPushButton* button : {&cmdCancel, &cmdLocate, &cmdCDInstall}) button->setEnabled(enable);
}

void GetDataPath::Accept() {
  const std::string directory = ui::PlainPath(txtDataPath.Text());
  if (directory != found_) {
    // A typed directory is accepted only if the lists find the file there.
    if (directory != Dir1.Path() && !Dir1.SetPath(directory)) return;
    ShowChosen();
    if (txtDataPath.Text().empty()) {
      Dir1.setFocus();
      return;
    }
  }
  TakeDirectory(directory, FileName, AppID);
  Unload();
}

void GetDataPath::Locate() {
  const QPointer<GetDataPath> alive(this);
  DataSearch search;
  search.code = AppID;
  search.stopped = [alive] { return !alive || alive->stopped_; };
  search.use = [this](const std::string& directory) {
    Drive1.SetDrive(directory);
    Dir1.SetPath(directory);
    found_ = ui::PlainPath(directory);
    txtDataPath.SetText(found_);
  };
  EnableButtons(false);
  searching_ = true;
  const SearchEnd end = SearchDrives(search);
  if (!alive) return;
  searching_ = false;
  if (end == SearchEnd::Stopped || stopped_) {
    Unload();
    return;
  }
  // If there are no drives, the buttons stay disabled: the window can only be closed.
  if (end == SearchEnd::NoDrives) return;
  EnableButtons(true);
  (cmdOK.isEnabled() ? cmdOK : cmdLocate).setFocus();
}

void GetDataPath::InstallFromDisc() {
  if (!AskForReleaseDisc()) return;
  EnableButtons(false);
  const bool installed = InstallFromReleaseDisc(Drive1.Drive(), AppID);
  EnableButtons(true);
  if (installed)
    Unload();
  else
    cmdCDInstall.setFocus();
}

namespace {

/// Shows the window once. True if the user canceled it.
bool AskForDirectory(const std::string& fileName) {
  // The program is waiting, but the user has to work in this window.
  const screen::Pointer pointer = screen::SetPointer(screen::Pointer::Normal);
  auto& form = ui::The<GetDataPath>();
  form.FileName = fileName;
  bool cancelled = false;
  form.AtUnload([&] { cancelled = form.Cancelled(); });
  form.ShowModal();
  screen::SetPointer(pointer);
  return cancelled;
}

bool IsMissing(const std::string& fileName) {
  const std::string name = BareFileName(fileName);
  const bool system = rt::EqualNoCase(name, "BFSYS.MDB");
  return !FileExists(FindFile(system ? SystemPath : DataPath, name));
}

/// Closes every form and returns, so that the search for the file can go on.
void CloseAllForms() {
  try {
    EndApplication();
  } catch (const ApplicationEnd&) {
    // Only the windows end here.
  }
}

}  // namespace

void FindDataFile(const std::string& fileName) {
  const bool otherForms = !ui::Forms().empty();
  while (AskForDirectory(fileName)) {
    screen::MessageBox("This must be set up before you may use the application.", screen::Icon::Critical,
                       screen::Buttons::Ok, "Brackenfel Software Solutions Setup");
    CloseAllForms();
    if (!IsMissing(fileName)) break;
  }
  // The windows whose work needed the file have been closed. Now that the file is found, the user starts
  // anew.
  if (otherForms && ui::Forms().empty()) throw WindowsClosed();
  SetCompanionFiles();
}

void InstallLocators() {
  InstallFileLocator(FindDataFile);
  InstallServerLoginForm([](const std::string& code, const std::string& database) {
    auto& form = ui::The<frmGetSQLInfo>();
    form.AppID = code;
    form.SQLDB = database;
    form.ShowModal();
  });
}

}  // namespace dw
