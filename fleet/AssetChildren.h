// Taking away what hangs on an asset, row by row.
#pragma once

#include <cstdint>

namespace dw {

/// Each asks first and deletes over a connection of its own. True where the grid that showed the row is to be
/// read again: the row went, now or before; false where it stays.
///
/// A transaction with recurring maintenance that was done in it stays until that is removed.
bool RemoveTransaction(std::int32_t id);
bool RemoveReading(std::int32_t id);
bool DeleteScheduleLine(std::int32_t id);

}  // namespace dw
