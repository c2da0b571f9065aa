// Look-ups on the row of the table `Parameters`, which has the settings of the whole company.
//
// Each opens the data file for itself and closes it again.
#pragma once

#include <cstdint>

#include "platform/runtime/DateTime.h"

namespace dw {

/// `Transaction Close Out Date`; 1/1/1800 if none is set.
rt::DateTime GetCloseOutDate();
/// `Deleted Inventory ID`, 0 if none is set.
std::int32_t GetDeletedInventoryID();
/// `Internal_Fuel_Available`; false if nothing is set.
bool InternalFuelAvailable();

}  // namespace dw
