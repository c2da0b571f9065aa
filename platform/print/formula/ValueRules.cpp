#include "platform/print/formula/ValueRules.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

using rt::Currency;
using rt::Value;
using rt::ValueType;
__extension__ using Wide = __int128;

constexpr std::int64_t kUnits = 10'000;
constexpr double kSecondsOfDay = 86'400;

[[noreturn]] void Beyond() {
  throw PrintError("The result of a calculation is beyond what a number can be.");
}

[[noreturn]] void NoNumber(const Value& value) {
  std::string shown = value.Type() == ValueType::Text ? " '" + value.AsText().substr(0, 40) + "'" : "";
  throw PrintError("Cannot calculate with " + std::string(KindName(KindOf(value.Type()))) + shown + ".");
}

bool IsWhole(ValueType type) {
  return type == ValueType::Boolean || type == ValueType::Integer || type == ValueType::Long;
}

std::int64_t WholeOf(const Value& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value.Data())) return *number;
  if (const auto* number = std::get_if<std::int16_t>(&value.Data())) return *number;
  return std::get<bool>(value.Data()) ? -1 : 0;
}

double DoubleOf(const Value& value) {
  switch (value.Type()) {
    case ValueType::Double:
      return std::get<double>(value.Data());
    case ValueType::Single:
      return std::get<float>(value.Data());
    case ValueType::Currency:
      return std::get<Currency>(value.Data()).ToDouble();
    case ValueType::Boolean:
    case ValueType::Integer:
    case ValueType::Long:
      return static_cast<double>(WholeOf(value));
    default:
      NoNumber(value);
  }
}

Value Finite(double number) {
  if (!std::isfinite(number)) Beyond();
  return number;
}

/// Whole numbers stay whole while they fit.
Value Whole(std::int64_t number) {
  if (number >= INT32_MIN && number <= INT32_MAX) return static_cast<std::int32_t>(number);
  return static_cast<double>(number);
}

Currency Amount(Wide units) {
  if (units > std::numeric_limits<std::int64_t>::max() || units < std::numeric_limits<std::int64_t>::min())
    Beyond();
  return Currency::FromUnits(static_cast<std::int64_t>(units));
}

/// The number as ten-thousandths, if it is the Double nearest to such a decimal: 0.1 means a tenth.
std::optional<std::int64_t> UnitsOf(double number) {
  constexpr double kMost = 9e11;  // beyond it neighboring Doubles are further apart than decimals
  if (!(std::abs(number) < kMost)) return std::nullopt;
  const double units = std::nearbyint(number * static_cast<double>(kUnits));
  if (units / static_cast<double>(kUnits) != number) return std::nullopt;
  return static_cast<std::int64_t>(units);
}

Currency AmountOf(const Value& value) {
  if (const auto* amount = std::get_if<Currency>(&value.Data())) return *amount;
  if (IsWhole(value.Type())) return Amount(static_cast<Wide>(WholeOf(value)) * kUnits);
  try {
    return Currency::RoundedToEven(DoubleOf(value));
  } catch (const rt::RuntimeError&) {
    Beyond();
  }
}

Currency Rounded(Wide units, Wide divisor) {
  Wide whole = units / divisor;
  Wide rest = units % divisor;
  if (rest < 0) rest = -rest;
  if (rest * 2 > divisor || (rest * 2 == divisor && whole % 2 != 0)) whole += units < 0 ? -1 : 1;
  return Amount(whole);
}

Currency Product(Currency amount, const Value& factor) {
  const Wide units = amount.Units();
  if (const auto* other = std::get_if<Currency>(&factor.Data()))
    return Rounded(units * other->Units(), kUnits);
  if (IsWhole(factor.Type())) return Amount(units * WholeOf(factor));
  try {
    if (const auto* single = std::get_if<float>(&factor.Data())) return Multiply(*single, amount);
    const double number = DoubleOf(factor);
    if (const auto exact = UnitsOf(number)) return Rounded(units * *exact, kUnits);
    return Currency::RoundedToEven(number * amount.ToDouble());
  } catch (const rt::RuntimeError&) {
    Beyond();
  }
}

