#include "costing/forms/frmPriceLogList.h"

#include "costing/forms/frmFuelPriceLogMaint.h"

namespace dw {
namespace {

/// The log with the descriptions of its fuel types.
constexpr const char* kLog =
    "SELECT * FROM [Internal Fuel Pricing Log] LEFT JOIN [Fuel Types] ON [Internal Fuel Pricing Log].[Fuel "
    "Type] = [Fuel Types].ID ";

/// A column that both tables have.
ui::GridColumn OfLog(const std::string& column) {
  return {.field = "Internal Fuel Pricing Log." + column, .caption = column};
}

}  // namespace

frmPriceLogList::frmPriceLogList()
    : ListForm({.form = kName,
                .title = "Internal Fuel Price Log",
                .grid = "grdPricing",
                .data = "adoInternalPricing",
                .emptyQuery = std::string(kLog) + "WHERE [Internal Fuel Pricing Log].ID = -1",
                .query = std::string(kLog) + "ORDER BY [Description], [Effective Date] DESC",
                .columns = {OfLog("ID"),
                            {.field = "Description", .caption = "Fuel Type"},
                            {"Effective Date"},
                            {.field = "Fuel Price", .format = kUnitPriceFormat},
                            OfLog("Notes"),
                            OfLog("Created By"),
                            OfLog("Date Created"),
                            OfLog("Updated By"),
                            OfLog("Last Updated")}}) {}

void frmPriceLogList::OpenDetail(bool add, std::int32_t id) {
  OpenDetailForm<frmFuelPriceLogMaint>(Grid(), add, id, CurrentRow, HasRows());
}

void frmPriceLogList::DeleteItem() { screen::MessageBox("Not Yet Implemented."); }

}  // namespace dw
