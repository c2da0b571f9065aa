#include "platform/store/Numbers.h"

#include <algorithm>
#include <limits>
#include <string>

#include "platform/runtime/Text.h"
#include "platform/store/LockSpace.h"
#include "platform/store/StoreError.h"

namespace store {

std::int64_t NumbersLeft(Handle& handle, const TableInfo& table) {
  Use last(handle, "SELECT seq FROM sqlite_sequence WHERE name = ?1");
  last.Bind(1, rt::Value(table.name));
  const std::int64_t given = last.Step() ? last.Int64(0) : 0;
  return given < 0 ? std::numeric_limits<std::int32_t>::max()
                   : std::numeric_limits<std::int32_t>::max() - given;
}

void CheckNumbersLeft(Handle& handle, const TableInfo& table, std::int64_t needed) {
  if (NumbersLeft(handle, table) < needed)
    throw StoreError(kOverflow, "The table '" + table.name + "' has no numbers left for new records.");
}

void CheckNumbersLeft(Handle& handle, const QueryPlan& insert, const std::vector<rt::Value>& parameters) {
  const Translation& t = insert.translation;
  const TableInfo& table = *insert.schema->Find(t.target);
  const auto given = [&](const ColumnInfo& column) {
    return column.type != ColumnType::Counter ||
           std::any_of(t.insertColumns.begin(), t.insertColumns.end(),
                       [&](const std::string& name) { return rt::EqualNoCase(name, column.name); });
  };
  if (std::all_of(table.columns.begin(), table.columns.end(), given)) return;
  std::int64_t needed = 1;
  // Rows are counted only where there may be too many of them.
  constexpr std::int64_t kMany = 100'000'000;
  if (!t.insertSelect.empty() && NumbersLeft(handle, table) < kMany) {
    Use rows(handle, "SELECT COUNT(*) FROM (" + t.insertSelect + ")");
    rows.BindAll(parameters);
    needed = rows.Step() ? rows.Int64(0) : 0;
  }
  CheckNumbersLeft(handle, table, needed);
}

// An amount is the one value that holds 64 bits; it is bound as its count of units.
rt::Value KeyValue(std::int64_t key) { return rt::Currency::FromUnits(key); }

void CheckLockable(const TableInfo& table, std::int64_t key) {
  if (key >= 0 && key <= kLastRow) return;
  throw StoreError(kOverflow, "The record " + std::to_string(key) + " of the table '" + table.name +
                                  "' cannot be changed: its number is beyond the range of numbers.");
}

}  // namespace store
