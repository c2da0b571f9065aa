// One scheduled kind of maintenance that a transaction's work counted as.
#pragma once

#include "platform/controls/DataCombo.h"
#include "windows/DetailForm.h"

namespace dw {

class frmMaintTaskMaint : public DetailForm {
 public:
  static constexpr const char* kName = "frmMaintTaskMaint";
  frmMaintTaskMaint();

  std::int32_t MaintenanceID = 0;  ///< the transaction that the task belongs to

  ui::DataControl dtaTypes{*this, "dtaTypes"};
  ui::TextBox Text3{"Text3"};  ///< `ID`
  ui::TextBox Text1{"Text1"};  ///< `Maintenance_Entry_ID`
  ui::DataCombo DBCombo1{"DBCombo1", "Description", "ID"};
  ui::MaskEdBox mskCost{"mskCost", ui::kMoneyFormat, ui::Keys::Any};

 protected:
  void OpenLists() override;
  void FillPlaceholder(dao::Recordset& record) override;
  void RecordLoaded() override;
  bool ValidData() override;
};

}  // namespace dw
