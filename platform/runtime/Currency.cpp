#include "platform/runtime/Currency.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/runtime/NumberScan.h"
#include "platform/runtime/RuntimeError.h"

namespace rt {
namespace {

__extension__ using Wide = __int128;

constexpr int kOverflow = 6;
constexpr std::int64_t kUnits = 10'000;

std::int64_t Narrow(Wide units) {
  if (units > std::numeric_limits<std::int64_t>::max() || units < std::numeric_limits<std::int64_t>::min()) {
    throw RuntimeError(kOverflow);
  }
  return static_cast<std::int64_t>(units);
}

/// number * factor, rounded to the nearest whole number with ties to even. The product is exact: a floating
/// number is a whole mantissa of at most 53 bits times a power of two, and the factor must be below 2^63, so
/// that 116 bits are enough.
std::int64_t ExactProduct(double number, std::int64_t factor) {
  if (!std::isfinite(number)) throw RuntimeError(kOverflow);
  static constexpr int kMantissaBits = 53;
  int exponent = 0;
  const double fraction = std::frexp(number, &exponent);
  const auto mantissa = static_cast<std::int64_t>(std::ldexp(fraction, kMantissaBits));
  exponent -= kMantissaBits;
  Wide product = static_cast<Wide>(mantissa) * factor;
  if (product == 0) return 0;
  if (exponent >= 0) {
    // The mantissa's top bit is set, so with a larger shift the product is always out of range.
    if (exponent > 63 - kMantissaBits) throw RuntimeError(kOverflow);
    return Narrow(product * (Wide{1} << exponent));
  }
  const int shift = -exponent;
  if (shift > 120) return 0;  // less than half a unit
  const bool negative = product < 0;
  if (negative) product = -product;
  Wide whole = product >> shift;
  const Wide rest = product - (whole << shift);
  const Wide half = Wide{1} << (shift - 1);
  if (rest > half || (rest == half && (whole & 1) != 0)) ++whole;
  return Narrow(negative ? -whole : whole);
}

/// The magnitude as an unsigned number: the lowest amount has no positive counterpart.
std::uint64_t Magnitude(std::int64_t units) {
  return units < 0 ? 0 - static_cast<std::uint64_t>(units) : static_cast<std::uint64_t>(units);
}

/// The amount of units in the digits before `end`; empty beyond the range.
std::optional<Wide> WholeDigits(std::string_view digits, int zeros) {
  static constexpr std::size_t kMostDigits = 19;
  if (digits.size() + static_cast<std::size_t>(zeros) > kMostDigits) return std::nullopt;
  Wide whole = 0;
  for (const char c : digits) whole = whole * 10 + (c - '0');
  for (int i = 0; i < zeros; ++i) whole *= 10;
  return whole;
}

/// Whether the digits after `whole` round it up, ties going to the even one.
bool RoundsUp(std::string_view dropped, Wide whole) {
  if (dropped.front() != '5') return dropped.front() > '5';
  if (dropped.find_first_not_of('0', 1) != std::string_view::npos) return true;
  return (whole & 1) != 0;
}

}  // namespace

Currency Currency::FromWhole(std::int64_t whole) {
  return FromUnits(Narrow(static_cast<Wide>(whole) * kUnits));
}

Currency Currency::RoundedToEven(double amount) { return FromUnits(ExactProduct(amount, kUnits)); }

std::optional<Currency> Currency::Parse(std::string_view text) {
  const auto scanned = ScanNumber(text);
  if (!scanned) return std::nullopt;
  if (scanned->digits.empty()) return Currency();
  const std::string_view digits = scanned->digits;
  const int zeros = scanned->exponent + 4;
  std::optional<Wide> units;
  if (zeros >= 0) {
    units = WholeDigits(digits, zeros);
  } else {
    const auto drop = static_cast<std::size_t>(-zeros);
    if (drop > digits.size()) return Currency();
    const auto kept = digits.substr(0, digits.size() - drop);
    units = WholeDigits(kept, 0);
    if (units && RoundsUp(digits.substr(kept.size()), *units)) ++*units;
  }
  if (!units) return std::nullopt;
  if (scanned->negative) *units = -*units;
  if (*units > std::numeric_limits<std::int64_t>::max() ||
      *units < std::numeric_limits<std::int64_t>::min()) {
    return std::nullopt;
  }
  return FromUnits(static_cast<std::int64_t>(*units));
}

std::string Currency::PlainText() const {
  std::array<char, 32> text;
  char* at = text.data();
  if (units_ < 0) *at++ = '-';
  const std::uint64_t size = Magnitude(units_);
  at = std::to_chars(at, text.data() + text.size(), size / kUnits).ptr;
  auto decimals = static_cast<int>(size % kUnits);
  if (decimals != 0) {
    *at++ = '.';
    for (int unit = 1000; decimals != 0; unit /= 10) {
      *at++ = static_cast<char>('0' + decimals / unit);
      decimals %= unit;
    }
  }
  return {text.data(), at};
}

std::string Currency::DisplayText() const {
  static constexpr std::uint64_t kUnitsOfCent = 100;
  const std::uint64_t cents = (Magnitude(units_) + kUnitsOfCent / 2) / kUnitsOfCent;
  const std::string whole = std::to_string(cents / 100);
  std::string text = "$";
  for (std::size_t i = 0; i < whole.size(); ++i) {
    if (i != 0 && (whole.size() - i) % 3 == 0) text.push_back(',');
    text.push_back(whole[i]);
  }
  text.push_back('.');
  text.push_back(static_cast<char>('0' + cents % 100 / 10));
  text.push_back(static_cast<char>('0' + cents % 10));
  // An amount that rounds to zero appears as zero, without a sign.
  return units_ < 0 && cents != 0 ? "(" + text + ")" : text;
}

Currency operator+(Currency a, Currency b) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(a.units_, b.units_, &sum)) throw RuntimeError(kOverflow);
  return Currency(sum);
}

Currency operator-(Currency a, Currency b) {
  std::int64_t difference = 0;
  if (__builtin_sub_overflow(a.units_, b.units_, &difference)) throw RuntimeError(kOverflow);
  return Currency(difference);
}

Currency Multiply(float units, Currency price) { return Currency(ExactProduct(units, price.units_)); }

}  // namespace rt
