// Are the cost tables what the posted transactions add up to?
#pragma once

#include <string>
#include <vector>

#include "platform/store/Connection.h"

namespace dw {

struct CostDifference {
  std::string table;
  std::string key;     ///< "TRK-001, 2025, 3"
  std::string column;  ///< empty where a whole row is missing or left over
  std::string stored;
  std::string expected;
};

/// Compares the five cost tables of the main file with the sums of the posted transactions whose asset is on
/// file. Amounts of money must be equal to the last ten-thousandth; units, being Singles added in one order
/// or another, to within their rounding. A row that stands at zero without transactions is no difference
/// (unposting leaves such rows).
std::vector<CostDifference> CheckCosts(store::Connection& connection);

}  // namespace dw
