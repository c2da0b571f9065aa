// The rows of a data control as a grid shows them: read in blocks when they become visible, and dropped
// again.
#pragma once

#include <QAbstractTableModel>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/Adodc.h"
#include "platform/store/Cursor.h"

namespace ui {

struct GridColumn {
  std::string field;          ///< a column's name or "table.column"
  std::string caption = {};   ///< the field's name if empty
  std::string format = {};    ///< see Format
  int widthInCharacters = 0;  ///< 0: by the type, the caption and the first rows
};

/// The place of the recordset belongs to the caller: each reading leaves it where it was. While the recordset
/// is in edit, nothing is read.
class GridModel : public QAbstractTableModel {
 public:
  /// A shown column and the field behind it.
  struct Column {
    GridColumn shown;
    int field = -1;  ///< position in the recordset; -1 if it has no such field
    store::FieldInfo info;
    int decimals = 0;  ///< of a number without a format: the most decimals in the rows read so far
    bool ToTheRight() const;
    /// A number with decimals and no format.
    bool IsPlainNumber() const;
  };

  GridModel();
  void SetSource(Adodc* source) { source_ = source; }
  void SetColumns(std::vector<GridColumn> columns);
  /// Takes over the present recordset; reads no row.
  void Reset();

  const std::vector<Column>& Columns() const { return columns_; }
  const Column& At(int column) const { return columns_[static_cast<std::size_t>(column)]; }
  /// The text of a cell in one line, cut at 512 characters. "#Deleted" if another user deleted the row before
  /// it was read.
  QString Text(int row, int column);
  /// The value of any field of the recordset in a row; Null if there is no such row or field.
  rt::Value Value(int row, std::string_view field);
  /// Calls `seen` with the values of the shown columns, row by row, from `first` to `last`; skips deleted
  /// rows. Ends when `seen` returns false or the reading fails; false if it failed.
  bool Visit(std::int64_t first, std::int64_t last,
             const std::function<bool(const std::vector<rt::Value>& values)>& seen);
  /// A value as its column shows it, in one line.
  static QString Shown(const Column& column, const rt::Value& value);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  struct Row {
    std::vector<QString> texts;
    bool deleted = false;
  };
  struct Block {
    int number = -1;
    std::vector<Row> rows;
  };
  struct Failure {
    int number = 0;
    std::string text;
  };
  ado::Recordset* Rows() const;
  const Row* Find(int row);
  void Read(Block& block);
  void ReadRow(ado::Recordset& rows, Row& row) const;
  void Failed(int number, const std::string& text);
  void Tell();

  QPointer<Adodc> source_;
  std::vector<GridColumn> wanted_;
  std::vector<Column> columns_;
  int rows_ = 0;
  int blockSize_ = 64;
  std::optional<Failure> failure_;
  QTimer telling_;
  std::list<Block> blocks_;  ///< the last used one first
};

}  // namespace ui
