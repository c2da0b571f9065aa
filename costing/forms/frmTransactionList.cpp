#include "costing/forms/frmTransactionList.h"

#include "costing/forms/frmTransactionMaint.h"
#include "windows/AssetsDefined.h"

namespace dw {
namespace {

constexpr int kAssetColumn = 1;

ui::GridColumn Amount(const char* field) { return {.field = field, .format = ui::kMoneyFormat}; }
ui::GridColumn Quantity(const char* field) { return {.field = field, .format = kUnitsFormat}; }

}  // namespace

frmTransactionList::frmTransactionList()
    : ListForm({.form = kName,
                .title = "Transaction List",
                .grid = "grdTransactions",
                .data = "adoTransactions",
                .emptyQuery = "SELECT * FROM [Maintenance Transactions] WHERE ID = -1",
                .query = "SELECT * FROM [Maintenance Transactions] ORDER BY [Asset ID], [Transaction Date]",
                .columns = {{"ID"},
                            {"Asset ID"},
                            {.field = "Transaction Date", .format = "Short Date"},
                            {"Work Order Number"},
                            Quantity("Mileage"),
                            {.field = "Time", .format = kHoursFormat},
                            Quantity("Internal Fuel Units"),
                            Amount("Internal Fuel Cost"),
                            Amount("Outside Cost"),
                            Quantity("Outside Fuel Units"),
                            Amount("Outside Fuel Cost"),
                            Amount("Outside Oil Cost"),
                            Amount("Oil Cost"),
                            Amount("Internal Time Cost"),
                            {"Notes"},
                            {"Period"},
                            {"Year"},
                            {"When Posted"},
                            Amount("Parts Cost"),
                            Amount("Total Internal Cost"),
                            Amount("Total Outside Cost"),
                            {"Created By"},
                            {"Date Created"},
                            {"Updated By"},
                            {"Last Updated"},
                            {"Type_ID"},
                            {"Outside Oil Units"},
                            {"Oil"}}}) {}

bool frmTransactionList::MayOpen() { return AssetsDefined("SELECT TOP 1 [ID] FROM [Vehicles] ORDER BY ID"); }

void frmTransactionList::OpenDetail(bool add, std::int32_t id) {
  OpenAssetDetailForm<frmTransactionMaint>(Grid(), add, id, add ? std::string() : CellText(kAssetColumn),
                                           CurrentRow, HasRows());
}

void frmTransactionList::DeleteItem() {
  DeleteRow([this] {
    return DeleteRule{.recordQuery =
                          "SELECT * FROM [Maintenance Transactions] WHERE [ID] = " + std::to_string(RowID())};
  });
}

}  // namespace dw
