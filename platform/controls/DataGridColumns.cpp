// The grid's column widths, its menu, and its search for typed text.
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>

#include "platform/controls/Application.h"
#include "platform/controls/DataGrid.h"
#include "platform/controls/GridSearch.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "platform/store/QueryClauses.h"

namespace ui {
namespace {

using store::ColumnType;

constexpr int kCellMargin = 12;
constexpr int kSampledRows = 30;
constexpr int kMostCharacters = 40;

/// The number of characters that a column of this type has room for at least.
int UsualCharacters(const GridModel::Column& column) {
  switch (column.info.type) {
    case ColumnType::Boolean:
      return 3;
    case ColumnType::Counter:
    case ColumnType::Short:
    case ColumnType::Long:
      return 6;
    case ColumnType::Single:
    case ColumnType::Double:
      return 8;
    case ColumnType::Currency:
    case ColumnType::DateTime:
    case ColumnType::LongBinary:
      return 10;
    case ColumnType::Text:
      return column.info.size > 12 ? std::clamp(column.info.size / 2, 12, 20) : std::max(column.info.size, 4);
    case ColumnType::Memo:
      return 20;
  }
  return 10;
}

std::string WithoutBrackets(std::string text) {
  std::erase_if(text, [](char c) { return c == '[' || c == ']'; });
  return text;
}

bool Begins(const QString& text, const QString& start) { return text.startsWith(start, Qt::CaseInsensitive); }

}  // namespace

// --- widths

// Fits once, with the first rows. Widths that the user has set stay.
void DataGrid::FitColumns() {
  std::vector<std::string> fields;
  for (const auto& column : model_.Columns()) fields.push_back(column.shown.field);
  if (fields != fittedFields_) {
    fittedFields_ = fields;
    fittedToRows_ = false;
    widthIsTheUsers_.assign(fields.size(), false);
  }
  if (fittedToRows_) return;
  fitting_ = true;
  for (int i = 0; i < model_.columnCount(); ++i)
    if (!widthIsTheUsers_[static_cast<std::size_t>(i)] && !isColumnHidden(i)) setColumnWidth(i, WidthOf(i));
  fitting_ = false;
  fittedToRows_ = model_.rowCount() > 0;
}

int DataGrid::WidthOf(int column) {
  const auto& at = model_.At(column);
  QFont bold = font();
  bold.setBold(true);
  const QFontMetrics cells(bold);
  const int digit = cells.horizontalAdvance(QLatin1Char('0'));
  const int heading =
      horizontalHeader()->fontMetrics().horizontalAdvance(QString::fromStdString(at.shown.caption)) +
      kCellMargin + style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, horizontalHeader()) +
      2 * style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, horizontalHeader());
  if (at.shown.widthInCharacters > 0)
    return std::max(heading, at.shown.widthInCharacters * digit + kCellMargin);
  int content = at.field < 0 ? 0 : UsualCharacters(at) * digit;
  bool times = false;
  for (int row = 0; row < std::min(kSampledRows, model_.rowCount()); ++row) {
    const QString text = model_.Text(row, column);
    content = std::max(content, cells.horizontalAdvance(text));
    times = times || text.contains(QLatin1Char(':'));
  }
  // Makes room for any later date too.
  if (at.info.type == ColumnType::DateTime)
    for (const int hour : {times ? 10 : 0, times ? 22 : 0})
      content = std::max(content, cells.horizontalAdvance(GridModel::Shown(
                                      at, rt::DateTime(2008, 10, 28, hour, times ? 8 : 0, times ? 8 : 0))));
  return std::max(heading, std::min(content, kMostCharacters * digit) + kCellMargin);
}

// --- the menu

void DataGrid::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const QPoint at = byKey ? visualRect(currentIndex()).bottomLeft() : event->pos();
  ShowMenu(viewport()->mapToGlobal(at), byKey ? currentIndex().column() : columnAt(at.x()));
}

void DataGrid::ShowMenu(const QPoint& at, int column) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const auto add = [&](const char* text, const char* name, bool enabled, std::function<void()> work) {
    QAction* action = menu->addAction(QString::fromUtf8(text));
    action->setObjectName(QString::fromUtf8(name));
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, this, [work = std::move(work)] { Guard([&] { work(); }); });
  };
  const bool rows = model_.rowCount() > 0;
  add("&Copy with headings\tCtrl+C", "mnuCopy", rows, [this] { CopySelection(); });
  add("Select &all\tCtrl+A", "mnuSelectAll", rows, [this] { selectAll(); });
  add("Save as CS&V...", "mnuSaveCsv", model_.columnCount() > 0, [this] { SaveAs(); });
  menu->addSeparator();
  add("&Sort by this column", "mnuSort", CanSortBy(column), [this, column] { SortByColumn(column); });
  add("&Defined order", "mnuDefinedOrder", source_ && source_->Sorted(), [this] { UseDefinedOrder(); });
  menu->popup(at);
}

