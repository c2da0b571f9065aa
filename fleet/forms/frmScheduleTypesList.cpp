#include "fleet/forms/frmScheduleTypesList.h"

#include "fleet/forms/frmScheduleTypeMaint.h"
#include "windows/DaoDelete.h"

namespace dw {

frmScheduleTypesList::frmScheduleTypesList()
    : ListForm({.form = kName,
                .title = "Maintenance Schedule Types",
                .grid = "grdTypes",
                .data = "adoTypes",
                .emptyQuery = "SELECT * FROM [Maintenance Types] WHERE ID = -1",
                .query = "SELECT * FROM [Maintenance Types] ORDER BY [Description]",
                .columns = TypeColumns()}) {}

void frmScheduleTypesList::OpenDetail(bool add, std::int32_t id) {
  OpenDetailForm<frmScheduleTypeMaint>(Grid(), add, id, CurrentRow, HasRows());
}

void frmScheduleTypesList::DeleteItem() {
  RemoveRow([this] {
    const std::string id = std::to_string(RowID());
    return DaoDeleteFromList("SELECT * FROM [Maintenance Types] WHERE [ID] = " + id,
                             {{.query = "SELECT * FROM [Maintenance Schedule] WHERE [Type ID] = " + id,
                               .words = "This maintenance type is in use in Maintenance Schedule items."},
                              {.query = "SELECT * FROM [Maintenance Transactions] WHERE [Type_ID] = " + id,
                               .words = "This type is in use in Maintenance Transactions."}});
  });
}

}  // namespace dw
