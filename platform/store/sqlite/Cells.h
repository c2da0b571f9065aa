// From the cells of SQLite to those of raw rows.
#pragma once

#include <sqlite3.h>

#include "platform/store/RawRow.h"

namespace store {

inline Cell CellOf(int kind) {
  switch (kind) {
    case SQLITE_INTEGER:
      return Cell::Whole;
    case SQLITE_FLOAT:
      return Cell::Real;
    case SQLITE_TEXT:
      return Cell::Text;
    case SQLITE_BLOB:
      return Cell::Binary;
    default:
      return Cell::Null;
  }
}

/// A column of a statement's current row.
struct ColumnSource {
  sqlite3_stmt* statement;
  int column;
  Cell Kind() const { return CellOf(sqlite3_column_type(statement, column)); }
  std::int64_t Whole() const { return sqlite3_column_int64(statement, column); }
  double Real() const { return sqlite3_column_double(statement, column); }
  const void* Bytes() const { return sqlite3_column_blob(statement, column); }
  int Length() const { return sqlite3_column_bytes(statement, column); }
};

/// An argument of a function.
struct ArgumentSource {
  sqlite3_value* value;
  Cell Kind() const { return CellOf(sqlite3_value_type(value)); }
  std::int64_t Whole() const { return sqlite3_value_int64(value); }
  double Real() const { return sqlite3_value_double(value); }
  const void* Bytes() const { return sqlite3_value_blob(value); }
  int Length() const { return sqlite3_value_bytes(value); }
};

template <typename Source>
void PutCell(RawRow& row, int cell, const Source& source) {
  switch (const Cell kind = source.Kind()) {
    case Cell::Null:
      return row.PutNull(cell);
    case Cell::Whole:
      return row.PutWhole(cell, source.Whole());
    case Cell::Real:
      return row.PutReal(cell, source.Real());
    case Cell::Text:
    case Cell::Binary: {
      // The bytes before their length: the one may change the other.
      const auto* bytes = static_cast<const char*>(source.Bytes());
      return row.PutBytes(cell, kind, bytes, static_cast<std::size_t>(source.Length()));
    }
  }
}

}  // namespace store
