#include "windows/ProperWords.h"

#include "data/GenericTools.h"

namespace dw {

void CapitalizeWords(ui::TextBox& field) {
  field.onChange = [&field] {
    const std::string proper = ProperCase(field.Text());
    if (proper == field.Text()) return;
    const int caret = field.cursorPosition();
    field.SetText(proper);
    field.setCursorPosition(caret);
  };
}

}  // namespace dw
