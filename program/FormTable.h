// Which windows the main menu opens.
#pragma once

namespace dw {

/// Registers with the main menu every window that it can open.
void RegisterForms();

}  // namespace dw
