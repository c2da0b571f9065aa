#include "fleet/forms/frmOdometerList.h"

#include "fleet/forms/frmOdometerMaint.h"
#include "windows/AssetsDefined.h"
#include "windows/DaoDelete.h"

namespace dw {
namespace {

constexpr int kAssetColumn = 1;

/// A column that assets have as well.
ui::GridColumn OfReading(const std::string& column) {
  return {.field = "Odometer Entries." + column, .caption = column};
}

}  // namespace

frmOdometerList::frmOdometerList()
    : ListForm({.form = kName,
                .title = "Odometer Readings",
                .grid = "grdOdometers",
                .data = "adoOdometers",
                .emptyQuery = "SELECT * FROM [Odometer Entries] INNER JOIN [Vehicles] ON [Odometer "
                              "Entries].[Asset ID] = [Vehicles].[Asset ID] WHERE [Odometer Entries].ID = -1",
                .query = "SELECT * FROM [Odometer Entries] LEFT JOIN [Vehicles] ON [Odometer Entries].[Asset "
                         "ID] = [Vehicles].[Asset ID] ORDER BY [Odometer Entries].[Asset ID], [Mileage]",
                .columns = {OfReading("ID"),
                            OfReading("Asset ID"),
                            {"Description"},
                            {"VIN/Serial Number"},
                            {"Model Year"},
                            {.field = "Mileage", .format = kMileageFormat},
                            {"Date"},
                            OfReading("Notes"),
                            OfReading("Created By"),
                            OfReading("Date Created"),
                            OfReading("Updated By"),
                            OfReading("Last Updated")}}) {}

bool frmOdometerList::MayOpen() { return AssetsDefined("SELECT TOP 1 * FROM [Vehicles]"); }

void frmOdometerList::OpenDetail(bool add, std::int32_t id) {
  OpenAssetDetailForm<frmOdometerMaint>(Grid(), add, id, add ? std::string() : CellText(kAssetColumn),
                                        CurrentRow, HasRows());
}

void frmOdometerList::DeleteItem() {
  RemoveRow([this] {
    return DaoDeleteFromList("SELECT * FROM [Odometer Entries] WHERE [ID] = " + std::to_string(RowID()));
  });
}

}  // namespace dw
