#include "platform/store/QueryPlan.h"

#include "platform/store/StoreError.h"

namespace store {
namespace {

std::string SelectList(const Translation& t) {
  std::string list;
  for (const auto& column : t.columns) list += (list.empty() ? "" : ", ") + column.expression;
  return list;
}

/// Pictures may be larger than everything else in a file, and few readers of a row look at them. A row says
/// only whether it has a picture.
std::vector<std::string> SetPicturesApart(Translation& t, const Statements& statements) {
  std::vector<std::string> apart(t.columns.size());
  for (std::size_t i = 0; i < t.columns.size(); ++i) {
    auto& column = t.columns[i];
    if (column.type != ColumnType::LongBinary || column.table < 0) continue;
    apart[i] = statements.ValueByKeys(t, column.expression);
    column.expression = statements.Presence(column.expression);
  }
  return apart;
}

std::string WholeStatement(const Translation& t) {
  return std::string("SELECT ") + (t.distinct ? "DISTINCT " : "") + SelectList(t) +
         (t.from.empty() ? "" : " FROM " + t.from) + (t.where.empty() ? "" : " WHERE " + t.where) +
         (t.groupBy.empty() ? "" : " GROUP BY " + t.groupBy) +
         (t.having.empty() ? "" : " HAVING " + t.having) +
         (t.orderBy.empty() ? "" : " ORDER BY " + t.orderBy) + t.limit;
}

}  // namespace

std::shared_ptr<const QueryPlan> MakePlan(Translation translation, std::shared_ptr<const Schema> schema,
                                          const Statements& statements) {
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
    plan->apart = SetPicturesApart(t, statements);
    plan->keys = statements.KeysInOrder(t);
    plan->row = statements.RowByKeys(t);
    plan->rows = statements.RowsByKeys(t);
  } else {
    plan->whole = WholeStatement(t);
  }
  return plan;
}

}  // namespace store
