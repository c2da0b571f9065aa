// Price and period look-ups: what units cost on a date, and in which fiscal period a date lies.
//
// Each opens the data file for itself and closes it again. A failed look-up shows its message and answers 0.
// A price that is empty in its table throws RuntimeError 94, and one that money cannot hold RuntimeError 6.
#pragma once

#include <cstdint>
#include <string>

#include "platform/runtime/Value.h"

namespace dw {

/// Units of own fuel times `Fuel Price` of the row of `Internal Fuel Pricing Log` with the latest `Effective
/// Date` on or before the date.
rt::Currency GetInternalFuelCost(std::int32_t fuelType, float units, const std::string& date);
/// Hours times `Hourly Rate` of the first row (by ID) of `Internal Pricing Log` effective on or after the
/// date.
rt::Currency GetLaborCost(float hours, const std::string& date);
/// Units times `Oil Price`, looked up as labor is.
rt::Currency GetOilCost(float units, const std::string& date);
/// Both 0 when the date lies in no row of `Fiscal Periods`; overlapping periods: the lowest ID.
void GetFiscalPeriod(const rt::DateTime& date, std::int16_t& year, std::int16_t& period);
/// `Fuel Type` of the asset, 0 with a message when it is not on file.
std::int32_t GetAssetFuelType(const std::string& assetID);

}  // namespace dw
