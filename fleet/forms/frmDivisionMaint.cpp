#include "fleet/forms/frmDivisionMaint.h"

#include "platform/controls/Layout.h"
#include "windows/CodeDetail.h"

namespace dw {

frmDivisionMaint::frmDivisionMaint()
    : DetailForm({.form = kName,
                  .title = "Division Detail",
                  .data = "DivisionData",
                  .table = "[Divisions]",
                  .recordWords = "Division #",
                  .ok = "OKButton"}) {
  Data().Bind(Text1, "ID");
  Data().Bind(Text2, "Division ID", "Division Code");
  Data().Bind(Text3, "Description", "Description");
  Data().Bind(Text8, "Notes", "Notes");
  auto& assets = AddInnerGrid("grdInventory", "adoInventory",
                              {{"ID"},
                               {"Asset ID"},
                               {"Description"},
                               {"Model Year"},
                               {"VIN/Serial Number"},
                               {"Notes"},
                               {"Created By"},
                               {"Date Created"},
                               {"Updated By"},
                               {"Last Updated"}},
                              kNoAssets, AssetsWithCode("Division ID"));

  auto* rows = new ui::FieldRows;
  rows->Row("Division Code", {&Text2});
  rows->Row("Description", {&Text3});
  rows->Row("Database ID", {&Text1});
  ui::SetWidth(Text2, ui::kCodeWidth);
  ShowNumber(Text1);
  LayOut(rows, {NotesGroup(Text8), AssetsGroup(assets.grid)});
}

void frmDivisionMaint::FillPlaceholder(dao::Recordset& record) { record.Set("Division ID", ""); }

bool frmDivisionMaint::ValidData() {
  if (!Text2.Text().empty()) return true;
  screen::MessageBox("Division Code cannot be blank.", screen::Icon::Question);
  Text2.setFocus();
  return false;
}

}  // namespace dw
