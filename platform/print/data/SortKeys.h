// Keys of rows in a form that sorts quickly.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/runtime/Value.h"

namespace print {

/// Collects a key of several values for each row, in the order of the rows, and gives the order that
/// SortOrder makes of them. Rows with equal keys stay in their order.
class SortKeys {
 public:
  /// Begins the key of the next row.
  void BeginRow() { starts_.push_back(bytes_.size()); }
  void Add(const rt::Value& value, bool descending);
  /// For each place in the order, the row that belongs there; empty if the rows are in order already.
  std::vector<std::uint32_t> Order() const;

 private:
  std::string bytes_;
  std::vector<std::size_t> starts_;
};

}  // namespace print
