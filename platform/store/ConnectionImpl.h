// What a connection is made of: the file's write transaction, and around it the log of writes, the group of
// commits, the rows kept in memory and the records held.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/store/CommitGroup.h"
#include "platform/store/Connection.h"
#include "platform/store/FileTransaction.h"
#include "platform/store/GroupCaches.h"
#include "platform/store/RecordHolds.h"
#include "platform/store/Session.h"
#include "platform/store/Statements.h"
#include "platform/store/TransactionLog.h"

namespace store {

class Connection::Impl {
 public:
  Impl(std::unique_ptr<Session> session, std::unique_ptr<store::Holds> holds, OpenRequest request);
  ~Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  store::Holds& Holds() { return *holds_; }
  RecordHolds& Records() { return records_; }
  const OpenRequest& Request() const { return request_; }
  const Statements& Texts() const { return session_->Texts(); }
  void SetPatience(std::chrono::milliseconds patience) { session_->SetPatience(patience); }
  /// See Session.
  std::shared_ptr<const QueryPlan> Plan(const Normalized& statement);
  std::shared_ptr<const Schema> TablesNow();
  std::shared_ptr<const Schema> Tables() {
    Ready();
    return session_->Tables();
  }
  std::vector<std::string> Check();
  std::int64_t Version() { return session_->Version(); }
  /// A definition has changed, until the end of the transaction or its rollback.
  void NoteTablesChanged() { file_.NoteTablesChanged(); }

  // --- one unit of change; see Writing
  void StartWriting();
  void EndWriting();
  void AbandonWriting();
  /// Makes a write within StartWriting … EndWriting and keeps it; the number of records changed. For an
  /// INSERT, `newId` gets the new row's ID, and parameter `idParameter` (from 1) is remembered with it, so
  /// that the write can be made again.
  std::int64_t Write(Change change, std::int64_t* newId = nullptr, int idParameter = 0);
  std::int64_t Write(int table, std::string sql, std::vector<rt::Value> values);
  /// A write of the file's definitions. It may change another number of records when it is made again.
  void WriteDefinition(std::string sql, std::vector<rt::Value> values = {});
  /// Keeps a write that changes one record, which this connection holds and has read in this group, and that
  /// nothing in the file can refuse. It is made with others of its kind before the table is read again.
  void WriteLater(Change change);

  // --- transactions
  void Begin();
  void Commit(store::Commit how);
  void Rollback();
  int Depth() const { return log_.Depth(); }
  void EnterGroup();
  void FinishGroup();
  void AbandonGroup();
  bool InGroup() const { return group_.On() && file_.On(); }
  /// Ends the group's commit where its time is over; called between two transactions.
  void GroupTick();
  /// Lets other users write: commits what is whole, takes back what is not.
  void Yield();

  /// Takes a record for the running transaction, its group, or one write; the holder where it is refused.
  std::optional<Holder> HoldRecord(int table, std::int64_t row);
  /// Ends the holds of a single write outside a transaction.
  void ReleaseAfterWrite();

  // --- reading; see Question
  /// See store::Reading.
  void StartReading();
  void EndReading() { file_.EndLooking(); }
  /// See Session. Only outside a transaction, a group and a Reading.
  bool ReadCopy(const std::function<bool()>& goOn) { return session_->ReadCopy(goOn); }
  void SetEnd(std::function<bool()> over) { session_->SetEnd(std::move(over)); }
  enum class CachedRows { Store, Keep };
  /// Makes everything that waits visible to a reading of this table.
  void BeforeRead(int table, CachedRows cached = CachedRows::Store);
  void BeforeRead(const Translation& query);
  /// The same for all tables.
  void BeforeReadOfAll();
  /// Changes whenever rows of the table that were read earlier may be out of date.
  std::uint64_t EpochOf(int table) const;
  void NoteChange(int table) { ++tableEpochs_[table]; }
  /// What NoteChange counts, for one who asks often.
  std::uint64_t& ChangesOf(int table) { return tableEpochs_[table]; }
  std::uint64_t EpochWith(std::uint64_t changes) const { return file_.Epoch() + changes; }
  /// See Connection::Glance.
  std::uint64_t Glance() const { return file_.On() ? file_.Epoch() : 0; }

