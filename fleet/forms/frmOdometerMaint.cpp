#include "fleet/forms/frmOdometerMaint.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"

namespace dw {

frmOdometerMaint::frmOdometerMaint()
    : DetailForm({.form = kName,
                  .title = "Odometer Entry",
                  .data = "OdometerData",
                  .table = "[Odometer Entries]",
                  .recordWords = "Odometer #",
                  .ok = "OKButton"}) {
  Data().Bind(Text1, "ID");
  Data().Bind(AssetCombo, "Asset ID", "VIN/Serial Number");
  Data().Bind(Text8, "Date", "Date");
  Data().Bind(MaskedEdit1, "Mileage", "Mileage");
  Data().Bind(Text3, "Notes", "Notes");
  Text8.onLeave = [this] { return CancelPressed() || ValidDate(Text8.Text(), true); };

  auto* rows = new ui::FieldRows;
  ui::SetWidth(Text8, ui::kDateWidth);
  ui::SetWidth(MaskedEdit1, ui::kNumberWidth);
  ShowNumber(Text1);
  rows->Row("VIN/Serial Number", {&AssetCombo});
  rows->Row("Date", {&Text8});
  rows->Row("Mileage", {&MaskedEdit1});
  rows->Row("Database ID", {&Text1});
  LayOut(rows, {NotesGroup(Text3)});
}

void frmOdometerMaint::OpenLists() {
  AssetData.DatabaseName = DataFile;
  // Until it is activated the window knows neither its record nor its asset.
  if (!Activated)
    AssetData.RecordSource = "SELECT * FROM [Vehicles] WHERE [ID] = -1";
  else if (AssetID.empty())
    AssetData.RecordSource = "SELECT * FROM [Vehicles] ORDER BY [Description]";
  else
    AssetData.RecordSource = "SELECT * FROM [Vehicles] WHERE [Asset ID] = '" + QuoteSQL(AssetID) + "'";
  AssetData.Refresh();
  AssetCombo.Fill(AssetData.Recordset().get());
}

void frmOdometerMaint::FillPlaceholder(dao::Recordset& record) { record.Set("Asset ID", AssetID); }

void frmOdometerMaint::RecordLoaded() { AssetCombo.setEnabled(AssetID.empty()); }

bool frmOdometerMaint::ValidData() {
  if (!ValidDate(Text8.Text(), true)) {
    Text8.setFocus();
    return false;
  }
  const char* wrong = nullptr;
  if (MaskedEdit1.Text().empty())
    wrong = "You forgot to fill in the mileage.";
  else if (!rt::IsNumeric(MaskedEdit1.Text()))
    wrong = "The mileage is not numeric. Please check.";
  if (!wrong) return true;
  screen::MessageBox(wrong, screen::Icon::Critical);
  MaskedEdit1.setFocus();
  return false;
}

}  // namespace dw
