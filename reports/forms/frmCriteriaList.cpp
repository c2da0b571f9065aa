#include "reports/forms/frmCriteriaList.h"

#include <QPushButton>

#include "data/GenericTools.h"
#include "reports/DefinitionRows.h"
#include "reports/SelectAndSort.h"
#include "reports/forms/OpenCriteriaForm.h"
#include "reports/forms/frmCriteriaMaint.h"

namespace dw {

frmCriteriaList::frmCriteriaList()
    : ListForm({.form = kName,
                .title = "Select and Sort Definitions",
                .grid = "QueryGrid",
                .data = "QueryData",
                .emptyQuery = "SELECT * FROM [Select and Sort Queries] WHERE [ID] = -1",
                .query = {},
                .columns = {{"ID"},
                            {"Description"},
                            {"Primary Table"},
                            {"Permanent"},
                            {"Date Created"},
                            {"Created By"},
                            {"Last Updated"},
                            {"Updated By"}},
                .file = &kDefinitionsFile}),
      useButton(new QPushButton("&Use")) {
  useButton->setObjectName("UseButton");
  AddButton(*useButton);
  SetDefault(useButton);
  ui::OnClick(*useButton, [this] { Use(); });
}

void frmCriteriaList::OnLoad() {
  ListForm::OnLoad();
  ReportID = ReportID.substr(0, ReportID.find(','));
}

std::string frmCriteriaList::Query() const {
  return "SELECT * FROM [Select and Sort Queries] WHERE [Primary Table] = '" +
         QuoteSQL(StripBrackets(ReportID.substr(0, ReportID.find(',')))) + "'";
}

void frmCriteriaList::OpenDetail(bool add, std::int32_t id) {
  CurrentRow = Grid().Row();
  OpenReportCriteriaForm<frmCriteriaMaint>(*this, add, id, ReportID);
}

void frmCriteriaList::DeleteItem() {
  RemoveRow([this] { return DeleteDefinition(RowID()); });
}

void frmCriteriaList::Use() {
  if (Grid().Row() < 0) {
    screen::MessageBox("You must first create or click on a query row.", screen::Icon::Information);
    Grid().setFocus();
    return;
  }
  if (RowIsGone()) return;
  UseDefinition(RowID(), ReportID);
  Unload();
}

}  // namespace dw
