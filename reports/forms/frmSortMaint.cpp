#include "reports/forms/frmSortMaint.h"

#include <QGroupBox>
#include <QHBoxLayout>

#include "data/GenericTools.h"
#include "data/MainConnection.h"
#include "platform/controls/Layout.h"
#include "reports/CrystalTables.h"
#include "reports/DWGlobals.h"
#include "reports/DefinitionRows.h"
#include "shell/DataLocation.h"

namespace dw {
namespace {

using screen::Icon;

constexpr const char* kTable = "Sort Criteria";

}  // namespace

frmSortMaint::frmSortMaint()
    : RecordForm({.form = kName,
                  .title = "Sort Row",
                  .data = "SortData",
                  .table = "[Sort Criteria]",
                  .recordWords = "record #",
                  .lockField = "Field Name",
                  .ok = "OkButton",
                  .file = &kDefinitionsFile}) {
  Option1.setObjectName("Option1");
  Option1.setText("Ascending");
  Option2.setObjectName("Option2");
  Option2.setText("Descending");
  auto* order = new QHBoxLayout;
  order->addWidget(&Option1);
  order->addWidget(&Option2);
  order->addStretch(1);
  QGroupBox* frame = ui::Group("Sort Order", order);
  frame->setObjectName("Frame1");
  TableCombo.onChange = [this] { FillFields(); };
  TableCombo.onLeave = [this] {
    if (CancelPressed() || TableCombo.Text().empty() || TableCombo.HasItem(TableCombo.Text())) return true;
    screen::MessageBox("You must enter a valid table from the list.");
    return false;
  };
  // Nothing brings the focus back to an empty field: the user may choose another table first.
  FieldCombo.onLeave = [this] { return CancelPressed() || FieldIsThere() || FieldCombo.Text().empty(); };
  Declare({{Text1, "Line Number", "Line Number", ui::kNumberWidth},
           {TableCombo, "Table Name", "Table Name"},
           {FieldCombo, "Field Name", "Field Name"}},
          {frame});
}

void frmSortMaint::FillPlaceholder() { Hold().Set("Line Number", NextLineNumber(kTable, QueryID)); }

void frmSortMaint::ReportVanished() { ShowReReadError(DataID); }

std::string frmSortMaint::Table() const {
  return TableCombo.Text().empty() ? StripBrackets(ReportID) : TableCombo.Text();
}

void frmSortMaint::RecordLoaded() {
  if (AddMode) setWindowTitle("New Sort Row");
  const rt::Value order = Stored("Ascending or Descending");
  const bool descending = !order.IsNull() && order.AsText() == "D";
  (descending ? Option2 : Option1).setChecked(true);
  std::vector<std::string> tables;
  GetCrystalTables(RptFile, tables, ReportID);
  TableCombo.SetItems(tables);
  if (AddMode && !tables.empty())
    TableCombo.SetText(TableCombo.HasItem(StripBrackets(ReportID)) ? StripBrackets(ReportID)
                                                                   : tables.front());
  else
    FillFields();
}

void frmSortMaint::FillFields() {
  if (!TableCombo.Text().empty() && !TableCombo.HasItem(TableCombo.Text())) {
    FieldCombo.SetItems({});
    return;
  }
  FieldCombo.SetItems(LoadTableFields(Table()));
}

bool frmSortMaint::FieldIsThere() {
  if (FieldCombo.Text().empty()) {
    screen::MessageBox("You must select a field.", Icon::Critical);
    return false;
  }
  const MainConnection main;
  if (!main.IsOpen() || AdoFieldExists(main.Connection(), Table(), FieldCombo.Text())) return true;
  screen::MessageBox("The field name does not exist in the table. Select from the dropdown list.",
                     Icon::Information);
  return false;
}

bool frmSortMaint::ValidData() {
  if (!TableCombo.Text().empty() && !TableCombo.HasItem(TableCombo.Text()))
    return Refuse(TableCombo, "You must enter a valid table from the list.", Icon::None);
  if (FieldIsThere()) return true;
  FieldCombo.setFocus();
  return false;
}

bool frmSortMaint::StoreMore() {
  Hold().Set("Query ID", QueryID);
  Hold().Set("Ascending or Descending", Option2.isChecked() ? "D" : "A");
  return true;
}

}  // namespace dw
