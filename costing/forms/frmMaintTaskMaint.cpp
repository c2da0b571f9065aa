#include "costing/forms/frmMaintTaskMaint.h"

#include "data/BrackenfelGlobals.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"

namespace dw {
namespace {

constexpr const char* kTitle = "Recurring Maintenance Performed Detail";

}  // namespace

frmMaintTaskMaint::frmMaintTaskMaint()
    : DetailForm({.form = kName,
                  .title = kTitle,
                  .data = "Data1",
                  .table = "[Maintenance_Performed]",
                  .recordWords = "#",
                  .audit = AuditOnAdd::AllFour,
                  .createdBy = "Created_By",
                  .dateCreated = "Date_Created",
                  .updatedBy = "Updated_By",
                  .lastUpdated = "Last_Updated",
                  .ok = "OKButton"}) {
  Data().Bind(Text3, "ID");
  Data().Bind(Text1, "Maintenance_Entry_ID");
  Data().Bind(DBCombo1, "Maintenance_Type_ID", "Type");
  Data().Bind(mskCost, "Cost", "Cost");

  auto* rows = new ui::FieldRows;
  rows->Row("Type", {&DBCombo1});
  rows->Row("Cost", {&mskCost});
  rows->Row("Maintenance ID", {&Text1});
  rows->Row("Database ID", {&Text3});
  ui::SetWidth(mskCost, ui::kMoneyWidth);
  mskCost.SelectOnEntry();
  ShowNumber(Text1);
  ShowNumber(Text3);
  LayOut(rows);
}

void frmMaintTaskMaint::OpenLists() {
  dtaTypes.DatabaseName = DataFile;
  dtaTypes.RecordSource = "SELECT ID, Description FROM [Maintenance Types] ORDER BY [Description]";
  dtaTypes.Refresh();
  DBCombo1.Fill(dtaTypes.Recordset().get());
}

void frmMaintTaskMaint::FillPlaceholder(dao::Recordset& record) {
  record.Set("Maintenance_Entry_ID", MaintenanceID);
  record.Set("Maintenance_Type_ID", 0);
  record.Set("Cost", 0);
}

void frmMaintTaskMaint::RecordLoaded() {
  setWindowTitle(AddMode ? QString("New ") + kTitle : QString(kTitle));
}

bool frmMaintTaskMaint::ValidData() {
  if (mskCost.Text().empty()) mskCost.SetText("0.00");
  if (rt::IsNumeric(mskCost.Text())) return true;
  screen::MessageBox("That is not a valid cost.", screen::Icon::Information);
  mskCost.setFocus();
  return false;
}

}  // namespace dw
