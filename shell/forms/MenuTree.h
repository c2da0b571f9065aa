// The entries of the main menu, and the windows that they open.
#pragma once

#include <functional>
#include <span>

namespace dw {

struct MenuEntry {
  int level;            ///< from 1; an entry with deeper ones behind it is a sub-menu
  const char* name;     ///< of the item
  const char* caption;  ///< empty for a separator
  const char* target;   ///< what InstallMenuTarget knows the window by; empty where the menu itself acts
  const char* tip;  ///< what the entry is for, in the status bar; empty for sub-menus that say it themselves
};

/// All entries, in order.
std::span<const MenuEntry> MenuTree();

/// Has the menu entries with this target open a window without blocking. A target is the name of a form, or
/// of the entry where several entries open one form in different ways.
void InstallMenuTarget(const char* target, std::function<void()> open);
/// Null where nothing has been installed: the entry stands in the menu but cannot be chosen.
const std::function<void()>* MenuTarget(const char* target);

}  // namespace dw
