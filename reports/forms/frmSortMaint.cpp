#include "reports/forms/frmSortMaint.h"

#include <QGroupBox>
#include <QHBoxLayout>

#include "platform/controls/Layout.h"
#include "reports/DefinitionRows.h"

namespace dw {

frmSortMaint::frmSortMaint()
    : DefinitionLine({.form = kName,
                      .title = "Sort Row",
                      .data = "SortData",
                      .table = "[Sort Criteria]",
                      .recordWords = "record #",
                      .lockField = "Field Name",
                      .ok = "OkButton",
                      .file = &kDefinitionsFile},
                     {.lineNumber = "Text1", .tableName = "TableCombo", .fieldName = "FieldCombo"}) {
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
  Declare({{lineNumber, "Line Number", "Line Number", ui::kNumberWidth},
           {tableName, "Table Name", "Table Name"},
           {fieldName, "Field Name", "Field Name"}},
          {frame});
}

void frmSortMaint::RecordLoaded() {
  if (AddMode) setWindowTitle("New Sort Row");
  const rt::Value order = Stored("Ascending or Descending");
  const bool storedDescending = !order.IsNull() && order.AsText() == "D";
  (storedDescending ? descending : ascending).setChecked(true);
  DefinitionLine::RecordLoaded();
}

bool frmSortMaint::StoreMore() {
  Hold().Set("Ascending or Descending", descending.isChecked() ? "D" : "A");
  return DefinitionLine::StoreMore();
}

}  // namespace dw