// --- typing

void DataGrid::Seek(const QString& typed) {
  sought_ += typed;
  if (sought_.isEmpty()) return EndSeek();
  bool found = false;
  // If no row begins with a text, none begins with a longer one.
  if (notFound_.isEmpty() || !sought_.startsWith(notFound_)) {
    Guard([&] { found = FindText(sought_.toStdString()); });
  }
  ShowSought(found, SearchColumn());
  // Counts from the end of the search, which may take a moment on a long list.
  soughtFor_.start();
}

void DataGrid::EndSeek() {
  soughtFor_.stop();
  sought_.clear();
  notFound_.clear();
  if (soughtShown_) soughtShown_->hide();
}

int DataGrid::SearchColumn() {
  if (!source_ || !source_->Recordset()) return -1;
  const auto shown = ShownColumns();
  const auto first = [&](const std::function<bool(const GridModel::Column&)>& fits) {
    const auto found = std::find_if(shown.begin(), shown.end(), [&](int column) {
      return model_.At(column).field >= 0 && fits(model_.At(column));
    });
    return found == shown.end() ? -1 : *found;
  };
  if (source_->Sorted()) {
    const int sorted = first([&](const auto& column) { return source_->SortedBy(column.info); });
    if (sorted >= 0) return sorted;
  }
  const store::QueryClauses query(source_->Query());
  for (const auto& ordered : query.OrderedBy()) {
    try {
      const int field = source_->Recordset()->FieldIndex(WithoutBrackets(ordered.column));
      const int column = first([&](const auto& one) { return one.field == field; });
      if (column >= 0) return column;
    } catch (const ado::Error&) {
      // The order may use a column that is not among the fields.
    }
  }
  const int text = first([](const auto& column) { return column.info.type == ColumnType::Text; });
  return text >= 0 ? text : currentIndex().column();
}

bool DataGrid::FindText(const std::string& text) {
  const int column = SearchColumn();
  if (column < 0 || text.empty()) return false;
  const auto& at = model_.At(column);
  const screen::Hourglass pointer;
  std::optional<std::int64_t> found;
  if (source_->CanSort() && !at.info.table.empty()) {
    const Beginning beginning(at.info, text);
    if (!beginning.Possible()) return false;
    try {
      found = FirstRowThatBegins(*source_, at.info, beginning);
      notFound_ = found ? QString() : QString::fromStdString(text);
    } catch (const ado::Error& error) {
      source_->Fail(error.Number(), error.what());
      return false;
    }
  } else {
    // Such lists (TOP, groups) are short.
    std::int64_t row = 0;
    const QString start = QString::fromStdString(text);
    model_.Visit(0, model_.rowCount() - 1, [&](const std::vector<rt::Value>& values) {
      if (Begins(GridModel::Shown(at, values[static_cast<std::size_t>(column)]), start)) found = row;
      ++row;
      return !found;
    });
  }
  if (found) SetRow(static_cast<int>(*found), PositionAtCenter);
  return found.has_value();
}

void DataGrid::ShowSought(bool found, int column) {
  if (column < 0) return;
  if (!soughtShown_) {
    soughtShown_ = new QLabel(this);
    soughtShown_->setObjectName("lblSought");
    soughtShown_->setAutoFillBackground(true);
    soughtShown_->setBackgroundRole(QPalette::ToolTipBase);
    soughtShown_->setForegroundRole(QPalette::ToolTipText);
    soughtShown_->setFrameShape(QFrame::Box);
    soughtShown_->setMargin(3);
    soughtShown_->setTextFormat(Qt::PlainText);
  }
  soughtShown_->setFont(horizontalHeader()->font());
  soughtShown_->setText(QString::fromStdString(model_.At(column).shown.caption) + ": " + sought_ +
                        (found ? "" : " - not found"));
  soughtShown_->adjustSize();
  const QRect area = viewport()->geometry();
  soughtShown_->move(area.left() + 4, area.bottom() - soughtShown_->height() - 3);
  // The hint must not cover the row that was found.
  if (visualRect(currentIndex()).translated(area.topLeft()).bottom() >= soughtShown_->y())
    soughtShown_->move(area.left() + 4, area.top() + 3);
  soughtShown_->show();
  soughtShown_->raise();
}

}  // namespace ui
