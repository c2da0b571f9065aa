#include "fleet/forms/frmDivisionList.h"

#include "fleet/forms/frmDivisionMaint.h"

namespace dw {

frmDivisionList::frmDivisionList()
    : ListForm({.form = kName,
                .title = "Divisions",
                .grid = "grdDivisions",
                .data = "adoDivisions",
                .emptyQuery = "SELECT * FROM Divisions WHERE ID = -1",
                .query = "SELECT * FROM Divisions ORDER BY Description",
                .columns = {{"ID"},
                            {"Division ID"},
                            {"Description"},
                            {"Notes"},
                            {"Date Created"},
                            {"Created By"},
                            {"Last Updated"},
                            {"Updated By"}}}) {}

void frmDivisionList::OpenDetail(bool add, std::int32_t id) {
  OpenDetailForm<frmDivisionMaint>(Grid(), add, id, CurrentRow, HasRows());
}

void frmDivisionList::DeleteItem() {
  // The check compares the row's number with the division codes of assets, so it finds something only if a
  // code happens to be that number.
  DeleteRow([this] {
    return DeleteRule{.inUseQuery = "SELECT * FROM [Vehicles] WHERE [Division ID] = '" + CellText(0) + "'",
                      .inUseWords = "Cannot delete a division ID assigned inventory.",
                      .recordQuery = "SELECT * FROM [Divisions] WHERE [ID] = " + std::to_string(RowID())};
  });
}

}  // namespace dw
