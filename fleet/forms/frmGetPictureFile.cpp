#include "fleet/forms/frmGetPictureFile.h"

#include <QCloseEvent>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QStandardPaths>
#include <QVBoxLayout>
#include <utility>

#include "fleet/forms/PictureForms.h"
#include "platform/controls/Application.h"
#include "platform/controls/Layout.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

/// Where people keep their pictures.
std::string PicturesDirectory() {
  for (const auto place : {QStandardPaths::PicturesLocation, QStandardPaths::HomeLocation}) {
    const QString path = QStandardPaths::writableLocation(place);
    if (QFileInfo(path).isDir()) return QFile::encodeName(path).toStdString();
  }
  return "/";
}

}  // namespace

frmGetPictureFile::frmGetPictureFile() : Form("frmGetPictureFile"), ImgScan1(sys::MakeScanner()) {
  setWindowTitle("Get Picture File");
  NameControls();
  LayOut();
  Connect();
}

void frmGetPictureFile::NameControls() {
  const auto set = [](auto& control, const char* name, const char* text) {
    control.setObjectName(name);
    control.setText(text);
  };
  set(cmdSelect, "cmdSelect", "Se&lect");
  set(cmdRemove, "cmdRemove", "&Remove");
  set(cmdCancel, "cmdCancel", "Cancel");
  set(cmdScan, "cmdScan", "&Scan");
  set(chkPreview, "chkPreview", "Preview");
  set(chkTrace, "chkTrace", "Make Trace Log");
  set(optCreditCard, "optCreditCard", "Credit Card");
  set(optPage, "optPage", "Paper");
  set(optCam, "optCam", "Camera");
  set(Label1, "Label1",
      "Select the file and click the Select button to use, or click the Cancel button to exit without "
      "choosing.");
  Frame1.setObjectName("Frame1");
  Frame1.setTitle("Scan Size");
  cmdCancel.setToolTip("A file that was clicked or scanned is deleted.");
}

void frmGetPictureFile::LayOut() {
  Label1.setTextFormat(Qt::PlainText);
  Label1.setWordWrap(true);
  Dir1.setAccessibleName("Directories");
  File1.setAccessibleName("Files");
  imgPreview.setAccessibleName("Preview of the file");
  for (QWidget* list : std::initializer_list<QWidget*>{&Dir1, &File1}) {
    list->setMinimumWidth(fontMetrics().averageCharWidth() * 32);
    list->setMinimumHeight(fontMetrics().height() * 16);
  }
  auto* drive = new QHBoxLayout;
  drive->addWidget(ui::Prompt("&Drive:", Drive1));
  drive->addWidget(&Drive1, 1);
  auto* grid = new QGridLayout;
  grid->addWidget(&Label1, 0, 0, 1, 3);
  grid->addLayout(drive, 1, 0);
  grid->addWidget(&Dir1, 2, 0);
  grid->addWidget(&File1, 1, 1, 2, 1);
  grid->addLayout(LayOutRight(), 1, 2, 2, 1);
  grid->setRowStretch(2, 1);
  for (int column = 0; column < 3; ++column) grid->setColumnStretch(column, 1);
  grid->setHorizontalSpacing(14);
  grid->setVerticalSpacing(10);

  auto* all = new QVBoxLayout(this);
  all->addLayout(grid, 1);
  all->addSpacing(6);
  all->addLayout(ui::ButtonRow({&cmdScan, &cmdSelect, &cmdRemove, &cmdCancel}));
  ui::TabOrder({&Drive1, &Dir1, &File1, &optCreditCard, &optPage, &optCam, &chkPreview, &chkTrace, &cmdScan,
                &cmdSelect, &cmdRemove, &cmdCancel});
  // The Tab key stops at the chosen size alone.
  for (QRadioButton* size : {&optCreditCard, &optPage, &optCam}) {
    size->setFocusPolicy(Qt::ClickFocus);
    connect(size, &QRadioButton::toggled, size,
            [size](bool on) { size->setFocusPolicy(on ? Qt::StrongFocus : Qt::ClickFocus); });
  }
  optPage.setChecked(true);
  SetDefault(&cmdSelect);
  SetCancel(&cmdCancel);
}

QLayout* frmGetPictureFile::LayOutRight() {
  auto* sizes = new QHBoxLayout(&Frame1);
  for (QRadioButton* size : {&optCreditCard, &optPage, &optCam}) sizes->addWidget(size);
  sizes->addStretch(1);
  auto* checks = new QHBoxLayout;
  checks->addWidget(&chkPreview);
  checks->addWidget(&chkTrace);
  checks->addStretch(1);
  auto* column = new QVBoxLayout;
  column->setSpacing(8);
  column->addWidget(&imgPreview, 1);
  column->addWidget(&ImgEdit1, 1);
  column->addWidget(&Frame1);
  column->addLayout(checks);
  return column;
}

