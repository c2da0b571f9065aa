// Posting of one transaction: its totals, its time of posting, and its share of the five cost tables.
#pragma once

#include <vector>

#include "costing/CostRows.h"
#include "costing/Posting.h"
#include "costing/RowGroup.h"

namespace dw {

/// Posts transactions of one run, each in an engine transaction of its own. A record that another user holds
/// does not roll anything back: it is reported and left unchanged, and a re-post that clears first makes the
/// sums complete again.
class TransactionPoster {
 public:
  TransactionPoster(dao::Workspace& workspace, dao::Database& database, dao::Recordset& transactions,
                    const Accumulators& accumulators);

  /// Whether the recordset's current row waits for posting. A row that has been deleted meanwhile does not.
  bool Waiting();
  /// Posts that row. A row without an asset on file silently stays as it is; a row that another user holds
  /// stays unposted, with its message. The commit shares its physical commit with others, see
  /// dao::Commit::WithGroup. True if the row was posted.
  bool PostTransaction(PostingCounts& counts);

 private:
  void WriteTotals();
  rt::Value SumOf(const std::vector<int>& columns);

  dao::Workspace& workspace_;
  dao::Recordset& transactions_;
  TransactionFields fields_;
  std::vector<CostTable> tables_;
  std::vector<int> internalCosts_;
  std::vector<int> outsideCosts_;
  AssetFuelTypes fuelTypes_;
};

}  // namespace dw
