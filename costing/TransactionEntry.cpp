#include "costing/TransactionEntry.h"

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "costing/Lookups.h"
#include "data/GenericTools.h"
#include "data/MainFile.h"
#include "data/Parameters.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"

namespace dw {
namespace {

void Tell(const std::string& words) { screen::MessageBox(words, screen::Icon::Critical); }

/// A text as a Single; empty if it is not a number.
std::optional<float> AsSingle(const std::string& text) {
  const auto number = rt::ParseNumber(text);
  if (!number || std::abs(*number) > std::numeric_limits<float>::max()) return std::nullopt;
  return static_cast<float>(*number);
}

rt::Currency LookUpCost(OwnUnits kind, const PricedTexts& texts, float units) {
  switch (kind) {
    case OwnUnits::Fuel:
      return GetInternalFuelCost(GetAssetFuelType(texts.assetID), units, texts.date);
    case OwnUnits::Oil:
      return GetOilCost(units, texts.date);
    case OwnUnits::Labor:
      return GetLaborCost(units, texts.date);
  }
  return {};
}

}  // namespace

const std::array<NumericRule, 12> kNumericRules{{
    {"Year", "The year is not numeric. Please check."},
    {"Outside Fuel Cost", "The outside fuel cost is not numeric. Please check."},
    {"Internal Time Cost", "The labor costs are not numeric. Please check."},
    {"Outside Oil Cost", "The outside oil cost is not numeric. Please check."},
    {"Parts Cost", "The internal cost is not numeric. Please check."},
    {"Internal Fuel Units", "The unleaded gas units are not numeric. Please check."},
    {"Internal Fuel Cost", "The unleaded gas cost is not numeric. Please check."},
    {"Oil", "The oil units are not numeric. Please check."},
    {"Oil Cost", "The oil cost is not numeric. Please check."},
    {"Outside Fuel Units", "The outside fuel units are not numeric. Please check."},
    {"Outside Oil Units", "The outside oil units are not numeric. Please check."},
    {"Outside Cost", "The outside costs are not numeric. Please check."},
}};

void FillNewTransaction(dao::Recordset& row, const std::string& assetID) {
  row.Set("Asset ID", assetID);
  row.Set("Transaction Date", rt::Today());
  for (const char* column :
       {"Internal Fuel Cost", "Internal Fuel Units", "Outside Fuel Cost", "Outside Fuel Units",
        "Outside Oil Cost", "Outside Oil Units", "Oil Cost", "Parts Cost", "Outside Cost",
        "Internal Time Cost", "Total Internal Cost", "Total Outside Cost", "Type_ID"})
    row.Set(column, 0);
}

PricedTexts PriceUnits(OwnUnits kind, PricedTexts texts) {
  if (texts.units.empty()) texts.units = "0";
  const auto units = AsSingle(texts.units);
  if (!units) return texts;
  if (*units == 0) {
    if (texts.cost.empty()) texts.cost = "0.00";
    return texts;
  }
  // A cost that is not a number may be one that somebody meant, so it stays.
  if (!texts.cost.empty() && rt::ParseNumber(texts.cost) != 0.0) return texts;
  try {
    texts.cost = LookUpCost(kind, texts, *units).PlainText();
  } catch (const rt::RuntimeError& error) {
    // An empty price, or a product that is too large for money.
    Tell(error.what());
  }
  return texts;
}

bool CheckAssetID(const std::string& text) {
  if (!text.empty()) return true;
  Tell("You must specify an Asset ID");
  return false;
}

bool CheckCost(const std::string& text) {
  if (rt::IsNumeric(text)) return true;
  Tell("That is not a valid cost.");
  return false;
}

bool CheckPeriod(const std::string& text) {
  const auto number = rt::ParseNumber(text);
  if (!number) {
    Tell("Period must be a number between 1 and 13. Please check.");
    return false;
  }
  // It is stored as a whole number; ties round to the even one.
  const double period = std::nearbyint(*number);
  if (period >= 1 && period <= 13) return true;
  Tell("Period must be between 1 and 13. Please check.");
  return false;
}

TransactionDay CheckTransactionDate(const std::string& text, bool adding) {
  TransactionDay day;
  if (!ValidDate(text, true)) return day;
  const rt::DateTime date = *rt::ParseDate(text);
  if (adding && date < GetCloseOutDate()) {
    Tell("That date is before the transaction close out date.");
    return day;
  }
  const FiscalPeriod fiscal = GetFiscalPeriod(date);
  day.year = fiscal.year;
  day.period = fiscal.period;
  if (day.year != 0 && day.period != 0) {
    day.verdict = DateVerdict::Good;
    return day;
  }
  screen::MessageBox(
      "That date is not in a valid fiscal period. If you need to set up fiscal periods, go to "
      "Administration, Auxiliary Tables, and Fiscal Periods.",
      screen::Icon::Information);
  day.verdict = DateVerdict::OutsideCalendar;
  return day;
}

std::string AssetSerial(const std::string& assetID) {
  if (assetID.empty()) return {};
  MainFile file;
  if (!file.IsOpen()) return {};
  dao::Recordset& asset =
      file.Read("SELECT * FROM [Vehicles] WHERE [Asset ID] = '" + QuoteSQL(assetID) + "'");
  if (asset.AtEnd()) return "ERROR: Reached End of File";
  const rt::Value serial = asset.Get("VIN/Serial Number");
  return serial.IsNull() ? "No VIN/Serial Number on file." : serial.AsText();
}

}  // namespace dw
