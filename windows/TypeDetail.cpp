#include "windows/TypeDetail.h"

#include "platform/controls/Layout.h"

namespace dw {

std::vector<ui::GridColumn> TypeColumns() {
  return {{"ID"},           {"Description"}, {"Notes"},       {"Created By"},
          {"Date Created"}, {"Updated By"},  {"Last Updated"}};
}

TypeDetail::TypeDetail(const DetailDefinition& definition) : DetailForm(definition) {
  Data().Bind(IDText, "ID");
  Data().Bind(Text1, "Description", "Description");
  Data().Bind(Text3, "Notes", "Notes");

  auto* rows = new ui::FieldRows;
  rows->Row("Description", {&Text1});
  rows->Row("Database ID", {&IDText});
  Text1.setMinimumWidth(Text1.fontMetrics().averageCharWidth() * ui::kTextWidth);
  ShowNumber(IDText);
  LayOut(rows, {NotesGroup(Text3)});
}

}  // namespace dw
