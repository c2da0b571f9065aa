// Which windows the main menu opens.
#pragma once

namespace dw {

/// Tells the main menu of every window that it can open.
void RegisterForms();

}  // namespace dw
