#include "costing/forms/frmMaintTaskMaint.h"

#include "data/BrackenfelGlobals.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"

namespace dw {
namespace {

constexpr const char* kTitle = "Recurring Maintenance Performed Detail";

}  // namespace

frmMaintTaskMaint::frmMaintTaskMaint()
    : RecordForm({.form = kName,
                  .title = kTitle,
                  .data = "Data1",
                  .table = "[Maintenance_Performed]",
                  .recordWords = "#",
                  .audit = AuditOnAdd::AllFour,
                  .createdBy = "Created_By",
                  .dateCreated = "Date_Created",
                  .updatedBy = "Updated_By",
                  .lastUpdated = "Last_Updated"}) {
  cost.SelectOnEntry();
  ShowNumber(transactionNumber);
  ShowNumber(recordNumber);
  Declare({{maintenanceType, "Maintenance_Type_ID", "Type"},
           {cost, "Cost", "Cost", ui::kMoneyWidth},
           {transactionNumber, "Maintenance_Entry_ID", "Maintenance ID"},
           {recordNumber, "ID", "Database ID"}});
}

void frmMaintTaskMaint::OpenLists() {
  types.DatabaseName = DataFile;
  types.RecordSource = "SELECT ID, Description FROM [Maintenance Types] ORDER BY [Description]";
  types.Refresh();
  maintenanceType.Fill(types.Recordset().get());
}

void frmMaintTaskMaint::FillPlaceholder() {
  Hold().Set("Maintenance_Entry_ID", MaintenanceID);
  Hold().Set("Maintenance_Type_ID", 0);
  Hold().Set("Cost", 0);
}

void frmMaintTaskMaint::RecordLoaded() {
  setWindowTitle(AddMode ? QString("New ") + kTitle : QString(kTitle));
}

bool frmMaintTaskMaint::ValidData() {
  if (cost.Text().empty()) cost.SetText("0.00");
  return rt::IsNumeric(cost.Text()) || Refuse(cost, "That is not a valid cost.", screen::Icon::Information);
}

}  // namespace dw
