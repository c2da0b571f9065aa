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
  instructions.setText(
      "The database file name will appear below when you have selected a directory in which it exists.");
  warningHeading.setText("WARNING:");
  warning.setText(
      "This is part of the Setup procedure for your computer. Please contact your System Administrator on "
      "instructions to procede or click Cancel to quit for now.");
  okButton.setText("&OK");
  cancelButton.setText("Cancel");
  locateButton.setText("&Locate");
  installButton.setText("&CD Install");
  instructions.setObjectName("Label1");
  warningHeading.setObjectName("Label3");
  warning.setObjectName("Label4");
  okButton.setObjectName("cmdOK");
  cancelButton.setObjectName("cmdCancel");
  locateButton.setObjectName("cmdLocate");
  installButton.setObjectName("cmdCDInstall");
  LayOut();
  Connect();
}

void GetDataPath::LayOut() {
  for (QLabel* label : {&instructions, &warning}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
  }
  QFont bold = warningHeading.font();
  bold.setBold(true);
  warningHeading.setFont(bold);
  directories.setAccessibleName("Directories");
  files.setAccessibleName("Files");
  const int line = fontMetrics().height();
  for (QWidget* list : std::initializer_list<QWidget*>{&directories, &files}) {
    list->setMinimumWidth(fontMetrics().averageCharWidth() * 34);
    list->setMinimumHeight(line * 12);
  }

  auto* drive = new QHBoxLayout;
  drive->addWidget(ui::Prompt("Select Drive:", drives));
  drive->addWidget(&drives, 1);
  auto* path = new QHBoxLayout;
  path->addWidget(ui::Prompt("Data Path:", dataPath));
  path->addWidget(&dataPath, 1);
  auto* warned = new QHBoxLayout;
  warned->addWidget(&warningHeading, 0, Qt::AlignTop);
  warned->addWidget(&warning, 1);

  for (QHBoxLayout* row : {drive, path, warned}) row->setSpacing(10);

  auto* grid = new QGridLayout;
  grid->addLayout(drive, 0, 0);
  grid->addWidget(&instructions, 0, 1, Qt::AlignBottom);
  grid->addWidget(&directories, 1, 0);
  grid->addWidget(&files, 1, 1);
  grid->addLayout(path, 2, 0, 1, 2);
  grid->addLayout(warned, 3, 0, 1, 2);
  grid->setRowStretch(1, 1);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(1, 1);
  grid->setHorizontalSpacing(14);
  grid->setVerticalSpacing(10);

  auto* all = new QVBoxLayout(this);
  all->addLayout(grid, 1);
  all->addSpacing(6);
  all->addLayout(ui::ButtonRow({&locateButton, &installButton, &okButton, &cancelButton}));
  ui::TabOrder(
      {&drives, &directories, &files, &dataPath, &locateButton, &installButton, &okButton, &cancelButton});
  SetDefault(&okButton);
  SetCancel(&cancelButton);
}

void GetDataPath::Connect() {
  drives.onChange = [this] { DriveChosen(); };
  directories.onChange = [this] { DirectoryChosen(); };
  files.onChange = [this] { ShowChosen(); };
  dataPath.onChange = [this] { EnableButtons(!busy_); };
  ui::OnClick(okButton, [this] { Accept(); });
  ui::OnClick(cancelButton, [this] {
    canceled_ = true;
    Unload();
  });
  ui::OnClick(locateButton, [this] { Locate(); });
  ui::OnClick(installButton, [this] { InstallFromDisc(); });
}

void GetDataPath::OnLoad() {
  if (AppID.empty()) AppID = kApplicationCode;
  DriveChosen();
}

void GetDataPath::OnActivate() {
  if (activated_) return;
  activated_ = true;
  FileName = BareFileName(FileName);
  files.SetPattern(FileName);
  const QString name = QString::fromStdString(FileName);
  instructions.setText("The " + name +
                       " file name will appear below when you have selected a directory in which it exists.");
  setWindowTitle("Get " + name + " Database Location");
  drives.setFocus();
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
  const std::string drive = drives.Drive();
  if (directories.SetPath(drive.empty() ? "/" : drive)) return;
  // The drive is not ready: back to the one that is shown.
  following_ = true;
  drives.SetDrive(directories.Path());
  following_ = false;
}

void GetDataPath::DirectoryChosen() {
  const bool following = std::exchange(following_, true);
  drives.SetDrive(directories.Path());
  following_ = following;
  if (!files.SetPath(directories.Path())) files.clear();
  ShowChosen();
}

void GetDataPath::ShowChosen() {
  found_.clear();
  dataPath.SetText(files.count() > 0 ? directories.Path() : "");
  EnableButtons(!busy_);
}

void GetDataPath::EnableButtons(bool enable) {
  busy_ = !enable;
  // OK needs a directory.
  okButton.setEnabled(enable && !dataPath.Text().empty());
  for (QPushButton* button : {&cancelButton, &locateButton, &installButton}) button->setEnabled(enable);
}

void GetDataPath::Accept() {
  const std::string directory = ui::PlainPath(dataPath.Text());
  if (directory != found_) {
    // A typed directory is accepted only if the lists find the file there.
    if (directory != directories.Path() && !directories.SetPath(directory)) return;
    ShowChosen();
    if (dataPath.Text().empty()) {
      directories.setFocus();
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
    drives.SetDrive(directory);
    directories.SetPath(directory);
    found_ = ui::PlainPath(directory);
    dataPath.SetText(found_);
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
  (okButton.isEnabled() ? okButton : locateButton).setFocus();
}

void GetDataPath::InstallFromDisc() {
  if (!AskForReleaseDisc()) return;
  EnableButtons(false);
  const bool installed = InstallFromReleaseDisc(drives.Drive(), AppID);
  EnableButtons(true);
  if (installed)
    Unload();
  else
    installButton.setFocus();
}

namespace {

/// Shows the window once. True if the user canceled it.
bool AskForDirectory(const std::string& fileName) {
  // The program is waiting, but the user has to work in this window.
  const screen::Pointer pointer = screen::SetPointer(screen::Pointer::Normal);
  auto& form = ui::The<GetDataPath>();
  form.FileName = fileName;
  bool cancelled = false;
  form.AtUnload([&] { cancelled = form.Canceled(); });
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
