// The main window: a picture, and the menu from which every other window opens.
#pragma once

#include <QMenuBar>
#include <QStatusBar>
#include <memory>
#include <string>

#include "platform/controls/Form.h"

class QAction;
class QMenu;
class QStyle;

namespace dw {

class MenuPicture;
struct MenuEntry;

/// Windows open from here without blocking it. Menu items are found by their names.
class mnuDW : public ui::Form {
  std::unique_ptr<QStyle> menuStyle_;  // lives longer than the menus that use it

 public:
  mnuDW();
  ~mnuDW() override;

  QMenuBar menuBar;
  QStatusBar statusBar;

 protected:
  void OnLoad() override;
  void OnActivate() override;
  void OnResize() override;
  void OnUnload() override;

 private:
  void BuildMenu();
  QMenu* AddMenu(QMenu* parent, const MenuEntry& entry);
  void AddItem(QMenu& menu, const MenuEntry& entry);
  /// Runs the menu's own action of an entry.
  void Act(const std::string& name);
  QAction& Item(const char* name) const;
  /// Disables a sub-menu and its entries, and says why in the status bar.
  void TakeAway(const char* subMenu, const char* reason);
  void OfferDueReport();
  void CompactMainFile();

  MenuPicture* picture_;
};

}  // namespace dw
