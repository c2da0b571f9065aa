// Gets a picture for another form: a file, or a scan.
#pragma once

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <memory>
#include <string>

#include "fleet/PictureFile.h"
#include "fleet/forms/PictureCaller.h"
#include "platform/controls/DirListBox.h"
#include "platform/controls/DriveListBox.h"
#include "platform/controls/FileListBox.h"
#include "platform/controls/Form.h"
#include "platform/controls/ImageEdit.h"
#include "platform/controls/PictureBox.h"
#include "platform/scan/Scanner.h"

namespace dw {

/// A click on a file passes its path to the caller at once, and Cancel then deletes that file. So a discarded
/// scan leaves nothing behind, but a file that was only clicked is deleted as well.
class frmGetPictureFile : public ui::Form {
 public:
  frmGetPictureFile();

  bool ReturnJPG = false;                ///< a scan is passed on as JPEG
  PictureCaller* CallingForm = nullptr;  ///< null once that form is gone
  std::string TemporaryFilepath;         ///< directory for a scan; empty for the program's own
  std::string TemporaryFilename;         ///< name for a scan without an ending; empty for a new one
  /// The calling form is about to close.
  void CallerGone();

  ui::DriveListBox drives{"Drive1"};
  ui::DirListBox directories{"Dir1"};
  ui::FileListBox fileList{"File1", "*.bmp;*.wmf;*.jpg"};
  QPushButton selectButton, removeButton, cancelButton, scanButton;
  QCheckBox setUpBeforeScan, makeTrace;
  QGroupBox scanSizes;
  QRadioButton creditCard, wholePage, camera;
  ui::PictureBox preview{"imgPreview"};
  QLabel instructions;
  std::unique_ptr<sys::Scanner> ImgScan1;
  ui::ImageEdit scanImage{"ImgEdit1"};
  ui::PictureConverter converter;

 protected:
  void OnLoad() override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void NameControls();
  void LayOut();
  QLayout* LayOutRight();
  void Connect();
  void DriveChosen();
  void DirectoryChosen();
  /// Empty while no file is selected.
  std::string ChosenPath() const;
  void FileMarked();
  void Select();
  void Remove();
  void CancelClicked();
  void SetPhoto(const std::string& path);

  void Scan();
  /// Prepares, scans and passes the scan on. False if there is no scan and the window stays.
  bool ScanPicture(ScanTrace& trace);
  /// False if the user gave up.
  bool RunScanner(const std::string& bmp, ScanTrace& trace);
  /// Saves the scan and returns the file to pass on.
  std::string SaveScan(const ScanFiles& files, ScanTrace& trace);
  sys::ScanSize Size() const;

  bool following_ = false;  ///< the drive list is being moved to where the directory list is
  bool scanning_ = false;
};

}  // namespace dw
