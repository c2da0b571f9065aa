// Removing the records that belong to an asset, one by one.
#pragma once

#include <cstdint>

namespace dw {

/// Each asks first and deletes over a connection of its own. True if the grid that showed the row has to be
/// read again, because the row is gone (now or earlier); false if the row stays.
///
/// A transaction stays as long as recurring maintenance is recorded as done in it.
bool RemoveTransaction(std::int32_t id);
bool RemoveReading(std::int32_t id);
bool DeleteScheduleLine(std::int32_t id);

}  // namespace dw
