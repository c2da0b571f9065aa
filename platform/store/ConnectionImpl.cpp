#include "platform/store/ConnectionImpl.h"

#include <time.h>

#include <algorithm>

#include "platform/runtime/Waits.h"

namespace store {
namespace {

// A group goes on for four times as long as its commit takes on this disk, so that commits cost a fifth of
// the time at most; others wait for a tenth of a second and a commit at the longest.
constexpr int kGroupCommits = 20000;
constexpr auto kShortestGroup = std::chrono::milliseconds(25);
constexpr auto kLongestGroup = std::chrono::milliseconds(100);
// Between two groups others get their turn: they try every half millisecond.
constexpr long kGroupPauseNanoseconds = 2000000;
// Whole tables are held for a group or a single statement only, so that waiting for them is waiting for a
// moment.
constexpr int kTableWaitTries = 2000;
constexpr std::size_t kMostCachedRows = 20000;

std::vector<Connection::Impl*>& Live() {
  static std::vector<Connection::Impl*> open;
  return open;
}

void NapFor(long nanoseconds) {
  const timespec nap{0, nanoseconds};
  nanosleep(&nap, nullptr);
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
      // told.
    }
  }
}

Connection::Impl::Impl(std::unique_ptr<Handle> handle, std::unique_ptr<SideFile> side, OpenRequest request)
    : handle_(std::move(handle)), side_(std::move(side)), request_(std::move(request)) {
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
    FinishGroup();  // what was committed with the group was promised
  } catch (const StoreError&) {
    // The disk that refuses it now has refused it before, and that was told.
  }
  if (physical_ && !sqlite3_get_autocommit(handle_->Db()))
    sqlite3_exec(handle_->Db(), "ROLLBACK", nullptr, nullptr, nullptr);
  side_.reset();
  Handle::Park(std::move(handle_));
}

void Connection::Impl::YieldSiblings() {
  for (Impl* other : Live())
    if (other != this && (other->physical_ || other->reading_) && other->request_.path == request_.path)
      other->Yield();
}

// --- the physical transaction

void Connection::Impl::StartReading() {
  if (physical_ || reading_ || !log_.empty()) return;
  Use begin(*handle_, "BEGIN");
  begin.Step();
  reading_ = true;
}

void Connection::Impl::EndReading() {
  if (!reading_) return;
  reading_ = false;
  Use end(*handle_, "COMMIT");
  end.Step();
}

void Connection::Impl::BeginPhysical() {
  if (physical_) return;
  EndReading();
  if (request_.readOnly)
    throw StoreError(kReadOnly, "Cannot update. The data base '" + request_.path + "' was opened read-only.");
  YieldSiblings();
  {
    Use begin(*handle_, "BEGIN IMMEDIATE");
    begin.Step();
  }
  physical_ = true;
  groupStart_ = Clock::now();
  try {
    if (Depth() > 0 || groupMode_) {
      Use begin(*handle_, "SAVEPOINT start");  // see TakeBack
      begin.Step();
    }
    const std::int64_t version = handle_->Number("PRAGMA data_version");
    if (version != dataVersion_) {
      dataVersion_ = version;
      ++epoch_;
      DropCleanCaches();
    }
    Replay(groupLog_);
    Replay(log_);
  } catch (...) {
    RollbackPhysical();
    throw;
  }
}

void Connection::Impl::CommitPhysical() {
  try {
    StoreCaches(false);
    Use commit(*handle_, "COMMIT");
    commit.Step();
  } catch (...) {
    RollbackPhysical();
    throw;
  }
  physical_ = false;
  CachesAreStored(false);
}

void Connection::Impl::RollbackPhysical() {
  if (!sqlite3_get_autocommit(handle_->Db()))
    sqlite3_exec(handle_->Db(), "ROLLBACK", nullptr, nullptr, nullptr);
  physical_ = false;
  ++epoch_;
}

void Connection::Impl::Replay(std::vector<Change>& changes) {
  for (Change& change : changes) {
    const std::int64_t before = change.changed;
    if (Run(change, nullptr) != before && change.counted)
      throw StoreError(
          kDataChanged,
          "The data base engine stopped: another user has changed the same data at the same time.");
  }
}

std::int64_t Connection::Impl::Run(Change& change, std::int64_t* newId) {
  try {
    Use use(*handle_, change.sql);
    use.BindAll(change.values);
    while (use.Step()) {
    }
  } catch (...) {
    // A full disk makes the database give up the whole transaction; its writes are still in the log.
    if (sqlite3_get_autocommit(handle_->Db())) {
      physical_ = false;
      ++epoch_;
    }
    throw;
  }
  if (newId) *newId = sqlite3_last_insert_rowid(handle_->Db());
  return sqlite3_changes64(handle_->Db());
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
  if (Depth() > 0 && error.Number() == kDiskFull) unstored_ = sql;
}

