// The write transaction that a connection has open in its file.
#pragma once

#include <cstdint>
#include <span>

#include "platform/store/CommitGroup.h"
#include "platform/store/GroupCaches.h"
#include "platform/store/Holds.h"
#include "platform/store/Session.h"
#include "platform/store/TransactionLog.h"

namespace store {

/// Keeps others from writing while it is on. What the log and the caches keep is made in it, and can be taken
/// back and made again in another one. Readings that share one look at the file are the same without writes.
class FileTransaction {
 public:
  FileTransaction(Session& session, Holds& holds, TransactionLog& log, CommitGroup& group,
                  GroupCaches& caches)
      : session_(session), holds_(holds), log_(log), group_(group), caches_(caches) {}

  bool On() const { return on_; }
  bool Looking() const { return looking_; }
  void StartLooking();
  void EndLooking();

  /// Waits for other writers and makes what the log keeps.
  void Begin();
  /// Makes what waits in the log and the caches, and commits it. Everything is rolled back if that fails.
  void Commit();
  void Rollback();
  /// Takes back what is written since Begin and lets go of the file.
  void TakeBack();
  /// Commits the transactions that have ended as part of the group, and leaves out the one that is open.
  void CommitSettled();

  Written Make(const Change& change);
  /// For the log.
  TransactionLog::Maker Maker() {
    return [this](std::span<Change> changes) {
      return changes.size() == 1 ? Make(changes.front()).changed : MakeTogether(changes);
    };
  }

  /// A definition has changed, until the end of the transaction or its rollback.
  void NoteTablesChanged();
  /// Nothing of an open transaction is left.
  void Ended() { tablesChanged_ = false; }
  /// Changes whenever what was read earlier may be out of date.
  std::uint64_t Epoch() const { return epoch_; }

 private:
  std::int64_t MakeTogether(std::span<const Change> changes);

  Session& session_;
  Holds& holds_;
  TransactionLog& log_;
  CommitGroup& group_;
  GroupCaches& caches_;
  bool on_ = false;
  bool looking_ = false;
  bool tablesChanged_ = false;
  std::uint64_t epoch_ = 1;
  std::int64_t version_ = -1;  ///< of the file, at the last Begin
};

}  // namespace store
