// The log that each process of a random walk keeps of its own work.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "support/Walk.h"

namespace walk {

/// The rows of a walk: fixed ones in groups, which remain to the end, and others that come and go. All are in
/// the table Walk; the walk also uses maintenance transactions. Group 3 is so large that a statement that
/// changes all of it in a transaction holds the table.
constexpr int kGroups = 4;
constexpr int kLarge = 3;
/// Transfers move amounts between the rows of this group, so the amounts add up to zero.
constexpr int kTransfers = 4;
constexpr std::array<int, kGroups + 1> kRowsInGroup = {0, 4, 4, 80, 4};
constexpr int RowsIn(int group) { return kRowsInGroup[static_cast<std::size_t>(group)]; }
constexpr int FirstRow(int group) {
  int row = 1;
  for (int before = 1; before < group; ++before) row += RowsIn(before);
  return row;
}
constexpr int kFixedRows = FirstRow(kGroups + 1) - 1;
constexpr int kMaintenanceRows = 12;

enum class Work {
  Edit,
  EditByAdo,
  Compare,  ///< an UPDATE of one row that names the version that it replaces
  Several,
  Transfer,
  BulkInTransaction,
  Bulk,
  Add,
  Remove,
  Group,
  Maintenance,
  Posting,
  Compaction,
  kCount,
};
constexpr std::array kWorkNames = {"edits",
                                   "edits by ado",
                                   "compares",
                                   "transactions",
                                   "transfers",
                                   "bulk changes in transactions",
                                   "bulk changes",
                                   "additions",
                                   "removals",
                                   "groups",
                                   "edits of maintenance transactions",
                                   "postings",
                                   "compactions"};
static_assert(kWorkNames.size() == static_cast<std::size_t>(Work::kCount));

/// One change of a row, which replaces `version` with the next one.
struct Change {
  char kind = 'C';           ///< C changed, N new, X deleted
  char table = 'W';          ///< W Walk, M Maintenance Transactions
  std::int64_t row = 0;      ///< 0 for a new row whose number was unknown before the change
  std::int64_t version = 0;  ///< the version that was read during the hold
  std::int64_t token = 0;    ///< the token that was read with it; -1 if none was read
  std::int64_t amount = 0;   ///< the amount that was added
};

/// How a transaction ended. If a kill cut it off, its end is unknown.
enum class End : char { Acknowledged = 'A', Refused = 'R', Unknown = '?' };

struct Transaction {
  std::int64_t token = 0;  ///< worker * kTokensOfWorker + step; written into each changed row
  Work work = Work::Edit;
  std::vector<Change> changes;
  int group = 0;  ///< the fixed rows of a bulk change
  std::int64_t groupAmount = 0;
  End end = End::Unknown;
};
constexpr std::int64_t kTokensOfWorker = 100000;

/// The log of one process, appended to a file of its own, which outlives a kill.
class Log {
 public:
  explicit Log(const std::string& path);
  ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  /// Call it before the commit.
  void Intend(const Transaction& transaction);
  /// Call it after the commit. `row` is the number of a new row that was unknown before.
  void Tell(std::int64_t token, End end, std::int64_t row = 0);

  static std::vector<Transaction> Read(const std::string& path);

 private:
  void Write(const std::string& lines) const;
  int file_;
};

/// The memory that all processes of a walk share.
struct Shared {
  std::atomic<bool> stop{false};
  /// A process wants the file exclusively: the others close it.
  std::atomic<int> wanted{0};
};

/// Runs one process of a walk; returns the faults that it found.
std::string WorkOn(const std::string& directory, int worker, unsigned seed, const Options& options,
                   Shared& shared, Log& log);

/// The faults in the file after all processes have ended.
std::string Check(const std::string& path, const std::vector<Transaction>& transactions);

}  // namespace walk
