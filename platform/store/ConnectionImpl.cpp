#include "platform/store/ConnectionImpl.h"

#include <algorithm>
#include <chrono>

#include "platform/runtime/Waits.h"
#include "platform/store/Numbers.h"

namespace store {
namespace {

std::vector<Connection::Impl*>& Live() {
  static std::vector<Connection::Impl*> open;
  return open;
}

}  // namespace

StoreError Refusal(int number, const Holder& holder) {
  const std::string what = number == kSaveLocked ? "Could not save; currently locked by user '"
                                                 : "Could not update; currently locked by user '";
  return StoreError(number, what + holder.user + "' on machine '" + holder.computer + "'.");
}

void YieldFiles() {
  for (Connection::Impl* impl : Live()) {
    try {
      impl->Yield();
    } catch (const StoreError&) {
      // What could not be committed now is kept and tried again when the work goes on; then the error is
      // reported.
    }
  }
}

Connection::Impl::Impl(std::unique_ptr<Session> session, std::unique_ptr<store::Holds> holds,
                       OpenRequest request)
    : holds_(std::move(holds)),
      session_(std::move(session)),
      request_(std::move(request)),
      group_(*holds_),
      records_(*holds_, [this] { YieldSiblings(); }),
      file_(*session_, *holds_, log_, group_, caches_) {
  static const bool registered = [] {
    rt::BeforeEveryWait(YieldFiles);
    return true;
  }();
  (void)registered;
  Live().push_back(this);
}

Connection::Impl::~Impl() {
  std::erase(Live(), this);
  try {
    while (group_.On() && Depth() > 0) Rollback();
    FinishGroup();  // what was committed with the group was promised
  } catch (const StoreError&) {
    // The disk that refuses it now has refused it before, and that was reported.
  }
}

void Connection::Impl::YieldSiblings() {
  for (Impl* other : Live())
    if (other != this && (other->file_.On() || other->file_.Looking()) &&
        other->request_.path == request_.path)
      other->Yield();
}

void Connection::Impl::BeginPhysical() {
  if (file_.On()) return;
  file_.EndLooking();
  if (request_.readOnly)
    throw StoreError(kReadOnly, "Cannot update. The data base '" + request_.path + "' was opened read-only.");
  YieldSiblings();
  file_.Begin();
}

// --- one unit of change

void Connection::Impl::StartWriting() {
  try {
    BeginPhysical();
  } catch (const StoreError& error) {
    NoteUnstored(error, {});
    throw;
  }
  ++writingDepth_;
}

void Connection::Impl::NoteUnstored(const StoreError& error, std::string_view sql) {
  if (Depth() > 0 && error.Number() == kDiskFull) log_.NoteUnstored(sql);
}

void Connection::Impl::EndWriting() {
  --writingDepth_;
  if (Depth() > 0 || group_.On() || writingDepth_ > 0) return;
  file_.Commit();
  log_.Clear();
}

void Connection::Impl::AbandonWriting() {
  --writingDepth_;
  if (Depth() > 0 || group_.On() || writingDepth_ > 0) return;
  if (file_.On()) file_.Rollback();
  log_.Clear();
}

std::int64_t Connection::Impl::Write(Change change, std::int64_t* newId, int idParameter) {
  Written written;
  try {
    log_.MakeOf(change.table, file_.Maker());
    written = file_.Make(change);
    change.changed = written.changed;
    change.made = true;
  } catch (const StoreError& error) {
    NoteUnstored(error, *change.sql);
    throw;
  }
  log_.NoteStored(*change.sql);
  if (newId) *newId = written.lastKey;
  if (idParameter > 0) change.values[static_cast<std::size_t>(idParameter) - 1] = KeyValue(written.lastKey);
  if (Depth() > 0 || group_.On()) log_.Add(std::move(change));
  return written.changed;
}

std::int64_t Connection::Impl::Write(int table, std::string sql, std::vector<rt::Value> values) {
  Change change;
  change.sql = std::make_shared<const std::string>(std::move(sql));
  change.values = std::move(values);
  change.table = table;
  return Write(std::move(change));
}

void Connection::Impl::WriteDefinition(std::string sql, std::vector<rt::Value> values) {
  Change change;
  change.sql = std::make_shared<const std::string>(std::move(sql));
  change.values = std::move(values);
  change.counted = false;
  Write(std::move(change));
}

void Connection::Impl::WriteLater(Change change) {
  change.changed = 1;
  change.made = false;
  log_.Add(std::move(change));
}

// --- transactions

void Connection::Impl::Begin() {
  // So that no transaction within another has to tell its own changes of cached rows from the outer one's.
  if (Depth() > 0)
    for (const int table : caches_.TablesOfTransaction()) SpillCache(table);
  log_.Begin();
  undoMarks_.push_back(caches_.UndoMark());
}

void Connection::Impl::Commit(store::Commit how) {
  if (Depth() == 0) throw StoreError(kTransactionMissing, "There is no transaction to commit.");
  // The rest of a transaction would be stored without what did not find room.
  if (log_.LacksAWrite())
    throw StoreError(kDiskFull, "Not enough space on the disk for '" + request_.path +
                                    "': a part of the transaction could not be stored.");
  if (Depth() > 1) {
    log_.Settle();
    undoMarks_.pop_back();
    return;
  }
  if (how == store::Commit::WithGroup) {
    if (log_.HasOpen()) {
      group_.Enter();
      BeginPhysical();  // after a wait its writes have to be made again
    }
    log_.Settle();
    undoMarks_.clear();
    caches_.ForgetUndo();
    if (!group_.On() || (!file_.On() && !log_.HasSettled() && !caches_.AnyDirty())) {
      log_.ForgetReserved();
      records_.ReleaseAll();
      return;
    }
    records_.SettleTransaction();
    if (group_.CountTransaction()) GroupTick();
    return;
  }
  if (file_.On() || !log_.Empty() || caches_.AnyDirty()) {
    BeginPhysical();
    file_.Commit();
  }
  EndTransactions();
}

/// Everything is on the disk or given up.
void Connection::Impl::EndTransactions() {
  log_.Clear();
  undoMarks_.clear();
  caches_.ForgetUndo();
  records_.ReleaseAll();
  file_.Ended();
}

void Connection::Impl::Rollback() {
  if (Depth() == 0) throw StoreError(kTransactionMissing, "There is no transaction to roll back.");
  caches_.UndoTo(undoMarks_.back());
  undoMarks_.pop_back();
  const bool made = log_.Cut();
  if (Depth() > 0 || group_.On()) {
    // What was written before it in the same write transaction is written again when the work goes on.
    if (made && file_.On()) file_.TakeBack();
    if (Depth() > 0) return;
    if (file_.On() || log_.HasSettled() || caches_.AnyDirty())
      records_.SettleTransaction();
    else
      records_.ReleaseAll();
    return;
  }
  if (file_.On()) file_.Rollback();
  EndTransactions();
}

void Connection::Impl::EnterGroup() {
  GroupTick();
  group_.Enter();
  BeginPhysical();
}

void Connection::Impl::FinishGroup() {
  if (!group_.On() || Depth() > 0) return;
  FlushGroup(false);
  group_.Leave();
  caches_.ForgetAll();
}

void Connection::Impl::AbandonGroup() {
  if (!group_.On() || Depth() > 0) return;
  if (file_.On()) file_.Rollback();
  group_.Leave();
  caches_.ForgetAll();
  EndTransactions();
}

void Connection::Impl::GroupTick() {
  if (InGroup() && Depth() == 0 && writingDepth_ == 0 && group_.Over()) FlushGroup(true);
}

void Connection::Impl::FlushGroup(bool pause) {
  if (file_.On() || !log_.Empty() || caches_.AnyDirty()) {
    BeginPhysical();
    const auto start = std::chrono::steady_clock::now();
    file_.Commit();
    group_.Committed(std::chrono::steady_clock::now() - start);
  }
  EndTransactions();
  caches_.Trim();
  if (pause) group_.Pause();
}

void Connection::Impl::Yield() {
  file_.EndLooking();
  if (writingDepth_ > 0) return;
  if (Depth() == 0) {
    if (group_.On()) FlushGroup(false);
    return;
  }
  const bool settled = log_.HasSettled() || caches_.AnyCommittedDirty();
  if (file_.On() && (log_.HasOpen() || !settled)) file_.TakeBack();
  if (settled) file_.CommitSettled();
  // Others may have everything back but the records of the transaction that is still open.
  records_.KeepTransactionOnly();
}

// --- records

std::optional<Holder> Connection::Impl::HoldRecord(int table, std::int64_t row) {
  return InGroup() ? records_.TakeRowWithTable(table, row) : records_.TakeRow(table, row);
}

void Connection::Impl::ReleaseAfterWrite() {
  if (Depth() == 0 && !group_.On()) records_.ReleaseAll();
}

// --- reading

std::shared_ptr<const QueryPlan> Connection::Impl::Plan(const Normalized& statement) {
  Ready();
  return session_->Plan(statement);
}

std::shared_ptr<const Schema> Connection::Impl::TablesNow() {
  Ready();
  return session_->Tables(true);
}

std::vector<std::string> Connection::Impl::Check() {
  BeforeReadOfAll();
  return session_->Check();
}

void Connection::Impl::StartReading() {
  if (!file_.On() && !file_.Looking() && log_.Empty()) file_.StartLooking();
}

void Connection::Impl::BeforeRead(int table, CachedRows cached) {
  if (!log_.Empty()) {
    BeginPhysical();
    log_.MakeOf(table, file_.Maker());
  }
  if (cached == CachedRows::Store) SpillCache(table);
}

void Connection::Impl::BeforeRead(const Translation& query) {
  if (log_.Empty() && caches_.Empty()) return;
  const auto tables = session_->Tables();
  for (const auto& source : query.tables)
    if (const TableInfo* table = tables->Find(source.name)) BeforeRead(table->number);
}

void Connection::Impl::BeforeReadOfAll() {
  if (!log_.Empty()) {
    BeginPhysical();
    log_.Make(file_.Maker());
  }
  if (caches_.Empty()) return;
  for (const auto& table : session_->Tables()->tables) SpillCache(table.number);
}

std::uint64_t Connection::Impl::EpochOf(int table) const {
  const auto own = tableEpochs_.find(table);
  return file_.Epoch() + (own == tableEpochs_.end() ? 0 : own->second);
}

// --- rows kept in memory within a group

std::shared_ptr<RowCache> Connection::Impl::CacheFor(const std::shared_ptr<const Schema>& schema,
                                                     const TableInfo& table, const IndexInfo& index) {
  if (!InGroup() || Depth() > 1 || !index.unique || index.primary || index.exceptEmpty) return nullptr;
  RowCache* kept = caches_.Of(table.number);
  if (kept && kept->IndexName() != index.name) SpillCache(table.number);
  if (!caches_.Of(table.number)) {
    // A second unique index could refuse a row, and a picture would fill the memory.
    for (const auto& other : table.indexes)
      if (other.unique && !other.primary && other.name != index.name) return nullptr;
    for (const auto& column : table.columns)
      if (column.type == ColumnType::LongBinary) return nullptr;
    // Rows that are added in memory get their numbers when the group is committed; where these run short they
    // go to the file one by one.
    constexpr std::int64_t kMany = 1'000'000;
    if (NumbersLeft(table) < kMany) return nullptr;
  }
  return caches_.Make(schema, table, index, Texts());
}

void Connection::Impl::SpillCache(int table) {
  if (!caches_.Of(table)) return;
  BeginPhysical();
  const std::string name = caches_.Of(table)->Table().name;
  const auto keep = [&](Change change, bool settled) {
    const bool adds = change.values.back().IsNull();
    const std::int64_t id = file_.Make(change).lastKey;
    if (adds) {
      change.values.back() = KeyValue(id);
      log_.Reserve(name, id);
    }
    if (settled)
      log_.AddSettled(std::move(change));
    else
      log_.Add(std::move(change));
    return id;
  };
  caches_.Spill(
      table, [&](Change change) { return keep(std::move(change), true); },
      [&](Change change) { return keep(std::move(change), false); });
  NoteChange(table);
}

}  // namespace store
