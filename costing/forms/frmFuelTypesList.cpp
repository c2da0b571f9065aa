#include "costing/forms/frmFuelTypesList.h"

#include "costing/forms/frmFuelTypeMaint.h"

namespace dw {

frmFuelTypesList::frmFuelTypesList()
    : ListForm({.form = kName,
                .title = "Fuel Types",
                .grid = "grdFuelTypes",
                .data = "adoFuelTypes",
                .emptyQuery = "SELECT * FROM [Fuel Types] WHERE ID = -1",
                .query = "SELECT * FROM [Fuel Types] ORDER BY Description",
                .columns = TypeColumns()}) {}

void frmFuelTypesList::OpenDetail(bool add, std::int32_t id) {
  OpenDetailForm<frmFuelTypeMaint>(Grid(), add, id, CurrentRow, HasRows());
}

void frmFuelTypesList::DeleteItem() {
  DeleteRow([this] {
    const std::string id = std::to_string(RowID());
    return DeleteRule{.inUseQuery = "SELECT * FROM [Vehicles] WHERE [Fuel Type] = " + id,
                      .inUseWords = "This fuel type is being used by Assets. You cannot delete it.",
                      .inUseIcon = screen::Icon::Critical,
                      .recordQuery = "SELECT * FROM [Fuel Types] WHERE [ID] = " + id};
  });
}

}  // namespace dw
