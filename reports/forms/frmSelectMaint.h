// One condition of a select and sort definition.
#pragma once

#include "platform/controls/CheckBox.h"
#include "reports/forms/DefinitionLine.h"

namespace dw {

class frmSelectMaint : public DefinitionLine {
 public:
  static constexpr const char* kName = "frmSelectMaint";
  frmSelectMaint();

  ui::ComboBox fieldFunction{"Combo5"};            ///< `Field Function`
  ui::ComboBox comparison{"Combo2"};               ///< `Comparison Operator`
  ui::TextBox value{"Text1"};                      ///< `Value`
  ui::CheckBox askAtRuntime{"Check1", "Prompt?"};  ///< `Get Value at Runtime`
  ui::TextBox prompt{"Text5"};                     ///< `Runtime Value Prompt`
  ui::TextBox openParentheses{"Text3"};            ///< `Open Parentheses`
  ui::TextBox closeParentheses{"Text4"};           ///< `Close Parentheses`
  ui::ComboBox connector{"Combo3"};                ///< `Connector`

 protected:
  void RecordLoaded() override;
  bool ValidData() override;

 private:
  void FormatValue();
};

}  // namespace dw
