// What the shell keeps about the running program beside the session's globals.
#pragma once

namespace dw {

/// Help has been set up; the main menu sees to it, and signing off takes it back.
inline bool HelpReady = false;
/// The main menu has done the work of its first activation.
inline bool MenuActivated = false;

}  // namespace dw
