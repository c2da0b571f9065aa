// What may be set before a scan.
#pragma once

#include "platform/scan/Scanner.h"

class QWidget;

namespace ui {

/// Shows the choices over a window and takes over what the user chooses. False where the user cancels.
bool AskScanSetup(QWidget* over, sys::ScanSetup& setup);

}  // namespace ui
