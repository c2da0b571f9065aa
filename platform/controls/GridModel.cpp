#include "platform/controls/GridModel.h"

#include <QGuiApplication>
#include <QPalette>
#include <algorithm>
#include <limits>

#include "platform/controls/Format.h"

namespace ui {
namespace {

using store::ColumnType;

constexpr std::size_t kMostBlocks = 8;
constexpr int kSmallestBlock = 64;
constexpr int kLargestBlock = 256;
constexpr qsizetype kLongestText = 512;

/// Returns a recordset to the row where it was.
class SamePlace {
 public:
  explicit SamePlace(ado::Recordset& rows) : rows_(rows), place_(rows.Cursor().Position()) {}
  ~SamePlace() { rows_.Cursor().MoveTo(place_); }
  SamePlace(const SamePlace&) = delete;
  SamePlace& operator=(const SamePlace&) = delete;

 private:
  ado::Recordset& rows_;
  std::int64_t place_;
};

bool EndsInDigit(const QString& text) { return !text.isEmpty() && text.back().isDigit(); }

/// Digits after the point; zero for a number with an exponent, whose digits mean something else.
int Decimals(const QString& text) {
  const auto point = text.indexOf(QLatin1Char('.'));
  if (point < 0 || text.contains(QLatin1Char('E'))) return 0;
  return static_cast<int>(text.size() - point) - 1;
}

bool IsDeleted(const ado::Error& error) { return error.Native() == store::kRecordDeleted; }

}  // namespace

GridModel::GridModel() {
  telling_.setSingleShot(true);
  telling_.setInterval(0);
  connect(&telling_, &QTimer::timeout, this, [this] { Tell(); });
}

bool GridModel::Column::ToTheRight() const {
  switch (info.type) {
    case ColumnType::Text:
    case ColumnType::Memo:
    case ColumnType::Boolean:
    case ColumnType::LongBinary:
      return false;
    default:
      return field >= 0;
  }
}

bool GridModel::Column::IsPlainNumber() const {
  if (field < 0 || !shown.format.empty()) return false;
  return info.type == ColumnType::Single || info.type == ColumnType::Double ||
         info.type == ColumnType::Currency;
}

void GridModel::SetColumns(std::vector<GridColumn> columns) {
  wanted_ = std::move(columns);
  Reset();
}

ado::Recordset* GridModel::Rows() const {
  if (!source_ || !source_->Recordset()) return nullptr;
  ado::Recordset* rows = source_->Recordset().get();
  return rows->IsOpen() && rows->ActiveConnection()->IsOpen() ? rows : nullptr;
}

void GridModel::Reset() {
  beginResetModel();
  blocks_.clear();
  failure_.reset();
  rows_ = 0;
  ado::Recordset* rows = Rows();
  std::vector<GridColumn> shown = wanted_;
  if (shown.empty() && rows)
    for (const auto& field : rows->Fields()) shown.push_back({field.name, {}, {}, 0});
  // Without a recordset, the columns stay as they were.
  if (rows || !wanted_.empty()) columns_.clear();
  for (auto& one : shown) {
    Column column;
    if (one.caption.empty()) one.caption = one.field;
    column.shown = std::move(one);
    if (rows) {
      try {
        column.field = rows->FieldIndex(column.shown.field);
        column.info = rows->Fields()[static_cast<std::size_t>(column.field)];
      } catch (const ado::Error&) {
        // A column that this query lacks stays empty.
      }
    }
    columns_.push_back(std::move(column));
  }
  if (rows) {
    rows_ = static_cast<int>(std::min<std::int64_t>(rows->RecordCount(), std::numeric_limits<int>::max()));
    blockSize_ = static_cast<int>(std::clamp<long>(source_->CacheSize, kSmallestBlock, kLargestBlock));
  }
  endResetModel();
}

const GridModel::Row* GridModel::Find(int row) {
  if (row < 0 || row >= rows_ || failure_) return nullptr;
  const int number = row / blockSize_;
  auto found = std::find_if(blocks_.begin(), blocks_.end(),
                            [&](const Block& block) { return block.number == number; });
  if (found != blocks_.end()) {
    blocks_.splice(blocks_.begin(), blocks_, found);
  } else {
    ado::Recordset* rows = Rows();
    if (!rows || rows->Cursor().Editing()) return nullptr;
    Block block;
    block.number = number;
    Read(block);
    if (failure_) return nullptr;
    blocks_.push_front(std::move(block));
    if (blocks_.size() > kMostBlocks) blocks_.pop_back();
  }
  return &blocks_.front().rows[static_cast<std::size_t>(row % blockSize_)];
}

void GridModel::Read(Block& block) {
  const int first = block.number * blockSize_;
  const int count = std::min(blockSize_, rows_ - first);
  block.rows.resize(static_cast<std::size_t>(count));
  try {
    ado::Recordset& rows = *Rows();
    const SamePlace same(rows);
    const store::Reading reading(rows.ActiveConnection()->Store());
    for (int i = 0; i < count; ++i) {
      rows.Cursor().MoveTo(first + i);
      ReadRow(rows, block.rows[static_cast<std::size_t>(i)]);
    }
    for (std::size_t column = 0; column < columns_.size(); ++column)
      if (columns_[column].IsPlainNumber())
        for (const Row& row : block.rows)
          columns_[column].decimals = std::max(columns_[column].decimals, Decimals(row.texts[column]));
  } catch (const rt::Error& error) {
    Failed(error.Number(), error.what());
  }
}

void GridModel::ReadRow(ado::Recordset& rows, Row& row) const {
  row.texts.reserve(columns_.size());
  try {
    for (const auto& column : columns_)
      row.texts.push_back(column.field < 0 ? QString() : Shown(column, rows.Get(column.field)));
  } catch (const ado::Error& error) {
    // A position beyond the end: this recordset has deleted rows.
    if (!IsDeleted(error) && error.Number() != store::kNoCurrentRecord) throw;
    row.deleted = true;
    row.texts.assign(columns_.size(), QStringLiteral("#Deleted"));
  }
}

// The grid reads cells while it paints, when no message box may come up. One box is enough, too.
void GridModel::Failed(int number, const std::string& text) {
  if (failure_) return;
  failure_ = Failure{number, text};
  telling_.start();
}

void GridModel::Tell() {
  if (!failure_ || !source_) return;
  const Failure failure = *failure_;  // a copy: Fail resets the model, which clears failure_
  source_->Fail(failure.number, failure.text);
}

QString GridModel::Shown(const Column& column, const rt::Value& value) {
  if (value.Type() == rt::ValueType::Binary)
    return value.AsBinary().empty() ? QString() : QStringLiteral("(picture)");
  QString text = QString::fromStdString(Format(value, column.shown.format));
  if (text.size() > kLongestText) text = text.left(kLongestText) + QChar(0x2026);
  text.replace(QLatin1String("\r\n"), QLatin1String(" "));
  for (QChar& c : text)
    if (c == '\r' || c == '\n' || c == '\t') c = ' ';
  return text;
}

QString GridModel::Text(int row, int column) {
  const Row* found = column >= 0 && column < columnCount() ? Find(row) : nullptr;
  if (!found) return {};
  QString text = found->texts[static_cast<std::size_t>(column)];
  const int missing = At(column).decimals - Decimals(text);
  if (missing <= 0 || !EndsInDigit(text) || text.contains(QLatin1Char('E'))) return text;
  if (!text.contains(QLatin1Char('.'))) text += QLatin1Char('.');
  return text + QString(missing, QLatin1Char('0'));
}

rt::Value GridModel::Value(int row, std::string_view field) {
  ado::Recordset* rows = Rows();
  if (!rows || row < 0 || row >= rows_ || rows->Cursor().Editing()) return {};
  try {
    const SamePlace same(*rows);
    rows->Cursor().MoveTo(row);
    return rows->Get(field);
  } catch (const ado::Error& error) {
    if (!IsDeleted(error) && error.Number() != store::kItemNotFound &&
        error.Number() != store::kNoCurrentRecord)
      Failed(error.Number(), error.what());
    return {};
  }
}

bool GridModel::Visit(std::int64_t first, std::int64_t last,
                      const std::function<bool(const std::vector<rt::Value>& values)>& seen) {
  ado::Recordset* rows = Rows();
  if (!rows || rows->Cursor().Editing()) return false;
  std::vector<rt::Value> values(columns_.size());
  try {
    const SamePlace same(*rows);
    for (std::int64_t row = first; row <= last && row < rows_;) {
      // Other users get their turn between the blocks.
      const store::Reading reading(rows->ActiveConnection()->Store());
      for (const auto end = row + blockSize_; row < end && row <= last && row < rows_; ++row) {
        rows->Cursor().MoveTo(row);
        try {
          for (std::size_t i = 0; i < columns_.size(); ++i)
            values[i] = columns_[i].field < 0 ? rt::Value() : rows->Get(columns_[i].field);
        } catch (const ado::Error& error) {
          if (IsDeleted(error) || error.Number() == store::kNoCurrentRecord) continue;
          throw;
        }
        if (!seen(values)) return true;
      }
    }
    return true;
  } catch (const rt::Error& error) {
    Failed(error.Number(), error.what());
  }
  return false;
}

int GridModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }

int GridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  // This model reads a row when the view shows it; to the view, that is not a change.
  auto* self = const_cast<GridModel*>(this);
  switch (role) {
    case Qt::DisplayRole:
      return self->Text(index.row(), index.column());
    case Qt::TextAlignmentRole: {
      const Column& column = At(index.column());
      if (column.ToTheRight()) return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
      if (column.info.type == ColumnType::Boolean) return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
      return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    }
    case Qt::ForegroundRole: {
      const Row* row = self->Find(index.row());
      if (row && row->deleted) return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
      return {};
    }
    default:
      return {};
  }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  if (role == Qt::DisplayRole) return QString::fromStdString(At(section).shown.caption);
  if (role == Qt::TextAlignmentRole)
    return QVariant::fromValue((At(section).ToTheRight() ? Qt::AlignRight : Qt::AlignLeft) |
                               Qt::AlignVCenter);
  return {};
}

}  // namespace ui
