// Each value becomes bytes that compare as the values do, so that a key of many parts is one comparison.
#include "platform/print/data/SortKeys.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <string_view>

#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

using rt::ValueType;

/// The marks of kinds, in the order of SortOrder.
constexpr char kNull = 0;
constexpr char kNumber = 1;
constexpr char kDate = 2;
constexpr char kText = 3;
constexpr char kBinary = 4;

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63U;

void PutBytes(std::string& bytes, std::uint64_t number) {
  for (int shift = 56; shift >= 0; shift -= 8)
    bytes.push_back(static_cast<char>(number >> static_cast<unsigned>(shift) & 0xFFU));
}

void PutWhole(std::string& bytes, std::int64_t number) {
  PutBytes(bytes, static_cast<std::uint64_t>(number) ^ kSignBit);
}

void PutDouble(std::string& bytes, double number) {
  // -0 and 0 are equal.
  const auto raw = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
  PutBytes(bytes, (raw & kSignBit) != 0 ? ~raw : raw | kSignBit);
}

/// Ends with two NULs, before which no other text goes on; a NUL within is marked.
template <typename Fold>
void PutText(std::string& bytes, std::string_view text, Fold fold) {
  for (const char c : text) {
    bytes.push_back(fold(c));
    if (c == '\0') bytes.push_back('\xFF');
  }
  bytes.append(2, '\0');
}

void PutValue(std::string& bytes, const rt::Value& value) {
  switch (value.Type()) {
    case ValueType::Null:
      bytes.push_back(kNull);
      return;
    case ValueType::Boolean:
      bytes.push_back(kNumber);
      PutDouble(bytes, std::get<bool>(value.Data()) ? 1 : 0);
      return;
    case ValueType::Date:
      bytes.push_back(kDate);
      PutWhole(bytes, value.AsDate().Time().time_since_epoch().count());
      return;
    case ValueType::Text:
      bytes.push_back(kText);
      PutText(bytes, std::get<std::string>(value.Data()), rt::FoldLetter);
      return;
    case ValueType::Binary: {
      const auto& content = value.AsBinary();
      bytes.push_back(kBinary);
      PutText(bytes, std::string_view(reinterpret_cast<const char*>(content.data()), content.size()),
              [](char c) { return c; });
      return;
    }
    default:
      bytes.push_back(kNumber);
      PutDouble(bytes, value.AsDouble());
      // Large amounts that are one Double still differ.
      if (const auto* amount = std::get_if<rt::Currency>(&value.Data())) PutWhole(bytes, amount->Units());
  }
}

}  // namespace

void SortKeys::Add(const rt::Value& value, bool descending) {
  const std::size_t from = bytes_.size();
  PutValue(bytes_, value);
  if (!descending) return;
  for (std::size_t i = from; i < bytes_.size(); ++i) bytes_[i] = static_cast<char>(~bytes_[i]);
}

std::vector<std::uint32_t> SortKeys::Order() const {
  const auto key = [&](std::uint32_t row) {
    const std::size_t end = row + 1U < starts_.size() ? starts_[row + 1U] : bytes_.size();
    return std::string_view(bytes_).substr(starts_[row], end - starts_[row]);
  };
  /// The first bytes of a key decide most comparisons without a look at the others.
  struct Entry {
    std::uint64_t beginning;
    std::uint32_t row;
  };
  std::vector<Entry> entries(starts_.size());
  for (std::uint32_t row = 0; row < entries.size(); ++row) {
    const std::string_view own = key(row);
    std::uint64_t beginning = 0;
    for (std::size_t i = 0; i < sizeof(beginning); ++i)
      beginning = beginning << 8U | (i < own.size() ? static_cast<unsigned char>(own[i]) : 0U);
    entries[row] = {beginning, row};
  }
  const auto before = [&](const Entry& a, const Entry& b) {
    if (a.beginning != b.beginning) return a.beginning < b.beginning;
    const int compared = key(a.row).compare(key(b.row));
    return compared != 0 ? compared < 0 : a.row < b.row;
  };
  if (std::is_sorted(entries.begin(), entries.end(), before)) return {};
  std::sort(entries.begin(), entries.end(), before);
  std::vector<std::uint32_t> order(entries.size());
  std::transform(entries.begin(), entries.end(), order.begin(), [](const Entry& entry) { return entry.row; });
  return order;
}

}  // namespace print
