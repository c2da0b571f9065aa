#include "fleet/forms/frmDivisionMaint.h"

#include "platform/controls/Layout.h"
#include "windows/CodeDetail.h"

namespace dw {

frmDivisionMaint::frmDivisionMaint()
    : RecordForm({.form = kName,
                  .title = "Division Detail",
                  .data = "DivisionData",
                  .table = "[Divisions]",
                  .recordWords = "Division #"}) {
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
  ShowNumber(recordNumber);
  Bind(notes, "Notes", "Notes");
  Declare({{code, "Division ID", "Division Code", ui::kCodeWidth},
           {description, "Description", "Description"},
           {recordNumber, "ID", "Database ID"}},
          {NotesGroup(notes), AssetsGroup(assets.grid)});
}

void frmDivisionMaint::FillPlaceholder() { Hold().Set("Division ID", ""); }

bool frmDivisionMaint::ValidData() {
  return !code.Text().empty() || Refuse(code, "Division Code cannot be blank.", screen::Icon::Question);
}

}  // namespace dw
