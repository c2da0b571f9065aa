// The grid of lists: rows of a data control, to look at and to choose from.
#pragma once

#include <QTableView>
#include <QTimer>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "platform/controls/Adodc.h"
#include "platform/controls/GridModel.h"

class QLabel;
class QMenu;

namespace ui {

/// The user chooses whole rows; one of them is the current one, and the recordset follows it. The grid edits
/// nothing. Its font is bold while it has the focus.
///
/// Insert, Space, Delete and a double click call what the form has set. A click on a heading sorts by it, a
/// second one reverses the order; typing finds a row by its first letters; Ctrl+C copies the chosen rows with
/// headings; the context menu has the rest.
class DataGrid : public QTableView {
 public:
  explicit DataGrid(const char* name = "", QWidget* parent = nullptr);
  ~DataGrid() override;

  /// Shows the rows of a data control from now on. Refreshes the control if it has never been refreshed.
  void SetDataSource(Adodc& source);
  Adodc* DataSource() const { return source_; }
  /// The columns in their order; an empty list means all fields of the recordset.
  void SetColumns(std::vector<GridColumn> columns);
  void ShowColumn(int column, bool shown) { setColumnHidden(column, !shown); }

  std::function<void()> onAdd;          ///< Insert
  std::function<void()> onDetail;       ///< Space, and a double click without a rule of its own
  std::function<void()> onDelete;       ///< Delete
  std::function<void()> onDoubleClick;  ///< a double click, in place of onDetail
  std::function<void()> onRowChange;    ///< another row is the current one
  /// A double click acts on a row, and anywhere in a grid without rows. If set, it also acts below the rows.
  void SetDoubleClickAnywhere(bool anywhere) { doubleClickAnywhere_ = anywhere; }

  /// The current row from 0; -1 if there is none.
  int Row() const { return currentIndex().row(); }
  /// Makes a row the only chosen one and scrolls to it. A row beyond the end means the last one.
  void SetRow(int row, ScrollHint where = EnsureVisible);
  /// Moves the recordset to the current row; false if there is none.
  bool MoveToCurrent();
  /// The text that the current row shows in a column; empty without a row.
  std::string CellText(int column);
  /// The value of a field; Null if there is no such row or field.
  rt::Value CellValue(int row, const std::string& field);
  /// Rows that fit into the grid's height.
  int VisibleRows() const;
  std::int64_t RecordCount() const { return source_ ? source_->RecordCount() : 0; }

  /// Sorts by a column; reverses the order if the grid is sorted by it already. False if it cannot. The
  /// current record stays the current one.
  bool SortByColumn(int column);
  /// Returns to the order of the record source.
  void UseDefinedOrder();
  /// Goes to the first row whose text begins with this: in the sorted column, else in the first column of the
  /// defined order, else in the first text column. False, without a change, if there is none.
  bool FindText(const std::string& text);
  /// The search text that the user is typing now.
  const QString& Sought() const { return sought_; }

  /// The chosen rows, with tabs between the cells and the headings above.
  std::string SelectedText();
  void CopySelection();
  /// Writes all rows with the visible columns as comma separated values (RFC 4180, UTF-8 with its mark):
  /// amounts as plain numbers, dates as in the grid. Replaces an existing file once all rows are written.
  /// False if it failed; it has shown the reason then.
  bool SaveCsv(const std::string& path);
  /// Asks for a file name to save under; empty if the user gives none. A file dialog unless a test sets
  /// another.
  std::function<std::string(const std::string& suggested)> askFileName;

  void keyboardSearch(const QString& text) override { Seek(text); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;

 private:
  void Refreshed();
  bool Act(const std::function<void()>& work);
  bool ActOnKey(int key);
  bool CanSortBy(int column) const;
  void SetBold(bool bold);
  void FitRowHeight();
  void FitColumns();
  int WidthOf(int column);
  void ShowSortMark();
  bool RefreshSorted(const std::function<void()>& change);
  std::vector<int> ShownColumns() const;
  void ShowMenu(const QPoint& at, int column);
  void SaveAs();
  bool WriteCsv(std::ostream& out);

  void Seek(const QString& typed);
  void EndSeek();
  int SearchColumn();
  void ShowSought(bool found, int column);

  QPointer<Adodc> source_;
  GridModel model_;
  bool doubleClickAnywhere_ = false;
  bool fitting_ = false;
  bool fittedToRows_ = false;
  std::vector<bool> widthIsTheUsers_;
  std::vector<std::string> fittedFields_;
  QString sought_;
  QString notFound_;  ///< the shortest search text without a row
  QTimer soughtFor_;
  QLabel* soughtShown_ = nullptr;
};

/// Where a grid was before a change.
struct GridPlace {
  bool armed = false;  ///< `topRow` is the row to go back to
  long topRow = 0;
};
/// Keeps a grid's place around a change, in two calls. The first one, with `armed` false, stores the row in
/// `topRow`. The next ones run the query of its data control again and go back to that row, about in the
/// middle of the visible rows. `armed` stays set.
void AdoRefreshGrid(DataGrid& grid, Adodc& rows, GridPlace& place, bool setFocus = false);

}  // namespace ui