/// A date as seconds, and a number of days to seconds.
Value CalculateDates(Operation operation, const Value& a, const Value& b) {
  const auto* first = std::get_if<rt::DateTime>(&a.Data());
  const auto* second = std::get_if<rt::DateTime>(&b.Data());
  if (first && second && operation == Operation::Subtract)
    return static_cast<double>((first->Time() - second->Time()).count()) / kSecondsOfDay;
  const bool plus = operation == Operation::Add && !(first && second);
  if (!plus && !(operation == Operation::Subtract && first)) {
    throw PrintError("Dates can only be moved by a number of days, or subtracted from each other.");
  }
  const double days = DoubleOf(first ? b : a);
  try {
    const rt::DateTime start = first ? *first : *second;
    constexpr double kMostDays = 4e6;  // more than the calendar has
    if (!(std::abs(days) < kMostDays)) Beyond();
    const auto seconds = std::chrono::seconds(std::llround(days * kSecondsOfDay));
    const rt::DateTime moved(plus ? start.Time() + seconds : start.Time() - seconds);
    constexpr int kFirstYear = 100;
    constexpr int kLastYear = 9999;
    if (moved.Year() < kFirstYear || moved.Year() > kLastYear) Beyond();
    return moved;
  } catch (const rt::RuntimeError&) {
    Beyond();
  }
}

Value CalculateAmounts(Operation operation, const Value& a, const Value& b) {
  switch (operation) {
    case Operation::Add:
      return Amount(static_cast<Wide>(AmountOf(a).Units()) + AmountOf(b).Units());
    case Operation::Subtract:
      return Amount(static_cast<Wide>(AmountOf(a).Units()) - AmountOf(b).Units());
    default:
      return a.Type() == ValueType::Currency ? Product(AmountOf(a), b) : Product(AmountOf(b), a);
  }
}

Value CalculateWhole(Operation operation, std::int64_t a, std::int64_t b) {
  switch (operation) {
    case Operation::Add:
      return Whole(a + b);
    case Operation::Subtract:
      return Whole(a - b);
    default:
      return Whole(a * b);
  }
}

int Sign(bool less, bool greater) { return less ? -1 : greater ? 1 : 0; }

