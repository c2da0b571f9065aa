// One sort field of a select and sort definition.
#pragma once

#include <QRadioButton>
#include <string>

#include "platform/controls/ComboBox.h"
#include "windows/RecordForm.h"

namespace dw {

class frmSortMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmSortMaint";
  frmSortMaint();

  std::int32_t QueryID = 0;  ///< the definition that the line belongs to
  std::string ReportID;      ///< the primary table of the report

  ui::MaskEdBox lineNumber{"Text1", {}, ui::Keys::Digits};  ///< `Line Number`
  ui::ComboBox tableName{"TableCombo"};                     ///< `Table Name`; empty: the primary table
  ui::ComboBox fieldName{"FieldCombo"};                     ///< `Field Name`
  QRadioButton ascending, descending;

 protected:
  void FillPlaceholder() override;
  void ReportVanished() override;
  bool StaysUnheld() const override { return true; }
  void RecordLoaded() override;
  bool ValidData() override;
  bool StoreMore() override;

 private:
  std::string Table() const;
  void FillFields();
  bool FieldIsThere();
};

}  // namespace dw
