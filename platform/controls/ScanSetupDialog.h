// The window of the settings before a scan.
#pragma once

#include "platform/scan/Scanner.h"

class QWidget;

namespace ui {

/// Shows the choices over a window and takes the user's. False if the user cancels.
bool AskScanSetup(QWidget* over, sys::ScanSetup& setup);

}  // namespace ui
