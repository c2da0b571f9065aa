// Rows of values for one statement that writes many records.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "platform/runtime/Value.h"

namespace store {

/// Gives the values of many records to one statement, which finds them by the record's key where the rows
/// have keys, otherwise by its place in the list, from 0. The list refers to the values and does not copy
/// them.
class RowList {
 public:
  using Values = std::vector<rt::Value>;

  void Add(const Values& values) { rows_.emplace_back(std::int64_t{0}, &values); }
  void Add(std::int64_t key, const Values& values) {
    keyed_ = true;
    rows_.emplace_back(key, &values);
  }
  /// Brings rows with keys into the order of their keys. Needed before a statement asks for values, unless
  /// they were added in this order.
  void Sort();

  std::size_t Count() const { return rows_.size(); }
  std::int64_t FirstKey() const { return rows_.front().first; }
  std::int64_t LastKey() const { return rows_.back().first; }
  /// Whether the keys are whole numbers without a gap.
  bool Gapless() const { return LastKey() - FirstKey() + 1 == static_cast<std::int64_t>(Count()); }
  /// The keys as a list in JSON.
  std::string Keys() const;
  /// A value of the record with this key, or at this place; null where there is no such record or column.
  const rt::Value* At(std::int64_t record, std::int64_t column);

 private:
  std::vector<std::pair<std::int64_t, const Values*>> rows_;
  bool keyed_ = false;
  std::size_t last_ = 0;  ///< the place that was asked for last
};

}  // namespace store