void Connection::Impl::EndWriting() {
  --writingDepth_;
  if (Depth() == 0 && !groupMode_ && writingDepth_ == 0) CommitPhysical();
}

void Connection::Impl::AbandonWriting() {
  --writingDepth_;
  if (Depth() == 0 && !groupMode_ && writingDepth_ == 0 && physical_) RollbackPhysical();
}

std::int64_t Connection::Impl::Write(std::string_view sql, std::vector<rt::Value> values, std::int64_t* newId,
                                     int idParameter, Counted counted) {
  Change change{std::string(sql), std::move(values), 0, counted == Counted::Yes};
  std::int64_t id = 0;
  try {
    change.changed = Run(change, &id);
  } catch (const StoreError& error) {
    NoteUnstored(error, change.sql);
    throw;
  }
  if (unstored_ && (unstored_->empty() || *unstored_ == change.sql)) unstored_.reset();
  if (newId) *newId = id;
  if (idParameter > 0)
    change.values[static_cast<std::size_t>(idParameter) - 1] = static_cast<std::int32_t>(id);
  const std::int64_t changed = change.changed;
  if (Depth() > 0)
    log_.push_back(std::move(change));
  else if (groupMode_)
    groupLog_.push_back(std::move(change));
  return changed;
}

// --- transactions

void Connection::Impl::Begin() {
  marks_.push_back(log_.size());
  undoMarks_.push_back(undo_.size());
  ++transactionSerial_;
}

void Connection::Impl::Commit(store::Commit how) {
  if (marks_.empty()) throw StoreError(kTransactionMissing, "There is no transaction to commit.");
  // The rest of a transaction would be stored without what did not find room.
  if (unstored_)
    throw StoreError(kDiskFull, "Not enough space on the disk for '" + request_.path +
                                    "': a part of the transaction could not be stored.");
  if (marks_.size() > 1) {
    marks_.pop_back();
    undoMarks_.pop_back();
    return;
  }
  if (how == store::Commit::WithGroup) {
    if (!log_.empty()) {
      BeginPhysical();  // after a wait its writes have to be made again
      groupMode_ = true;
      std::move(log_.begin(), log_.end(), std::back_inserter(groupLog_));
      log_.clear();
    }
    marks_.clear();
    undoMarks_.clear();
    undo_.clear();
    if (!groupMode_) {
      reserved_.clear();
      return ReleaseGroupHolds();
    }
    transactionRows_.clear();
    ++groupCommits_;
    if (groupCommits_ >= kGroupCommits || Clock::now() - groupStart_ > groupTime_) FlushGroup(true);
    return;
  }
  const bool written = physical_ || !log_.empty() || !groupLog_.empty() || !undo_.empty();
  if (written) {
    BeginPhysical();
    CommitPhysical();
  }
  marks_.clear();
  undoMarks_.clear();
  undo_.clear();
  log_.clear();
  reserved_.clear();
  groupLog_.clear();
  groupCommits_ = 0;
  ReleaseGroupHolds();
}

void Connection::Impl::Rollback() {
  if (marks_.empty()) throw StoreError(kTransactionMissing, "There is no transaction to roll back.");
  const std::size_t mark = marks_.back();
  const std::size_t undoMark = undoMarks_.back();
  unstored_.reset();
  marks_.pop_back();
  undoMarks_.pop_back();
  while (undo_.size() > undoMark) {
    CacheUndo& entry = undo_.back();
    if (entry.wasThere) {
      entry.row->values = std::move(entry.before);
      entry.row->dirty = entry.wasDirty;
    } else {
      entry.row->dirty = false;
      entry.cache->Rows()[entry.key] = nullptr;
    }
    entry.row->changedIn = entry.wasChangedIn;
    std::erase_if(entry.cache->Dirty(), [](const auto& row) { return !row->dirty; });
    undo_.pop_back();
  }
  if (log_.size() > mark) {
    log_.resize(mark);
    // What was written before it in the same physical transaction is written again when the work goes on.
    if (physical_ && (!marks_.empty() || groupMode_)) TakeBack();
  }
  if (!marks_.empty()) return;
  if (groupMode_) {
    transactionRows_.clear();
    return;
  }
  reserved_.clear();
  if (physical_) RollbackPhysical();
  ReleaseGroupHolds();
}

void Connection::Impl::EnterGroup() {
  groupMode_ = true;
  BeginPhysical();
}

void Connection::Impl::FinishGroup() {
  if (!groupMode_ || !marks_.empty()) return;
  FlushGroup(false);
  groupMode_ = false;
  RetireCaches();
}

