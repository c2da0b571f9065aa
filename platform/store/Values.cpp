// Between the cells of the file and the values of columns.
#include <cmath>

#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/store/Handle.h"
#include "platform/store/StoreError.h"

namespace store {

namespace {

/// A column of a statement's current row.
struct ColumnSource {
  sqlite3_stmt* statement;
  int column;
  int Kind() const { return sqlite3_column_type(statement, column); }
  std::int64_t Whole() const { return sqlite3_column_int64(statement, column); }
  double Real() const { return sqlite3_column_double(statement, column); }
  const void* Bytes() const { return sqlite3_column_blob(statement, column); }
  int Length() const { return sqlite3_column_bytes(statement, column); }
};

/// An argument of a function.
struct ArgumentSource {
  sqlite3_value* value;
  int Kind() const { return sqlite3_value_type(value); }
  std::int64_t Whole() const { return sqlite3_value_int64(value); }
  double Real() const { return sqlite3_value_double(value); }
  const void* Bytes() const { return sqlite3_value_blob(value); }
  int Length() const { return sqlite3_value_bytes(value); }
};

}  // namespace

template <typename Source>
void RawRow::Take(const Source& source, Cell& cell) {
  cell.kind = source.Kind();
  switch (cell.kind) {
    case SQLITE_INTEGER:
      cell.whole = source.Whole();
      break;
    case SQLITE_FLOAT:
      cell.real = source.Real();
      break;
    case SQLITE_TEXT:
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const char*>(source.Bytes());
      const auto length = static_cast<std::size_t>(source.Length());
      cell.offset = bytes_.size();
      cell.length = static_cast<std::uint32_t>(length);
      if (length > 0) bytes_.append(bytes, length);
      break;
    }
    default:
      break;
  }
}

void RawRow::Read(sqlite3_stmt* statement, int first, int count) {
  cells_.resize(static_cast<std::size_t>(count));
  bytes_.clear();
  for (int i = 0; i < count; ++i)
    Take(ColumnSource{statement, first + i}, cells_[static_cast<std::size_t>(i)]);
}

void RawRow::Read(sqlite3_value* value) {
  cells_.resize(1);
  bytes_.clear();
  Take(ArgumentSource{value}, cells_[0]);
}

rt::Value RawRow::Decode(int index, ColumnType type) const {
  const Cell& cell = cells_[static_cast<std::size_t>(index)];
  const auto bytes = [&] { return std::string_view(bytes_).substr(cell.offset, cell.length); };
  switch (cell.kind) {
    case SQLITE_NULL:
      return rt::Null{};
    case SQLITE_TEXT:
      if (type == ColumnType::DateTime) {
        if (const auto date = rt::DateTime::FromIso(bytes())) return *date;
      }
      return rt::Value(bytes());
    case SQLITE_BLOB: {
      const auto content = bytes();
      // In one piece, which pictures of many megabytes need.
      const auto* first = reinterpret_cast<const rt::Binary::value_type*>(content.data());
      return rt::Value(rt::Binary(first, first + content.size()));
    }
    case SQLITE_INTEGER:
      switch (type) {
        case ColumnType::Boolean:
          return cell.whole != 0;
        case ColumnType::Currency:
          return rt::Currency::FromUnits(cell.whole);
        case ColumnType::Single:
          return static_cast<float>(cell.whole);
        case ColumnType::Double:
          return static_cast<double>(cell.whole);
        case ColumnType::Short:
          if (cell.whole >= INT16_MIN && cell.whole <= INT16_MAX)
            return static_cast<std::int16_t>(cell.whole);
          break;
        case ColumnType::Text:
        case ColumnType::Memo:
          return std::to_string(cell.whole);
        default:
          break;
      }
      if (cell.whole >= INT32_MIN && cell.whole <= INT32_MAX) return static_cast<std::int32_t>(cell.whole);
      return static_cast<double>(cell.whole);
    default:
      if (type == ColumnType::Single) return static_cast<float>(cell.real);
      if (type == ColumnType::Currency) return rt::Currency::RoundedToEven(cell.real / 10000.0);
      return cell.real;
  }
}

std::string InColumn(const ColumnInfo& column, const std::string& text) {
  return text + " (field '" + column.name + "')";
}

rt::Value FitToColumn(const ColumnInfo& column, const rt::Value& value) {
  if (value.IsNull()) {
    if (column.type == ColumnType::Boolean) return false;
    return value;
  }
  try {
    switch (column.type) {
      case ColumnType::Counter:
      case ColumnType::Long:
        return value.AsLong();
      case ColumnType::Short:
        return value.AsInteger();
      case ColumnType::Boolean:
        return value.AsBoolean();
      case ColumnType::Single:
        return value.AsSingle();
      case ColumnType::Double:
        return value.AsDouble();
      case ColumnType::Currency:
        return value.AsCurrency();
      case ColumnType::DateTime:
        return value.AsDate();
      case ColumnType::LongBinary:
        return value.AsBinary();
      case ColumnType::Text:
      case ColumnType::Memo: {
        std::string text = value.AsText();
        // A NUL would cut the text short in every other program that reads the file.
        if (text.find('\0') != std::string::npos)
          throw StoreError(kTypeMismatch,
                           InColumn(column, "The text holds a character that cannot be stored."));
        if (column.type == ColumnType::Text && rt::Length(text) > static_cast<std::size_t>(column.size))
          throw StoreError(
              kFieldTooSmall,
              InColumn(column, "The field is too small for the text that was to be stored in it; it takes " +
                                   std::to_string(column.size) + " characters."));
        if (text.empty() && !column.allowZeroLength)
          throw StoreError(kZeroLength, InColumn(column, "The field cannot be an empty text."));
        return text;
      }
    }
  } catch (const rt::RuntimeError& error) {
    if (error.Number() == 6)
      throw StoreError(kOverflow, InColumn(column, "The number is beyond what the field can hold."));
    throw StoreError(kTypeMismatch, InColumn(column, "The value is of a kind that the field cannot hold."));
  }
  return value;
}

}  // namespace store
