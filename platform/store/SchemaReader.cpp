// What the file says of its tables, read from the catalogue of the database underneath.
#include <algorithm>
#include <cstdint>
#include <map>
#include <set>

#include "platform/runtime/Text.h"
#include "platform/store/Handle.h"
#include "platform/store/IndexName.h"
#include "platform/store/LockSpace.h"
#include "platform/store/StoreError.h"

namespace store {
namespace {

bool IsSystemTable(std::string_view name) {
  return rt::EqualNoCase(name.substr(0, 4), "MSys") || rt::EqualNoCase(name.substr(0, 7), "sqlite_");
}

void ReadColumns(Handle& handle, TableInfo& table, const std::string& definition) {
  std::vector<std::pair<std::int64_t, std::string>> key;
  Use columns(handle, "SELECT name, type, \"notnull\", pk FROM pragma_table_info(?1)");
  columns.Bind(1, rt::Value(table.name));
  while (columns.Step()) {
    const std::string declared = columns.Text(1);
    // A column of a type that is not ours is still there to be read.
    ColumnInfo column =
        ParseDeclaredType(declared).value_or(ColumnInfo{"", ColumnType::Memo, 0, false, true});
    column.name = columns.Text(0);
    if (column.type == ColumnType::Counter && definition.find("AUTOINCREMENT") == std::string::npos)
      column.type = ColumnType::Long;
    column.required = columns.Int64(2) != 0 && column.type != ColumnType::Boolean;
    column.allowZeroLength =
        definition.find("CHECK (" + QuoteName(column.name) + " <> '')") == std::string::npos;
    if (columns.Int64(3) > 0) key.emplace_back(columns.Int64(3), column.name);
    table.columns.push_back(std::move(column));
  }
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

void ReadIndexes(Handle& handle, TableInfo& table) {
  struct Stored {
    std::string name;
    bool unique;
    bool partial;
  };
  std::vector<Stored> found;
  {
    Use indexes(handle,
                "SELECT name, \"unique\", partial FROM pragma_index_list(?1) WHERE origin = 'c' ORDER BY seq "
                "DESC");
    indexes.Bind(1, rt::Value(table.name));
    while (indexes.Step()) found.push_back({indexes.Text(0), indexes.Int64(1) != 0, indexes.Int64(2) != 0});
  }
  for (const auto& [stored, unique, partial] : found) {
    IndexInfo index;
    index.name = IndexNameOf(table.name, stored);
    index.unique = unique;
    index.exceptEmpty = partial;
    Use columns(handle, "SELECT name FROM pragma_index_info(?1) ORDER BY seqno");
    columns.Bind(1, rt::Value(stored));
    while (columns.Step()) index.columns.push_back(columns.Text(0));
    index.required = std::all_of(index.columns.begin(), index.columns.end(), [&](const std::string& name) {
      const int at = table.Find(name);
      return at >= 0 && (table.columns[static_cast<std::size_t>(at)].required ||
                         table.columns[static_cast<std::size_t>(at)].type == ColumnType::Counter);
    });
    table.indexes.push_back(std::move(index));
  }
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

/// The numbers by which tables are locked follow from their names: everybody finds the same ones, whatever
/// another tool does to the rows of the engine's catalogue.
void NumberTables(std::vector<TableInfo>& tables) {
  std::map<std::string, TableInfo*> byName;
  for (TableInfo& table : tables) byName.emplace(rt::LowerCase(table.name), &table);
  std::set<int> taken;
  for (auto& [name, table] : byName) {
    std::uint32_t hash = 2166136261U;  // FNV-1a
    for (const char letter : name) hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619U;
    int number = static_cast<int>(hash % static_cast<std::uint32_t>(kLastTable)) + 1;
    while (!taken.insert(number).second) number = number % kLastTable + 1;
    table->number = number;
  }
}

Schema ReadSchema(Handle& handle) {
  Schema schema;
  std::vector<std::string> definitions;
  {
    Use tables(handle, "SELECT name, sql FROM sqlite_schema WHERE type = 'table' ORDER BY rowid");
    while (tables.Step()) {
      const std::string name = tables.Text(0);
      if (IsSystemTable(name)) continue;
      TableInfo table;
      table.name = name;
      schema.tables.push_back(std::move(table));
      definitions.push_back(tables.Text(1));
    }
  }
  for (std::size_t i = 0; i < schema.tables.size(); ++i) {
    ReadColumns(handle, schema.tables[i], definitions[i]);
    ReadIndexes(handle, schema.tables[i]);
  }
  NumberTables(schema.tables);
  return schema;
}

}  // namespace store
