#include "reports/forms/frmSelectMaint.h"

#include <QPushButton>

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "data/MainConnection.h"
#include "platform/controls/Layout.h"
#include "reports/CrystalTables.h"
#include "reports/DWGlobals.h"
#include "reports/DefinitionRows.h"
#include "reports/Literals.h"
#include "shell/DataLocation.h"
#include "windows/ProperWords.h"

namespace dw {
namespace {

using screen::Icon;

constexpr const char* kTable = "Selection Criteria";

}  // namespace

frmSelectMaint::frmSelectMaint()
    : RecordForm({.form = kName,
                  .title = "Selection Row",
                  .data = "SelectData",
                  .table = "[Selection Criteria]",
                  .recordWords = "record #",
                  .lockField = "Field Name",
                  .ok = "OkButton",
                  .file = &kDefinitionsFile}) {
  comparison.SetItems({"<", "<=", "=", "<>", ">=", ">"});
  connector.SetItems({"AND", "OR"});
  tableName.onChange = [this] { FillFields(); };
  tableName.onLeave = [this] { return TableLeft(); };
  fieldName.onLeave = [this] { return FieldLeft(); };
  comparison.onLeave = [this] {
    if (!CancelPressed() && comparison.Text().empty())
      screen::MessageBox("You must select a comparison operator.", Icon::Critical);
    return true;
  };
  value.onLeave = [this] {
    if (!CancelPressed()) FormatValue();
    return true;
  };
  CapitalizeWords(prompt);
  fieldFunction.setToolTip("Kept with the row; the selection does not use it");
  Bind(askAtRuntime, "Get Value at Runtime");
  Declare({{lineNumber, "Line Number", "Line Number", ui::kNumberWidth},
           {openParentheses, "Open Parentheses", "Open Parenthesis", ui::kNumberWidth},
           {tableName, "Table Name", "Table Name"},
           {fieldName, "Field Name", "Field Name"},
           {fieldFunction, "Field Function", "Field Function"},
           {comparison, "Comparison Operator", "Compare with", ui::kNumberWidth},
           {value, "Value", "Value"},
           {closeParentheses, "Close Parentheses", "Close Parenthesis", ui::kNumberWidth},
           {connector, "Connector", "Connector", ui::kNumberWidth},
           {prompt, "Runtime Value Prompt", "Runtime Prompt"}},
          {&askAtRuntime});
}

void frmSelectMaint::FillPlaceholder() { Hold().Set("Line Number", NextLineNumber(kTable, QueryID)); }

void frmSelectMaint::ReportVanished() { ShowReReadError(DataID); }

std::string frmSelectMaint::Table() const {
  return tableName.Text().empty() ? StripBrackets(ReportID) : tableName.Text();
}

void frmSelectMaint::RecordLoaded() {
  if (AddMode) setWindowTitle("New Selection Row");
  std::vector<std::string> tables;
  GetCrystalTables(RptFile, tables, ReportID);
  tableName.SetItems(tables);
  if (AddMode && !tables.empty())
    tableName.SetText(tableName.HasItem(StripBrackets(ReportID)) ? StripBrackets(ReportID) : tables.front());
  else
    FillFields();
}

void frmSelectMaint::FillFields() {
  // While a name is being typed there may be no such table yet.
  if (!tableName.Text().empty() && !tableName.HasItem(tableName.Text())) {
    fieldName.SetItems({});
    return;
  }
  fieldName.SetItems(LoadTableFields(Table()));
}

bool frmSelectMaint::TableLeft() {
  if (CancelPressed() || tableName.Text().empty() || tableName.HasItem(tableName.Text())) return true;
  screen::MessageBox("You must enter a valid table from the list.");
  return false;
}

bool frmSelectMaint::FieldIsThere() {
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

bool frmSelectMaint::FieldLeft() {
  // Nothing brings the focus back to an empty field: the user may choose another table first.
  return CancelPressed() || FieldIsThere() || fieldName.Text().empty();
}

void frmSelectMaint::FormatValue() {
  const auto type = AdoGetFieldType(DataConnect, Table(), fieldName.Text());
  if (!type) return;
  const std::string literal = FormatLiteral(value.Text(), *type);
  if (literal != value.Text()) value.SetText(literal);
}

bool frmSelectMaint::ValidData() {
  if (!tableName.Text().empty() && !tableName.HasItem(tableName.Text()))
    return Refuse(tableName, "You must enter a valid table from the list.", Icon::None);
  if (!FieldIsThere()) {
    fieldName.setFocus();
    return false;
  }
  if (comparison.Text().empty()) return Refuse(comparison, "You must select a comparison operator.");
  // Enter on the value stores it without leaving it.
  FormatValue();
  return true;
}

bool frmSelectMaint::StoreMore() {
  Hold().Set("Query ID", QueryID);
  return true;
}

}  // namespace dw
