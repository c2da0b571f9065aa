// The list of the machine's drives, to choose one from.
#pragma once

#include <QComboBox>
#include <functional>
#include <string>
#include <vector>

#include "platform/system/Machine.h"

namespace ui {

/// Shows the roots of the drives. Reads the list again each time that the user opens it, so that it includes
/// a disc inserted meanwhile.
class DriveListBox : public QComboBox {
 public:
  using Provider = std::function<std::vector<sys::Drive>()>;
  explicit DriveListBox(const char* name, Provider drives = sys::Drives);

  /// The root of the chosen drive; empty if the machine reports none.
  std::string Drive() const;
  /// Chooses the drive of a path: the one with the longest root that the path begins with. False if there is
  /// none.
  bool SetDrive(const std::string& path);
  /// Called after the user or SetDrive has chosen another drive.
  std::function<void()> onChange;

  void showPopup() override;

 private:
  void Read();

  Provider provider_;
};

}  // namespace ui
