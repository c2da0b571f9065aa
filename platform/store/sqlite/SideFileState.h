// What an open side file remembers of its own locks, because the kernel cannot be asked for them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "platform/store/sqlite/LockSpace.h"
#include "platform/store/sqlite/SideFile.h"

namespace store {

struct SideFile::State {
  /// Table and row, so that a table's rows are together.
  using Record = std::pair<int, std::int64_t>;
  using Counts = std::map<Record, int>;

  explicit State(int fd) : locks(fd) {}

  Counts& CountsOf(Hold hold) { return hold == Hold::Edit ? edits : transactions; }
  const Counts& CountsOf(Hold hold) const { return hold == Hold::Edit ? edits : transactions; }
  /// Whether this owner's hold on the whole table includes the row.
  bool Covers(const Record& record) const;
  /// The rows of the table that are held one by one for the transaction.
  std::set<std::int64_t> SingleRows(int table) const;
  /// Unlocks all of the table's transaction range but these rows, without touching the locks on them.
  void KeepOnly(int table, const std::set<std::int64_t>& rows) const;

  /// Locks a row that nobody is known to hold; otherwise returns the holder.
  std::optional<Conflict> LockFree(Hold hold, const Record& record) const;
  /// Locks a row that nobody else can come to hold.
  std::optional<Conflict> LockOwn(Hold hold, const Record& record) const;
  /// Locks the rows of the range except those that others hold, which are added to `foreign`; if another
  /// owner holds the whole table, returns that holder and leaves the rest as it is.
  std::optional<Conflict> LockAround(RowRange rows, std::map<std::int64_t, Conflict>* foreign) const;
  /// What others hold of the table in this way, by its first row.
  std::map<std::int64_t, Conflict> Foreign(Hold hold, int table) const;

  bool HoldsAny() const { return !edits.empty() || !transactions.empty() || !tables.empty(); }

  LockSpace locks;
  /// What is held was held in a side file that somebody has removed; others may have had it since.
  bool lost = false;
  Counts edits;
  Counts transactions;
  /// The tables held as a whole, each with the rows that were left out for others.
  std::map<int, std::set<std::int64_t>> tables;
};

}  // namespace store
