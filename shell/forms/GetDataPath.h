// The window that finds a missing data file: by hand, by a search of the drives, or by a first installation
// from the release disc.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <string>

#include "platform/controls/DirListBox.h"
#include "platform/controls/DriveListBox.h"
#include "platform/controls/FileListBox.h"
#include "platform/controls/Form.h"
#include "platform/controls/TextBox.h"
#include "shell/DataSearch.h"

namespace dw {

/// Takes over a directory with the file, and keeps it in the settings. The user can close the window during
/// its search; the search ends first.
/// its search runs; the search ends first.
class GetDataPath : public ui::Form {
 public:
  GetDataPath();

  std::string FileName;  ///< the file to look for; may come with a path
  std::string AppID;     ///< the application code; the program's own if empty

  ui::DriveListBox drives{"Drive1", MachineDrives};
  ui::DirListBox directories{"Dir1"};
  ui::FileListBox files{"File1", "bfsys.mdb"};
  ui::TextBox dataPath{"txtDataPath"};
  QLabel instructions, warningHeading, warning;
  QPushButton okButton, cancelButton, locateButton, installButton;

  /// The user has given up: without the data the program cannot go on.
  bool Canceled() const { return canceled_; }

 protected:
  void OnLoad() override;
  void OnActivate() override;
  void OnUnload() override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void LayOut();
  void Connect();
  void DriveChosen();
  void DirectoryChosen();
  void ShowChosen();
  void EnableButtons(bool enable);
  void Accept();
  void Locate();
  void InstallFromDisc();

  bool activated_ = false;
  bool canceled_ = false;
  bool following_ = false;  ///< the drive list is being moved to where the directory list is
  bool searching_ = false;
  bool stopped_ = false;  ///< the window is to close as soon as the search has ended
  bool busy_ = false;     ///< the buttons are disabled
  std::string found_;     ///< the copy that the search found and the user accepted
};

/// Shows the window for a missing file, and returns when the user has chosen or closed it. Cancel closes
/// every form after a message, and the window comes again as long as the file is missing. Throws
/// WindowsClosed if the file has been found after other forms were closed.
void FindDataFile(const std::string& fileName);
/// Installs FindDataFile for missing files, and frmGetSQLInfo for an unknown server.
void InstallLocators();

}  // namespace dw
