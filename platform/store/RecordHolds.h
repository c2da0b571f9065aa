// The records that a connection holds for its windows, its transaction and its group of commits.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "platform/store/Holds.h"

namespace store {

/// Keeps from other users what a connection has changed and not yet stored. A transaction keeps its hold on
/// each record and each table that it changed until it ends, across every wait. A group holds whole tables;
/// before a wait its commit makes them free but for what the open transaction has.
///
/// The functions that take something give the holder where they are refused.
class RecordHolds {
 public:
  /// `letSiblingsGo` is called while somebody who may be in this very process is waited for.
  RecordHolds(Holds& holds, std::function<void()> letSiblingsGo)
      : holds_(holds), letSiblingsGo_(std::move(letSiblingsGo)) {}

  std::optional<Holder> TakeForEdit(int table, std::int64_t row);
  void ReleaseEdit(int table, std::int64_t row) { holds_.Release(Hold::Edit, table, row); }

  /// Takes a record for the open transaction, or for one write.
  std::optional<Holder> TakeRow(int table, std::int64_t row);
  /// The same inside a group: the whole table is taken, so that its other records cost nothing.
  std::optional<Holder> TakeRowWithTable(int table, std::int64_t row);
  /// Takes the whole table but for the records that others hold.
  std::optional<Holder> TakeTable(int table);
  /// The open transaction keeps the table, which has been taken, until it ends.
  void KeepTable(int table) { tables_[table].ofTransaction = true; }
  bool HasTable(int table) const { return tables_.contains(table); }
  bool KeepsTable(int table) const;
  /// The records of a table held whole that others held when it was taken. They may be free by now, or
  /// somebody else's.
  const std::set<std::int64_t>& LeftOut(int table) { return tables_[table].leftOut; }

  /// The transaction has ended as part of a group, which keeps what the transaction had.
  void SettleTransaction();
  /// Lets go of everything but what the open transaction has changed.
  void KeepTransactionOnly();
  /// Lets go of everything but the edits.
  void ReleaseAll();

 private:
  struct WholeTable {
    std::set<std::int64_t> leftOut;
    bool ofTransaction = false;
  };

  template <class Try>
  bool Patiently(Try attempt);
  bool Take(Hold hold, int table, std::int64_t row, Holder* refused);

  Holds& holds_;
  std::function<void()> letSiblingsGo_;
  std::map<int, WholeTable> tables_;
  std::map<int, std::vector<std::int64_t>> rows_;  ///< the records of the open transaction
};

}  // namespace store
