// Look-ups on the row of the table `Parameters`, which holds what the whole company has agreed on.
//
// Each opens the data file for itself and closes it again.
#pragma once

#include <cstdint>

#include "platform/runtime/DateTime.h"

namespace dw {

/// `Transaction Close Out Date`; 1/1/1800 where none is set.
rt::DateTime GetCloseOutDate();
/// `Deleted Inventory ID`, 0 where none is set.
std::int32_t GetDeletedInventoryID();
/// `Internal_Fuel_Available`; false where nothing is set.
bool InternalFuelAvailable();

}  // namespace dw
