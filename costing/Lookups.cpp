#include "costing/Lookups.h"

#include <optional>

#include "data/GenericTools.h"
#include "data/MainFile.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

/// The date of a price look-up in the short form, or empty if there is nothing to look up. An empty text is
/// ignored silently; a text that is not a date is reported.
std::optional<std::string> EffectiveDate(const std::string& date) {
  if (date.empty()) return std::nullopt;
  const auto parsed = rt::ParseDate(date);
  if (!parsed) {
    screen::MessageBox("That is not a valid effective date. Please recheck.", screen::Icon::Critical);
    return std::nullopt;
  }
  return rt::ShortDate(*parsed);
}

/// Units times the price in the query's first row. An empty price is an invalid use of Null.
rt::Currency PricedBy(const std::string& query, const char* priceColumn, float units, const char* noPrice) {
  MainFile file;
  if (!file.IsOpen()) return {};
  dao::Recordset& prices = file.Read(query);
  if (prices.AtEnd()) {
    screen::MessageBox(noPrice, screen::Icon::Critical);
    return {};
  }
  const rt::Value price = prices.Get(priceColumn);
  if (price.IsNull()) throw rt::RuntimeError(94, "Invalid use of Null");
  return Multiply(units, price.AsCurrency());
}

/// Labor and oil take the first row effective on or after the date: a row of this log applies to the dates up
/// to its own. Fuel is the other way round.
std::string LaborAndOilQuery(const std::string& date) {
  return "SELECT * FROM [Internal Pricing Log] WHERE [Effective Date] >= #" + date + "#";
}

}  // namespace

rt::Currency GetInternalFuelCost(std::int32_t fuelType, float units, const std::string& date) {
  const auto effective = EffectiveDate(date);
  if (!effective) return {};
  return PricedBy(
      "SELECT * FROM [Internal Fuel Pricing Log] WHERE [Fuel Type] = " + std::to_string(fuelType) +
          " AND [Effective Date] <= #" + *effective + "# ORDER BY [Effective Date] DESC",
      "Fuel Price", units,
      "You have no internal pricing set up for that type yet.\r"
      "Go to Options and click Internal Pricing button to set up.");
}

rt::Currency GetLaborCost(float hours, const std::string& date) {
  const auto effective = EffectiveDate(date);
  if (!effective) return {};
  return PricedBy(LaborAndOilQuery(*effective), "Hourly Rate", hours,
                  "You have no internal pricing set up for labor yet.\r\n"
                  "Go to Options and click Internal Pricing button to set up.");
}

rt::Currency GetOilCost(float units, const std::string& date) {
  const auto effective = EffectiveDate(date);
  if (!effective) return {};
  return PricedBy(LaborAndOilQuery(*effective), "Oil Price", units,
                  "You have no internal pricing set up for labor yet.\r"
                  "Go to Options and click Internal Pricing button to set up.");
}

FiscalPeriod GetFiscalPeriod(const rt::DateTime& date) {
  FiscalPeriod found;
  MainFile file;
  if (!file.IsOpen()) return found;
  const std::string day = rt::ShortDate(date);
  dao::Recordset& periods = file.Read("SELECT * FROM [Fiscal Periods] WHERE #" + day +
                                      "# >= [Start Date] AND #" + day + "# <= [End Date]");
  if (periods.AtEnd()) return found;
  // A period may have been saved without its numbers; 0 means that the date is in no fiscal period.
  const rt::Value year = periods.Get("Fiscal Year");
  const rt::Value period = periods.Get("Period");
  if (!year.IsNull()) found.year = year.AsInteger();
  if (!period.IsNull()) found.period = period.AsInteger();
  return found;
}

std::int32_t GetAssetFuelType(const std::string& assetID) {
  MainFile file;
  if (!file.IsOpen()) return 0;
  dao::Recordset& asset =
      file.Read("SELECT * FROM [Vehicles] WHERE [Asset ID] = '" + QuoteSQL(assetID) + "'");
  if (asset.AtEnd()) {
    screen::MessageBox("Asset ID '" + assetID + "' is not on file.", screen::Icon::Critical);
    return 0;
  }
  const rt::Value fuelType = asset.Get("Fuel Type");
  return fuelType.IsNull() ? 0 : fuelType.AsLong();
}

}  // namespace dw
