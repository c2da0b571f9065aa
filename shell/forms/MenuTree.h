// The entries of the main menu, and the windows that they open.
#pragma once

#include <functional>
#include <span>

namespace dw {

struct MenuEntry {
  int level;            ///< from 1; an entry followed by deeper ones is a sub-menu
  const char* name;     ///< of the item
  const char* caption;  ///< empty for a separator
  const char* target;  ///< the name that InstallMenuTarget uses for the window; empty if the menu itself acts
  const char* tip;     ///< what the entry is for, in the status bar; empty for sub-menus whose title says it
};

/// All entries, in order.
std::span<const MenuEntry> MenuTree();

/// Makes the menu entries with this target open a window without blocking. A target is the name of a form, or
/// of the entry if several entries open one form in different ways.
void InstallMenuTarget(const char* target, std::function<void()> open);
/// Null if nothing has been installed: the entry is in the menu but cannot be chosen.
const std::function<void()>* MenuTarget(const char* target);

}  // namespace dw
