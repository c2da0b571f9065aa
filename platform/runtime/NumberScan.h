// Splits the text of a number exactly, before it becomes a floating number or an amount.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace rt {

/// The value is digits * 10^exponent, with the sign.
struct ScannedNumber {
  std::string digits;  // without leading zeros; empty for zero
  int exponent = 0;    // within +-200,000
  bool negative = false;
};

/// Reads one number: blanks around it, a sign and "$" in either order, or parentheses for a negative number;
/// thousands commas in groups of three; a decimal point; an exponent. Empty if the text has anything else in
/// it or has no digit.
std::optional<ScannedNumber> ScanNumber(std::string_view text);

}  // namespace rt
