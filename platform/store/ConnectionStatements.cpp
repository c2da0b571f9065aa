// Statements that change records, and the numbers of new records.
#include "platform/store/ConnectionImpl.h"

namespace store {
namespace {

/// An INSERT … SELECT that gives its rows the numbers from parameter ?`first` on.
std::string InsertNumbered(const std::string& target, const std::string& columns, const std::string& counter,
                           const std::string& select, std::size_t first) {
  return "INSERT INTO " + target + " (" + columns + ", " + counter + ") SELECT *, ?" + std::to_string(first) +
         " + ROW_NUMBER() OVER () - 1 FROM (" + select + ")";
}

std::string List(const std::vector<std::string>& items) {
  std::string text;
  for (const auto& item : items) text += (text.empty() ? "" : ", ") + item;
  return text;
}

const ColumnInfo* CounterOf(const TableInfo& table) {
  for (const auto& column : table.columns)
    if (column.type == ColumnType::Counter) return &column;
  return nullptr;
}

}  // namespace

std::int64_t Connection::Impl::ReserveId(const TableInfo& table) {
  Writing writing(*this);
  Change first;
  first.sql = std::make_shared<const std::string>(
      "INSERT INTO sqlite_sequence (name, seq) SELECT ?1, 0 WHERE NOT EXISTS (SELECT 1 FROM sqlite_sequence "
      "WHERE name = ?1)");
  first.values = {rt::Value(table.name)};
  first.table = table.number;
  first.counted = false;
  Write(std::move(first));
  std::int64_t id = 0;
  {
    Question next(*this, table, "SELECT seq + 1 FROM sqlite_sequence WHERE name = ?1", CachedRows::Keep);
    next.Bind(1, rt::Value(table.name));
    if (next.Step()) id = next.Int64(0);
  }
  Write(table.number, "UPDATE sqlite_sequence SET seq = MAX(seq, ?2) WHERE name = ?1",
        {rt::Value(table.name), static_cast<std::int32_t>(id)});
  NoteReserved(table.name, id);
  writing.Done();
  return id;
}

std::int64_t Connection::Impl::ExecuteInsert(const QueryPlan& plan,
                                             const std::vector<rt::Value>& parameters) {
  const Translation& t = plan.translation;
  const std::shared_ptr<const Schema> schema = handle_->Tables();
  const TableInfo* table = schema->Find(t.target);
  const std::string target = QuoteName(t.target);
  std::vector<std::string> columns;
  for (const auto& name : t.insertColumns) columns.push_back(QuoteName(name));
  // Rows that are added again after a wait must get the numbers that they had.
  const ColumnInfo* counter = CounterOf(*table);
  const std::string counterName = counter ? QuoteName(counter->name) : "";
  bool numbers = counter && !columns.empty();
  for (const auto& name : columns) numbers = numbers && name != counterName;

  Change change;
  change.values = parameters;
  change.table = table->number;
  std::string sql = "INSERT INTO " + target;
  std::vector<std::string> values = t.insertValues;
  const bool one = t.insertSelect.empty();
  std::vector<std::string> named = columns;
  if (one && numbers) {
    change.values.emplace_back(rt::Null{});
    named.push_back(counterName);
    values.push_back("?" + std::to_string(change.values.size()));
  }
  if (!named.empty()) sql += " (" + List(named) + ")";
  sql += one ? " VALUES (" + List(values) + ")" : " " + t.insertSelect;
  change.sql = std::make_shared<const std::string>(std::move(sql));

  Writing writing(*this);
  BeforeRead(table->number);
  std::int64_t last = 0;
  std::int64_t changed = 0;
  if (one) {
    const int idParameter = numbers ? static_cast<int>(change.values.size()) : 0;
    changed = Write(std::move(change), &last, idParameter);
  } else {
    BeforeReadOfAll();
    changed = Write(change, &last);
    if (numbers && changed > 0) {
      change.values.emplace_back(static_cast<std::int32_t>(last - changed + 1));
      auto numbered = std::make_shared<const std::string>(
          InsertNumbered(target, List(columns), counterName, t.insertSelect, change.values.size()));
      log_.ReplaceLast(std::move(numbered), std::move(change.values));
    }
  }
  if (numbers && changed > 0) NoteReserved(table->name, last);
  NoteChange(table->number);
  writing.Done();
  return changed;
}

/// Takes the records that the statement touches, or throws the refusal and leaves everything as it is.
void Connection::Impl::HoldBulk(const QueryPlan& plan, int table, const std::vector<rt::Value>& parameters) {
  const Translation& t = plan.translation;
  const TableInfo& info = *handle_->Tables()->Find(t.target);
  const std::string rows = "SELECT _rowid_ FROM " + QuoteName(t.target);
  if (Depth() > 0 && !holds_.KeepsTable(table)) {
    // A transaction may last while a person thinks, so it holds few records one by one rather than the table.
    constexpr std::size_t kFew = 64;
    std::vector<std::int64_t> few;
    {
      Question question(
          *this, info,
          rows + (t.where.empty() ? "" : " WHERE " + t.where) + " LIMIT " + std::to_string(kFew + 1));
      question.BindAll(parameters);
      while (question.Step()) few.push_back(question.Int64(0));
    }
    if (few.size() <= kFew) {
      for (const std::int64_t row : few)
        if (const auto refused = HoldRecord(table, row)) throw Refusal(kRecordLocked, *refused);
      return;
    }
  }
  if (const auto refused = holds_.TakeTable(table)) throw Refusal(kRecordLocked, *refused);
  // What others had when the table was taken is not held with it; they may have let go of it since.
  for (const std::int64_t row : std::set<std::int64_t>(holds_.LeftOut(table))) {
    Question touched(
        *this, info,
        rows + (t.where.empty() ? " WHERE " : " WHERE (" + t.where + ") AND ") + "_rowid_ = :k0");
    touched.BindAll(parameters);
    touched.BindKey(0, row);
    if (!touched.Step()) continue;
    if (const auto refused = holds_.TakeRow(table, row)) throw Refusal(kRecordLocked, *refused);
  }
  if (Depth() > 0) holds_.KeepTable(table);
}

std::int64_t Connection::Impl::ExecuteBulk(const QueryPlan& plan, const std::vector<rt::Value>& parameters) {
  const Translation& t = plan.translation;
  const int table = handle_->Tables()->Find(t.target)->number;
  struct Release {
    Impl& impl;
    ~Release() { impl.ReleaseAfterWrite(); }
  } release{*this};
  Writing writing(*this);
  BeforeRead(table);
  if (request_.share == Share::Shared) HoldBulk(plan, table, parameters);
  const std::string name = QuoteName(t.target);
  std::string sql;
  if (t.kind == StatementKind::Delete) {
    sql = "DELETE FROM " + name;
  } else {
    for (const auto& [column, expression] : t.assignments)
      sql += (sql.empty() ? "UPDATE " + name + " SET " : ", ") + QuoteName(column) + " = " + expression;
  }
  if (!t.where.empty()) sql += " WHERE " + t.where;
  const std::int64_t changed = Write(table, std::move(sql), parameters);
  NoteChange(table);
  writing.Done();
  return changed;
}

}  // namespace store
