#include "platform/store/Statements.h"

#include "platform/store/DialectSpelling.h"
#include "platform/store/FileFormat.h"
#include "platform/store/Schema.h"

namespace store {
namespace {

constexpr std::string_view kKey = "_rowid_";

std::string KeyOf(const SourceTable& table) { return QuoteName(table.alias) + "." + std::string(kKey); }

std::string KeysOf(const Translation& query) {
  std::string keys;
  for (const auto& table : query.tables) keys += (keys.empty() ? "" : ", ") + KeyOf(table);
  return keys;
}

std::string NamesOf(const std::vector<WrittenColumn>& columns) {
  std::string names;
  for (const auto& column : columns) names += (names.empty() ? "" : ", ") + QuoteName(column.name);
  return names;
}

/// Changes the records of a list ?1; the condition on their keys follows.
std::string UpdateMany(const std::string& table, const std::vector<WrittenColumn>& columns) {
  const std::string key(kKey);
  std::string sql = "UPDATE " + QuoteName(table) + " SET ";
  for (std::size_t i = 0; i < columns.size(); ++i)
    sql += (i == 0 ? "" : ", ") + QuoteName(columns[i].name) + " = dw_value(?1, " + key + ", " +
           std::to_string(columns[i].place) + ")";
  return sql + " WHERE " + key;
}

std::string FromOneRow(const Translation& query) {
  const auto& first = query.tables[0];
  if (query.tables.size() == 1)
    return " FROM " + QuoteName(first.name) + " AS " + QuoteName(first.alias) + " WHERE " + KeyOf(first) +
           " = :k0";
  // Each table's row by its own key. A table whose row is missing gives Nulls; with an inner join the whole
  // row would be missing.
  std::string sql = " FROM (SELECT 1)";
  for (std::size_t i = 0; i < query.tables.size(); ++i)
    sql += " LEFT JOIN " + QuoteName(query.tables[i].name) + " AS " + QuoteName(query.tables[i].alias) +
           " ON " + KeyOf(query.tables[i]) + " = :k" + std::to_string(i);
  return sql;
}

/// All rows of a query in its order; what it leaves equal goes by the keys.
std::string AllInOrder(const Translation& query, const std::string& list) {
  return "SELECT " + list + " FROM " + query.from + (query.where.empty() ? "" : " WHERE " + query.where) +
         " ORDER BY " + (query.orderBy.empty() ? "" : query.orderBy + ", ") + KeysOf(query) +
         (query.top ? dialect::Spelled().Limit(*query.top) : "");
}

std::string ListWithKeys(const Translation& query) {
  std::string list = KeysOf(query);
  for (const auto& column : query.columns) list += ", " + column.expression;
  return list;
}

}  // namespace

std::string KeysInOrder(const Translation& query) { return AllInOrder(query, KeysOf(query)); }

std::string RowsInOrder(const Translation& query) { return AllInOrder(query, ListWithKeys(query)); }

std::string KeysWhere(const Translation& query, WhichKeys which) {
  const std::string key = KeyOf(query.tables[0]);
  const std::string from = "SELECT " + key + " FROM " + query.from + " WHERE (" + query.where + ")";
  return which == WhichKeys::One ? from + " AND " + key + " = :k0" : from + " ORDER BY " + key;
}

std::string RowByKeys(const Translation& query) {
  return "SELECT " + ListWithKeys(query) + FromOneRow(query);
}

std::string RowsByKeys(const Translation& query) {
  std::string list = "dw_list.dw_place, " + KeysOf(query);
  for (const auto& column : query.columns) list += ", " + column.expression;
  std::string sql =
      "SELECT " + list + " FROM (SELECT key AS dw_place, value AS dw_keys FROM json_each(:keys)) AS dw_list";
  for (std::size_t i = 0; i < query.tables.size(); ++i)
    sql += " LEFT JOIN " + QuoteName(query.tables[i].name) + " AS " + QuoteName(query.tables[i].alias) +
           " ON " + KeyOf(query.tables[i]) + " = json_extract(dw_list.dw_keys, '$[" + std::to_string(i) +
           "]')";
  return sql;
}

std::string KeyList(const std::int64_t* keys, std::size_t width, std::size_t rows) {
  std::string list = "[";
  for (std::size_t row = 0; row < rows; ++row) {
    list += row == 0 ? "[" : ",[";
    for (std::size_t i = 0; i < width; ++i) {
      const std::int64_t key = keys[row * width + i];
      list += (i == 0 ? "" : ",") + (key == kNoKey ? std::string("null") : std::to_string(key));
    }
    list += "]";
  }
  return list + "]";
}

std::string RowsOfTable(const Translation& query) {
  const auto& table = query.tables[0];
  std::string list(kKey);
  for (const auto& column : query.columns) list += ", " + column.expression;
  return "SELECT " + list + " FROM " + QuoteName(table.name) + " AS " + QuoteName(table.alias);
}

std::string FirstByIndex(const IndexInfo& index, const std::vector<bool>& nulls) {
  std::string where;
  std::string order;
  for (std::size_t i = 0; i < index.columns.size(); ++i) {
    const std::string name = QuoteName(index.columns[i]);
    if (i < nulls.size())
      where += (i == 0 ? " WHERE " : " AND ") + name +
               (nulls[i] ? std::string(" IS NULL") : " = ?" + std::to_string(i + 1));
    else
      order += name + ", ";
  }
  return where + " ORDER BY " + order + std::string(kKey) + dialect::Spelled().Limit(1);
}

std::string AllByLeading(const IndexInfo& index, bool null, int most) {
  std::string order;
  for (std::size_t i = 1; i < index.columns.size(); ++i) order += QuoteName(index.columns[i]) + ", ";
  return " WHERE " + QuoteName(index.columns[0]) + (null ? " IS NULL" : " = ?1") + " ORDER BY " + order +
         std::string(kKey) + dialect::Spelled().Limit(most);
}

std::string UpdateOne(const std::string& table, const std::vector<WrittenColumn>& columns) {
  std::string sql = "UPDATE " + QuoteName(table) + " SET ";
  for (std::size_t i = 0; i < columns.size(); ++i)
    sql += (i == 0 ? "" : ", ") + QuoteName(columns[i].name) + " = ?" + std::to_string(i + 1);
  return sql + " WHERE " + std::string(kKey) + " = ?" + std::to_string(columns.size() + 1);
}

std::string UpdateRange(const std::string& table, const std::vector<WrittenColumn>& columns) {
  return UpdateMany(table, columns) + " BETWEEN ?2 AND ?3";
}

std::string UpdateListed(const std::string& table, const std::vector<WrittenColumn>& columns) {
  return UpdateMany(table, columns) + " IN (SELECT value FROM json_each(?2))";
}

std::string InsertMany(const std::string& table, const std::vector<WrittenColumn>& columns) {
  std::string values;
  for (const auto& column : columns)
    values += (values.empty() ? "dw_value(?1, place, " : ", dw_value(?1, place, ") +
              std::to_string(column.place) + ")";
  return "WITH RECURSIVE dw_places(place) AS (SELECT 0 UNION ALL SELECT place + 1 FROM dw_places WHERE place "
         "+ 1 < ?2) INSERT INTO " +
         QuoteName(table) + " (" + NamesOf(columns) + ") SELECT " + values + " FROM dw_places";
}

std::string InsertOne(const std::string& table, const std::vector<WrittenColumn>& columns) {
  std::string marks;
  for (std::size_t i = 0; i < columns.size(); ++i) marks += "?" + std::to_string(i + 1) + ", ";
  return "INSERT INTO " + QuoteName(table) + " (" + NamesOf(columns) + ", " + std::string(kKey) +
         ") VALUES (" + marks + "?" + std::to_string(columns.size() + 1) + ")";
}

std::string ValueByKeys(const Translation& query, const std::string& expression) {
  return "SELECT " + expression + FromOneRow(query);
}

}  // namespace store
