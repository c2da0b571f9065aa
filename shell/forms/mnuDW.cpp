#include "shell/forms/mnuDW.h"

#include <QAction>
#include <QMenu>
#include <QProxyStyle>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "data/Compact.h"
#include "data/Parameters.h"
#include "platform/controls/Application.h"
#include "platform/system/Machine.h"
#include "shell/Help.h"
#include "shell/ShellState.h"
#include "shell/forms/HelpWindow.h"
#include "shell/forms/MenuPicture.h"
#include "shell/forms/MenuTree.h"
#include "shell/forms/Startup.h"
#include "shell/forms/TechSupport.h"

namespace dw {
namespace {

/// A window that is not maximized leaves some of the screen free.
constexpr double kRestored = 0.9;

/// Lets the keys and the mouse select disabled entries, so that the status bar can explain them.
class MenuStyle : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    if (hint == SH_Menu_AllowActiveAndDisabled) return 1;
    return QProxyStyle::styleHint(hint, option, widget, data);
  }
};

bool IsParent(std::size_t index) {
  const auto tree = MenuTree();
  return index + 1 < tree.size() && tree[index + 1].level > tree[index].level;
}

}  // namespace

mnuDW::mnuDW() : Form("mnuDW"), menuStyle_(new MenuStyle), picture_(new MenuPicture) {
  setWindowTitle("Drovewright");
  menuBar.setObjectName("menuBar");
  menuBar.setNativeMenuBar(false);
  statusBar.setObjectName("stsBar");
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->setMenuBar(&menuBar);
  column->addWidget(picture_, 1);
  column->addWidget(&statusBar);
  BuildMenu();
  // At its smallest the window still shows the whole menu.
  resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 26);

  auto* key = new QShortcut(QKeySequence(Qt::Key_F10), this);
  connect(key, &QShortcut::activated, this, [this] {
    menuBar.setFocus(Qt::MenuBarFocusReason);
    menuBar.setActiveAction(menuBar.actions().front());
  });
}

mnuDW::~mnuDW() = default;

void mnuDW::BuildMenu() {
  std::vector<QMenu*> open;  // the sub-menus around the current entry, by level
  const auto tree = MenuTree();
  for (std::size_t i = 0; i < tree.size(); ++i) {
    const MenuEntry& entry = tree[i];
    open.resize(static_cast<std::size_t>(entry.level) - 1);
    QMenu* parent = open.empty() ? nullptr : open.back();
    if (IsParent(i))
      open.push_back(AddMenu(parent, entry));
    else
      AddItem(*parent, entry);
  }
}

QMenu* mnuDW::AddMenu(QMenu* parent, const MenuEntry& entry) {
  QMenu* menu = parent ? parent->addMenu(entry.caption) : menuBar.addMenu(entry.caption);
  menu->setStyle(menuStyle_.get());
  menu->menuAction()->setObjectName(entry.name);
  menu->menuAction()->setStatusTip(entry.tip);
  connect(menu, &QMenu::hovered, this, [this](QAction* item) { statusBar.showMessage(item->statusTip()); });
  connect(menu, &QMenu::aboutToHide, this, [this] { statusBar.clearMessage(); });
  return menu;
}

void mnuDW::AddItem(QMenu& menu, const MenuEntry& entry) {
  const std::string caption = entry.caption;
  QAction* item = caption.empty() ? menu.addSeparator() : menu.addAction(entry.caption);
  item->setObjectName(entry.name);
  if (caption.empty()) return;
  item->setStatusTip(entry.tip);
  const std::string target = entry.target;
  if (target.empty()) {
    connect(item, &QAction::triggered, this,
            [this, name = std::string(entry.name)] { ui::Guard([&] { Act(name); }); });
    return;
  }
  if (!MenuTarget(entry.target)) {
    item->setEnabled(false);
    item->setStatusTip(QString(entry.tip) + " (not available in this version)");
    return;
  }
  connect(item, &QAction::triggered, this, [target] {
    ui::Guard([&] {
      const screen::Hourglass hourglass;
      if (const auto* open = MenuTarget(target.c_str())) (*open)();
    });
  });
}

void mnuDW::Act(const std::string& name) {
  if (name == "cptExit") {
    Unload();
    return;
  }
  if (name == "CompactDB") {
    CompactMainFile();
    return;
  }
  const screen::Hourglass hourglass;
  if (name == "DW_Contents") ShowHelpContents();
  if (name == "DW_Search") ShowHelpSearch();
  if (name == "DW_TechSupport") ui::The<TechSupport>().ShowForm();
  if (name == "DW_About") ui::The<Startup>().ShowForm();
}

QAction& mnuDW::Item(const char* name) const { return *findChild<QAction*>(name); }

void mnuDW::TakeAway(const char* subMenu, const char* reason) {
  QAction& item = Item(subMenu);
  item.setEnabled(false);
  item.setStatusTip(item.statusTip() + " (" + reason + ")");
  for (QAction* entry : item.menu()->actions()) entry->setEnabled(false);
}

void mnuDW::OnLoad() {
  MinWidth = width();
  MinHeight = height();
  if (!HelpReady) {
    SetUpHelp();
    HelpReady = true;
  }
  if (!Minimized()) {
    // The size after a restore, which fits the screen as well.
    resize(size().expandedTo(ui::RoomFor(*this) * kRestored));
    move(screen()->availableGeometry().topLeft() + QPoint(1, 1));
    setWindowState(windowState() | Qt::WindowMaximized);
  }
  if (!IsAdministrator) TakeAway("DW_ApplicationSetup", "for administrators");
}

void mnuDW::OnResize() {
  // The window system enforces the smallest size. A window that does not fill the screen goes into its
  // corner.
  if (isVisible() && !isMaximized() && !isFullScreen())
    move(screen()->availableGeometry().topLeft() + QPoint(1, 1));
}

void mnuDW::OnActivate() {
  if (MenuActivated) return;
  {
    const screen::Hourglass hourglass;
    picture_->Load(sys::ProgramDirectory() + "/DW.BMP");
    if (!InternalFuelAvailable()) TakeAway("DW_InvPricing", "internal fuel is not available");
  }
  MenuActivated = true;
  OfferDueReport();
}

void mnuDW::OfferDueReport() {
  const auto* open = MenuTarget("frmMaintenanceDueReport");
  if (!open) return;
  if (screen::MessageBox("Would you like to see a Maintenance Due report now?", screen::Icon::None,
                         screen::Buttons::YesNo) != screen::Answer::Yes)
    return;
  SetPointer(screen::Pointer::Hourglass);
  (*open)();
  SetPointer(screen::Pointer::Normal);
}

void mnuDW::CompactMainFile() {
  const screen::Hourglass hourglass;
  screen::ShowNotice("Compacting " + screen::ApplicationTitle() + " Data Base", "Please wait...");
  CompactDatabase(DataFile);
  screen::HideNotice();
}

void mnuDW::OnUnload() { MenuActivated = false; }

}  // namespace dw
