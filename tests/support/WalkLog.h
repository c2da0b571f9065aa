// What the processes of a random walk write down about their own work.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "support/Walk.h"

namespace walk {

/// The rows of a walk: fixed ones in groups, which stay to the end, and others that come and go. All are in
/// the table Walk; maintenance transactions are walked on too. Group 3 is so large that a statement that
/// changes all of it in a transaction holds the table.
constexpr int kGroups = 4;
constexpr int kLarge = 3;
/// The group between whose rows amounts are moved: they add up to nothing.
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
  Compare,  ///< an UPDATE of one row that names the version it replaces
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

/// One change of a row: it replaces `version` by the next one.
struct Change {
  char kind = 'C';           ///< C changed, N new, X deleted
  char table = 'W';          ///< W Walk, M Maintenance Transactions
  std::int64_t row = 0;      ///< 0 for a new row whose number was not known beforehand
  std::int64_t version = 0;  ///< that was read while the row was held
  std::int64_t token = 0;    ///< that was read with it; -1 where none was read
  std::int64_t amount = 0;   ///< that was added
};

/// How a transaction ended; one without an end was cut off by a kill.
enum class End : char { Acknowledged = 'A', Refused = 'R', Unknown = '?' };

struct Transaction {
  std::int64_t token = 0;  ///< worker * kTokensOfWorker + step; what it writes into each row
  Work work = Work::Edit;
  std::vector<Change> changes;
  int group = 0;  ///< the fixed rows that a bulk change covered
  std::int64_t groupAmount = 0;
  End end = End::Unknown;
};
constexpr std::int64_t kTokensOfWorker = 100000;

/// The log of one process, appended to a file of its own, so that it outlives a kill.
class Log {
 public:
  explicit Log(const std::string& path);
  ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  /// Before the commit.
  void Intend(const Transaction& transaction);
  /// After it. `row` is the number of a new row that was not known beforehand.
  void Tell(std::int64_t token, End end, std::int64_t row = 0);

  static std::vector<Transaction> Read(const std::string& path);

 private:
  void Write(const std::string& lines) const;
  int file_;
};

/// What all processes of a walk see.
struct Shared {
  std::atomic<bool> stop{false};
  /// Somebody wants the file for himself: the others close it.
  std::atomic<int> wanted{0};
};

/// One process of a walk; what it found wrong.
std::string WorkOn(const std::string& directory, int worker, unsigned seed, const Options& options,
                   Shared& shared, Log& log);

/// What is wrong with the file after all processes have ended.
std::string Check(const std::string& path, const std::vector<Transaction>& transactions);

}  // namespace walk
