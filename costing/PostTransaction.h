// Posting of one transaction: its totals, its time of posting, and its share of the five cost tables.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "costing/CostRows.h"
#include "costing/Posting.h"

namespace dw {

/// Throws StoreError 3044 if the data file is no longer at its place. The engine notices that only when it
/// writes, and then each record would fail with a box of its own.
void RequireDataFile();

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
  /// The fuel type of an asset on file; empty if there is no such asset.
  std::optional<rt::Value> FuelTypeOf(const rt::Value& assetID);
  void WriteTotals();
  rt::Value SumOf(const std::vector<int>& columns);

  dao::Workspace& workspace_;
  dao::Database& database_;
  dao::Recordset& transactions_;
  TransactionFields fields_;
  std::vector<CostTable> tables_;
  std::vector<int> internalCosts_;
  std::vector<int> outsideCosts_;
  /// The fuel types of the assets in this group, kept for as long as nobody else can have changed them.
  std::unordered_map<std::string, std::optional<rt::Value>> fuelTypes_;
  std::uint64_t glance_ = 0;
};

}  // namespace dw
