#include "reports/forms/frmCriteriaMaint.h"

#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "data/GenericTools.h"
#include "platform/controls/Later.h"
#include "platform/controls/Layout.h"
#include "platform/runtime/Error.h"
#include "reports/DWGlobals.h"
#include "reports/DefinitionRows.h"
#include "reports/PrintCalls.h"
#include "reports/SelectionWords.h"
#include "reports/forms/OpenCriteriaForm.h"
#include "reports/forms/frmSelectMaint.h"
#include "reports/forms/frmSortMaint.h"
#include "shell/DataLocation.h"
#include "windows/OpenDetailForm.h"

namespace dw {
namespace {

constexpr const char* kSelection = "Selection Criteria";
constexpr const char* kSort = "Sort Criteria";

constexpr int kWidth = 124;  ///< in characters: most columns of a condition

std::string NoLines(const char* table) {
  return std::string("SELECT * FROM [") + table + "] WHERE [ID] = -1";
}

std::function<std::string(RecordHold&)> LinesOf(const char* table) {
  return [table](RecordHold& hold) {
    return std::string("SELECT * FROM [") + table +
           "] WHERE [Query ID] = " + std::to_string(hold.Get("ID").AsLong()) + " ORDER BY [Line Number]";
  };
}

std::vector<ui::GridColumn> SelectionColumns() {
  return {{"ID"},
          {.field = "Line Number", .caption = "Line"},
          {.field = "Open Parentheses", .caption = "("},
          {"Table Name"},
          {"Field Name"},
          {.field = "Comparison Operator", .caption = "Compare"},
          {"Value"},
          {.field = "Get Value at Runtime", .caption = "Prompt?"},
          {"Runtime Value Prompt"},
          {.field = "Close Parentheses", .caption = ")"},
          {"Connector"},
          {"Field Function"}};
}

std::vector<ui::GridColumn> SortColumns() {
  return {{"ID"},
          {.field = "Line Number", .caption = "Line"},
          {"Table Name"},
          {"Field Name"},
          {.field = "Ascending or Descending", .caption = "Order"}};
}

/// Empty if nothing can be said.
QString InWords(const RowCount& count) {
  const QString number = QLocale(QLocale::English, QLocale::UnitedStates).toString(qlonglong{count.rows});
  if (count.all) return count.rows == 1 ? "1 record matches now." : number + " records match now.";
  return count.rows == 0 ? QString() : "More than " + number + " records match now.";
}

QLabel* Note(const char* name) {
  QLabel* label = ui::Caption("");
  label->setObjectName(name);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

}  // namespace

frmCriteriaMaint::frmCriteriaMaint()
    : RecordForm({.form = kName,
                  .title = "Select and Sort Criteria",
                  .data = "QueryData",
                  .table = "[Select and Sort Queries]",
                  .recordWords = "record #",
                  .lockField = "Description",
                  .ok = "OkButton",
                  .file = &kDefinitionsFile}),
      meaning(Note("lblWords")),
      matchCount(Note("lblCount")),
      engineFault(Note("lblFault")),
      select_(AddInnerGrid("SelectGrid", "SelectData", SelectionColumns(), NoLines(kSelection),
                           LinesOf(kSelection))),
      sort_(AddInnerGrid("SortGrid", "SortData", SortColumns(), NoLines(kSort), LinesOf(kSort))) {
  LayOutAll();
  select_.grid.onAdd = [this] { OpenSelect(true, -1); };
  select_.grid.onDetail = [this] { UpdateSelect(); };
  select_.grid.onDelete = [this] { RemoveItSelect(); };
  sort_.grid.onAdd = [this] { OpenSort(true, -1); };
  sort_.grid.onDetail = [this] { UpdateSort(); };
  sort_.grid.onDelete = [this] { RemoveItSort(); };
}

void frmCriteriaMaint::LayOutAll() {
  ShowNumber(recordNumber);
  Bind(description, "Description", "Description");
  Bind(recordNumber, "ID");
  Bind(permanent, "Permanent");
  auto* fields = new ui::FieldRows;
  fields->Row("Description", {&description});
  fields->Row("Database ID", {&recordNumber});
  fields->addWidget(&permanent, fields->rowCount(), 1);

  const auto group = [](const char* title, ui::DataGrid& grid) {
    grid.setAccessibleName(title);
    grid.setMinimumHeight(grid.fontMetrics().height() * 7);
    auto* inside = new QVBoxLayout;
    inside->addWidget(&grid);
    return ui::Group(title, inside);
  };
  auto* notes = new QVBoxLayout;
  for (QLabel* label : {meaning, matchCount, engineFault}) notes->addWidget(label);
  QFont bold = engineFault->font();
  bold.setBold(true);
  engineFault->setFont(bold);
  QGroupBox* words = ui::Group("What Will Be Asked", notes);
  words->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  auto* grids = new QWidget;
  auto* both = new QVBoxLayout(grids);
  both->setContentsMargins(0, 0, 0, 0);
  both->addWidget(group("Selection", select_.grid), 3);
  both->addWidget(group("Sort", sort_.grid), 2);
  LayOut(fields, {words, grids});
  resize(fontMetrics().averageCharWidth() * kWidth, height());
}

void frmCriteriaMaint::FillPlaceholder() { Hold().Set("Primary Table", ReportID); }

void frmCriteriaMaint::ReportVanished() { ShowReReadError(DataID); }

bool frmCriteriaMaint::Refreshed() {
  RefreshGrid();
  ShowMeaning();
  return true;
}

void frmCriteriaMaint::OpenSelect(bool add, std::int32_t id) {
  OpenReportQueryLineForm<frmSelectMaint>(*this, add, id, DataID, ReportID);
}

void frmCriteriaMaint::OpenSort(bool add, std::int32_t id) {
  OpenReportQueryLineForm<frmSortMaint>(*this, add, id, DataID, ReportID);
}

void frmCriteriaMaint::Update(InnerGrid& lines, void (frmCriteriaMaint::*open)(bool, std::int32_t)) {
  if (!lines.data.HasRows()) {
    ReportNoRecords();
    return;
  }
  if (const auto id = RowNumber(lines.grid, [this] { Refreshed(); })) (this->*open)(false, *id);
}

void frmCriteriaMaint::UpdateSelect() { Update(select_, &frmCriteriaMaint::OpenSelect); }
void frmCriteriaMaint::UpdateSort() { Update(sort_, &frmCriteriaMaint::OpenSort); }

void frmCriteriaMaint::Remove(InnerGrid& lines, const char* table) {
  if (!lines.data.HasRows()) {
    ReportNoRecords();
    return;
  }
  const auto id = RowNumber(lines.grid, [this] { Refreshed(); });
  if (id && DeleteLine(table, *id)) Refreshed();
}

void frmCriteriaMaint::RemoveItSelect() { Remove(select_, kSelection); }
void frmCriteriaMaint::RemoveItSort() { Remove(sort_, kSort); }

void frmCriteriaMaint::ShowMeaning() {
  const std::string primary = StripBrackets(ReportID);
  const auto definition = ReadLines(DataID, primary);
  if (!definition) return;
  const auto& lines = definition->selection;
  std::string words = SelectionInWords(lines, primary);
  const std::string order = SortInWords(definition->sort, primary);
  if (!order.empty()) words += "\n" + order;
  meaning->setText(QString::fromStdString(words));

  const std::string fault =
      Engine().SelectionFault(RptFile, SelectionFormula(WithSampleValues(lines, primary), primary));
  engineFault->setVisible(!fault.empty());
  engineFault->setText(QString::fromStdString("The report would refuse this selection: " + fault));
  const bool asks = std::ranges::any_of(lines, &SelectionLine::askAtRuntime);
  ++counts_;
  matchCount->setVisible(fault.empty());
  if (!fault.empty()) return;
  if (asks)
    matchCount->setText("How many records match depends on the answers.");
  else
    CountLater(SelectionFormula(lines, primary));
}

/// Counts once the window shows the rest.
void frmCriteriaMaint::CountLater(const std::string& formula) {
  matchCount->setText("Counting the records that match...");
  ui::Later(*matchCount, [this, formula, number = ++counts_] {
    // The definition has changed meanwhile.
    if (number != counts_) return;
    QString text;
    try {
      if (const auto count = Engine().CountRows(RptFile, formula)) text = InWords(*count);
    } catch (const rt::Error& error) {
      text = QString::fromUtf8(error.what());
    }
    matchCount->setText(text);
    matchCount->setVisible(!text.isEmpty());
  });
}

}  // namespace dw
