// What a data file says of its own tables.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Value.h"

namespace store {

/// The key of a row that is not there: the far side of an outer join.
constexpr std::int64_t kNoKey = std::numeric_limits<std::int64_t>::min();

enum class ColumnType {
  Counter,     ///< Long that numbers itself; "INTEGER PRIMARY KEY AUTOINCREMENT" in the file
  Boolean,     ///< "YESNO", 1 and 0 in the file, never Null
  Short,       ///< "SHORT", 16 bits
  Long,        ///< "LONG", 32 bits
  Single,      ///< "SINGLE"
  Double,      ///< "DOUBLE"
  Currency,    ///< "CURRENCY", the count of ten-thousandths in the file
  DateTime,    ///< "DATETIME", "YYYY-MM-DD HH:MM:SS" in the file
  Text,        ///< "TEXT(n)", n characters, compared without regard to case
  Memo,        ///< "MEMO TEXT"
  LongBinary,  ///< "LONGBINARY BLOB"
};

struct ColumnInfo {
  std::string name;
  ColumnType type = ColumnType::Text;
  int size = 0;  ///< characters of a Text column, otherwise 0
  bool required = false;
  bool allowZeroLength = true;
  bool defaultTrue = false;  ///< the value of a Boolean in the rows that are there when it is added
};

struct IndexInfo {
  std::string name;
  std::vector<std::string> columns;
  bool primary = false;
  bool unique = false;
  bool required = false;
  /// A unique index that leaves out the rows whose first column is Null or empty: there may be any number of
  /// them. Nothing is looked up by such an index.
  bool exceptEmpty = false;
};

struct TableInfo {
  std::string name;
  int number = 0;  ///< the table's part in record locks; stays while anyone has the file open
  std::vector<ColumnInfo> columns;
  std::vector<IndexInfo> indexes;  ///< the primary key first where there is one

  /// Position of a column, compared without regard to case; -1 if there is none.
  int Find(std::string_view column) const;
  const IndexInfo* FindIndex(std::string_view name) const;
};

/// A relation is recorded so that a rebuild carries it; it is not enforced.
struct RelationInfo {
  std::string name;
  std::string table;                                         ///< the table referred to
  std::string foreignTable;                                  ///< the table that refers
  int attributes = 2;                                        ///< 2: not enforced
  std::vector<std::pair<std::string, std::string>> columns;  ///< column of `table`, column of `foreignTable`
};

/// The tables of one file at one moment.
struct Schema {
  std::vector<TableInfo> tables;
  /// Compared without regard to case; null if there is none.
  const TableInfo* Find(std::string_view table) const;
};

/// The declared type in the file: "TEXT(20)", "CURRENCY" …
std::string DeclaredType(const ColumnInfo& column);
/// Reads a declared type; empty for one that is not ours.
std::optional<ColumnInfo> ParseDeclaredType(std::string_view declared);
/// Gives tables the numbers by which their records are held. They follow from the names alone: everybody
/// finds the same ones, whatever another tool does to the engine's catalogue.
void NumberTables(std::vector<TableInfo>& tables);
/// "name" with its quotation marks doubled, as an identifier of the file's SQL.
std::string QuoteName(std::string_view name);

}  // namespace store
