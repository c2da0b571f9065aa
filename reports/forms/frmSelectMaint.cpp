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
  Combo2.SetItems({"<", "<=", "=", "<>", ">=", ">"});
  Combo3.SetItems({"AND", "OR"});
  Combo4.onChange = [this] { FillFields(); };
  Combo4.onLeave = [this] { return TableLeft(); };
  Combo1.onLeave = [this] { return FieldLeft(); };
  Combo2.onLeave = [this] {
    if (!CancelPressed() && Combo2.Text().empty())
      screen::MessageBox("You must select a comparison operator.", Icon::Critical);
    return true;
  };
  Text1.onLeave = [this] {
    if (!CancelPressed()) FormatValue();
    return true;
  };
  CapitalizeWords(Text5);
  Combo5.setToolTip("Kept with the row; the selection does not use it");
  Bind(Check1, "Get Value at Runtime");
  Declare({{Text2, "Line Number", "Line Number", ui::kNumberWidth},
           {Text3, "Open Parentheses", "Open Parenthesis", ui::kNumberWidth},
           {Combo4, "Table Name", "Table Name"},
           {Combo1, "Field Name", "Field Name"},
           {Combo5, "Field Function", "Field Function"},
           {Combo2, "Comparison Operator", "Compare with", ui::kNumberWidth},
           {Text1, "Value", "Value"},
           {Text4, "Close Parentheses", "Close Parenthesis", ui::kNumberWidth},
           {Combo3, "Connector", "Connector", ui::kNumberWidth},
           {Text5, "Runtime Value Prompt", "Runtime Prompt"}},
          {&Check1});
}

void frmSelectMaint::FillPlaceholder() { Hold().Set("Line Number", NextLineNumber(kTable, QueryID)); }

void frmSelectMaint::ReportVanished() { ShowReReadError(DataID); }

std::string frmSelectMaint::Table() const {
  return Combo4.Text().empty() ? StripBrackets(ReportID) : Combo4.Text();
}

void frmSelectMaint::RecordLoaded() {
  if (AddMode) setWindowTitle("New Selection Row");
  std::vector<std::string> tables;
  GetCrystalTables(RptFile, tables, ReportID);
  Combo4.SetItems(tables);
  if (AddMode && !tables.empty())
    Combo4.SetText(Combo4.HasItem(StripBrackets(ReportID)) ? StripBrackets(ReportID) : tables.front());
  else
    FillFields();
}

void frmSelectMaint::FillFields() {
  // While a name is being typed there may be no such table yet.
  if (!Combo4.Text().empty() && !Combo4.HasItem(Combo4.Text())) {
    Combo1.SetItems({});
    return;
  }
  Combo1.SetItems(LoadTableFields(Table()));
}

bool frmSelectMaint::TableLeft() {
  if (CancelPressed() || Combo4.Text().empty() || Combo4.HasItem(Combo4.Text())) return true;
  screen::MessageBox("You must enter a valid table from the list.");
  return false;
}

bool frmSelectMaint::FieldIsThere() {
  if (Combo1.Text().empty()) {
    screen::MessageBox("You must select a field.", Icon::Critical);
    return false;
  }
  const MainConnection main;
  if (!main.IsOpen() || AdoFieldExists(main.Connection(), Table(), Combo1.Text())) return true;
  screen::MessageBox("The field name does not exist in the table. Select from the dropdown list.",
                     Icon::Information);
  return false;
}

bool frmSelectMaint::FieldLeft() {
  // Nothing brings the focus back to an empty field: the user may choose another table first.
  return CancelPressed() || FieldIsThere() || Combo1.Text().empty();
}

void frmSelectMaint::FormatValue() {
  const auto type = AdoGetFieldType(DataConnect, Table(), Combo1.Text());
  if (!type) return;
  const std::string literal = FormatLiteral(Text1.Text(), *type);
  if (literal != Text1.Text()) Text1.SetText(literal);
}

bool frmSelectMaint::ValidData() {
  if (!Combo4.Text().empty() && !Combo4.HasItem(Combo4.Text()))
    return Refuse(Combo4, "You must enter a valid table from the list.", Icon::None);
  if (!FieldIsThere()) {
    Combo1.setFocus();
    return false;
  }
  if (Combo2.Text().empty()) return Refuse(Combo2, "You must select a comparison operator.");
  // Enter on the value stores it without leaving it.
  FormatValue();
  return true;
}

bool frmSelectMaint::StoreMore() {
  Hold().Set("Query ID", QueryID);
  return true;
}

}  // namespace dw
