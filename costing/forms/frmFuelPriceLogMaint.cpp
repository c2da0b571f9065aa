#include "costing/forms/frmFuelPriceLogMaint.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/controls/Format.h"
#include "platform/controls/Layout.h"

namespace dw {

frmFuelPriceLogMaint::frmFuelPriceLogMaint()
    : RecordForm({.form = kName,
                  .title = "Log Detail",
                  .data = "Data1",
                  .table = "[Internal Fuel Pricing Log]",
                  .recordWords = "#",
                  .audit = AuditOnAdd::AllFour,
                  .ok = "OkButton"}) {
  effectiveDate.onLeave = [this] { return CancelPressed() || ValidDate(effectiveDate.Text(), true); };
  ShowNumber(recordNumber);
  Bind(notes, "Notes", "Notes");
  Declare({{fuelType, "Fuel Type", "Fuel Type"},
           {effectiveDate, "Effective Date", "Effective Date", ui::kDateWidth},
           {fuelPrice, "Fuel Price", "Unit Price", ui::kMoneyWidth},
           {recordNumber, "ID", "Database ID"}},
          {NotesGroup(notes)});
}

void frmFuelPriceLogMaint::OpenLists() {
  fuelTypes.DatabaseName = DataFile;
  fuelTypes.RecordSource = "SELECT * FROM [Fuel Types] ORDER BY [Description]";
  fuelTypes.Refresh();
  fuelType.Fill(fuelTypes.Recordset().get());
}

void frmFuelPriceLogMaint::RecordLoaded() {
  const std::string date = ui::Format(Stored("Effective Date"), "Medium Date");
  setWindowTitle(QString::fromStdString(AddMode ? "New Log Detail" : "Log Detail for '" + date + "'"));
}

}  // namespace dw
