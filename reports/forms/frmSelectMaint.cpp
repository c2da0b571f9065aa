#include "reports/forms/frmSelectMaint.h"

#include <QPushButton>

#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "platform/controls/Layout.h"
#include "reports/DefinitionRows.h"
#include "reports/Literals.h"
#include "shell/DataLocation.h"
#include "windows/ProperWords.h"

namespace dw {
namespace {

using screen::Icon;

}  // namespace

frmSelectMaint::frmSelectMaint()
    : DefinitionLine({.form = kName,
                      .title = "Selection Row",
                      .data = "SelectData",
                      .table = "[Selection Criteria]",
                      .recordWords = "record #",
                      .lockField = "Field Name",
                      .ok = "OkButton",
                      .file = &kDefinitionsFile},
                     {.lineNumber = "Text2", .tableName = "Combo4", .fieldName = "Combo1"}) {
  comparison.SetItems({"<", "<=", "=", "<>", ">=", ">"});
  connector.SetItems({"AND", "OR"});
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

void frmSelectMaint::RecordLoaded() {
  if (AddMode) setWindowTitle("New Selection Row");
  DefinitionLine::RecordLoaded();
}

void frmSelectMaint::FormatValue() {
  const auto type = AdoGetFieldType(DataConnect, Table(), fieldName.Text());
  if (!type) return;
  const std::string literal = FormatLiteral(value.Text(), *type);
  if (literal != value.Text()) value.SetText(literal);
}

bool frmSelectMaint::ValidData() {
  if (!DefinitionLine::ValidData()) return false;
  if (comparison.Text().empty()) return Refuse(comparison, "You must select a comparison operator.");
  // Enter on the value stores it without leaving it.
  FormatValue();
  return true;
}

}  // namespace dw
