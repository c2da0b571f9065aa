// Values as display formats write them.
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "platform/print/formula/Formula.h"
#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

using rt::Value;
using rt::ValueType;

enum class Family { General, Money, Number, Plain, Percent, Date, DateTime, YesNo };

struct Format {
  std::string_view name;
  Family family;
  int decimals = 0;
};

constexpr std::array kFormats{
    Format{"", Family::General},          Format{"money", Family::Money, 2},
    Format{"money4", Family::Money, 4},   Format{"number0", Family::Number, 0},
    Format{"number1", Family::Number, 1}, Format{"number2", Family::Number, 2},
    Format{"number3", Family::Number, 3}, Format{"number4", Family::Number, 4},
    Format{"plain0", Family::Plain, 0},   Format{"plain1", Family::Plain, 1},
    Format{"plain2", Family::Plain, 2},   Format{"plain3", Family::Plain, 3},
    Format{"plain4", Family::Plain, 4},   Format{"percent1", Family::Percent, 1},
    Format{"date", Family::Date},         Format{"datetime", Family::DateTime},
    Format{"yesno", Family::YesNo},
};

const Format* FindFormat(std::string_view name) {
  for (const auto& format : kFormats)
    if (format.name == name) return &format;
  return nullptr;
}

constexpr std::array<std::int64_t, 5> kPowers{1, 10, 100, 1'000, 10'000};
constexpr int kPlacesOfMoney = 4;

/// A number cut to its decimals, half away from zero.
struct Rounded {
  bool negative = false;
  std::uint64_t units = 0;  ///< of the last decimal; 0 is never negative
};

Rounded RoundedAmount(std::int64_t tenThousandths, int decimals) {
  const bool negative = tenThousandths < 0;
  const auto size = static_cast<std::uint64_t>(tenThousandths);
  const std::uint64_t magnitude = negative ? 0 - size : size;
  const auto step = static_cast<std::uint64_t>(kPowers[static_cast<std::size_t>(kPlacesOfMoney - decimals)]);
  const std::uint64_t units = (magnitude + step / 2) / step;
  return {negative && units != 0, units};
}

/// Empty for a number that is too large to be written with decimals.
std::optional<Rounded> RoundedNumber(double number, int decimals) {
  constexpr double kMost = 1e15;
  if (!(std::abs(number) < kMost)) return std::nullopt;
  const double scaled = std::abs(number) * static_cast<double>(kPowers[static_cast<std::size_t>(decimals)]);
  // A number that people wrote as 2.675 is a little less as a Double, and is meant to be rounded up.
  const double nearest = std::floor(scaled + 0.5 + scaled * 2.3e-16);
  return Rounded{number < 0 && nearest != 0, static_cast<std::uint64_t>(nearest)};
}

std::string Digits(std::uint64_t units, int decimals, bool thousands) {
  const auto power = static_cast<std::uint64_t>(kPowers[static_cast<std::size_t>(decimals)]);
  std::array<char, 24> whole{};
  const auto end = std::to_chars(whole.data(), whole.data() + whole.size(), units / power).ptr;
  const std::string_view digits(whole.data(), static_cast<std::size_t>(end - whole.data()));
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (thousands && i != 0 && (digits.size() - i) % 3 == 0) text.push_back(',');
    text.push_back(digits[i]);
  }
  if (decimals == 0) return text;
  text.push_back('.');
  const std::uint64_t rest = units % power;
  for (auto unit = power / 10; unit > 0; unit /= 10)
    text.push_back(static_cast<char>('0' + rest / unit % 10));
  return text;
}

std::string WithSign(const Rounded& rounded, int decimals, bool thousands) {
  const std::string digits = Digits(rounded.units, decimals, thousands);
  return rounded.negative ? "-" + digits : digits;
}

std::string NumberText(const Value& value, const Format& format) {
  std::optional<Rounded> rounded;
  if (const auto* amount = std::get_if<rt::Currency>(&value.Data());
      amount && format.family != Family::Percent) {
    rounded = RoundedAmount(amount->Units(), format.decimals);
  } else {
    const double number = value.AsDouble();
    rounded = RoundedNumber(format.family == Family::Percent ? number * 100 : number, format.decimals);
  }
  if (!rounded) return JoinedText(value);
  switch (format.family) {
    case Family::Money: {
      if (rounded->units == 0) return {};
      const std::string text = "$" + Digits(rounded->units, format.decimals, true);
      return rounded->negative ? "(" + text + ")" : text;
    }
    case Family::Number:
      return rounded->units == 0 ? std::string() : WithSign(*rounded, format.decimals, true);
    case Family::Percent:
      return WithSign(*rounded, format.decimals, true) + "%";
    default:
      return WithSign(*rounded, format.decimals, false);
  }
}

}  // namespace

bool IsFormat(std::string_view format) { return FindFormat(format) != nullptr; }

std::string FormatValue(const Value& value, std::string_view format) {
  const Format* found = FindFormat(format);
  if (!found) throw PrintError("There is no display format \"" + std::string(format) + "\".");
  // A value that is not of the format's kind is shown as it is.
  const ValueKind kind = KindOf(value.Type());
  switch (found->family) {
    case Family::General:
      break;
    case Family::Date:
      if (kind == ValueKind::Date) return rt::ShortDate(value.AsDate());
      break;
    case Family::DateTime:
      if (kind == ValueKind::Date) return rt::GeneralDate(value.AsDate());
      break;
    case Family::YesNo:
      if (kind == ValueKind::Boolean || kind == ValueKind::Number) return *Truth(value) ? "Yes" : "No";
      break;
    default:
      if (kind == ValueKind::Number) return NumberText(value, *found);
      break;
  }
  return JoinedText(value);
}

}  // namespace print
