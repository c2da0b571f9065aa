// The writes of the open transactions and of those that wait for their group's commit.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Value.h"

namespace store {

struct RecordUpdate;

/// A write as it was made. It is kept, so that it can be taken back to let other users in and made again
/// afterwards, and so that a part of a transaction can be undone.
struct Change {
  std::shared_ptr<const std::string> sql;
  std::vector<rt::Value> values;
  bool keepsNumber = false;  ///< no statement: the table `sql` is never to give the number `values` again
  /// Of a change of one record, whose key is the last value: how it is made together with others of its kind.
  std::shared_ptr<const RecordUpdate> update;
  int table = 0;             ///< whose records it changes; 0 where that is not known
  std::int64_t changed = 0;  ///< the records that it changed at first and has to change again
  bool counted = true;       ///< whether a different number of records is an error
  bool made = true;          ///< it is in the write transaction that the file has open
};

/// Keeps every write of a transaction until it is on the disk or rolled back, in the order of the writes.
/// Transactions nest. The log begins with the writes of transactions that have ended as part of a group: they
/// are settled, and no rollback reaches them.
class TransactionLog {
 public:
  /// Makes changes in the file; the number of records changed. Where there are several, they are of one kind
  /// and change one record each, in the order of the records' keys.
  using Maker = std::function<std::int64_t(std::span<Change>)>;

  void Begin() { marks_.push_back(changes_.size()); }
  int Depth() const { return static_cast<int>(marks_.size()); }
  /// Ends the innermost transaction: its writes belong to the one around it, or are settled.
  void Settle();
  /// Takes back the innermost transaction. True if some of its writes are in the file's write transaction.
  bool Cut();
  /// Everything is on the disk or given up.
  void Clear();
  /// The settled writes are on the disk.
  void ForgetSettled();

  bool Empty() const { return changes_.empty(); }
  bool HasSettled() const { return settled_ > 0; }
  bool HasOpen() const { return changes_.size() > settled_; }

  /// Adds a write of the innermost transaction; outside of all transactions it is settled.
  void Add(Change change);
  /// Adds a write behind the settled ones, although a transaction is open.
  void AddSettled(Change change);

  /// Says how the last write is made from now on.
  void ReplaceLast(std::shared_ptr<const std::string> sql, std::vector<rt::Value> values);

  /// Makes the changes that are not in the file's write transaction: all of them, those of one table, or the
  /// settled ones. Throws 3197 where another number of records changes than at first.
  void Make(const Maker& maker);
  void MakeOf(int table, const Maker& maker);
  void MakeSettled(const Maker& maker);
  /// The file's write transaction was rolled back: no change is in it any more.
  void Unmake();

  /// The highest numbers that the transactions of this log have given to new records, by table.
  const std::map<std::string, std::int64_t>& Reserved() const { return reserved_; }
  void Reserve(const std::string& table, std::int64_t id);
  void ForgetReserved() { reserved_.clear(); }

  /// Remembers a write of the open transaction that found the disk full; an empty text where it did not even
  /// begin. Without it the transaction must not be committed.
  void NoteUnstored(std::string_view sql) { unstored_ = sql; }
  /// A write was stored; it may be the one that was missing.
  void NoteStored(std::string_view sql);
  bool LacksAWrite() const { return unstored_.has_value(); }

 private:
  /// Makes the change at this place and those behind it that can be made together with it; the place behind
  /// them.
  std::size_t MakeRun(std::size_t first, std::size_t end, const Maker& maker);
  void MakeBefore(std::size_t end, const Maker& maker);

  std::vector<Change> changes_;
  std::size_t settled_ = 0;         ///< so many changes at the beginning are settled
  std::size_t firstWaiting_ = 0;    ///< all changes before it are in the file's write transaction
  std::vector<std::size_t> marks_;  ///< for each open transaction: where its changes begin
  std::map<std::string, std::int64_t> reserved_;
  std::optional<std::string> unstored_;
};

}  // namespace store
