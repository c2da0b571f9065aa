// One kind of scheduled maintenance that was done in a transaction.
#pragma once

#include "platform/controls/DataCombo.h"
#include "windows/RecordForm.h"

namespace dw {

class frmMaintTaskMaint : public RecordForm {
 public:
  static constexpr const char* kName = "frmMaintTaskMaint";
  frmMaintTaskMaint();

  std::int32_t MaintenanceID = 0;  ///< the transaction that the task belongs to

  ui::DataControl types{*this, "dtaTypes"};
  ui::TextBox recordNumber{"Text3"};       ///< `ID`
  ui::TextBox transactionNumber{"Text1"};  ///< `Maintenance_Entry_ID`
  ui::DataCombo maintenanceType{"DBCombo1", "Description", "ID"};
  ui::MaskEdBox cost{"mskCost", ui::kMoneyFormat, ui::Keys::Any};

 protected:
  void OpenLists() override;
  void FillPlaceholder() override;
  void RecordLoaded() override;
  bool ValidData() override;
};

}  // namespace dw
