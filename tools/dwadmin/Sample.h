// A believable fleet to try the system with, and to measure it by.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/runtime/Clock.h"
#include "platform/runtime/DateTime.h"

namespace dw {

/// Makes DW.MDB, DW_USERS.MDB, DW_LISTS.MDB and DW_SANDS.MDB in a directory that has none of them.
///
/// `assets` assets, and one more for removed assets, over the `years` years that end on `until`: codes, price
/// tables, fiscal calendar, schedules, readings and about 30 unposted transactions for each asset and year.
/// Users: ADMIN (an administrator without a password), CLERK (password "FLEET") and SEASONAL, who has no
/// access; workstations: OFFICE, SHOP and LAPTOP, which is not active. The same numbers, seed and `until`
/// make the same rows.
///
/// `progress`, if set, gets 0 to 100. Throws std::invalid_argument for less than one asset or year, and
/// StoreError (3204 if one of the files exists, and then nothing is made).
void MakeSample(const std::string& directory, int assets, int years, std::uint32_t seed,
                const std::function<void(int percent)>& progress, const rt::DateTime& until = rt::Today());

}  // namespace dw
