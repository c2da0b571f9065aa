#include "windows/TypeDetail.h"

#include "platform/controls/Layout.h"

namespace dw {

std::vector<ui::GridColumn> TypeColumns() {
  return {{"ID"},           {"Description"}, {"Notes"},       {"Created By"},
          {"Date Created"}, {"Updated By"},  {"Last Updated"}};
}

TypeDetail::TypeDetail(const RecordDefinition& definition) : RecordForm(definition) {
  description.setMinimumWidth(description.fontMetrics().averageCharWidth() * ui::kTextWidth);
  ShowNumber(recordNumber);
  Bind(notes, "Notes", "Notes");
  Declare({{description, "Description", "Description"}, {recordNumber, "ID", "Database ID"}},
          {NotesGroup(notes)});
}

}  // namespace dw