  // --- rows kept in memory within a group
  /// The cache of a table by this index; null outside a group, in a transaction within another, and for an
  /// index or a table whose rows cannot be kept.
  std::shared_ptr<RowCache> CacheFor(const std::shared_ptr<const Schema>& schema, const TableInfo& table,
                                     const IndexInfo& index);
  GroupCaches& Caches() { return caches_; }
  /// Stores what is kept of the table and keeps it no longer.
  void SpillCache(int table);

  // --- the numbers of new records
  /// Throws 6 where the table's counter has no number left. Everything above the store takes a number for 32
  /// bits wide.
  void CheckNumbersLeft(const TableInfo& table, std::int64_t needed = 1);
  /// Throws 6 where the target of an INSERT has not as many numbers left as the statement would use.
  void CheckNumbersLeft(const QueryPlan& insert, const std::vector<rt::Value>& parameters);
  /// A number for a record that is not stored yet.
  std::int64_t ReserveId(const TableInfo& table);
  /// Remembers that the open transaction has given this number to a new record.
  void NoteReserved(const std::string& table, std::int64_t id) { log_.Reserve(table, id); }
  std::int64_t ExecuteBulk(const QueryPlan& plan, const std::vector<rt::Value>& parameters);
  std::int64_t ExecuteInsert(const QueryPlan& plan, const std::vector<rt::Value>& parameters);

  /// Commits or takes back what the other connections of this process have written to this file: they share
  /// its one thread, so waiting for them would wait for ever.
  void YieldSiblings();

 private:
  friend class Question;

  /// Makes again what was taken back before a wait, so that what is read next is there.
  void Ready() {
    if (!log_.Empty()) BeginPhysical();
  }
  void NoteUnstored(const StoreError& error, std::string_view sql);
  void BeginPhysical();
  void FlushGroup(bool pause);
  void EndTransactions();
  std::int64_t NumbersLeft(const TableInfo& table);
  void HoldBulk(const QueryPlan& plan, int table, const std::vector<rt::Value>& parameters);

  std::unique_ptr<store::Holds> holds_;
  std::unique_ptr<Session> session_;  ///< rows are read from it by a Question alone
  OpenRequest request_;

  int writingDepth_ = 0;
  TransactionLog log_;
  std::vector<std::size_t> undoMarks_;  ///< for each open transaction: where its changes of cached rows begin
  CommitGroup group_;
  GroupCaches caches_;
  RecordHolds records_;
  FileTransaction file_;

  std::unordered_map<int, std::uint64_t> tableEpochs_;
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

/// The gate through which all rows are read: what waits to be written to the tables is written first.
class Question : public Use {
 public:
  Question(Connection::Impl& impl, const TableInfo& table, std::string_view sql)
      : Use((impl.BeforeRead(table.number), impl.session_->Prepare(sql))) {}
  Question(Connection::Impl& impl, const Translation& query, std::string_view sql)
      : Use((impl.BeforeRead(query), impl.session_->Prepare(sql))) {}
  /// Of a record that the group's memory does not have.
  Question(Connection::Impl& impl, const TableInfo& table, std::string_view sql,
           Connection::Impl::CachedRows cached)
      : Use((impl.BeforeRead(table.number, cached), impl.session_->Prepare(sql))) {}
  /// Of the whole file.
  Question(Connection::Impl& impl, std::string_view sql)
      : Use((impl.BeforeReadOfAll(), impl.session_->Prepare(sql))) {}
};

/// The refusal of a record, with its holder's names.
StoreError Refusal(int number, const Holder& holder);

}  // namespace store
