#include "fleet/forms/frmClassMaint.h"

#include "platform/controls/Layout.h"
#include "windows/CodeDetail.h"

namespace dw {

frmClassMaint::frmClassMaint()
    : RecordForm({.form = kName,
                  .title = "Class Detail",
                  .data = "ClassData",
                  .table = "[Inventory Classes]",
                  .recordWords = "Class #"}) {
  auto& assets = AddInnerGrid("grdInventory", "adoInventory",
                              {{"ID"},
                               {"Description"},
                               {"Notes"},
                               {"Created By"},
                               {"Date Created"},
                               {"Updated By"},
                               {"Last Updated"}},
                              kNoAssets, AssetsWithCode("Class ID"));
  ShowNumber(recordNumber);
  Bind(notes, "Notes", "Notes");
  Declare({{code, "Class ID", "Class ID", ui::kCodeWidth},
           {description, "Description", "Description"},
           {recordNumber, "ID", "Database ID"}},
          {NotesGroup(notes), AssetsGroup(assets.grid)});
}

void frmClassMaint::FillPlaceholder() { Hold().Set("Class ID", ""); }

}  // namespace dw
