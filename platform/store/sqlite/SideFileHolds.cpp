// The records that one open of a data file holds.
#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

#include "platform/store/StoreError.h"
#include "platform/store/sqlite/SideFile.h"
#include "platform/store/sqlite/SideFileState.h"

namespace store {
namespace {

constexpr int kTries = 20;
// Longer than any owner needs to notice that it came too late and to unlock again.
constexpr int kPatientTries = 100;
constexpr std::chrono::microseconds kNap{200};

Hold Other(Hold hold) { return hold == Hold::Edit ? Hold::Transaction : Hold::Edit; }

RowRange Single(Hold hold, const std::pair<int, std::int64_t>& record) {
  return {hold, record.first, record.second, record.second};
}

RowRange WholeTable(Hold hold, int table) { return {hold, table, 0, kLastRow}; }

// A number outside its range would lock records of another table.
void CheckRecord(int table, std::int64_t row) {
  if (table < 1 || table > kLastTable || row < 0 || row > kLastRow) {
    throw StoreError(kInternal, "Record " + std::to_string(row) + " of table " + std::to_string(table) +
                                    " is outside the records that can be locked.");
  }
}

}  // namespace

bool SideFile::State::Covers(const Record& record) const {
  const auto whole = tables.find(record.first);
  return whole != tables.end() && !whole->second.contains(record.second);
}

std::set<std::int64_t> SideFile::State::SingleRows(int table) const {
  std::set<std::int64_t> rows;
  for (auto it = transactions.lower_bound({table, 0}); it != transactions.end() && it->first.first == table;
       ++it) {
    rows.insert(it->first.second);
  }
  return rows;
}

void SideFile::State::KeepOnly(int table, const std::set<std::int64_t>& rows) const {
  // From the end, because the kernel walks an owner's locks in ascending order: so each step ends at the
  // first one.
  std::int64_t before = kLastRow + 1;
  for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
    locks.UnlockBetween(Hold::Transaction, table, *row, before);
    before = *row;
  }
  locks.UnlockBetween(Hold::Transaction, table, -1, before);
}

std::optional<Conflict> SideFile::State::LockFree(Hold hold, const Record& record) const {
  const RowRange own = Single(hold, record);
  const RowRange other = Single(Other(hold), record);
  Conflict last{.hold = hold, .first = record.second, .last = record.second};
  for (int attempt = 0; attempt < kTries; ++attempt) {
    // Asking first keeps this owner from showing, for a moment, a lock that it cannot keep.
    if (const auto held = locks.Find(other)) return held;
    if (!locks.TryLock(own)) {
      if (const auto held = locks.Find(own)) return held;
      continue;
    }
    const auto held = locks.Find(other);
    if (!held) return std::nullopt;
    locks.UnlockBetween(hold, record.first, record.second - 1, record.second + 1);
    last = *held;
    // Two owners that came at the same moment would collide again without an unequal pause.
    std::this_thread::sleep_for(std::chrono::microseconds((held->slot + 1) % 8 * 50));
  }
  return last;
}

std::optional<Conflict> SideFile::State::LockOwn(Hold hold, const Record& record) const {
  const RowRange own = Single(hold, record);
  // The owner in the way has not yet seen this owner's other hold and is about to give up.
  for (int attempt = 0; attempt < kPatientTries; ++attempt) {
    if (locks.TryLock(own)) return std::nullopt;
    std::this_thread::sleep_for(kNap);
  }
  const auto held = locks.Find(own);
  return held ? held : Conflict{.hold = hold, .first = record.second, .last = record.second};
}

std::optional<Conflict> SideFile::State::LockAround(RowRange rows,
                                                    std::map<std::int64_t, Conflict>* foreign) const {
  while (rows.first <= rows.last && !locks.TryLock(rows)) {
    const auto held = locks.Find(rows);
    if (!held) continue;
    if (held->wholeTable) return held;
    foreign->emplace(held->first, *held);
    // In ascending order, so that of two owners that want the whole table only one gets the first rows.
    if (const auto whole = LockAround({rows.hold, rows.table, rows.first, held->first - 1}, foreign))
      return whole;
    rows.first = held->first + 1;
  }
  return std::nullopt;
}

std::map<std::int64_t, Conflict> SideFile::State::Foreign(Hold hold, int table) const {
  std::map<std::int64_t, Conflict> foreign;
  for (const Conflict& held : locks.FindAll(WholeTable(hold, table))) {
    const Record record{table, held.first};
    // A lock on a record that this owner holds is one that its owner is about to take back.
    if (!Covers(record) && !transactions.contains(record)) foreign.emplace(held.first, held);
  }
  return foreign;
}

bool SideFile::Take(Hold hold, int table, std::int64_t row, Holder* refused) {
  CheckRecord(table, row);
  const State::Record record{table, row};
  State::Counts& counts = state_->CountsOf(hold);
  if (const auto held = counts.find(record); held != counts.end()) {
    ++held->second;
    return true;
  }
  if (share_ == Share::Shared) Renew();
  const bool covered = state_->Covers(record);
  if (share_ == Share::Shared && !(covered && hold == Hold::Transaction)) {
    const bool own = covered || state_->CountsOf(Other(hold)).contains(record);
    if (const auto held = own ? state_->LockOwn(hold, record) : state_->LockFree(hold, record)) {
      // Reports a hold on the whole table rather than an edit of the same owner, whichever was found first.
      if (refused) *refused = WhoHolds(table, row).value_or(HolderOf(*held));
      return false;
    }
  }
  counts.emplace(record, 1);
  return true;
}

