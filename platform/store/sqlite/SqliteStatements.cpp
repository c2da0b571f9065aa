#include "platform/store/sqlite/SqliteStatements.h"

#include "platform/store/sqlite/SqliteSpelling.h"

namespace store {
namespace {

const std::string kKey = "_rowid_";

std::string Limit(std::int64_t rows) { return SqliteWords().Limit(rows); }

std::string KeyOf(const SourceTable& table) { return QuoteName(table.alias) + "." + kKey; }

std::string Named(const SourceTable& table) {
  return QuoteName(table.name) + " AS " + QuoteName(table.alias);
}

std::string KeysOf(const Translation& query) {
  std::string keys;
  for (const auto& table : query.tables) keys += (keys.empty() ? "" : ", ") + KeyOf(table);
  return keys;
}

std::string FromOneRow(const Translation& query) {
  const auto& first = query.tables[0];
  if (query.tables.size() == 1) return " FROM " + Named(first) + " WHERE " + KeyOf(first) + " = :k0";
  // Each table's row by its own key. A table whose row is missing gives Nulls; with an inner join the whole
  // row would be missing.
  std::string sql = " FROM (SELECT 1)";
  for (std::size_t i = 0; i < query.tables.size(); ++i)
    sql += " LEFT JOIN " + Named(query.tables[i]) + " ON " + KeyOf(query.tables[i]) + " = :k" +
           std::to_string(i);
  return sql;
}

std::string AllOrderedBy(const Translation& query, const std::string& list, const std::string& order) {
  return "SELECT " + list + " FROM " + query.from + (query.where.empty() ? "" : " WHERE " + query.where) +
         (order.empty() ? "" : " ORDER BY " + order) + query.limit;
}

/// All rows of a query in its order; what it leaves equal goes by the keys.
std::string AllInOrder(const Translation& query, const std::string& list) {
  return AllOrderedBy(query, list, (query.orderBy.empty() ? "" : query.orderBy + ", ") + KeysOf(query));
}

std::string ListWithKeys(const Translation& query) {
  std::string list = KeysOf(query);
  for (const auto& column : query.columns) list += ", " + column.expression;
  return list;
}

/// The key and the columns of a table's rows.
std::string SelectRows(const Translation& all) {
  std::string sql = "SELECT " + kKey;
  for (const auto& column : all.columns) sql += ", " + column.expression;
  return sql + " FROM " + Named(all.tables[0]);
}

std::string QuotedList(const std::vector<std::string>& names) {
  std::string text;
  for (const auto& name : names) text += (text.empty() ? "" : ", ") + QuoteName(name);
  return text;
}

}  // namespace

std::string SqliteStatements::KeysInOrder(const Translation& query) const {
  return AllInOrder(query, KeysOf(query));
}

std::string SqliteStatements::RowsInOrder(const Translation& query) const {
  return AllInOrder(query, ListWithKeys(query));
}

std::string SqliteStatements::RowsInAnyOrder(const Translation& query) const {
  return AllOrderedBy(query, ListWithKeys(query), query.orderBy);
}

std::string SqliteStatements::KeysWhere(const Translation& query, WhichKeys which) const {
  const std::string key = KeyOf(query.tables[0]);
  const std::string from = "SELECT " + key + " FROM " + query.from + " WHERE (" + query.where + ")";
  return which == WhichKeys::One ? from + " AND " + key + " = :k0" : from + " ORDER BY " + key;
}

std::string SqliteStatements::RowByKeys(const Translation& query) const {
  return "SELECT " + ListWithKeys(query) + FromOneRow(query);
}

std::string SqliteStatements::RowsByKeys(const Translation& query) const {
  std::string list = "dw_list.dw_place, " + KeysOf(query);
  for (const auto& column : query.columns) list += ", " + column.expression;
  std::string sql =
      "SELECT " + list + " FROM (SELECT key AS dw_place, value AS dw_keys FROM json_each(:keys)) AS dw_list";
  for (std::size_t i = 0; i < query.tables.size(); ++i)
    sql += " LEFT JOIN " + Named(query.tables[i]) + " ON " + KeyOf(query.tables[i]) +
           " = json_extract(dw_list.dw_keys, '$[" + std::to_string(i) + "]')";
  return sql;
}

std::string SqliteStatements::KeyList(const std::int64_t* keys, std::size_t width, std::size_t rows) {
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

std::string SqliteStatements::ValueByKeys(const Translation& query, const std::string& expression) const {
  return "SELECT " + expression + FromOneRow(query);
}

// The type of a value is known without reading it.
std::string SqliteStatements::Presence(const std::string& column) const {
  return "CASE typeof(" + column + ") WHEN 'null' THEN NULL ELSE 1 END";
}

// --- rows of a table

std::string SqliteStatements::RowsAfter(const Translation& all, std::int64_t rows) const {
  return SelectRows(all) + " WHERE " + kKey + " > ?1 ORDER BY " + kKey + Limit(rows);
}

std::string SqliteStatements::RowBefore(const Translation& all) const {
  return SelectRows(all) + " WHERE " + kKey + " < ?1 ORDER BY " + kKey + " DESC" + Limit(1);
}

std::string SqliteStatements::FirstByIndex(const Translation& all, const IndexInfo& index,
                                           const std::vector<bool>& nulls) const {
  std::string condition;
  std::string order;
  for (std::size_t i = 0; i < index.columns.size(); ++i) {
    const std::string name = QuoteName(index.columns[i]);
    if (i < nulls.size()) {
      condition += (condition.empty() ? " WHERE " : " AND ") + name;
      condition += nulls[i] ? " IS NULL" : " = ?" + std::to_string(i + 1);
    } else {
      order += name + ", ";
    }
  }
  return SelectRows(all) + condition + " ORDER BY " + order + kKey + Limit(1);
}

std::string SqliteStatements::AllByLeading(const Translation& all, const IndexInfo& index, bool null,
                                           std::int64_t most) const {
  std::string order;
  for (std::size_t i = 1; i < index.columns.size(); ++i) order += QuoteName(index.columns[i]) + ", ";
  return SelectRows(all) + " WHERE " + QuoteName(index.columns[0]) + (null ? " IS NULL" : " = ?1") +
         " ORDER BY " + order + kKey + Limit(most);
}

std::string SqliteStatements::KeysByIndex(const TableInfo& table, const IndexInfo& index) const {
  return "SELECT " + kKey + " FROM " + QuoteName(table.name) + " ORDER BY " + QuotedList(index.columns) +
         ", " + kKey;
}

std::string SqliteStatements::Count(const TableInfo& table) const {
  return "SELECT COUNT(*) FROM " + QuoteName(table.name);
}

std::string SqliteStatements::AnyRow(const TableInfo& table) const {
  return "SELECT 1 FROM " + QuoteName(table.name) + Limit(1);
}

std::string SqliteStatements::IsThere(const TableInfo& table) const {
  return "SELECT 1 FROM " + QuoteName(table.name) + " WHERE " + kKey + " = ?1";
}

std::string SqliteStatements::Scan(const TableInfo& table, const std::vector<std::string>& columns) const {
  return "SELECT " + kKey + (columns.empty() ? "" : ", ") + QuotedList(columns) + " FROM " +
         QuoteName(table.name) + " WHERE " + kKey + " > ?1 ORDER BY " + kKey;
}

// --- writes

// dw_value gives the values of many records to one statement; see AddFunctions.
RecordUpdate SqliteStatements::UpdateByKey(const TableInfo& table,
                                           const std::vector<WrittenColumn>& columns) const {
  std::string one;
  std::string many;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string assigned = (i == 0 ? "" : ", ") + QuoteName(columns[i].name) + " = ";
    one += assigned + "?" + std::to_string(i + 1);
    many += assigned + "dw_value(?1, " + kKey + ", " + std::to_string(columns[i].place) + ")";
  }
  const std::string update = "UPDATE " + QuoteName(table.name) + " SET ";
  const std::string where = " WHERE " + kKey;
  return {update + one + where + " = ?" + std::to_string(columns.size() + 1),
          update + many + where + " BETWEEN ?2 AND ?3",
          update + many + where + " IN (SELECT value FROM json_each(?2))"};
}

std::string SqliteStatements::DeleteByKey(const TableInfo& table) const {
  return "DELETE FROM " + QuoteName(table.name) + " WHERE " + kKey + " = ?1";
}

std::string SqliteStatements::InsertWithKey(const TableInfo& table,
                                            const std::vector<WrittenColumn>& columns) const {
  std::string names;
  std::string marks;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    names += QuoteName(columns[i].name) + ", ";
    marks += "?" + std::to_string(i + 1) + ", ";
  }
  return "INSERT INTO " + QuoteName(table.name) + " (" + names + kKey + ") VALUES (" + marks + "?" +
         std::to_string(columns.size() + 1) + ")";
}