void frmGetPictureFile::Connect() {
  Drive1.onChange = [this] { DriveChosen(); };
  Dir1.onChange = [this] { DirectoryChosen(); };
  // Selecting a file hands it over, by the mouse or by the keys; the focus alone selects none. A click on the
  // selected file counts again.
  connect(&File1, &QListWidget::itemSelectionChanged, this, [this] { ui::Guard([&] { FileMarked(); }); });
  connect(&File1, &QListWidget::itemClicked, this, [this] { SetPhoto(ChosenPath()); });
  connect(&File1, &QListWidget::itemDoubleClicked, &cmdSelect, &QPushButton::click, Qt::QueuedConnection);
  connect(&optCam, &QRadioButton::toggled, this, [this](bool on) { chkPreview.setChecked(on); });
  for (QRadioButton* other : {&optCreditCard, &optPage})
    connect(other, &QRadioButton::toggled, this, [this](bool on) {
      if (on) chkPreview.setChecked(false);
    });
  ui::OnClick(cmdSelect, [this] { Select(); });
  ui::OnClick(cmdRemove, [this] { Remove(); });
  ui::OnClick(cmdCancel, [this] { CancelClicked(); });
  ui::OnClick(cmdScan, [this] { Scan(); });
}

void frmGetPictureFile::OnLoad() {
  const screen::Hourglass hourglass;
  const bool scanner = ImgScan1->Available();
  cmdScan.setEnabled(scanner);
  if (!scanner) cmdScan.setToolTip("No scanner was found.");
  ImgEdit1.setVisible(scanner);
  if (!Dir1.SetPath(PicturesDirectory())) Dir1.SetPath("/");
  File1.setFocus();
}

void frmGetPictureFile::closeEvent(QCloseEvent* event) {
  if (scanning_)
    event->ignore();
  else
    Form::closeEvent(event);
}

void frmGetPictureFile::CallerGone() {
  CallingForm = nullptr;
  Unload();
}

void frmGetPictureFile::DriveChosen() {
  if (following_) return;
  if (Dir1.SetPath(Drive1.Drive().empty() ? "/" : Drive1.Drive())) return;
  // The drive is not ready: back to the one that is shown.
  following_ = true;
  Drive1.SetDrive(Dir1.Path());
  following_ = false;
}

void frmGetPictureFile::DirectoryChosen() {
  const bool following = std::exchange(following_, true);
  Drive1.SetDrive(Dir1.Path());
  following_ = following;
  if (!File1.SetPath(Dir1.Path())) File1.clear();
  imgPreview.Clear();
}

void frmGetPictureFile::SetPhoto(const std::string& path) {
  if (CallingForm) CallingForm->SetPhoto(path);
}

std::string frmGetPictureFile::ChosenPath() const {
  const std::string file = File1.FileName();
  return file.empty() ? file : PicturePath(File1.Path(), file);
}

void frmGetPictureFile::FileMarked() {
  const std::string path = ChosenPath();
  if (path.empty()) {
    imgPreview.Clear();
    return;
  }
  SetPhoto(path);
  const screen::Hourglass hourglass;
  imgPreview.ShowFile(path);
}

void frmGetPictureFile::Select() {
  const std::string path = ChosenPath();
  if (path.empty()) {
    screen::MessageBox("Select a file name before clicking the Select button.", screen::Icon::Information);
    File1.setFocus();
    return;
  }
  if (!imgPreview.LoadFile(path)) {
    File1.setFocus();
    return;
  }
  SetPhoto(path);
  Unload();
}

void frmGetPictureFile::Remove() {
  if (CallingForm) CallingForm->SetRemovePhoto(true);
  Unload();
}

void frmGetPictureFile::CancelClicked() {
  if (CallingForm) {
    DiscardPicture(CallingForm->Photo());
    CallingForm->SetPhoto({});
  }
  Unload();
}

void OpenGetPicture(PictureCaller& caller, ui::Form& callerForm) {
  const screen::Hourglass hourglass;
  auto& form = ui::The<frmGetPictureFile>();
  form.LoadForm();
  form.CallingForm = &caller;
  callerForm.AtUnload([&caller] {
    auto* open = ui::Existing<frmGetPictureFile>();
    if (open && open->CallingForm == &caller) open->CallerGone();
  });
  form.ShowForm();
}

}  // namespace dw