void Connection::Impl::AbandonGroup() {
  if (!groupMode_ || !marks_.empty()) return;
  if (physical_) RollbackPhysical();
  groupLog_.clear();
  reserved_.clear();
  groupCommits_ = 0;
  groupMode_ = false;
  RetireCaches();
  ReleaseGroupHolds();
}

void Connection::Impl::GroupTick() {
  if (groupMode_ && physical_ && marks_.empty() && writingDepth_ == 0 &&
      Clock::now() - groupStart_ > groupTime_)
    FlushGroup(true);
}

void Connection::Impl::FlushGroup(bool pause) {
  const bool dirty =
      std::any_of(caches_.begin(), caches_.end(), [](const auto& c) { return !c.second->Dirty().empty(); });
  if (physical_ || !groupLog_.empty() || dirty) {
    BeginPhysical();
    const auto start = Clock::now();
    CommitPhysical();
    groupTime_ = std::clamp<Clock::duration>(4 * (Clock::now() - start), kShortestGroup, kLongestGroup);
  }
  groupLog_.clear();
  reserved_.clear();
  groupCommits_ = 0;
  ReleaseGroupHolds();
  for (auto& [table, cache] : caches_)
    if (cache->Rows().size() > kMostCachedRows) cache->Rows().clear();
  if (pause) NapFor(kGroupPauseNanoseconds);
}

void Connection::Impl::Yield() {
  EndReading();
  if (!physical_ || writingDepth_ > 0) return;
  if (marks_.empty()) {
    if (groupMode_) FlushGroup(false);
    return;
  }
  const auto committedDirty = [this] {
    for (const auto& [table, cache] : caches_)
      for (const auto& row : cache->Dirty()) {
        const auto mine =
            std::find_if(undo_.begin(), undo_.end(), [&](const CacheUndo& u) { return u.row == row; });
        if (mine == undo_.end() || (mine->wasThere && mine->wasDirty)) return true;
      }
    return false;
  };
  const bool committedWork = !groupLog_.empty() || committedDirty();
  if (!log_.empty() || !committedWork) TakeBack();
  if (committedWork) {
    std::vector<Change> mine;
    mine.swap(log_);
    try {
      BeginPhysical();
      StoreCaches(true);
      Use commit(*handle_, "COMMIT");
      commit.Step();
    } catch (...) {
      RollbackPhysical();
      log_.swap(mine);
      throw;
    }
    log_.swap(mine);
    physical_ = false;
    CachesAreStored(true);
    groupLog_.clear();
    groupCommits_ = 0;
  }
  // Others may have everything back but the records of the transaction that is still open.
  if (!tableHolds_.empty()) {
    std::map<int, std::vector<std::int64_t>> rows;
    for (const auto& [table, foreign] : tableHolds_) {
      if (bulkTables_.contains(table)) continue;
      auto& kept = rows[table] = transactionRows_[table];
      std::erase(kept, 0);  // added by the transaction, and not in the file yet
      std::sort(kept.begin(), kept.end());
      kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    }
    side_->Narrow(rows);
    std::erase_if(tableHolds_, [this](const auto& hold) { return !bulkTables_.contains(hold.first); });
  }
}

// The numbers that are given to new records here must not be given to others before these are stored. So the
// file is not let go of before they are in it: whoever came in between would get them again.
void Connection::Impl::TakeBack() {
  if (reserved_.empty()) return RollbackPhysical();
  try {
    {
      Use back(*handle_, "ROLLBACK TO start");
      back.Step();
    }
    for (const auto& [table, id] : reserved_) {
      Change keep{"UPDATE sqlite_sequence SET seq = MAX(seq, ?2) WHERE name = ?1",
                  {rt::Value(table), static_cast<std::int32_t>(id)}};
      if (Run(keep, nullptr) > 0) continue;
      keep.sql = "INSERT INTO sqlite_sequence (name, seq) VALUES (?1, ?2)";
      Run(keep, nullptr);
    }
    Use commit(*handle_, "COMMIT");
    commit.Step();
  } catch (...) {
    RollbackPhysical();
    throw;
  }
  physical_ = false;
  ++epoch_;
}

void Connection::Impl::NoteReserved(const std::string& table, std::int64_t id) {
  if (Depth() == 0) return;
  auto& highest = reserved_[table];
  highest = std::max(highest, id);
}

// --- record holds

bool Connection::Impl::TakePatiently(Hold hold, int table, std::int64_t row, Holder* refused) {
  for (int tries = 0;; ++tries) {
    if (side_->Take(hold, table, row, refused)) return true;
    if (!refused->wholeTable || tries >= kTableWaitTries) return false;
    YieldSiblings();
    NapFor(500000);
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
    NapFor(500000);
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
