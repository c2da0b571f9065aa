// How SQLite declares tables, columns and indexes.
#include "platform/store/sqlite/IndexName.h"
#include "platform/store/sqlite/SqliteStatements.h"

namespace store {
namespace {

std::string ColumnDefinition(const ColumnInfo& column) {
  const std::string name = QuoteName(column.name);
  std::string text = name + " " + DeclaredType(column);
  if (column.type == ColumnType::Boolean)
    text += column.defaultTrue ? " NOT NULL DEFAULT 1" : " NOT NULL DEFAULT 0";
  if (column.required && column.type != ColumnType::Boolean && column.type != ColumnType::Counter)
    text += " NOT NULL";
  // Every program that writes the file is held to the size of a text.
  if (column.type == ColumnType::Text)
    text += " CHECK (length(" + name + ") <= " + std::to_string(column.size) + ")";
  if (!column.allowZeroLength) text += " CHECK (" + name + " <> '')";
  return text;
}

std::string Alter(const TableInfo& table) { return "ALTER TABLE " + QuoteName(table.name); }

}  // namespace

// The primary key belongs to the table; the other indexes are made one by one.
std::string SqliteStatements::CreateTable(const TableInfo& table) const {
  std::string body;
  bool counter = false;
  for (const auto& column : table.columns) {
    body += (body.empty() ? "" : ", ") + ColumnDefinition(column);
    counter = counter || column.type == ColumnType::Counter;
  }
  for (const auto& index : table.indexes) {
    if (!index.primary || counter) continue;
    body += ", PRIMARY KEY (";
    for (std::size_t i = 0; i < index.columns.size(); ++i)
      body += (i ? ", " : "") + QuoteName(index.columns[i]);
    body += ")";
  }
  return "CREATE TABLE " + QuoteName(table.name) + " (" + body + ")";
}

std::string SqliteStatements::DropTable(const TableInfo& table) const {
  return "DROP TABLE " + QuoteName(table.name);
}

std::string SqliteStatements::AddColumn(const TableInfo& table, const ColumnInfo& column) const {
  return Alter(table) + " ADD COLUMN " + ColumnDefinition(column);
}

std::string SqliteStatements::DropColumn(const TableInfo& table, std::string_view column) const {
  return Alter(table) + " DROP COLUMN " + QuoteName(column);
}

std::string SqliteStatements::RenameColumn(const TableInfo& table, std::string_view column,
                                           std::string_view newName) const {
  return Alter(table) + " RENAME COLUMN " + QuoteName(column) + " TO " + QuoteName(newName);
}

std::string SqliteStatements::CreateIndex(const TableInfo& table, const IndexInfo& index) const {
  std::string columns;
  for (const auto& column : index.columns) columns += (columns.empty() ? "" : ", ") + QuoteName(column);
  return std::string("CREATE ") + (index.unique || index.primary ? "UNIQUE " : "") + "INDEX " +
         QuoteName(StoredIndexName(table.name, index.name)) + " ON " + QuoteName(table.name) + " (" +
         columns + ")" + (index.exceptEmpty ? " WHERE " + QuoteName(index.columns.front()) + " <> ''" : "");
}

std::string SqliteStatements::DropIndex(const TableInfo& table, const IndexInfo& index) const {
  return "DROP INDEX " + QuoteName(StoredIndexName(table.name, index.name));
}

std::string SqliteStatements::AnyExpectation() const {
  return "SELECT 1 FROM sqlite_schema WHERE name = 'sqlite_stat1'";
}

std::vector<Statements::WithValues> SqliteStatements::Expect(const TableInfo& table, std::string_view index,
                                                             const std::vector<std::int64_t>& rows,
                                                             bool first) const {
  std::string numbers;
  for (const std::int64_t number : rows) numbers += (numbers.empty() ? "" : " ") + std::to_string(number);
  const rt::Value stored(StoredIndexName(table.name, index));
  std::vector<WithValues> statements;
  // Makes the table of expectations; a second time would take out what is in it.
  if (first) statements.emplace_back("ANALYZE", std::vector<rt::Value>{});
  statements.emplace_back("DELETE FROM sqlite_stat1 WHERE idx = ?1", std::vector<rt::Value>{stored});
  statements.emplace_back("INSERT INTO sqlite_stat1 (tbl, idx, stat) VALUES (?1, ?2, ?3)",
                          std::vector<rt::Value>{rt::Value(table.name), stored, rt::Value(numbers)});
  statements.emplace_back("ANALYZE sqlite_schema", std::vector<rt::Value>{});
  return statements;
}

}  // namespace store
