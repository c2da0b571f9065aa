#include "platform/controls/DataGrid.h"

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStyleOption>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "platform/controls/Application.h"
#include "platform/screen/Screen.h"

namespace ui {
namespace {

constexpr int kSoughtMilliseconds = 1000;
constexpr int kRowMargin = 6;

/// Keeps headings as far from the lines between the columns as the cells are.
class HeadingStyle : public QProxyStyle {
 public:
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option);
    if (element != CE_HeaderLabel || !header)
      return QProxyStyle::drawControl(element, option, painter, widget);
    const int inCells = pixelMetric(PM_FocusFrameHMargin, option, widget) + 1;
    const int more = std::max(0, inCells + 1 - pixelMetric(PM_HeaderMargin, option, widget));
    const auto draw = [&](auto narrower) {
      narrower.rect.adjust(more, 0, -more, 0);
      QProxyStyle::drawControl(element, &narrower, painter, widget);
    };
    if (const auto* newer = qstyleoption_cast<const QStyleOptionHeaderV2*>(option))
      draw(*newer);
    else
      draw(*header);
  }
};

/// The application owns it, because its style is built on the application's.
QStyle& Heading() {
  static QPointer<HeadingStyle> style;
  if (!style) {
    style = new HeadingStyle;
    style->setParent(qApp);
  }
  return *style;
}

}  // namespace

DataGrid::DataGrid(const char* name, QWidget* parent) : QTableView(parent) {
  setObjectName(QString::fromUtf8(name));
  setModel(&model_);
  setFocusPolicy(Qt::StrongFocus);
  setTabKeyNavigation(false);
  setEditTriggers(NoEditTriggers);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setVerticalScrollMode(ScrollPerItem);
  setHorizontalScrollMode(ScrollPerPixel);

  // Headings stay regular while the cells are bold.
  QFont regular = font();
  regular.setBold(false);
  horizontalHeader()->setFont(regular);
  horizontalHeader()->setStyle(&Heading());
  verticalHeader()->setFont(regular);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setMinimumSectionSize(1);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setSectionsClickable(true);
  horizontalHeader()->setTextElideMode(Qt::ElideRight);
  horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
  // Fits a column to the visible rows only, not to all rows.
  horizontalHeader()->setResizeContentsPrecision(0);
  FitRowHeight();

  connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) {
    setFocus(Qt::MouseFocusReason);
    Guard([&] { SortByColumn(column); });
    ShowSortMark();
  });
  connect(horizontalHeader(), &QHeaderView::customContextMenuRequested, this, [this](const QPoint& at) {
    ShowMenu(horizontalHeader()->mapToGlobal(at), horizontalHeader()->logicalIndexAt(at));
  });
  connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column, int before, int now) {
    if (fitting_ || before == 0 || now == 0) return;
    const auto at = static_cast<std::size_t>(column);
    if (at < widthIsTheUsers_.size()) widthIsTheUsers_[at] = true;
  });
  soughtFor_.setSingleShot(true);
  soughtFor_.setInterval(kSoughtMilliseconds);
  connect(&soughtFor_, &QTimer::timeout, this, [this] { EndSeek(); });
}

// The view must not ask a model that is destroyed already.
DataGrid::~DataGrid() { setModel(nullptr); }

// --- rows

void DataGrid::SetDataSource(Adodc& source) {
  source_ = &source;
  model_.SetSource(&source);
  source.AddListener(*this, [this, added = &source] {
    if (source_ == added) Refreshed();
  });
  connect(&source, &QObject::destroyed, this, [this] {
    if (!source_) model_.Reset();
  });
  if (source.Recordset() || source.RecordSource.empty()) return Refreshed();
  source.Refresh();
}

void DataGrid::SetColumns(std::vector<GridColumn> columns) {
  model_.SetColumns(std::move(columns));
  Refreshed();
}

void DataGrid::Refreshed() {
  EndSeek();
  const int across = horizontalScrollBar()->value();
  model_.Reset();
  FitColumns();
  ShowSortMark();
  SetRow(0, PositionAtTop);
  horizontalScrollBar()->setValue(across);
}

void DataGrid::SetRow(int row, ScrollHint where) {
  if (model_.rowCount() == 0) return;
  const auto shown = ShownColumns();
  if (shown.empty()) return;
  const int column = currentIndex().isValid() ? currentIndex().column() : shown.front();
  const QModelIndex index = model_.index(std::clamp(row, 0, model_.rowCount() - 1), column);
  const int across = horizontalScrollBar()->value();
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  scrollTo(index, where);
  horizontalScrollBar()->setValue(across);
}

