// What a connection is made of: writes, transactions, groups of commits, and the records held for them.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/store/Connection.h"
#include "platform/store/Handle.h"
#include "platform/store/RowCache.h"
#include "platform/store/SideFile.h"

namespace store {

/// A write as it was made. A transaction keeps its writes, so that they can be taken back to let other users
/// in and made again afterwards, and so that a part of them can be undone.
struct Change {
  std::string sql;
  std::vector<rt::Value> values;
  std::int64_t changed = 0;
  bool counted = true;  ///< has to change as many records when it is made again
};

/// Whether a write that is made again must change as many records as before; see Change.
enum class Counted { Yes, No };

class Connection::Impl {
 public:
  Impl(std::unique_ptr<Handle> handle, std::unique_ptr<SideFile> side, OpenRequest request);
  ~Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  Handle& Db() { return *handle_; }
  SideFile& Side() { return *side_; }
  const OpenRequest& Request() const { return request_; }

  // --- one unit of change; see Writing
  void StartWriting();
  void EndWriting();
  void AbandonWriting();
  /// Runs a write within StartWriting … EndWriting and keeps it; the number of records changed. For an
  /// INSERT, `newId` gets the new row's ID, and parameter `idParameter` (from 1) is remembered with it, so
  /// that the write can be made again.
  std::int64_t Write(std::string_view sql, std::vector<rt::Value> values, std::int64_t* newId = nullptr,
                     int idParameter = 0, Counted counted = Counted::Yes);

  // --- transactions
  void Begin();
  void Commit(store::Commit how);
  void Rollback();
  int Depth() const { return static_cast<int>(marks_.size()); }
  void EnterGroup();
  void FinishGroup();
  void AbandonGroup();
  bool InGroup() const { return groupMode_ && physical_; }
  /// Ends the group's commit where its time is over; called while rows are merely passed over.
  void GroupTick();
  /// Lets other users write: commits what is whole, takes back what is not.
  void Yield();

  // --- record holds
  /// Takes a record for the running transaction (or for one write); the holder where it is refused.
  std::optional<Holder> HoldForTransaction(int table, std::int64_t row);
  /// Takes a record for an edit outside a transaction.
  std::optional<Holder> HoldForEdit(int table, std::int64_t row);
  void ReleaseEdit(int table, std::int64_t row) { side_->Release(Hold::Edit, table, row); }
  /// Ends the holds of a single write outside a transaction.
  void ReleaseAfterWrite();

  // --- reading
  /// See store::Reading.
  void StartReading();
  void EndReading();
  /// Called before rows of these tables are read from the file: makes the transaction's own writes visible.
  void BeforeRead(const Translation& query);
  void BeforeRead(const TableInfo& table);
  /// Changes whenever rows of the table that were read earlier may be out of date.
  std::uint64_t EpochOf(int table) const;
  void NoteChange(int table);

  // --- rows kept in memory within a group
  /// The cache of a table by this index; null outside a group or for an index that is not unique.
  std::shared_ptr<RowCache> CacheFor(const std::shared_ptr<const Schema>& schema, const TableInfo& table,
                                     const IndexInfo& index);
  void KeepForUndo(RowCache& cache, const std::shared_ptr<CachedRow>& row, const std::string& key,
                   bool wasThere);
  /// Keeps a changed row of the cache to be written with the group.
  void MarkDirty(RowCache& cache, const std::string& key, const std::shared_ptr<CachedRow>& row);

  std::int64_t ReserveId(const TableInfo& table);
  /// Remembers that the open transaction has given this number to a new record.
  void NoteReserved(const std::string& table, std::int64_t id);
  std::int64_t ExecuteBulk(const QueryPlan& plan, const std::vector<rt::Value>& parameters);
  std::int64_t ExecuteInsert(const QueryPlan& plan, const std::vector<rt::Value>& parameters);

  /// Commits or takes back what the other connections of this process have written to this file: they share
  /// its one thread, so waiting for them would wait for ever.
  void YieldSiblings();

 private:
  using Clock = std::chrono::steady_clock;

  /// Remembers a write of the open transaction that found the disk full; `sql` is empty where it did not even
  /// begin.
  void NoteUnstored(const StoreError& error, std::string_view sql);
  void BeginPhysical();
  void CommitPhysical();
  void RollbackPhysical();
  void Replay(std::vector<Change>& changes);
  std::int64_t Run(Change& change, std::int64_t* newId);
  /// Writes the cached rows into the open physical transaction; `committedOnly` writes those that the running
  /// transaction changed as they were before it.
  void StoreCaches(bool committedOnly);
  void CachesAreStored(bool committedOnly);
  void SpillCache(int table);
  void DropCleanCaches();
  void RetireCaches();
  void FlushGroup(bool pause);
  void ReleaseGroupHolds();
  /// Takes back what is written since BeginPhysical and lets go of the file.
  void TakeBack();
  bool TakePatiently(Hold hold, int table, std::int64_t row, Holder* refused);
  /// Holds the whole table but for what others hold; see SideFile::TakeTable.
  std::optional<Holder> HoldTable(int table);

  std::unique_ptr<Handle> handle_;
  std::unique_ptr<SideFile> side_;
  OpenRequest request_;

  bool reading_ = false;                ///< several readings share one look at the file
  bool physical_ = false;               ///< the database underneath has a write transaction open
  std::vector<std::size_t> marks_;      ///< for each open transaction: where its writes begin in log_
  std::vector<std::size_t> undoMarks_;  ///< and where its undo entries begin
  std::vector<Change> log_;             ///< writes of the open transactions
  std::map<std::string, std::int64_t> reserved_;  ///< the highest number given to a new record, by table
  /// The write that found the disk full and has not been made good since: the transaction cannot be
  /// committed.
  std::optional<std::string> unstored_;
  std::vector<Change> groupLog_;  ///< writes of transactions that are committed with the group
  bool groupMode_ = false;
  int groupCommits_ = 0;
  Clock::time_point groupStart_;
  Clock::duration groupTime_ = std::chrono::milliseconds(25);  ///< how long the group may go on
  int writingDepth_ = 0;

  std::set<int> bulkTables_;  ///< held whole by a bulk statement of the open transaction
  std::map<int, std::set<std::int64_t>>
      tableHolds_;  ///< tables held whole for the group, with the rows that others hold
  std::map<int, std::vector<std::int64_t>> transactionRows_;  ///< rows that the open transaction holds

  std::uint64_t epoch_ = 1;
  std::unordered_map<int, std::uint64_t> tableEpochs_;
  std::int64_t dataVersion_ = -1;
  std::map<int, std::shared_ptr<RowCache>> caches_;
  std::vector<CacheUndo> undo_;
  std::uint64_t transactionSerial_ = 0;
};

/// One unit of change: part of the running transaction, or committed by Done; undone when it ends without
/// Done.
class Writing {
 public:
  explicit Writing(Connection::Impl& impl) : impl_(impl) { impl_.StartWriting(); }
  ~Writing() {
    if (!done_) impl_.AbandonWriting();
  }
  void Done() {
    done_ = true;
    impl_.EndWriting();
  }
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;

 private:
  Connection::Impl& impl_;
  bool done_ = false;
};

/// The refusal of a record, with its holder's names.
StoreError Refusal(int number, const Holder& holder);

}  // namespace store
