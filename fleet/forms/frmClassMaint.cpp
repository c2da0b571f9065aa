#include "fleet/forms/frmClassMaint.h"

#include "platform/controls/Layout.h"
#include "windows/CodeDetail.h"

namespace dw {

frmClassMaint::frmClassMaint()
    : DetailForm({.form = kName,
                  .title = "Class Detail",
                  .data = "ClassData",
                  .table = "[Inventory Classes]",
                  .recordWords = "Class #",
                  .ok = "OKButton"}) {
  Data().Bind(Text1, "ID");
  Data().Bind(Text2, "Class ID", "Class ID");
  Data().Bind(Text3, "Description", "Description");
  Data().Bind(Text8, "Notes", "Notes");
  auto& assets = AddInnerGrid("grdInventory", "adoInventory",
                              {{"ID"},
                               {"Description"},
                               {"Notes"},
                               {"Created By"},
                               {"Date Created"},
                               {"Updated By"},
                               {"Last Updated"}},
                              kNoAssets, AssetsWithCode("Class ID"));

  auto* rows = new ui::FieldRows;
  rows->Row("Class ID", {&Text2});
  rows->Row("Description", {&Text3});
  rows->Row("Database ID", {&Text1});
  ui::SetWidth(Text2, ui::kCodeWidth);
  ShowNumber(Text1);
  LayOut(rows, {NotesGroup(Text8), AssetsGroup(assets.grid)});
}

void frmClassMaint::FillPlaceholder(dao::Recordset& record) { record.Set("Class ID", ""); }

}  // namespace dw