int ComparedTexts(const std::string& a, const std::string& b) {
  const std::size_t both = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < both; ++i) {
    const auto x = static_cast<unsigned char>(rt::FoldLetter(a[i]));
    const auto y = static_cast<unsigned char>(rt::FoldLetter(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  return Sign(a.size() < b.size(), a.size() > b.size());
}

int ComparedNumbers(const Value& a, const Value& b) {
  const ValueType first = a.Type();
  const ValueType second = b.Type();
  if (IsWhole(first) && IsWhole(second)) {
    const auto x = WholeOf(a);
    const auto y = WholeOf(b);
    return Sign(x<y, x> y);
  }
  const auto wideUnits = [](const Value& value) -> std::optional<Wide> {
    if (const auto* amount = std::get_if<Currency>(&value.Data())) return amount->Units();
    if (IsWhole(value.Type())) return static_cast<Wide>(WholeOf(value)) * kUnits;
    if (const auto* number = std::get_if<double>(&value.Data())) {
      if (const auto units = UnitsOf(*number)) return *units;
    }
    return std::nullopt;
  };
  if (first == ValueType::Currency || second == ValueType::Currency) {
    const auto x = wideUnits(a);
    const auto y = wideUnits(b);
    if (x && y) return Sign(*x<*y, *x> * y);
  }
  double x = DoubleOf(a);
  double y = DoubleOf(b);
  // A Single of 0.1 is the number that somebody entered as 0.1, and equals the 0.1 of a formula.
  if (first == ValueType::Single && second == ValueType::Double)
    y = static_cast<double>(static_cast<float>(y));
  if (first == ValueType::Double && second == ValueType::Single)
    x = static_cast<double>(static_cast<float>(x));
  return Sign(x<y, x> y);
}

bool CountsAsNumber(ValueKind kind) { return kind == ValueKind::Number || kind == ValueKind::Boolean; }

int SortRank(ValueKind kind) {
  switch (kind) {
    case ValueKind::Unknown:
      return 0;
    case ValueKind::Boolean:
    case ValueKind::Number:
      return 1;
    case ValueKind::Date:
      return 2;
    case ValueKind::Text:
      return 3;
    case ValueKind::Binary:
      return 4;
  }
  return 0;
}

/// Two values of kinds that can be compared.
int ComparedAlike(const Value& a, const Value& b, ValueKind kind) {
  switch (kind) {
    case ValueKind::Date: {
      const auto& x = std::get<rt::DateTime>(a.Data());
      const auto& y = std::get<rt::DateTime>(b.Data());
      return Sign(x < y, y < x);
    }
    case ValueKind::Text:
      return ComparedTexts(std::get<std::string>(a.Data()), std::get<std::string>(b.Data()));
    case ValueKind::Binary:
      return Sign(a.AsBinary() < b.AsBinary(), b.AsBinary() < a.AsBinary());
    default:
      return ComparedNumbers(a, b);
  }
}

}  // namespace

ValueKind KindOf(ValueType type) {
  switch (type) {
    case ValueType::Null:
      return ValueKind::Unknown;
    case ValueType::Boolean:
      return ValueKind::Boolean;
    case ValueType::Date:
      return ValueKind::Date;
    case ValueType::Text:
      return ValueKind::Text;
    case ValueType::Binary:
      return ValueKind::Binary;
    default:
      return ValueKind::Number;
  }
}

std::string_view KindName(ValueKind kind) {
  switch (kind) {
    case ValueKind::Unknown:
      return "Null";
    case ValueKind::Boolean:
      return "a condition";
    case ValueKind::Number:
      return "a number";
    case ValueKind::Date:
      return "a date";
    case ValueKind::Text:
      return "a text";
    case ValueKind::Binary:
      return "a picture";
  }
  return "";
}

Value Calculate(Operation operation, const Value& a, const Value& b) {
  const ValueType first = a.Type();
  const ValueType second = b.Type();
  if (first == ValueType::Null || second == ValueType::Null) return rt::Null{};
  if (first == ValueType::Date || second == ValueType::Date) return CalculateDates(operation, a, b);
  if (operation != Operation::Divide) {
    if (IsWhole(first) && IsWhole(second)) return CalculateWhole(operation, WholeOf(a), WholeOf(b));
    if (first == ValueType::Currency || second == ValueType::Currency)
      return CalculateAmounts(operation, a, b);
  }
  const double x = DoubleOf(a);
  const double y = DoubleOf(b);
  switch (operation) {
    case Operation::Add:
      return Finite(x + y);
    case Operation::Subtract:
      return Finite(x - y);
    case Operation::Multiply:
      return Finite(x * y);
    case Operation::Divide:
      if (y == 0) return rt::Null{};
      return Finite(x / y);
  }
  return rt::Null{};
}

Value AddToTotal(const Value& total, const Value& value) {
  if (value.IsNull()) return total;
  if (total.IsNull()) return value;
  return Calculate(Operation::Add, total, value);
}

Value Negated(const Value& value) {
  if (value.IsNull()) return value;
  return Calculate(Operation::Subtract, Value(std::int32_t{0}), value);
}

std::optional<int> Compared(const Value& a, const Value& b) {
  if (a.IsNull() || b.IsNull()) return std::nullopt;
  const ValueKind first = KindOf(a.Type());
  const ValueKind second = KindOf(b.Type());
  if (first == second) {
    // False comes before True here, as people expect of Yes and No.
    if (first == ValueKind::Boolean) return -ComparedNumbers(a, b);
    return ComparedAlike(a, b, first);
  }
  if (CountsAsNumber(first) && CountsAsNumber(second)) {
    const bool x = *Truth(a);
    const bool y = *Truth(b);
    return Sign(!x && y, x && !y);
  }
  throw PrintError("Cannot compare " + std::string(KindName(first)) + " with " +
                   std::string(KindName(second)) + ".");
}

Value Compare(Comparison comparison, const Value& a, const Value& b) {
  const auto order = Compared(a, b);
  if (!order) return rt::Null{};
  switch (comparison) {
    case Comparison::Equal:
      return *order == 0;
    case Comparison::NotEqual:
      return *order != 0;
    case Comparison::Less:
      return *order < 0;
    case Comparison::LessEqual:
      return *order <= 0;
    case Comparison::Greater:
      return *order > 0;
    case Comparison::GreaterEqual:
      return *order >= 0;
  }
  return rt::Null{};
}

int SortOrder(const Value& a, const Value& b) {
  const ValueKind first = KindOf(a.Type());
  const ValueKind second = KindOf(b.Type());
  const int rank = SortRank(first) - SortRank(second);
  if (rank != 0) return rank < 0 ? -1 : 1;
  if (first == ValueKind::Unknown) return 0;
  if (first == ValueKind::Boolean && second == ValueKind::Boolean) return -ComparedNumbers(a, b);
  return ComparedAlike(a, b, first);
}

std::optional<bool> Truth(const Value& value) {
  switch (KindOf(value.Type())) {
    case ValueKind::Unknown:
      return std::nullopt;
    case ValueKind::Boolean:
      return std::get<bool>(value.Data());
    case ValueKind::Number:
      return DoubleOf(value) != 0;
    default:
      throw PrintError(std::string(KindName(KindOf(value.Type()))) + " is no condition.");
  }
}

std::string JoinedText(const Value& value) {
  if (value.IsNull() || value.Type() == ValueType::Binary) return {};
  return value.AsText();
}

}  // namespace print
