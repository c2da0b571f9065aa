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

  ui::MaskEdBox Text2{"Text2", {}, ui::Keys::Digits};  ///< `Line Number`
  ui::ComboBox Combo4{"Combo4"};                       ///< `Table Name`; empty: the primary table
  ui::ComboBox Combo1{"Combo1"};                       ///< `Field Name`
  ui::ComboBox Combo5{"Combo5"};                       ///< `Field Function`
  ui::ComboBox Combo2{"Combo2"};                       ///< `Comparison Operator`
  ui::TextBox Text1{"Text1"};                          ///< `Value`
  ui::CheckBox Check1{"Check1", "Prompt?"};            ///< `Get Value at Runtime`
  ui::TextBox Text5{"Text5"};                          ///< `Runtime Value Prompt`
  ui::TextBox Text3{"Text3"};                          ///< `Open Parentheses`
  ui::TextBox Text4{"Text4"};                          ///< `Close Parentheses`
  ui::ComboBox Combo3{"Combo3"};                       ///< `Connector`

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
