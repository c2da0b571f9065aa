// Capitals while a text is typed.
#pragma once

#include "platform/controls/TextBox.h"

namespace dw {

/// Each word of the field gets a capital while it is typed; the caret stays where typing has left it.
void CapitalizeWords(ui::TextBox& field);

}  // namespace dw
