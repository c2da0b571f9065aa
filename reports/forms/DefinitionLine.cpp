#include "reports/forms/DefinitionLine.h"

#include <vector>

#include "data/GenericTools.h"
#include "data/MainConnection.h"
#include "reports/CrystalTables.h"
#include "reports/DWGlobals.h"
#include "reports/DefinitionRows.h"
#include "shell/DataLocation.h"

namespace dw {
namespace {

using screen::Icon;

}  // namespace

DefinitionLine::DefinitionLine(const RecordDefinition& definition, const DefinitionLineNames& names)
    : RecordForm(definition),
      lineNumber(names.lineNumber, {}, ui::Keys::Digits),
      tableName(names.tableName),
      fieldName(names.fieldName),
      table_(StripBrackets(definition.table)) {
  tableName.onChange = [this] { FillFields(); };
  tableName.onLeave = [this] { return TableLeft(); };
  fieldName.onLeave = [this] { return FieldLeft(); };
}

void DefinitionLine::FillPlaceholder() { Hold().Set("Line Number", NextLineNumber(table_, QueryID)); }

void DefinitionLine::ReportVanished() { ShowReReadError(DataID); }

std::string DefinitionLine::Table() const {
  return tableName.Text().empty() ? StripBrackets(ReportID) : tableName.Text();
}

bool DefinitionLine::TableIsThere() const {
  return tableName.Text().empty() || tableName.HasItem(tableName.Text());
}

void DefinitionLine::RecordLoaded() {
  std::vector<std::string> tables;
  GetCrystalTables(RptFile, tables, ReportID);
  tableName.SetItems(tables);
  if (AddMode && !tables.empty())
    tableName.SetText(tableName.HasItem(StripBrackets(ReportID)) ? StripBrackets(ReportID) : tables.front());
  else
    FillFields();
}

void DefinitionLine::FillFields() {
  // While a name is being typed there may be no such table yet.
  fieldName.SetItems(TableIsThere() ? LoadTableFields(Table()) : std::vector<std::string>());
}

bool DefinitionLine::TableLeft() {
  if (CancelPressed() || TableIsThere()) return true;
  screen::MessageBox("You must enter a valid table from the list.");
  return false;
}

bool DefinitionLine::FieldIsThere() {
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

bool DefinitionLine::FieldLeft() {
  // Nothing brings the focus back to an empty field: the user may choose another table first.
  return CancelPressed() || FieldIsThere() || fieldName.Text().empty();
}

bool DefinitionLine::ValidData() {
  if (!TableIsThere()) return Refuse(tableName, "You must enter a valid table from the list.", Icon::None);
  if (FieldIsThere()) return true;
  fieldName.setFocus();
  return false;
}

bool DefinitionLine::StoreMore() {
  Hold().Set("Query ID", QueryID);
  return true;
}

}  // namespace dw
