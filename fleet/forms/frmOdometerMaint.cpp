#include "fleet/forms/frmOdometerMaint.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Text.h"

namespace dw {

frmOdometerMaint::frmOdometerMaint()
    : RecordForm({.form = kName,
                  .title = "Odometer Entry",
                  .data = "OdometerData",
                  .table = "[Odometer Entries]",
                  .recordWords = "Odometer #"}) {
  date.onLeave = [this] { return CancelPressed() || ValidDate(date.Text(), true); };
  ShowNumber(recordNumber);
  Bind(notes, "Notes", "Notes");
  Declare({{asset, "Asset ID", "VIN/Serial Number"},
           {date, "Date", "Date", ui::kDateWidth},
           {mileage, "Mileage", "Mileage", ui::kNumberWidth},
           {recordNumber, "ID", "Database ID"}},
          {NotesGroup(notes)});
}

void frmOdometerMaint::OpenLists() {
  assets.DatabaseName = DataFile;
  // Before its activation the window knows neither its record nor its asset.
  if (!Activated)
    assets.RecordSource = "SELECT * FROM [Vehicles] WHERE [ID] = -1";
  else if (AssetID.empty())
    assets.RecordSource = "SELECT * FROM [Vehicles] ORDER BY [Description]";
  else
    assets.RecordSource = "SELECT * FROM [Vehicles] WHERE [Asset ID] = '" + QuoteSQL(AssetID) + "'";
  assets.Refresh();
  asset.Fill(assets.Recordset().get());
}

void frmOdometerMaint::FillPlaceholder() { Hold().Set("Asset ID", AssetID); }

void frmOdometerMaint::RecordLoaded() { asset.setEnabled(AssetID.empty()); }

bool frmOdometerMaint::ValidData() {
  if (!ValidDate(date.Text(), true)) {
    date.setFocus();
    return false;
  }
  if (mileage.Text().empty()) return Refuse(mileage, "You forgot to fill in the mileage.");
  return rt::IsNumeric(mileage.Text()) || Refuse(mileage, "The mileage is not numeric. Please check.");
}

}  // namespace dw
