// A translated query, cut into the statements that a cursor needs.
#include "platform/store/Handle.h"
#include "platform/store/StoreError.h"

namespace store {
namespace {

std::string SelectList(const Translation& t) {
  std::string list;
  for (const auto& column : t.columns) list += (list.empty() ? "" : ", ") + column.expression;
  return list;
}

std::string RowId(const SourceTable& table) { return QuoteName(table.alias) + "._rowid_"; }

std::string Limit(const Translation& t) { return t.top ? " LIMIT " + std::to_string(*t.top) : ""; }

// Rows that the wanted order leaves equal come by their keys, so that every reading gives the same order.
std::string Order(const Translation& t) {
  std::string order = t.orderBy;
  for (const auto& table : t.tables) order += (order.empty() ? "" : ", ") + RowId(table);
  return " ORDER BY " + order;
}

std::string KeyStatement(const Translation& t) {
  std::string keys;
  for (const auto& table : t.tables) keys += (keys.empty() ? "" : ", ") + RowId(table);
  return "SELECT " + keys + " FROM " + t.from + (t.where.empty() ? "" : " WHERE " + t.where) + Order(t) +
         Limit(t);
}

/// What is selected of one row, which the keys name.
std::string OfOneRow(const Translation& t, const std::string& selected) {
  std::string sql = "SELECT " + selected + " FROM ";
  if (t.tables.size() == 1)
    return sql + QuoteName(t.tables[0].name) + " AS " + QuoteName(t.tables[0].alias) + " WHERE " +
           RowId(t.tables[0]) + " = :k0";
  // Each table's row by its own key; a table whose row is missing gives Nulls, which an inner join would not.
  sql += "(SELECT 1)";
  for (std::size_t i = 0; i < t.tables.size(); ++i)
    sql += " LEFT JOIN " + QuoteName(t.tables[i].name) + " AS " + QuoteName(t.tables[i].alias) + " ON " +
           RowId(t.tables[i]) + " = :k" + std::to_string(i);
  return sql;
}

std::string RowStatement(const Translation& t) {
  std::string keys;
  for (const auto& table : t.tables) keys += (keys.empty() ? "" : ", ") + RowId(table);
  return OfOneRow(t, keys + ", " + SelectList(t));
}

/// Pictures may be larger than all else in a file, and who goes through rows seldom looks at them. Rows say
/// only whether there is one; the engine knows that without reading it.
std::vector<std::string> SetPicturesApart(Translation& t) {
  std::vector<std::string> apart(t.columns.size());
  for (std::size_t i = 0; i < t.columns.size(); ++i) {
    auto& column = t.columns[i];
    if (column.type != ColumnType::LongBinary || column.table < 0) continue;
    apart[i] = OfOneRow(t, column.expression);
    column.expression = "CASE typeof(" + column.expression + ") WHEN 'null' THEN NULL ELSE 1 END";
  }
  return apart;
}

std::string WholeStatement(const Translation& t) {
  return std::string("SELECT ") + (t.distinct ? "DISTINCT " : "") + SelectList(t) +
         (t.from.empty() ? "" : " FROM " + t.from) + (t.where.empty() ? "" : " WHERE " + t.where) +
         (t.groupBy.empty() ? "" : " GROUP BY " + t.groupBy) +
         (t.having.empty() ? "" : " HAVING " + t.having) +
         (t.orderBy.empty() ? "" : " ORDER BY " + t.orderBy) + Limit(t);
}

}  // namespace

std::shared_ptr<const QueryPlan> MakePlan(Translation translation, std::shared_ptr<const Schema> schema) {
  auto plan = std::make_shared<QueryPlan>();
  plan->schema = std::move(schema);
  Translation& t = plan->translation = std::move(translation);
  if (t.kind != StatementKind::Select) return plan;
  if (!t.tables.empty()) plan->leading = plan->schema->Find(t.tables[0].name);
  for (const auto& column : t.columns) {
    FieldInfo field{column.name, column.type, 0, {}, column.column};
    int at = -1;
    if (column.table >= 0) {
      field.table = t.tables[static_cast<std::size_t>(column.table)].alias;
      const TableInfo* table = plan->schema->Find(t.tables[static_cast<std::size_t>(column.table)].name);
      const int found = table->Find(column.column);
      if (found >= 0) field.size = table->columns[static_cast<std::size_t>(found)].size;
      if (column.table == 0) at = found;
    }
    plan->types.push_back(column.type);
    plan->fields.push_back(std::move(field));
    plan->leadingColumn.push_back(at);
  }
  plan->keyed = !t.distinct && !t.grouped && !t.tables.empty();
  if (t.tables.size() > 8) throw StoreError(kSyntax, "A query can join eight tables at most.");
  plan->apart.resize(t.columns.size());
  if (plan->keyed) {
    plan->apart = SetPicturesApart(t);
    plan->keys = KeyStatement(t);
    plan->row = RowStatement(t);
  } else {
    plan->whole = WholeStatement(t);
  }
  return plan;
}

}  // namespace store
