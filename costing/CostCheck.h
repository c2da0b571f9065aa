// Checks that the cost tables are the sums of the posted transactions.
#pragma once

#include <string>
#include <vector>

#include "platform/store/Connection.h"

namespace dw {

struct CostDifference {
  std::string table;
  std::string key;     ///< "TRK-001, 2025, 3"
  std::string column;  ///< empty if a whole row is missing or left over
  std::string stored;
  std::string expected;
};

/// Compares the five cost tables of the main file with the sums of the posted transactions whose asset is on
/// file. Amounts of money must be equal to the last ten-thousandth. Units are Singles, added in an unknown
/// order, and may differ by their rounding. A row of zeros without transactions is not a difference, because
/// unposting leaves such rows.
std::vector<CostDifference> CheckCosts(store::Connection& connection);

}  // namespace dw
