// One condition of a select and sort definition.
#pragma once

#include <string>

#include "platform/controls/CheckBox.h"
#include "platform/controls/ComboBox.h"
#include "windows/RecordForm.h"

namespace dw {

class frmSelectMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmSelectMaint";
  frmSelectMaint();

  std::int32_t QueryID = 0;  ///< the definition that the line belongs to
  std::string ReportID;      ///< the primary table of the report

  ui::MaskEdBox lineNumber{"Text2", {}, ui::Keys::Digits};  ///< `Line Number`
  ui::ComboBox tableName{"Combo4"};                         ///< `Table Name`; empty: the primary table
  ui::ComboBox fieldName{"Combo1"};                         ///< `Field Name`
  ui::ComboBox fieldFunction{"Combo5"};                     ///< `Field Function`
  ui::ComboBox comparison{"Combo2"};                        ///< `Comparison Operator`
  ui::TextBox value{"Text1"};                               ///< `Value`
  ui::CheckBox askAtRuntime{"Check1", "Prompt?"};           ///< `Get Value at Runtime`
  ui::TextBox prompt{"Text5"};                              ///< `Runtime Value Prompt`
  ui::TextBox openParentheses{"Text3"};                     ///< `Open Parentheses`
  ui::TextBox closeParentheses{"Text4"};                    ///< `Close Parentheses`
  ui::ComboBox connector{"Combo3"};                         ///< `Connector`

 protected:
  void FillPlaceholder() override;
  void ReportVanished() override;
  bool StaysUnheld() const override { return true; }
  void RecordLoaded() override;
  bool ValidData() override;
  bool StoreMore() override;

 private:
  /// The table whose columns the field is one of.
  std::string Table() const;
  void FillFields();
  bool TableLeft();
  /// Reports a field that is missing or not in the table; false keeps the focus there.
  bool FieldIsThere();
  bool FieldLeft();
  void FormatValue();
};

}  // namespace dw