std::string SqliteStatements::InsertMany(const TableInfo& table,
                                         const std::vector<WrittenColumn>& columns) const {
  std::string names;
  std::string values;
  for (const auto& column : columns) {
    names += (names.empty() ? "" : ", ") + QuoteName(column.name);
    values += (values.empty() ? "" : ", ") + ("dw_value(?1, place, " + std::to_string(column.place) + ")");
  }
  return "WITH RECURSIVE dw_places(place) AS (SELECT 0 UNION ALL SELECT place + 1 FROM dw_places WHERE place "
         "+ 1 < ?2) INSERT INTO " +
         QuoteName(table.name) + " (" + names + ") SELECT " + values + " FROM dw_places";
}

std::string SqliteStatements::InsertNumbered(const Translation& insert, const ColumnInfo& counter,
                                             std::size_t first) const {
  return "INSERT INTO " + QuoteName(insert.target) + " (" + QuotedList(insert.insertColumns) + ", " +
         QuoteName(counter.name) + ") SELECT *, ?" + std::to_string(first) +
         " + ROW_NUMBER() OVER () - 1 FROM (" + insert.insertSelect + ")";
}

std::string SqliteStatements::KeysTouched(const Translation& write, std::int64_t rows) const {
  return "SELECT " + kKey + " FROM " + QuoteName(write.target) +
         (write.where.empty() ? "" : " WHERE " + write.where) + Limit(rows);
}

std::string SqliteStatements::IsTouched(const Translation& write) const {
  return "SELECT " + kKey + " FROM " + QuoteName(write.target) + " WHERE " +
         (write.where.empty() ? "" : "(" + write.where + ") AND ") + kKey + " = :k0";
}

}  // namespace store
