// Statements that change records, and the numbers of new records.
#include <algorithm>
#include <limits>

#include "platform/runtime/Text.h"
#include "platform/store/ConnectionImpl.h"
#include "platform/store/Numbers.h"
#include "platform/store/QueryPlan.h"

namespace store {
namespace {

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

std::int64_t Connection::Impl::NumbersLeft(const TableInfo& table) {
  BeforeRead(table.number, CachedRows::Keep);
  constexpr std::int64_t kLast = std::numeric_limits<std::int32_t>::max();
  return kLast - std::max<std::int64_t>(session_->LastNumber(table.name), 0);
}

void Connection::Impl::CheckNumbersLeft(const TableInfo& table, std::int64_t needed) {
  if (NumbersLeft(table) < needed)
    throw StoreError(kOverflow, "The table '" + table.name + "' has no numbers left for new records.");
}

void Connection::Impl::CheckNumbersLeft(const QueryPlan& insert, const std::vector<rt::Value>& parameters) {
  const Translation& t = insert.translation;
  const TableInfo& table = *insert.schema->Find(t.target);
  const ColumnInfo* counter = CounterOf(table);
  if (!counter || std::any_of(t.insertColumns.begin(), t.insertColumns.end(),
                              [&](const std::string& name) { return rt::EqualNoCase(name, counter->name); }))
    return;
  std::int64_t needed = 1;
  // Rows are counted only where there may be too many of them.
  constexpr std::int64_t kMany = 100'000'000;
  if (!t.insertSelect.empty() && NumbersLeft(table) < kMany) {
    Question rows(*this, "SELECT COUNT(*) FROM (" + t.insertSelect + ")");
    rows.BindAll(parameters);
    needed = rows.Step() ? rows.Int64(0) : 0;
  }
  CheckNumbersLeft(table, needed);
}

std::int64_t Connection::Impl::ReserveId(const TableInfo& table) {
  Writing writing(*this);
  BeforeRead(table.number, CachedRows::Keep);
  const std::int64_t id = session_->LastNumber(table.name) + 1;
  Change change;
  change.sql = std::make_shared<const std::string>(table.name);
  change.values = {KeyValue(id)};
  change.keepsNumber = true;
  change.table = table.number;
  change.counted = false;
  Write(std::move(change));
  NoteReserved(table.name, id);
  writing.Done();
  return id;
}

std::int64_t Connection::Impl::ExecuteInsert(const QueryPlan& plan,
                                             const std::vector<rt::Value>& parameters) {
  const Translation& t = plan.translation;
  const std::shared_ptr<const Schema> schema = session_->Tables();
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
      auto numbered =
          std::make_shared<const std::string>(Texts().InsertNumbered(t, *counter, change.values.size()));
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
  const TableInfo& info = *session_->Tables()->Find(t.target);
  if (Depth() > 0 && !records_.KeepsTable(table)) {
    // A transaction may last while a person thinks, so it holds few records one by one rather than the table.
    constexpr std::size_t kFew = 64;
    std::vector<std::int64_t> few;
    {
      Question question(*this, info, Texts().KeysTouched(t, kFew + 1));
      question.BindAll(parameters);
      while (question.Step()) few.push_back(question.Int64(0));
    }
    if (few.size() <= kFew) {
      for (const std::int64_t row : few)
        if (const auto refused = HoldRecord(table, row)) throw Refusal(kRecordLocked, *refused);
      return;
    }
  }
  if (const auto refused = records_.TakeTable(table)) throw Refusal(kRecordLocked, *refused);
  // What others had when the table was taken is not held with it; they may have let go of it since.
  for (const std::int64_t row : std::set<std::int64_t>(records_.LeftOut(table))) {
    Question touched(*this, info, Texts().IsTouched(t));
    touched.BindAll(parameters);
    touched.BindKey(0, row);
    if (!touched.Step()) continue;
    if (const auto refused = records_.TakeRow(table, row)) throw Refusal(kRecordLocked, *refused);
  }
  if (Depth() > 0) records_.KeepTable(table);
}

std::int64_t Connection::Impl::ExecuteBulk(const QueryPlan& plan, const std::vector<rt::Value>& parameters) {
  const Translation& t = plan.translation;
  const int table = session_->Tables()->Find(t.target)->number;
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
