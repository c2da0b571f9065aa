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
    side_->Renew();
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

}  // namespace store
