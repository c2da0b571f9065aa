#include "platform/store/DialectQuery.h"

#include <algorithm>

#include "platform/runtime/Text.h"
#include "platform/store/DialectSpelling.h"
#include "platform/store/Tokenizer.h"

namespace store::dialect {
namespace {

constexpr std::size_t kMostColumns = 1000;

ColumnType TypeOf(const Fragment& value) {
  if (value.column) return value.column->type;
  if (value.typed) return value.typed->type == ColumnType::Counter ? ColumnType::Long : value.typed->type;
  switch (value.kind) {
    case ValueKind::Boolean:
      return ColumnType::Boolean;
    case ValueKind::Whole:
      return ColumnType::Long;
    case ValueKind::Real:
      return ColumnType::Double;
    case ValueKind::Currency:
      return ColumnType::Currency;
    case ValueKind::Date:
      return ColumnType::DateTime;
    case ValueKind::Binary:
      return ColumnType::LongBinary;
    case ValueKind::Text:
    case ValueKind::Null:
    case ValueKind::Unknown:
      return ColumnType::Text;
  }
  return ColumnType::Text;
}

}  // namespace

void QueryTranslator::Translate(const Query& query, Translation& result) {
  result.distinct = query.distinct;
  if (query.top) result.limit = spelled_.Limit(*query.top);
  result.from = Sources(*query.from);
  result.tables = scope_.Tables();
  if (query.where) result.where = emitter_.EmitCondition(*query.where, Totals::Forbidden).text;
  Items(query, result);
  Groups(query, result);
  Order(query, result);
}

std::string QueryTranslator::Sources(const Source& source) {
  if (!source.table.empty()) {
    scope_.Add(source.table, source.alias);
    const SourceTable& table = scope_.Table(scope_.Size() - 1);
    return QuoteName(table.name) + (table.alias == table.name ? "" : " AS " + QuoteName(table.alias));
  }
  return Join(source);
}

// The file's engine has no row numbers for tables inside parentheses, so all joins are written from left to
// right. A joined pair on the right side changes places with the single table on the left.
std::string QueryTranslator::Join(const Source& source) {
  const int first = scope_.Size();
  std::string left = Sources(*source.left);
  const int middle = scope_.Size();
  std::string right = Sources(*source.right);
  JoinKind kind = source.join;
  if (source.right->table.empty()) {
    if (source.left->table.empty())
      NotUnderstood(key_, source.place, "Joins in brackets on both sides of a join are not known");
    std::swap(left, right);
    if (kind == JoinKind::Left) {
      kind = JoinKind::Right;
    } else if (kind == JoinKind::Right) {
      kind = JoinKind::Left;
    }
  }
  const int optionalFirst = source.join == JoinKind::Left ? middle : first;
  const int optionalEnd = source.join == JoinKind::Right ? middle : scope_.Size();
  if (source.join == JoinKind::Left || source.join == JoinKind::Right)
    for (int i = optionalFirst; i < optionalEnd; ++i) scope_.Table(i).optional = true;

  const char* word = kind == JoinKind::Left    ? " LEFT JOIN "
                     : kind == JoinKind::Right ? " RIGHT JOIN "
                                               : " INNER JOIN ";
  std::string joined = left + word + right;
  if (source.on) joined += " ON " + emitter_.EmitCondition(*source.on, Totals::Forbidden, first).text;
  return joined;
}

void QueryTranslator::Items(const Query& query, Translation& result) {
  for (const auto& item : query.items) {
    if (item.star) {
      Star(item, result);
    } else {
      Item(item, result);
    }
    CheckColumns(item.place);
  }
  // Finds doubles without regard to case, as everywhere.
  if (query.distinct)
    for (std::size_t i = 0; i < values_.size(); ++i)
      result.columns[i].expression = WithoutCase(spelled_, values_[i]).text;
  NameDoubles(result);
}

void QueryTranslator::Star(const SelectItem& item, Translation& result) {
  const int only = item.starTable.empty() ? -1 : scope_.FindAlias(item.starTable);
  for (int table = 0; table < scope_.Size(); ++table) {
    if (only >= 0 && table != only) continue;
    for (const auto& column : scope_.Info(table).columns) {
      Fragment value = emitter_.EmitColumn(table, column);
      result.columns.push_back({column.name, column.type, table, column.name, value.text});
      values_.push_back(std::move(value));
      named_.push_back(false);
    }
  }
}

void QueryTranslator::Item(const SelectItem& item, Translation& result) {
  Fragment value = emitter_.Emit(*item.value, Totals::Allowed);
  totals_ = totals_ || value.hasAggregate;
  ResultColumn column;
  column.type = TypeOf(value);
  column.table = value.table;
  column.expression = value.text;
  if (value.column) column.column = value.column->name;
  if (!item.alias.empty()) {
    column.name = item.alias;
  } else {
    column.name = value.column ? column.column : "Expr" + std::to_string(1000 + result.columns.size());
  }
  result.columns.push_back(std::move(column));
  values_.push_back(std::move(value));
  named_.push_back(!item.alias.empty());
}

// Columns that would share a name are all called by their tables as well.
void QueryTranslator::NameDoubles(Translation& result) const {
  auto& columns = result.columns;
  std::vector<bool> doubled(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (std::size_t j = i + 1; j < columns.size(); ++j) {
      if (!rt::EqualNoCase(columns[i].name, columns[j].name)) continue;
      if (named_[i] && named_[j])
        throw StoreError(kSyntax, "Two columns of the statement are called '" + columns[i].name + "'.");
      doubled[i] = doubled[j] = true;
    }
  }
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (doubled[i] && !named_[i] && columns[i].table >= 0)
      columns[i].name = scope_.Table(columns[i].table).alias + "." + columns[i].column;
}

void QueryTranslator::Groups(const Query& query, Translation& result) {
  std::vector<std::string> groups;
  for (const auto& expr : query.groupBy) {
    const Fragment group = emitter_.Emit(*expr, Totals::Forbidden);
    if (!group.hasColumn) NotUnderstood(key_, expr->place, "Only columns can be grouped by");
    groups.push_back(group.text);
    result.groupBy += (result.groupBy.empty() ? "" : ", ") + WithoutCase(spelled_, group).text;
  }
  bool totalled = totals_ || !groups.empty();
  if (query.having) {
    const Fragment having = emitter_.EmitCondition(*query.having, Totals::Allowed);
    totalled = totalled || having.hasAggregate;
    if (!totalled) NotUnderstood(key_, query.having->place, "HAVING needs groups or totals");
    result.having = having.text;
  }
  for (const auto& term : query.orderBy)
    if (!totalled && !Aliased(query, *term.value) && emitter_.Emit(*term.value, Totals::Allowed).hasAggregate)
      NotUnderstood(key_, term.value->place, "Rows without totals cannot be sorted by one");
  result.grouped = totalled;
  if (!result.grouped) return;
  for (const auto& item : query.items) {
    if (item.star) NotUnderstood(key_, item.place, "All columns cannot stand beside totals");
    emitter_.CheckGrouped(*item.value, groups);
  }
  if (query.having) emitter_.CheckGrouped(*query.having, groups);
  for (const auto& term : query.orderBy)
    if (!Aliased(query, *term.value)) emitter_.CheckGrouped(*term.value, groups);
}

void QueryTranslator::Order(const Query& query, Translation& result) {
  for (const auto& term : query.orderBy) {
    const Expr* aliased = Aliased(query, *term.value);
    const Fragment value = emitter_.Emit(aliased ? *aliased : *term.value, Totals::Allowed);
    // A bare number would be the number of a column to the file's engine.
    if (!value.hasColumn && !value.hasAggregate)
      NotUnderstood(key_, term.value->place, "Only columns can be sorted by");
    if (query.distinct && std::none_of(values_.begin(), values_.end(),
                                       [&](const Fragment& listed) { return listed.text == value.text; }))
      NotUnderstood(key_, term.value->place, "Rows without doubles can be sorted by what they show alone");
    result.orderBy += (result.orderBy.empty() ? "" : ", ") + WithoutCase(spelled_, value).text +
                      (term.descending ? " DESC" : "");
  }
}

// The expression that a term of ORDER BY names by its AS.
const Expr* QueryTranslator::Aliased(const Query& query, const Expr& expr) const {
  if (expr.kind != ExprKind::Column || !expr.column.table.empty()) return nullptr;
  for (const auto& item : query.items)
    if (!item.alias.empty() && rt::EqualNoCase(item.alias, expr.column.column)) return item.value.get();
  return nullptr;
}

void QueryTranslator::CheckColumns(std::size_t place) const {
  if (values_.size() > kMostColumns) NotUnderstood(key_, place, "There are too many columns");
}

}  // namespace store::dialect
