// The rules of the transaction window: which texts pass, and what units cost.
//
// Each check reports what is wrong to the user before it returns false.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/dao/Dao.h"

namespace dw {

/// The empty row for a new transaction: today's date and zeros. `Oil` and `Time` stay Null.
void FillNewTransaction(dao::Recordset& row, const std::string& assetID);

/// What is drawn from the organization's own stock, and priced while it is typed.
enum class OwnUnits { Fuel, Oil, Labor };

/// The texts that a price depends on.
struct PricedTexts {
  std::string assetID;
  std::string date;
  std::string units;
  std::string cost;
};

/// The texts after the focus leaves the units: empty units become 0, and units without a cost get the price
/// of their date. A cost other than 0 never changes. If a look-up finds no price, the cost becomes 0; if the
/// price is empty, or the product too large, the cost stays as it was, after a message. Units that are not a
/// number are left for the check of the whole window.
PricedTexts PriceUnits(OwnUnits kind, PricedTexts texts);

bool CheckAssetID(const std::string& text);
/// Leaving a field of money: an empty text is not a cost either.
bool CheckCost(const std::string& text);
bool CheckPeriod(const std::string& text);

enum class DateVerdict {
  Good,
  Refused,         ///< not a date, or too early
  OutsideCalendar  ///< a good date that is in no fiscal period
};
struct TransactionDay {
  DateVerdict verdict = DateVerdict::Refused;
  std::int16_t year = 0;    ///< the fiscal year and
  std::int16_t period = 0;  ///< period of a good date
};
/// Only a transaction that is being added must lie on or after the close-out date.
TransactionDay CheckTransactionDate(const std::string& text, bool adding);

/// A field that must be a number unless it is empty, and the message if it is not.
struct NumericRule {
  const char* column;
  const char* words;
};
/// In the order of the checks when a transaction is saved, after asset, date and period.
extern const std::array<NumericRule, 12> kNumericRules;

/// The text beside an asset's code: its serial number, or why there is none.
std::string AssetSerial(const std::string& assetID);

}  // namespace dw
