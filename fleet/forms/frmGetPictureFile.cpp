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
  set(selectButton, "cmdSelect", "Se&lect");
  set(removeButton, "cmdRemove", "&Remove");
  set(cancelButton, "cmdCancel", "Cancel");
  set(scanButton, "cmdScan", "&Scan");
  set(setUpBeforeScan, "chkPreview", "Preview");
  set(makeTrace, "chkTrace", "Make Trace Log");
  set(creditCard, "optCreditCard", "Credit Card");
  set(wholePage, "optPage", "Paper");
  set(camera, "optCam", "Camera");
  set(instructions, "Label1",
      "Select the file and click the Select button to use, or click the Cancel button to exit without "
      "choosing.");
  scanSizes.setObjectName("Frame1");
  scanSizes.setTitle("Scan Size");
  cancelButton.setToolTip("A file that was clicked or scanned is deleted.");
}

void frmGetPictureFile::LayOut() {
  instructions.setTextFormat(Qt::PlainText);
  instructions.setWordWrap(true);
  directories.setAccessibleName("Directories");
  fileList.setAccessibleName("Files");
  preview.setAccessibleName("Preview of the file");
  for (QWidget* list : std::initializer_list<QWidget*>{&directories, &fileList}) {
    list->setMinimumWidth(fontMetrics().averageCharWidth() * 32);
    list->setMinimumHeight(fontMetrics().height() * 16);
  }
  auto* drive = new QHBoxLayout;
  drive->setSpacing(10);
  drive->addWidget(ui::Prompt("&Drive:", drives));
  drive->addWidget(&drives, 1);
  auto* grid = new QGridLayout;
  grid->addWidget(&instructions, 0, 0, 1, 3);
  grid->addLayout(drive, 1, 0);
  grid->addWidget(&directories, 2, 0);
  grid->addWidget(&fileList, 1, 1, 2, 1);
  grid->addLayout(LayOutRight(), 1, 2, 2, 1);
  grid->setRowStretch(2, 1);
  for (int column = 0; column < 3; ++column) grid->setColumnStretch(column, 1);
  grid->setHorizontalSpacing(14);
  grid->setVerticalSpacing(10);

  auto* all = new QVBoxLayout(this);
  all->addLayout(grid, 1);
  all->addSpacing(6);
  all->addLayout(ui::ButtonRow({&scanButton, &selectButton, &removeButton, &cancelButton}));
  ui::TabOrder({&drives, &directories, &fileList, &creditCard, &wholePage, &camera, &setUpBeforeScan,
                &makeTrace, &scanButton, &selectButton, &removeButton, &cancelButton});
  // The Tab key stops at the chosen size alone.
  for (QRadioButton* size : {&creditCard, &wholePage, &camera}) {
    size->setFocusPolicy(Qt::ClickFocus);
    connect(size, &QRadioButton::toggled, size,
            [size](bool on) { size->setFocusPolicy(on ? Qt::StrongFocus : Qt::ClickFocus); });
  }
  wholePage.setChecked(true);
  SetDefault(&selectButton);
  SetCancel(&cancelButton);
}

QLayout* frmGetPictureFile::LayOutRight() {
  auto* sizes = new QHBoxLayout(&scanSizes);
  for (QRadioButton* size : {&creditCard, &wholePage, &camera}) sizes->addWidget(size);
  sizes->addStretch(1);
  auto* checks = new QHBoxLayout;
  checks->addWidget(&setUpBeforeScan);
  checks->addWidget(&makeTrace);
  checks->addStretch(1);
  auto* column = new QVBoxLayout;
  column->setSpacing(8);
  column->addWidget(&preview, 1);
  column->addWidget(&scanImage, 1);
  column->addWidget(&scanSizes);
  column->addLayout(checks);
  return column;
}

void frmGetPictureFile::Connect() {
  drives.onChange = [this] { DriveChosen(); };
  directories.onChange = [this] { DirectoryChosen(); };
  // Selecting a file hands it over, by the mouse or by the keys; the focus alone selects none. A click on the
  // selected file counts again.
  connect(&fileList, &QListWidget::itemSelectionChanged, this, [this] { ui::Guard([&] { FileMarked(); }); });
  connect(&fileList, &QListWidget::itemClicked, this, [this] { SetPhoto(ChosenPath()); });
  connect(&fileList, &QListWidget::itemDoubleClicked, &selectButton, &QPushButton::click,
          Qt::QueuedConnection);
  connect(&camera, &QRadioButton::toggled, this, [this](bool on) { setUpBeforeScan.setChecked(on); });
  for (QRadioButton* other : {&creditCard, &wholePage})
    connect(other, &QRadioButton::toggled, this, [this](bool on) {
      if (on) setUpBeforeScan.setChecked(false);
    });
  ui::OnClick(selectButton, [this] { Select(); });
  ui::OnClick(removeButton, [this] { Remove(); });
  ui::OnClick(cancelButton, [this] { CancelClicked(); });
  ui::OnClick(scanButton, [this] { Scan(); });
}

void frmGetPictureFile::OnLoad() {
  const screen::Hourglass hourglass;
  const bool scanner = ImgScan1->Available();
  scanButton.setEnabled(scanner);
  if (!scanner) scanButton.setToolTip("No scanner was found.");
  scanImage.setVisible(scanner);
  if (!directories.SetPath(PicturesDirectory())) directories.SetPath("/");
  fileList.setFocus();
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
  if (directories.SetPath(drives.Drive().empty() ? "/" : drives.Drive())) return;
  // The drive is not ready: back to the one that is shown.
  following_ = true;
  drives.SetDrive(directories.Path());
  following_ = false;
}

void frmGetPictureFile::DirectoryChosen() {
  const bool following = std::exchange(following_, true);
  drives.SetDrive(directories.Path());
  following_ = following;
  if (!fileList.SetPath(directories.Path())) fileList.clear();
  preview.Clear();
}

void frmGetPictureFile::SetPhoto(const std::string& path) {
  if (CallingForm) CallingForm->SetPhoto(path);
}

std::string frmGetPictureFile::ChosenPath() const {
  const std::string file = fileList.FileName();
  return file.empty() ? file : PicturePath(fileList.Path(), file);
}

void frmGetPictureFile::FileMarked() {
  const std::string path = ChosenPath();
  if (path.empty()) {
    preview.Clear();
    return;
  }
  SetPhoto(path);
  const screen::Hourglass hourglass;
  preview.ShowFile(path);
}

void frmGetPictureFile::Select() {
  const std::string path = ChosenPath();
  if (path.empty()) {
    screen::MessageBox("Select a file name before clicking the Select button.", screen::Icon::Information);
    fileList.setFocus();
    return;
  }
  if (!preview.LoadFile(path)) {
    fileList.setFocus();
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
