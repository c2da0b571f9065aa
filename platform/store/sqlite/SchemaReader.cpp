// What the file says of its tables, read from the catalogue of the database underneath.
#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include "platform/runtime/Text.h"
#include "platform/store/StoreError.h"
#include "platform/store/sqlite/Handle.h"
#include "platform/store/sqlite/IndexName.h"

namespace store {
namespace {

bool IsSystemTable(std::string_view name) {
  return rt::EqualNoCase(name.substr(0, 4), "MSys") || rt::EqualNoCase(name.substr(0, 7), "sqlite_");
}

/// The columns of the table's primary key, in the order of the key.
void AddPrimaryKey(TableInfo& table, std::vector<std::pair<std::int64_t, std::string>> key) {
  if (key.empty()) return;
  std::sort(key.begin(), key.end());
  IndexInfo primary{"PrimaryKey", {}, true, true, true};
  for (auto& [position, name] : key) {
    // A key of another type than the numbering one may hold Nulls unless its column is declared otherwise.
    const ColumnInfo& column = table.columns[static_cast<std::size_t>(table.Find(name))];
    primary.required = primary.required && (column.required || column.type == ColumnType::Counter);
    primary.columns.push_back(std::move(name));
  }
  table.indexes.push_back(std::move(primary));
}

/// The tables in the order in which they were made, with their columns and primary keys.
std::vector<TableInfo> TablesAndKeys(Handle& handle) {
  std::vector<TableInfo> tables;
  std::vector<std::pair<std::int64_t, std::string>> key;
  Use columns(
      handle.Prepare("SELECT t.name, t.sql, c.name, c.type, c.\"notnull\", c.pk FROM sqlite_schema AS t "
                     "JOIN pragma_table_info(t.name) AS c WHERE t.type = 'table' ORDER BY t.rowid, c.cid"));
  while (columns.Step()) {
    const std::string name = columns.Text(0);
    if (IsSystemTable(name)) continue;
    if (tables.empty() || tables.back().name != name) {
      if (!tables.empty()) AddPrimaryKey(tables.back(), std::exchange(key, {}));
      tables.emplace_back().name = name;
    }
    TableInfo& table = tables.back();
    const std::string definition = columns.Text(1);
    // A column of a type that is not ours is still there to be read.
    ColumnInfo column =
        ParseDeclaredType(columns.Text(3)).value_or(ColumnInfo{"", ColumnType::Memo, 0, false, true});
    column.name = columns.Text(2);
    if (column.type == ColumnType::Counter && definition.find("AUTOINCREMENT") == std::string::npos)
      column.type = ColumnType::Long;
    column.required = columns.Int64(4) != 0 && column.type != ColumnType::Boolean;
    column.allowZeroLength =
        definition.find("CHECK (" + QuoteName(column.name) + " <> '')") == std::string::npos;
    if (columns.Int64(5) > 0) key.emplace_back(columns.Int64(5), column.name);
    table.columns.push_back(std::move(column));
  }
  if (!tables.empty()) AddPrimaryKey(tables.back(), std::move(key));
  return tables;
}

/// Whether no row can have a Null in one of the index's columns.
bool IsRequired(const TableInfo& table, const IndexInfo& index) {
  return std::all_of(index.columns.begin(), index.columns.end(), [&](const std::string& name) {
    const int at = table.Find(name);
    return at >= 0 && (table.columns[static_cast<std::size_t>(at)].required ||
                       table.columns[static_cast<std::size_t>(at)].type == ColumnType::Counter);
  });
}

void AddIndexes(Handle& handle, std::vector<TableInfo>& tables) {
  std::map<std::string, TableInfo*> byName;
  for (TableInfo& table : tables) byName.emplace(table.name, &table);
  Use columns(handle.Prepare(
      "SELECT t.name, i.name, i.\"unique\", i.partial, c.name, c.seqno FROM sqlite_schema AS t "
      "JOIN pragma_index_list(t.name) AS i JOIN pragma_index_info(i.name) AS c "
      "WHERE t.type = 'table' AND i.origin = 'c' ORDER BY t.rowid, i.seq DESC, c.seqno"));
  while (columns.Step()) {
    const auto found = byName.find(columns.Text(0));
    if (found == byName.end()) continue;
    auto& indexes = found->second->indexes;
    if (columns.Int64(5) == 0) {
      IndexInfo index;
      index.name = IndexNameOf(found->first, columns.Text(1));
      index.unique = columns.Int64(2) != 0;
      index.exceptEmpty = columns.Int64(3) != 0;
      indexes.push_back(std::move(index));
    }
    indexes.back().columns.push_back(columns.Text(4));
  }
  for (TableInfo& table : tables)
    for (IndexInfo& index : table.indexes)
      if (!index.primary) index.required = IsRequired(table, index);
}

}  // namespace

std::string StoredIndexName(std::string_view table, std::string_view index) {
  return std::string(table) + "." + std::string(index);
}

std::string IndexNameOf(std::string_view table, std::string_view stored) {
  const std::string prefix = std::string(table) + ".";
  if (rt::EqualNoCase(stored.substr(0, prefix.size()), prefix))
    return std::string(stored.substr(prefix.size()));
  return std::string(stored);
}

std::vector<TableInfo> ReadTables(Handle& handle) {
  std::vector<TableInfo> tables = TablesAndKeys(handle);
  AddIndexes(handle, tables);
  return tables;
}

}  // namespace store
