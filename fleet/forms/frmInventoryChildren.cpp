// The records that belong to an asset: the windows that its grids open, and what they delete.
#include <QPushButton>

#include "costing/forms/frmTransactionMaint.h"
#include "fleet/AssetChildren.h"
#include "fleet/forms/frmInventoryMaint.h"
#include "fleet/forms/frmOdometerMaint.h"
#include "fleet/forms/frmSchedMaintAsset.h"
#include "windows/OpenDetailForm.h"

namespace dw {
namespace {

constexpr int kMaintenance = 1;
constexpr int kSchedule = 2;
constexpr int kOdometer = 4;

}  // namespace

void frmInventoryMaint::SetUpGrids() {
  children_ = {{.grid = &transactionGrid, .data = &transactionRows_},
               {.grid = &scheduleGrid, .data = &scheduleRows_},
               {.grid = &readingGrid, .data = &readingRows_}};
  for (const int page : {kMaintenance, kSchedule, kOdometer}) {
    ui::DataGrid& grid = *ChildOn(page).grid;
    grid.onAdd = [this, page] { AddChild(page); };
    grid.onDetail = [this, page] { ShowChild(page); };
    grid.onDelete = [this, page] { DeleteChild(page); };
  }
}

frmInventoryMaint::Child& frmInventoryMaint::ChildOn(int page) {
  return children_[page == kMaintenance ? 0 : page == kSchedule ? 1 : 2];
}

void frmInventoryMaint::AddOdometer() { AddChild(kOdometer); }

void frmInventoryMaint::AddChild(int page) {
  if (page != kSchedule && assetCode.Text().empty()) {
    screen::MessageBox("You cannot add maintenance items until you assign an Asset ID.",
                       screen::Icon::Exclamation);
    return;
  }
  if (SaveForChild()) OpenChild(page, true, -1);
}

void frmInventoryMaint::ShowChild(int page) {
  Child& child = ChildOn(page);
  if (!child.data->HasRows()) {
    ReportNoRecords();
    return;
  }
  const auto id = RowNumber(*child.grid, [&] { RefreshChild(child); });
  if (id && SaveForChild()) OpenChild(page, false, *id);
}

void frmInventoryMaint::RefreshChild(Child& child) {
  if (!child.place.armed) ui::AdoRefreshGrid(*child.grid, *child.data, child.place);
  ui::AdoRefreshGrid(*child.grid, *child.data, child.place);
  child.place.armed = false;
}

void frmInventoryMaint::OpenChild(int page, bool add, std::int32_t id) {
  Child& child = ChildOn(page);
  const std::string asset = assetCode.Text();
  const bool rows = child.data->HasRows();
  if (page == kMaintenance)
    OpenAssetDetailForm<frmTransactionMaint>(*child.grid, add, id, asset, child.currentRow, rows);
  else if (page == kSchedule)
    OpenAssetDetailForm<frmSchedMaintAsset>(*child.grid, add, id, asset, child.currentRow, rows);
  else
    OpenAssetDetailForm<frmOdometerMaint>(*child.grid, add, id, asset, child.currentRow, rows);
  // If no window was opened because one is open already, this window has stayed the active one: it takes its
  // record again at once.
  if (ui::ActiveForm() == this) OnActivate();
}

void frmInventoryMaint::DeleteChild(int page) {
  Child& child = ChildOn(page);
  if (!child.data->HasRows()) {
    ReportNoRecords();
    return;
  }
  const auto id = RowNumber(*child.grid, [&] { RefreshChild(child); });
  if (!id) return;
  const bool gone = page == kMaintenance ? RemoveTransaction(*id)
                    : page == kSchedule  ? DeleteScheduleLine(*id)
                                         : RemoveReading(*id);
  if (gone) RefreshChild(child);
}

}  // namespace dw
