#include "costing/forms/frmFuelPriceLogMaint.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/controls/Format.h"
#include "platform/controls/Layout.h"

namespace dw {

frmFuelPriceLogMaint::frmFuelPriceLogMaint()
    : DetailForm({.form = kName,
                  .title = "Log Detail",
                  .data = "Data1",
                  .table = "[Internal Fuel Pricing Log]",
                  .recordWords = "#",
                  .audit = AuditOnAdd::AllFour}) {
  Data().Bind(DBCombo1, "Fuel Type", "Fuel Type");
  Data().Bind(Text1, "Effective Date", "Effective Date");
  Data().Bind(MaskEdBox2, "Fuel Price", "Unit Price");
  Data().Bind(Text2, "Notes", "Notes");
  Data().Bind(Text3, "ID");
  Text1.onLeave = [this] { return CancelPressed() || ValidDate(Text1.Text(), true); };

  auto* rows = new ui::FieldRows;
  ui::SetWidth(Text1, ui::kDateWidth);
  ui::SetWidth(MaskEdBox2, ui::kMoneyWidth);
  ShowNumber(Text3);
  rows->Row("Fuel Type", {&DBCombo1});
  rows->Row("Effective Date", {&Text1});
  rows->Row("Unit Price", {&MaskEdBox2});
  rows->Row("Database ID", {&Text3});
  LayOut(rows, {NotesGroup(Text2)});
}

void frmFuelPriceLogMaint::OpenLists() {
  dtaFuelTypes.DatabaseName = DataFile;
  dtaFuelTypes.RecordSource = "SELECT * FROM [Fuel Types] ORDER BY [Description]";
  dtaFuelTypes.Refresh();
  DBCombo1.Fill(dtaFuelTypes.Recordset().get());
}

void frmFuelPriceLogMaint::RecordLoaded() {
  const std::string date = ui::Format(Data().Recordset()->Get("Effective Date"), "Medium Date");
  setWindowTitle(QString::fromStdString(AddMode ? "New Log Detail" : "Log Detail for '" + date + "'"));
}

}  // namespace dw
