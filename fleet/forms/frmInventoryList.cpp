#include "fleet/forms/frmInventoryList.h"

#include "fleet/AssetRemoval.h"
#include "fleet/forms/frmInventoryMaint.h"

namespace dw {
namespace {

constexpr int kAssetColumn = 1;
constexpr const char* kMoney = "\"$\"#,##0.00";
const std::string kAssets =
    "SELECT Vehicles.*, Divisions.Description FROM Vehicles LEFT JOIN Divisions ON Vehicles.[Division ID] = "
    "Divisions.[Division ID]";
const std::string kByCode = " ORDER BY Vehicles.[Asset ID]";

ui::GridColumn Money(const char* field, const char* caption = "") {
  return {.field = field, .caption = caption, .format = kMoney};
}

}  // namespace

frmInventoryList::frmInventoryList()
    : ListForm({.form = kName,
                .title = "Asset List",
                .grid = "InventoryGrid",
                .data = "adoAssets",
                .emptyQuery = kAssets + " WHERE Vehicles.[ID] = -1",
                .query = kAssets + kByCode,
                .columns = {{"ID"},
                            {"Asset ID"},
                            {.field = "Vehicles.Description", .caption = "Description"},
                            {"VIN/Serial Number"},
                            {.field = "Division ID", .caption = "Division"},
                            {.field = "Location ID", .caption = "Location"},
                            {.field = "Class ID", .caption = "Class"},
                            {"Entry Date"},
                            {"Purchase Date"},
                            Money("Purchase Price"),
                            {.field = "Replacement Date", .caption = "Replace Date"},
                            {"Fuel Type"},
                            {"Meter Type"},
                            {"Model Year"},
                            Money("Life Maintenance Cost", "Life Maint Cost"),
                            Money("Life Operational Cost", "Life Oper Cost"),
                            Money("Life Fuel Cost"),
                            Money("Life Usage Cost"),
                            {"Notes"},
                            {"Type"},
                            {"Secondary Asset ID"},
                            {"Created By"},
                            {"Date Created"},
                            {"Updated By"},
                            {"Last Updated"}}}) {
  inServiceOnly.setObjectName("chkInService");
  AddAbove(inServiceOnly);
  ui::OnClick(inServiceOnly, [this] { RefreshList(); });
}

std::string frmInventoryList::Query() const {
  if (!inServiceOnly.isChecked()) return ListForm::Query();
  return kAssets + " WHERE No_Longer_In_Service = False" + kByCode;
}

void frmInventoryList::OpenDetail(bool add, std::int32_t id) {
  OpenDetailForm<frmInventoryMaint>(Grid(), add, id, CurrentRow, HasRows());
}

void frmInventoryList::DeleteItem() {
  RemoveRow([this] {
    return RemoveAsset(RowID(), CellText(kAssetColumn), Data().RecordCount()) != RemovalResult::Refused;
  });
}

}  // namespace dw
