#include "costing/forms/frmPricingList.h"

#include "costing/forms/frmPricingMaint.h"

namespace dw {

frmPricingList::frmPricingList()
    : ListForm({.form = kName,
                .title = "Internal Pricing",
                .grid = "grdPricing",
                .data = "adoInternalPricing",
                .emptyQuery = "SELECT * FROM [Internal Pricing Log] WHERE ID = -1",
                .query = "SELECT * FROM [Internal Pricing Log]",
                .columns = {{"ID"},
                            {"Effective Date"},
                            {.field = "Hourly Rate", .format = ui::kMoneyFormat},
                            {.field = "Oil Price", .format = kUnitPriceFormat},
                            {"Notes"},
                            {"Created By"},
                            {"Date Created"},
                            {"Updated By"},
                            {"Last Updated"}}}) {}

void frmPricingList::OpenDetail(bool add, std::int32_t id) {
  OpenDetailForm<frmPricingMaint>(Grid(), add, id, CurrentRow, HasRows());
}

void frmPricingList::DeleteItem() {
  DeleteRow([this] {
    return DeleteRule{.recordQuery =
                          "SELECT * FROM [Internal Pricing Log] WHERE [ID] = " + std::to_string(RowID())};
  });
}

}  // namespace dw
