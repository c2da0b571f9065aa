// The records that a connection holds, and the statements that must ask for them.
#include <time.h>

#include "platform/store/ConnectionImpl.h"

namespace store {
namespace {

// Whole tables are held for a group or a single statement only, so that waiting for them is waiting for a
// moment.
constexpr int kTableWaitTries = 2000;

void Nap() {
  const timespec halfMillisecond{0, 500000};
  nanosleep(&halfMillisecond, nullptr);
}

}  // namespace

// --- record holds

bool Connection::Impl::TakePatiently(Hold hold, int table, std::int64_t row, Holder* refused) {
  for (int tries = 0;; ++tries) {
    if (side_->Take(hold, table, row, refused)) return true;
    if (!refused->wholeTable || tries >= kTableWaitTries) return false;
    YieldSiblings();
    Nap();
  }
}

std::optional<Holder> Connection::Impl::HoldTable(int table) {
  for (int tries = 0;; ++tries) {
    const std::vector<HeldRecord> others = side_->TakeTable(table);
    if (others.empty() || others.front().row != 0) {
      auto& rows = tableHolds_[table];
      for (const auto& held : others) rows.insert(held.row);
      return {};
    }
    if (tries >= kTableWaitTries) return others.front().holder;
    YieldSiblings();
    Nap();
  }
}

std::optional<Holder> Connection::Impl::HoldForTransaction(int table, std::int64_t row) {
  if (request_.share == Share::Exclusive) return {};
  if (InGroup()) {
    auto held = tableHolds_.find(table);
    if (held == tableHolds_.end()) {
      if (auto refused = HoldTable(table)) return refused;
      held = tableHolds_.find(table);
    }
    if (!held->second.contains(row)) {
      if (Depth() > 0) transactionRows_[table].push_back(row);
      return {};
    }
    // Somebody had this record when the table was taken, but perhaps no longer.
  }
  if (side_->Holds(Hold::Transaction, table, row)) return {};
  Holder refused;
  if (!TakePatiently(Hold::Transaction, table, row, &refused)) return refused;
  transactionRows_[table].push_back(row);
  return {};
}

std::optional<Holder> Connection::Impl::HoldForEdit(int table, std::int64_t row) {
  Holder refused;
  if (TakePatiently(Hold::Edit, table, row, &refused)) return {};
  return refused;
}

void Connection::Impl::ReleaseAfterWrite() {
  if (Depth() == 0 && !groupMode_) ReleaseGroupHolds();
}

void Connection::Impl::ReleaseGroupHolds() {
  side_->ReleaseTransaction();
  tableHolds_.clear();
  bulkTables_.clear();
  transactionRows_.clear();
}

// --- reading

void Connection::Impl::BeforeRead(const Translation& query) {
  if (!log_.empty() && !physical_) BeginPhysical();
  if (caches_.empty()) return;
  const auto tables = handle_->Tables();
  for (const auto& source : query.tables)
    if (const TableInfo* table = tables->Find(source.name)) SpillCache(table->number);
}

void Connection::Impl::BeforeRead(const TableInfo& table) {
  if (!log_.empty() && !physical_) BeginPhysical();
  if (!caches_.empty()) SpillCache(table.number);
}

std::uint64_t Connection::Impl::EpochOf(int table) const {
  const auto own = tableEpochs_.find(table);
  return epoch_ + (own == tableEpochs_.end() ? 0 : own->second);
}

void Connection::Impl::NoteChange(int table) { ++tableEpochs_[table]; }

// --- statements

std::int64_t Connection::Impl::ReserveId(const TableInfo& table) {
  Writing writing(*this);
  Write(
      "INSERT INTO sqlite_sequence (name, seq) SELECT ?1, 0 WHERE NOT EXISTS (SELECT 1 FROM sqlite_sequence "
      "WHERE name = ?1)",
      {rt::Value(table.name)}, nullptr, 0, Counted::No);
  std::int64_t id = 0;
  {
    Use next(*handle_, "SELECT seq + 1 FROM sqlite_sequence WHERE name = ?1");
    next.Bind(1, rt::Value(table.name));
    if (next.Step()) id = next.Int64(0);
  }
  Write("UPDATE sqlite_sequence SET seq = MAX(seq, ?2) WHERE name = ?1",
        {rt::Value(table.name), static_cast<std::int32_t>(id)});
  NoteReserved(table.name, id);
  writing.Done();
  return id;
}

std::int64_t Connection::Impl::ExecuteInsert(const QueryPlan& plan,
                                             const std::vector<rt::Value>& parameters) {
  const Translation& t = plan.translation;
  std::string columns;
  for (const auto& name : t.insertColumns) columns += (columns.empty() ? "" : ", ") + QuoteName(name);
  std::string sql = "INSERT INTO " + QuoteName(t.target) + (columns.empty() ? "" : " (" + columns + ")");
  if (t.insertSelect.empty()) {
    std::string values;
    for (const auto& value : t.insertValues) values += (values.empty() ? "" : ", ") + value;
    sql += " VALUES (" + values + ")";
  } else {
    sql += " " + t.insertSelect;
  }
  const TableInfo* table = handle_->Tables()->Find(t.target);
  Writing writing(*this);
  SpillCache(table->number);
  const std::int64_t changed = Write(sql, parameters);
  NoteChange(table->number);
  writing.Done();
  return changed;
}

std::int64_t Connection::Impl::ExecuteBulk(const QueryPlan& plan, const std::vector<rt::Value>& parameters) {
  const Translation& t = plan.translation;
  const std::shared_ptr<const Schema> schema = handle_->Tables();
  const TableInfo* info = schema->Find(t.target);
  const int table = info->number;
  const std::string name = QuoteName(t.target);
  const std::string condition = t.where.empty() ? "" : " WHERE " + t.where;
  const std::string narrowed = t.where.empty() ? " WHERE " : " WHERE (" + t.where + ") AND ";

  struct Release {
    Impl& impl;
    ~Release() { impl.ReleaseAfterWrite(); }
  } release{*this};
  Writing writing(*this);
  SpillCache(table);
  bool rowByRow = false;
  if (Depth() > 0 && !InGroup() && request_.share == Share::Shared && !bulkTables_.contains(table)) {
    // A transaction may last while a person thinks, so it holds few records one by one rather than the table.
    constexpr std::size_t kFew = 64;
    std::vector<std::int64_t> rows;
    {
      Use few(*handle_, "SELECT _rowid_ FROM " + name + condition + " LIMIT " + std::to_string(kFew + 1));
      few.BindAll(parameters);
      while (few.Step()) rows.push_back(few.Int64(0));
    }
    rowByRow = rows.size() <= kFew;
    if (rowByRow)
      for (const std::int64_t row : rows)
        if (const auto refused = HoldForTransaction(table, row)) throw Refusal(kRecordLocked, *refused);
  }
  if (!rowByRow && request_.share == Share::Shared) {
    if (!tableHolds_.contains(table))
      if (const auto refused = HoldTable(table)) throw Refusal(kRecordLocked, *refused);
    for (const std::int64_t row : tableHolds_[table]) {
      const auto holder = side_->WhoHolds(table, row);
      if (!holder) continue;
      Use touched(*handle_, "SELECT 1 FROM " + name + narrowed + "_rowid_ = :k0");
      touched.BindAll(parameters);
      touched.BindKey(0, row);
      if (touched.Step()) throw Refusal(kRecordLocked, *holder);
    }
    if (Depth() > 0) bulkTables_.insert(table);
  }
  std::string sql;
  if (t.kind == StatementKind::Delete) {
    sql = "DELETE FROM " + name + condition;
  } else {
    for (const auto& [column, expression] : t.assignments)
      sql += (sql.empty() ? "UPDATE " + name + " SET " : ", ") + QuoteName(column) + " = " + expression;
    sql += condition;
  }
  const std::int64_t changed = Write(sql, parameters);
  NoteChange(table);
  writing.Done();
  return changed;
}

}  // namespace store
