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
  ascending.setObjectName("Option1");
  ascending.setText("Ascending");
  descending.setObjectName("Option2");
  descending.setText("Descending");
  auto* order = new QHBoxLayout;
  order->addWidget(&ascending);
  order->addWidget(&descending);
  order->addStretch(1);
  QGroupBox* frame = ui::Group("Sort Order", order);
  frame->setObjectName("Frame1");
  tableName.onChange = [this] { FillFields(); };
  tableName.onLeave = [this] {
    if (CancelPressed() || tableName.Text().empty() || tableName.HasItem(tableName.Text())) return true;
    screen::MessageBox("You must enter a valid table from the list.");
    return false;
  };
  // Nothing brings the focus back to an empty field: the user may choose another table first.
  fieldName.onLeave = [this] { return CancelPressed() || FieldIsThere() || fieldName.Text().empty(); };
  Declare({{lineNumber, "Line Number", "Line Number", ui::kNumberWidth},
           {tableName, "Table Name", "Table Name"},
           {fieldName, "Field Name", "Field Name"}},
          {frame});
}

void frmSortMaint::FillPlaceholder() { Hold().Set("Line Number", NextLineNumber(kTable, QueryID)); }

void frmSortMaint::ReportVanished() { ShowReReadError(DataID); }

std::string frmSortMaint::Table() const {
  return tableName.Text().empty() ? StripBrackets(ReportID) : tableName.Text();
}

void frmSortMaint::RecordLoaded() {
  if (AddMode) setWindowTitle("New Sort Row");
  const rt::Value order = Stored("Ascending or Descending");
  const bool storedDescending = !order.IsNull() && order.AsText() == "D";
  (storedDescending ? descending : ascending).setChecked(true);
  std::vector<std::string> tables;
  GetCrystalTables(RptFile, tables, ReportID);
  tableName.SetItems(tables);
  if (AddMode && !tables.empty())
    tableName.SetText(tableName.HasItem(StripBrackets(ReportID)) ? StripBrackets(ReportID) : tables.front());
  else
    FillFields();
}

void frmSortMaint::FillFields() {
  if (!tableName.Text().empty() && !tableName.HasItem(tableName.Text())) {
    fieldName.SetItems({});
    return;
  }
  fieldName.SetItems(LoadTableFields(Table()));
}

bool frmSortMaint::FieldIsThere() {
  if (fieldName.Text().empty()) {
    screen::MessageBox("You must select a field.", Icon::Critical);
    return false;
  }
  const MainConnection main;
  if (!main.IsOpen() || AdoFieldExists(main.Connection(), Table(), fieldName.Text())) return true;
  screen::MessageBox("The field name does not exist in the table. Select from the dropdown list.",
                     Icon::Information);
  return false;
}

bool frmSortMaint::ValidData() {
  if (!tableName.Text().empty() && !tableName.HasItem(tableName.Text()))
    return Refuse(tableName, "You must enter a valid table from the list.", Icon::None);
  if (FieldIsThere()) return true;
  fieldName.setFocus();
  return false;
}

bool frmSortMaint::StoreMore() {
  Hold().Set("Query ID", QueryID);
  Hold().Set("Ascending or Descending", descending.isChecked() ? "D" : "A");
  return true;
}

}  // namespace dw
