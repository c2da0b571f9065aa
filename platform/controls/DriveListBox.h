// The list of the machine's drives, to choose one from.
#pragma once

#include <QComboBox>
#include <functional>
#include <string>
#include <vector>

#include "platform/system/Machine.h"

namespace ui {

/// Shows the roots of the drives. The list is read again each time that it is opened, so that a disc that was
/// put in meanwhile is there.
class DriveListBox : public QComboBox {
 public:
  using Provider = std::function<std::vector<sys::Drive>()>;
  explicit DriveListBox(const char* name, Provider drives = sys::Drives);

  /// The root of the drive that is chosen; empty where the machine tells of none.
  std::string Drive() const;
  /// Chooses the drive that holds a path: the one with the longest root that the path begins with. False
  /// where there is none.
  bool SetDrive(const std::string& path);
  /// Another drive has been chosen, by the user or by SetDrive.
  std::function<void()> onChange;

  void showPopup() override;

 private:
  void Read();

  Provider provider_;
};

}  // namespace ui
