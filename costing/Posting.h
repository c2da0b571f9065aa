// From a maintenance transaction to the five cost tables.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "data/GenericDAO.h"

namespace dw {

/// A sum of a cost table and the column of `Maintenance Transactions` that is added to it.
struct CostColumn {
  const char* accumulator;
  const char* transaction;
};
/// The twelve sums of `Assets Period Costs`, `Assets Annual Costs` and `Assets Lifetime Costs`, in order.
extern const std::array<CostColumn, 12> kAssetCostColumns;
/// The four sums of `Fuel Period Costs` and `Fuel Annual Costs`, in order.
extern const std::array<CostColumn, 4> kFuelCostColumns;

/// The five cost tables, opened as tables on their indexes.
struct Accumulators {
  DaoRecordsetPtr assetPeriod;    ///< `Assets Period Costs`, `Assets by Period`
  DaoRecordsetPtr assetAnnual;    ///< `Assets Annual Costs`, `Assets by Year`
  DaoRecordsetPtr assetLifetime;  ///< `Assets Lifetime Costs`, `By Asset ID`
  DaoRecordsetPtr fuelPeriod;     ///< `Fuel Period Costs`, `Fuel By Period`
  DaoRecordsetPtr fuelAnnual;     ///< `Fuel Annual Costs`, `Fuel By Year`

  static Accumulators Open(dao::Database& database);
  void Close();
};

/// What a posting run reports while it runs; each may be empty.
struct PostingProgress {
  std::function<void(const std::string&)> status;  ///< the stage: "Clearing Assets Period Costs..." …
  std::function<void(int)> percent;  ///< 0 when the rows begin; to 100, after each, posted or not
};

/// The result of a run; the program's own windows show none of it.
struct PostingCounts {
  std::int64_t seen = 0;
  std::int64_t posted = 0;
  std::int64_t added = 0;    ///< rows added to cost tables
  std::int64_t changed = 0;  ///< rows changed in cost tables
};

/// A clearing that was refused because somebody holds records that it would change. Nothing has been cleared
/// or posted. The text has the engine's words and says who holds which record.
class ClearingRefused : public dao::StoreError {
 public:
  using dao::StoreError::StoreError;
};

/// Posts every transaction of the data file whose `When Posted` is Null. If `clearFirst`, it first empties
/// the cost tables and marks all transactions as unposted. Ends with the box "Posting is Complete.".
///
/// Throws ClearingRefused, and StoreError for an engine error outside the record operations (an empty table,
/// a data file that is gone); if the run was at a transaction, the text names it. Every row that was posted
/// before the error stays posted with its sums.
PostingCounts RunPosting(bool clearFirst, const PostingProgress& progress);

}  // namespace dw