bool DataGrid::MoveToCurrent() {
  if (Row() < 0 || !source_ || !source_->HasRows()) return false;
  store::Cursor& cursor = source_->Recordset()->Cursor();
  if (cursor.Editing()) return false;
  cursor.MoveTo(Row());
  return true;
}

void DataGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  if (!current.isValid() || current.row() == previous.row()) return;
  MoveToCurrent();
  Act(onRowChange);
}

std::string DataGrid::CellText(int column) { return model_.Text(Row(), column).toStdString(); }

rt::Value DataGrid::CellValue(int row, const std::string& field) { return model_.Value(row, field); }

int DataGrid::VisibleRows() const {
  return viewport()->height() / std::max(1, verticalHeader()->defaultSectionSize());
}

std::vector<int> DataGrid::ShownColumns() const {
  std::vector<int> columns;
  for (int place = 0; place < model_.columnCount(); ++place) {
    const int column = horizontalHeader()->logicalIndex(place);
    if (!isColumnHidden(column)) columns.push_back(column);
  }
  return columns;
}

// --- sorting

bool DataGrid::CanSortBy(int column) const {
  if (!source_ || !source_->Recordset() || column < 0 || column >= model_.columnCount()) return false;
  const auto& at = model_.At(column);
  return at.field >= 0 && at.info.type != store::ColumnType::LongBinary && source_->CanSort();
}

bool DataGrid::SortByColumn(int column) {
  if (!CanSortBy(column)) return false;
  const store::FieldInfo field = model_.At(column).info;
  return RefreshSorted(
      [&] { source_->SortBy(field, !(source_->SortedBy(field) && source_->SortsAscending())); });
}

void DataGrid::UseDefinedOrder() {
  if (source_ && source_->Sorted()) RefreshSorted([this] { source_->ClearSort(); });
}

bool DataGrid::RefreshSorted(const std::function<void()>& change) {
  const screen::Hourglass pointer;
  store::Bookmark record;
  try {
    if (MoveToCurrent()) record = source_->Recordset()->Bookmark();
  } catch (const ado::Error&) {
    // Without a record to return to, the list goes to its first row.
  }
  change();
  source_->Refresh();
  const auto& rows = source_->Recordset();
  if (!rows || record.empty()) return rows != nullptr;
  try {
    rows->SetBookmark(record);
    SetRow(static_cast<int>(rows->Cursor().Position()), PositionAtCenter);
  } catch (const ado::Error&) {
    MoveToCurrent();  // deleted meanwhile
  }
  return true;
}

void DataGrid::ShowSortMark() {
  int sorted = -1;
  if (source_ && source_->Sorted())
    for (int i = 0; i < model_.columnCount(); ++i)
      if (model_.At(i).field >= 0 && source_->SortedBy(model_.At(i).info)) sorted = i;
  horizontalHeader()->setSortIndicatorShown(sorted >= 0);
  if (sorted >= 0)
    horizontalHeader()->setSortIndicator(
        sorted, source_->SortsAscending() ? Qt::AscendingOrder : Qt::DescendingOrder);
}

// --- keys and mouse

bool DataGrid::Act(const std::function<void()>& work) {
  if (!work) return false;
  // A copy: the work may end the form.
  Guard([now = work] { now(); });
  return true;
}

bool DataGrid::ActOnKey(int key) {
  switch (key) {
    case Qt::Key_Insert:
      return Act(onAdd);
    case Qt::Key_Delete:
      return Act(onDelete);
    case Qt::Key_Space:
      return Act(onDetail);
    default:
      return false;
  }
}

void DataGrid::keyPressEvent(QKeyEvent* event) {
  const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == 0;
  const int key = event->key();
  if (plain && (key == Qt::Key_Insert || key == Qt::Key_Delete || key == Qt::Key_Space)) {
    // In a grid that opens nothing, a blank can be part of the search text.
    if (!event->isAutoRepeat() && !ActOnKey(key) && key == Qt::Key_Space && !sought_.isEmpty())
      Seek(event->text());
    return;
  }
  if (event->matches(QKeySequence::Copy)) {
    Guard([this] { CopySelection(); });
    return;
  }
  // These keys belong to the form's default button and to Cancel.
  if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
    event->ignore();
    return;
  }
  if (key == Qt::Key_Backspace) {
    if (sought_.isEmpty()) return;
    sought_.chop(1);
    Seek({});
    return;
  }
  const bool types = (event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) == 0 &&
                     !event->text().isEmpty() && event->text().at(0).isPrint() &&
                     (event->text() != " " || !sought_.isEmpty());
  if (types)
    Seek(event->text());
  else
    QTableView::keyPressEvent(event);
}

