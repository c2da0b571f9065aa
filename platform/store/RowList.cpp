#include "platform/store/RowList.h"

#include <algorithm>
#include <string>

namespace store {

void RowList::Sort() {
  const auto byKey = [](const auto& a, const auto& b) { return a.first < b.first; };
  if (!std::is_sorted(rows_.begin(), rows_.end(), byKey)) std::sort(rows_.begin(), rows_.end(), byKey);
}

std::string RowList::Keys() const {
  std::string list = "[";
  for (const auto& [key, values] : rows_) {
    if (list.size() > 1) list += ',';
    list += std::to_string(key);
  }
  return list + "]";
}

const rt::Value* RowList::At(std::int64_t record, std::int64_t column) {
  auto place = static_cast<std::size_t>(record);
  if (keyed_) {
    // Statements ask for the values of one record after the other, in the order of the keys.
    place = last_;
    if (place < rows_.size() && rows_[place].first < record) ++place;
    if (place >= rows_.size() || rows_[place].first != record) {
      const auto found = std::lower_bound(rows_.begin(), rows_.end(), record,
                                          [](const auto& row, std::int64_t key) { return row.first < key; });
      if (found == rows_.end() || found->first != record) return nullptr;
      place = static_cast<std::size_t>(found - rows_.begin());
    }
    last_ = place;
  }
  if (place >= rows_.size()) return nullptr;
  const Values& values = *rows_[place].second;
  const auto at = static_cast<std::size_t>(column);
  return at < values.size() ? &values[at] : nullptr;
}

}  // namespace store
