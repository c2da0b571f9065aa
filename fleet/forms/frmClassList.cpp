#include "fleet/forms/frmClassList.h"

#include "fleet/forms/frmClassMaint.h"

namespace dw {

frmClassList::frmClassList()
    : ListForm({.form = kName,
                .title = "Inventory Classes",
                .grid = "grdClasses",
                .data = "adoClasses",
                .emptyQuery = "SELECT * FROM [Inventory Classes] WHERE ID = -1",
                .query = "SELECT * FROM [Inventory Classes] ORDER BY [Description]",
                .columns = {{"ID"},
                            {"Class ID"},
                            {"Description"},
                            {"Notes"},
                            {"Date Created"},
                            {"Created By"},
                            {"Last Updated"},
                            {"Updated By"}}}) {}

void frmClassList::OpenDetail(bool add, std::int32_t id) {
  OpenDetailForm<frmClassMaint>(Grid(), add, id, CurrentRow, HasRows());
}

void frmClassList::DeleteItem() {
  DeleteRow([this] {
    return DeleteRule{
        .inUseQuery = "SELECT * FROM [Vehicles] WHERE [Class ID] = '" + CellText(1) + "'",
        .inUseWords = "This class is being used by assets. Cannot remove.",
        .recordQuery = "SELECT * FROM [Inventory Classes] WHERE [ID] = " + std::to_string(RowID())};
  });
}

}  // namespace dw