QModelIndex DataGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const int column = std::max(0, currentIndex().column());
  if (action == MoveHome) return model_.index(0, column);
  if (action == MoveEnd) return model_.index(model_.rowCount() - 1, column);
  return QTableView::moveCursor(action, modifiers);
}

QItemSelectionModel::SelectionFlags DataGrid::selectionCommand(const QModelIndex& index,
                                                               const QEvent* event) const {
  // A click beside the rows leaves the current row marked.
  if (!index.isValid()) return QItemSelectionModel::NoUpdate;
  return QTableView::selectionCommand(index, event);
}

void DataGrid::mouseDoubleClickEvent(QMouseEvent* event) {
  const bool acts = event->button() == Qt::LeftButton && (indexAt(event->position().toPoint()).isValid() ||
                                                          doubleClickAnywhere_ || model_.rowCount() == 0);
  QTableView::mouseDoubleClickEvent(event);
  if (acts) Act(onDoubleClick ? onDoubleClick : onDetail);
}

bool DataGrid::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Paint && model_.rowCount() == 0 && hasFocus()) {
    const bool done = QTableView::viewportEvent(event);
    // Without a row to mark, nobody would see the focus.
    QStyleOptionFocusRect option;
    option.initFrom(viewport());
    option.backgroundColor = palette().color(QPalette::Base);
    QPainter painter(viewport());
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    return done;
  }
  if (event->type() != QEvent::ToolTip) return QTableView::viewportEvent(event);
  // Shows the whole text of a cell that is too narrow for it.
  const auto* help = static_cast<QHelpEvent*>(event);
  const QModelIndex index = indexAt(help->pos());
  const QString text = model_.Text(index.row(), index.column());
  if (!index.isValid() || fontMetrics().horizontalAdvance(text) + kRowMargin < visualRect(index).width()) {
    QToolTip::hideText();
    return true;
  }
  const rt::Value whole = CellValue(index.row(), model_.At(index.column()).shown.field);
  const bool note = whole.Type() == rt::ValueType::Text;
  QToolTip::showText(help->globalPos(), note ? QString::fromStdString(whole.AsText()).toHtmlEscaped() : text,
                     viewport());
  return true;
}

// --- looks

void DataGrid::focusInEvent(QFocusEvent* event) {
  QTableView::focusInEvent(event);
  SetBold(true);
  viewport()->update();
}

void DataGrid::focusOutEvent(QFocusEvent* event) {
  QTableView::focusOutEvent(event);
  viewport()->update();
  // The grid's own menu takes the focus for a moment only.
  if (event->reason() == Qt::PopupFocusReason) return;
  SetBold(false);
  EndSeek();
}

void DataGrid::SetBold(bool bold) {
  if (font().bold() == bold) return;
  QFont changed = font();
  changed.setBold(bold);
  setFont(changed);
}

void DataGrid::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) FitRowHeight();
}

// Measures the bold font, so that the focus does not change the height of rows.
void DataGrid::FitRowHeight() {
  QFont bold = font();
  bold.setBold(true);
  const int height = QFontMetrics(bold).height() + kRowMargin;
  if (verticalHeader()->defaultSectionSize() != height) verticalHeader()->setDefaultSectionSize(height);
}

void AdoRefreshGrid(DataGrid& grid, Adodc& rows, GridPlace& place, bool setFocus) {
  if (!place.armed) {
    place.topRow = grid.Row();
    place.armed = true;
  } else {
    const screen::Hourglass pointer;
    grid.setUpdatesEnabled(false);
    rows.Requery();
    place.topRow = std::max(0L, place.topRow);
    if (rows.HasRows()) {
      const long count = static_cast<long>(rows.RecordCount());
      const long visible = grid.VisibleRows();
      const long above = place.topRow - visible / 2;
      const long lastTop = count - visible + 1;
      grid.SetRow(above < 1 ? 0 : static_cast<int>(std::min(above, lastTop)) - 1,
                  QAbstractItemView::PositionAtTop);
      place.topRow = std::min(place.topRow, count - 1);
      grid.SetRow(static_cast<int>(place.topRow));
    }
    grid.setUpdatesEnabled(true);
  }
  if (setFocus) grid.setFocus();
}

}  // namespace ui
