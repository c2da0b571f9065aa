#include "costing/forms/frmPeriodsList.h"

#include "costing/forms/frmFiscalYearSetup.h"
#include "costing/forms/frmPeriodsMaint.h"

namespace dw {

frmPeriodsList::frmPeriodsList()
    : ListForm({.form = kName,
                .title = "Fiscal Periods",
                .grid = "grdPeriods",
                .data = "adoPeriods",
                .emptyQuery = "SELECT * FROM [Fiscal Periods] WHERE ID = -1",
                .query = "SELECT * FROM [Fiscal Periods] ORDER BY [Start Date]",
                .columns = {{"ID"},
                            {"Fiscal Year"},
                            {"Period"},
                            {"Start Date"},
                            {"End Date"},
                            {"Date Created"},
                            {"Created By"},
                            {"Last Updated"},
                            {"Updated By"}}}) {
  newYear.setText("&New Year");
  newYear.setObjectName("SSCommand1");
  AddButton(newYear);
  ui::OnClick(newYear, [] { ui::The<frmFiscalYearSetup>().ShowModal(); });
}

void frmPeriodsList::OpenDetail(bool add, std::int32_t id) {
  OpenDetailForm<frmPeriodsMaint>(Grid(), add, id, CurrentRow, HasRows());
}

// Transactions keep the year and period that they took from a row, so the list deletes none.
void frmPeriodsList::DeleteItem() {
  screen::MessageBox("This function not yet implemented.", screen::Icon::Critical);
}

}  // namespace dw
