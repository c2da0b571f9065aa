#include "platform/store/Numbers.h"

#include <string>

#include "platform/store/Holds.h"
#include "platform/store/StoreError.h"

namespace store {

// An amount is the one value that holds 64 bits; it is bound as its count of units.
rt::Value KeyValue(std::int64_t key) { return rt::Currency::FromUnits(key); }
std::int64_t KeyOf(const rt::Value& value) { return std::get<rt::Currency>(value.Data()).Units(); }

void CheckLockable(const TableInfo& table, std::int64_t key) {
  if (key >= 0 && key <= kLastRow) return;
  throw StoreError(kOverflow, "The record " + std::to_string(key) + " of the table '" + table.name +
                                  "' cannot be changed: its number is beyond the range of numbers.");
}

}  // namespace store
