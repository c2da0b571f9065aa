#include "platform/store/RecordHolds.h"

#include <time.h>

#include <algorithm>

namespace store {
namespace {

// Whole tables are held for a group or a single statement most often, so that waiting for them is waiting for
// a moment.
constexpr int kTableWaitTries = 2000;

}  // namespace

/// Tries again for about a second; `attempt` gives false as long as a whole table is in the way.
template <class Try>
bool RecordHolds::Patiently(Try attempt) {
  struct Sign {
    Holds& holds;
    bool shown = false;
    ~Sign() {
      if (shown) holds.ShowWaiting(false);
    }
  } sign{holds_};
  for (int tries = 0; tries < kTableWaitTries; ++tries) {
    if (attempt()) return true;
    if (!sign.shown) holds_.ShowWaiting(true);
    sign.shown = true;
    letSiblingsGo_();
    const timespec halfMillisecond{0, 500000};
    nanosleep(&halfMillisecond, nullptr);
  }
  return attempt();
}

bool RecordHolds::Take(Hold hold, int table, std::int64_t row, Holder* refused) {
  bool taken = false;
  Patiently([&] {
    taken = holds_.Take(hold, table, row, refused);
    return taken || !refused->wholeTable;
  });
  return taken;
}

std::optional<Holder> RecordHolds::TakeForEdit(int table, std::int64_t row) {
  Holder refused;
  if (Take(Hold::Edit, table, row, &refused)) return {};
  return refused;
}

std::optional<Holder> RecordHolds::TakeRow(int table, std::int64_t row) {
  if (holds_.Sharing() == Share::Exclusive || holds_.Has(Hold::Transaction, table, row)) return {};
  Holder refused;
  if (!Take(Hold::Transaction, table, row, &refused)) return refused;
  rows_[table].push_back(row);
  return {};
}

std::optional<Holder> RecordHolds::TakeRowWithTable(int table, std::int64_t row) {
  if (holds_.Sharing() == Share::Exclusive) return {};
  auto held = tables_.find(table);
  if (held == tables_.end()) {
    if (auto refused = TakeTable(table)) return refused;
    held = tables_.find(table);
  }
  // Somebody had this record when the table was taken, but perhaps no longer.
  if (held->second.leftOut.contains(row)) return TakeRow(table, row);
  rows_[table].push_back(row);
  return {};
}

std::optional<Holder> RecordHolds::TakeTable(int table) {
  if (tables_.contains(table)) return {};
  std::vector<HeldRecord> others;
  const bool taken = Patiently([&] {
    others = holds_.TakeTable(table);
    return others.empty() || others.front().row != 0;
  });
  if (!taken) return others.front().holder;
  auto& leftOut = tables_[table].leftOut;
  for (const auto& held : others) leftOut.insert(held.row);
  return {};
}

bool RecordHolds::KeepsTable(int table) const {
  const auto held = tables_.find(table);
  return held != tables_.end() && held->second.ofTransaction;
}

void RecordHolds::SettleTransaction() {
  for (auto& [table, rows] : rows_) rows.clear();
  for (auto& [table, whole] : tables_) whole.ofTransaction = false;
}

void RecordHolds::KeepTransactionOnly() {
  std::map<int, std::vector<std::int64_t>> narrowed;
  for (const auto& [table, whole] : tables_) {
    if (whole.ofTransaction) continue;
    auto& kept = narrowed[table] = rows_[table];
    std::erase(kept, 0);  // added by the transaction, and not in the file yet
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  }
  if (narrowed.empty()) return;
  holds_.Narrow(narrowed);
  std::erase_if(tables_, [](const auto& held) { return !held.second.ofTransaction; });
}

void RecordHolds::ReleaseAll() {
  holds_.ReleaseTransaction();
  tables_.clear();
  rows_.clear();
}

}  // namespace store
