// The About box, which is also the gate between the sign-on and the main menu.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <array>

#include "platform/controls/Form.h"
#include "shell/AboutBox.h"

namespace dw {

/// Shown once at every start, and again from the menu, with the same behavior. Its unload shows the main
/// menu.
class Startup : public ui::Form {
 public:
  Startup();

  QLabel version, currentUser, dateInstalled, status;
  std::array<QLabel, 4> organization;
  /// Title of the product, name of the family, and two lines of the maker.
  std::array<QLabel, 4> product;
  QPushButton okButton{"&OK"};

  bool Loaded = false;      ///< the contents have been filled
  bool Aborted = false;     ///< the start was refused: the main menu is not shown
  bool BackupDone = false;  ///< this run has made a copy of the main file

 protected:
  void OnActivate() override;
  void OnUnload() override;

 private:
  void NameLabels();
  void LayOut();
  void Fill();
};

}  // namespace dw
