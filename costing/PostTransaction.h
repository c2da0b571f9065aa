// Posting of one transaction: its totals, its time of posting, and its share of the five cost tables.
#pragma once

#include <vector>

#include "costing/CostRows.h"
#include "costing/Posting.h"

namespace dw {

/// Throws StoreError 3044 where the data file is no longer at its place. The engine notices that only when it
/// writes, and then each record would fail with a box of its own.
void RequireDataFile();

/// Posts transactions of one run, each in an engine transaction of its own. Nothing is ever rolled back
/// because a record was held: what could not be changed is reported, and a re-post that clears first makes
/// the sums whole again.
class TransactionPoster {
 public:
  TransactionPoster(dao::Workspace& workspace, dao::Database& database, dao::Recordset& transactions,
                    const Accumulators& accumulators);

  /// Whether the row that the recordset stands on waits to be posted. A row that has been deleted meanwhile
  /// does not.
  bool Waiting();
  /// Posts that row. A row without an asset on file stays as it is, in silence; a row that another user holds
  /// stays unposted, with its message. The commit shares its way to the disk with others, see
  /// dao::Commit::WithGroup. True if the row was posted.
  bool PostTransaction(PostingCounts& counts);

 private:
  void WriteTotals();
  rt::Value SumOf(const std::vector<int>& columns);

  dao::Workspace& workspace_;
  dao::Database& database_;
  dao::Recordset& transactions_;
  TransactionFields fields_;
  std::vector<CostTable> tables_;
  std::vector<int> internalCosts_;
  std::vector<int> outsideCosts_;
};

}  // namespace dw
