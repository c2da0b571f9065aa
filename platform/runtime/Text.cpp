#include "platform/runtime/Text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/runtime/DateTime.h"
#include "platform/runtime/NumberScan.h"

namespace rt {
namespace {

/// A floating number's decimal form: d.ddd * 10^exponent.
struct Decimal {
  std::array<char, 24> digits{};
  std::size_t count = 0;
  int exponent = 0;
};

/// The shortest digits that read back as the same number, or the `most` digits nearest to it if those are
/// fewer.
template <typename Float>
Decimal DecimalOf(Float number, int most) {
  std::array<char, 64> text;
  auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific).ptr;
  const auto mark = [&] {
    const char* at = text.data();
    while (at != end && *at != 'e') ++at;
    return at;
  };
  // The digits are before the 'e', with a point after the first.
  if (mark() - text.data() > most + 1) {
    end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific, most - 1)
            .ptr;
  }
  Decimal decimal;
  const char* at = text.data();
  for (; at != end && *at != 'e'; ++at) {
    if (*at != '.') decimal.digits[decimal.count++] = *at;
  }
  while (decimal.count > 1 && decimal.digits[decimal.count - 1] == '0') --decimal.count;
  ++at;
  if (*at == '+') ++at;
  std::from_chars(at, end, decimal.exponent);
  return decimal;
}

std::string Scientific(const Decimal& decimal, bool negative) {
  std::string text(negative ? "-" : "");
  text.push_back(decimal.digits[0]);
  if (decimal.count > 1) text.append(".").append(decimal.digits.data() + 1, decimal.count - 1);
  text.append(decimal.exponent < 0 ? "E-" : "E+");
  const std::string power = std::to_string(std::abs(decimal.exponent));
  if (power.size() < 2) text.push_back('0');
  return text + power;
}

std::string Fixed(const Decimal& decimal, bool negative) {
  std::string text(negative ? "-" : "");
  if (decimal.exponent < 0) {
    text.append("0.").append(static_cast<std::size_t>(-decimal.exponent - 1), '0');
    return text.append(decimal.digits.data(), decimal.count);
  }
  const auto whole = static_cast<std::size_t>(decimal.exponent) + 1;
  if (decimal.count <= whole) {
    return text.append(decimal.digits.data(), decimal.count).append(whole - decimal.count, '0');
  }
  text.append(decimal.digits.data(), whole).append(".");
  return text.append(decimal.digits.data() + whole, decimal.count - whole);
}

template <typename Float>
std::string Plain(Float number, int most, Float firstTooLong) {
  if (!std::isfinite(number)) return std::isnan(number) ? "NaN" : number < 0 ? "-Infinity" : "Infinity";
  const Float size = std::abs(number);
  if (size < firstTooLong && std::trunc(number) == number) {
    std::array<char, 24> text;
    const auto whole = static_cast<std::int64_t>(number);
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), whole).ptr};
  }
  // Below this power of ten a fraction is easier to read with an exponent.
  static constexpr int kSmallestFixed = -4;
  const Decimal decimal = DecimalOf(size, most);
  const bool fixed = decimal.exponent >= kSmallestFixed && decimal.exponent < most;
  return fixed ? Fixed(decimal, number < 0) : Scientific(decimal, number < 0);
}

/// Powers of ten that a double can represent exactly.
constexpr std::array<double, 23> kPowers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                         1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

std::optional<double> NumberOf(const ScannedNumber& scanned) {
  double size = 0;
  if (scanned.digits.size() <= 15 && std::abs(scanned.exponent) < static_cast<int>(kPowers.size())) {
    // Digits and power are both exact, so the one operation rounds correctly.
    std::int64_t digits = 0;
    for (const char c : scanned.digits) digits = digits * 10 + (c - '0');
    const double power = kPowers[static_cast<std::size_t>(std::abs(scanned.exponent))];
    size = scanned.exponent < 0 ? static_cast<double>(digits) / power : static_cast<double>(digits) * power;
  } else if (!scanned.digits.empty()) {
    const std::string text = scanned.digits + "e" + std::to_string(scanned.exponent);
    const auto result = std::from_chars(text.data(), text.data() + text.size(), size);
    if (result.ec == std::errc::result_out_of_range) {
      const bool tiny = scanned.exponent + static_cast<int>(scanned.digits.size()) < 0;
      if (!tiny) return std::nullopt;
      size = 0;
    }
  }
  return scanned.negative ? -size : size;
}

void AppendDoubling(char mark, std::string_view text, std::string& result) {
  for (const char c : text) {
    if (c == mark) result.push_back(c);
    result.push_back(c);
  }
}

}  // namespace

std::string PlainText(float number) { return Plain(number, 7, 1e7F); }

std::string PlainText(double number) { return Plain(number, 15, 1e15); }

bool IsNumeric(std::string_view text) { return ParseNumber(text).has_value(); }

std::optional<double> ParseNumber(std::string_view text) {
  const auto scanned = ScanNumber(text);
  return scanned ? NumberOf(*scanned) : std::nullopt;
}

bool IsDate(std::string_view text) { return ParseDate(text).has_value(); }

std::string Trim(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string Enclosed(std::string_view text, char mark) {
  std::string enclosed;
  enclosed.reserve(text.size() + 2);
  enclosed.push_back(mark);
  AppendDoubling(mark, text, enclosed);
  enclosed.push_back(mark);
  return enclosed;
}

std::string DoubleApostrophes(std::string_view text) {
  std::string doubled;
  doubled.reserve(text.size() + 2);
  AppendDoubling('\'', text, doubled);
  return doubled;
}

std::string Quoted(std::string_view text) { return Enclosed(text, '\''); }

}  // namespace rt
