// State of the running program that belongs to the shell, beside the session's globals.
#pragma once

namespace dw {

/// Help has been set up. The main menu sets it, and signing off clears it.
inline bool HelpReady = false;
/// The main menu has done the work of its first activation.
inline bool MenuActivated = false;

}  // namespace dw