void SideFile::Release(Hold hold, int table, std::int64_t row) {
  const State::Record record{table, row};
  State::Counts& counts = state_->CountsOf(hold);
  const auto held = counts.find(record);
  if (held == counts.end() || --held->second > 0) return;
  counts.erase(held);
  // Inside a hold on the whole table the row stays locked: unlocking it would punch a hole into that.
  const bool covered = hold == Hold::Transaction && state_->Covers(record);
  if (share_ == Share::Shared && !covered) state_->locks.UnlockBetween(hold, table, row - 1, row + 1);
}

bool SideFile::Has(Hold hold, int table, std::int64_t row) const {
  const State::Record record{table, row};
  return state_->CountsOf(hold).contains(record) || (hold == Hold::Transaction && state_->Covers(record));
}

std::optional<Holder> SideFile::WhoHolds(int table, std::int64_t row) const {
  CheckRecord(table, row);
  for (const Hold hold : {Hold::Transaction, Hold::Edit}) {
    if (const auto held = state_->locks.Find(Single(hold, {table, row}))) return HolderOf(*held);
  }
  return std::nullopt;
}

std::vector<HeldRecord> SideFile::TakeTable(int table) {
  CheckRecord(table, 0);
  State& state = *state_;
  if (share_ == Share::Exclusive) {
    state.tables[table].clear();
    return {};
  }
  Renew();
  // Leaves out a record that somebody edits, so that its owner can write it. Looks for the others only
  // because finding them first takes fewer calls than being refused by each.
  std::map<std::int64_t, Conflict> known = state.Foreign(Hold::Transaction, table);
  known.merge(state.Foreign(Hold::Edit, table));
  std::map<std::int64_t, Conflict> foreign;
  std::optional<Conflict> whole;
  std::int64_t first = 0;
  for (const auto& [row, held] : known) {
    whole = held.wholeTable ? std::optional(held)
                            : state.LockAround({Hold::Transaction, table, first, row - 1}, &foreign);
    if (whole) break;
    foreign.emplace(row, held);
    first = row + 1;
  }
  if (!whole) whole = state.LockAround({Hold::Transaction, table, first, kLastRow}, &foreign);
  if (whole) {
    state.tables.erase(table);
    state.KeepOnly(table, state.SingleRows(table));
    return {{table, 0, HolderOf(*whole)}};
  }
  // An edit that began meanwhile either was before the lock and stays, or sees it and is taken back.
  std::map<std::int64_t, Conflict> late = state.Foreign(Hold::Edit, table);
  const auto isNew = [&](const auto& edit) { return !foreign.contains(edit.first); };
  if (std::ranges::any_of(late, isNew)) {
    std::this_thread::sleep_for(kNap);
    late = state.Foreign(Hold::Edit, table);
  }
  for (const auto& [row, held] : late) {
    if (foreign.emplace(row, held).second) {
      state.locks.UnlockBetween(Hold::Transaction, table, row - 1, row + 1);
    }
  }
  std::set<std::int64_t>& leftOut = state.tables[table];
  leftOut.clear();
  std::vector<HeldRecord> others;
  for (const auto& [row, held] : foreign) {
    leftOut.insert(row);
    others.push_back({table, row, HolderOf(held)});
  }
  return others;
}

bool SideFile::HasTable(int table) const { return state_->tables.contains(table); }

void SideFile::ReleaseTable(int table) {
  CheckRecord(table, 0);
  State::Counts& counts = state_->transactions;
  const auto rows = counts.lower_bound({table, 0});
  const auto end = counts.lower_bound({table + 1, 0});
  if (!state_->tables.erase(table) && rows == end) return;
  counts.erase(rows, end);
  if (share_ == Share::Shared) state_->KeepOnly(table, {});
}

void SideFile::ReleaseTransaction() {
  if (state_->tables.empty() && state_->transactions.empty()) return;
  state_->tables.clear();
  state_->transactions.clear();
  if (share_ == Share::Shared) state_->locks.Unlock(kTransactionBytes);
}

void SideFile::Narrow(const std::map<int, std::vector<std::int64_t>>& rowsByTable) {
  for (const auto& [table, rows] : rowsByTable) {
    for (const std::int64_t row : rows) {
      if (state_->Covers({table, row})) state_->transactions.try_emplace({table, row}, 1);
    }
  }
  for (const auto& [table, rows] : rowsByTable) {
    if (state_->tables.erase(table) == 0 || share_ == Share::Exclusive) continue;
    state_->KeepOnly(table, state_->SingleRows(table));
  }
}

void SideFile::ShowWaiting(bool waiting) {
  if (waiting)
    state_->locks.TryLockForReading(kWaitingByte);
  else
    state_->locks.Unlock(kWaitingByte);
}

bool SideFile::OthersWait() const { return state_->locks.OthersIn(kWaitingByte); }

bool SideFile::OthersAreIn() const { return state_->locks.OthersIn(kAllSlotBytes); }

std::vector<HeldRecord> SideFile::HeldByOthers(const std::vector<int>& tables) const {
  std::vector<HeldRecord> records;
  if (share_ == Share::Exclusive) return records;
  for (const int table : tables) {
    bool wholeGiven = false;
    for (const Hold hold : {Hold::Transaction, Hold::Edit}) {
      for (const Conflict& held : state_->locks.FindAll(WholeTable(hold, table))) {
        // A hold on a whole table lies in several pieces around the records of others.
        if (held.wholeTable && wholeGiven) continue;
        wholeGiven = wholeGiven || held.wholeTable;
        records.push_back({table, held.wholeTable ? 0 : held.first, HolderOf(held)});
      }
    }
  }
  return records;
}

}  // namespace store
