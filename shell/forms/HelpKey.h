// The key F1: help for the window in front.
#pragma once

class QApplication;

namespace dw {

/// From now on F1 opens the help page of the window in which it is pressed, by the window's object name. Over
/// a message box it opens the page of the form that was active before, which explains the form's messages.
void InstallHelpKey(QApplication& application);

}  // namespace dw
