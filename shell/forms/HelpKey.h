// The key F1: help for the window in front.
#pragma once

class QApplication;

namespace dw {

/// From now on F1 opens the help page of the window in which it is pressed: windows are known by their object
/// name. Over a message box it is the page of the form that was active before, which explains its messages.
void InstallHelpKey(QApplication& application);

}  // namespace dw
