// Price and period look-ups: what units cost on a date, and in which fiscal period a date is.
//
// Each opens the data file for itself and closes it again. A failed look-up shows its message and returns 0.
// A price that is empty in its table throws RuntimeError 94, and one that money cannot represent RuntimeError
// 6.
#pragma once

#include <cstdint>
#include <string>

#include "platform/runtime/Value.h"

namespace dw {

/// Units of own fuel times the `Fuel Price` in the row of `Internal Fuel Pricing Log` with the latest
/// `Effective Date` on or before the date.
rt::Currency GetInternalFuelCost(std::int32_t fuelType, float units, const std::string& date);
/// Hours times the `Hourly Rate` in the first row (by ID) of `Internal Pricing Log` that is effective on or
/// after the date.
rt::Currency GetLaborCost(float hours, const std::string& date);
/// Units times `Oil Price`, looked up in the same way as labor.
rt::Currency GetOilCost(float units, const std::string& date);
struct FiscalPeriod {
  std::int16_t year = 0;
  std::int16_t period = 0;
};
/// Both 0 if the date is in no row of `Fiscal Periods`. If periods overlap, the lowest ID counts.
FiscalPeriod GetFiscalPeriod(const rt::DateTime& date);
/// `Fuel Type` of the asset, 0 with a message if it is not on file.
std::int32_t GetAssetFuelType(const std::string& assetID);

}  // namespace dw
