// Money: a whole number of ten-thousandths.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rt {

/// A fixed-point amount with four decimals, from -922,337,203,685,477.5808 to 922,337,203,685,477.5807.
/// There is no conversion from a floating number without a named rounding.
class Currency {
 public:
  constexpr Currency() = default;
  /// The amount that is `units` ten-thousandths.
  static constexpr Currency FromUnits(std::int64_t units) { return Currency(units); }
  /// A whole amount. Throws RuntimeError 6 beyond the range.
  static Currency FromWhole(std::int64_t whole);
  /// The nearest amount; a tie goes to the even ten-thousandth. Throws RuntimeError 6 if the number is out of
  /// range or not a number.
  static Currency RoundedToEven(double amount);
  /// Reads "12", "-12.5", "$1,234.50", "($3.00)"; a digit after the fourth decimal rounds with ties to even.
  /// Empty if the text is not an amount or out of range.
  static std::optional<Currency> Parse(std::string_view text);

  constexpr std::int64_t Units() const { return units_; }
  double ToDouble() const { return static_cast<double>(units_) / 10000.0; }
  /// Digits with as many decimals as needed, at most four: "12", "-0.5", "3.1416".
  std::string PlainText() const;
  /// "$#,##0.00;($#,##0.00)": two decimals, rounded half away from zero as display formats do.
  std::string DisplayText() const;

  /// Throw RuntimeError 6 beyond the range.
  friend Currency operator+(Currency a, Currency b);
  friend Currency operator-(Currency a, Currency b);
  /// Units times price: the product of a Single and an amount, rounded to the nearest with ties to even.
  /// Throws RuntimeError 6 beyond the range.
  friend Currency Multiply(float units, Currency price);

  friend constexpr auto operator<=>(Currency, Currency) = default;

 private:
  constexpr explicit Currency(std::int64_t units) : units_(units) {}
  std::int64_t units_ = 0;
};

}  // namespace rt
