#include "platform/print/formula/FormulaFunctions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

using rt::Currency;
using rt::Value;
using rt::ValueType;

constexpr std::array<std::string_view, 12> kMonths{"January",   "February", "March",    "April",
                                                   "May",       "June",     "July",     "August",
                                                   "September", "October",  "November", "December"};

Value IfValue(const CallArguments& call) {
  if (Truth(call.At(0)).value_or(false)) return call.At(1);
  return call.Count() > 2 ? call.At(2) : rt::Null{};
}

Value IsNullValue(const CallArguments& call) { return call.At(0).IsNull(); }

Value CoalesceValue(const CallArguments& call) {
  for (std::size_t i = 0; i < call.Count(); ++i) {
    Value value = call.At(i);
    if (!value.IsNull()) return value;
  }
  return rt::Null{};
}

Value InValue(const CallArguments& call) {
  const Value sought = call.At(0);
  if (sought.IsNull()) return rt::Null{};
  bool unknown = false;
  for (std::size_t i = 1; i < call.Count(); ++i) {
    const auto order = Compared(sought, call.At(i));
    if (order == 0) return true;
    unknown = unknown || !order;
  }
  return unknown ? Value() : Value(false);
}

Value BetweenValue(const CallArguments& call) {
  const Value value = call.At(0);
  const auto low = Compared(value, call.At(1));
  const auto high = Compared(value, call.At(2));
  if ((low && *low < 0) || (high && *high > 0)) return false;
  return low && high ? Value(true) : Value();
}

Value AbsValue(const CallArguments& call) {
  const Value value = call.At(0);
  return SortOrder(value, Value(std::int32_t{0})) < 0 ? Negated(value) : value;
}

/// Half away from zero, as display formats round.
Value RoundValue(const CallArguments& call) {
  const Value value = call.At(0);
  constexpr int kMostPlaces = 10;
  const int places = call.Count() > 1 ? std::clamp<int>(call.At(1).AsLong(), -kMostPlaces, kMostPlaces) : 0;
  if (const auto* amount = std::get_if<Currency>(&value.Data())) {
    constexpr int kPlacesOfMoney = 4;
    if (places >= kPlacesOfMoney) return value;
    std::int64_t step = 1;
    for (int i = places; i < kPlacesOfMoney; ++i) step *= 10;
    const std::int64_t units = amount->Units();
    const std::int64_t rest = units % step;
    const std::int64_t cut = units - rest;
    // Only an amount at the end of the range has no amount to round to; it is rounded towards zero then.
    const std::int64_t up = rest * 2 >= step ? step : rest * 2 <= -step ? -step : 0;
    std::int64_t rounded = 0;
    if (__builtin_add_overflow(cut, up, &rounded)) return Currency::FromUnits(cut);
    return Currency::FromUnits(rounded);
  }
  const double scale = std::pow(10.0, places);
  const double scaled = value.AsDouble() * scale;
  if (!std::isfinite(scaled) || std::abs(scaled) >= 1e15) return value;
  // What prints as 2.675 is meant as 2.675, though the nearest Double is a little less.
  const double size = std::abs(scaled);
  const double nearest = std::round(size + size * 4 * std::numeric_limits<double>::epsilon());
  const double rounded = std::copysign(nearest, scaled) / scale;
  if (places <= 0 && std::abs(rounded) <= INT32_MAX) return static_cast<std::int32_t>(rounded);
  return rounded;
}

Value IntValue(const CallArguments& call) {
  const Value value = call.At(0);
  if (const auto* amount = std::get_if<Currency>(&value.Data())) {
    constexpr std::int64_t kUnits = 10'000;
    std::int64_t whole = amount->Units() / kUnits;
    if (amount->Units() % kUnits < 0) --whole;
    return whole >= INT32_MIN && whole <= INT32_MAX ? Value(static_cast<std::int32_t>(whole))
                                                    : Value(static_cast<double>(whole));
  }
  const double whole = std::floor(value.AsDouble());
  if (std::abs(whole) <= INT32_MAX) return static_cast<std::int32_t>(whole);
  return whole;
}

Value RatioValue(const CallArguments& call) { return Calculate(Operation::Divide, call.At(0), call.At(1)); }

Value NumberValue(const CallArguments& call) {
  const Value value = call.At(0);
  if (value.Type() == ValueType::Binary || value.Type() == ValueType::Date) return rt::Null{};
  if (value.Type() != ValueType::Text) return value;
  const auto number = rt::ParseNumber(value.AsText());
  return number ? Value(*number) : Value();
}

Value TrimValue(const CallArguments& call) { return rt::Trim(JoinedText(call.At(0))); }
Value UpperValue(const CallArguments& call) { return rt::UpperCase(JoinedText(call.At(0))); }
Value LowerValue(const CallArguments& call) { return rt::LowerCase(JoinedText(call.At(0))); }

/// The byte at which the character with this place begins.
std::size_t ByteOf(std::string_view text, std::int64_t character) {
  std::size_t at = 0;
  for (; character > 0 && at < text.size(); --character) at += rt::FirstCharacter(text.substr(at)).bytes;
  return std::min(at, text.size());
}

std::string Cut(const std::string& text, std::int64_t first, std::int64_t count) {
  const std::size_t from = ByteOf(text, first);
  return text.substr(from, ByteOf(std::string_view(text).substr(from), count));
}

Value LeftValue(const CallArguments& call) {
  return Cut(JoinedText(call.At(0)), 0, std::max(0, call.At(1).AsLong()));
}

Value RightValue(const CallArguments& call) {
  const std::string text = JoinedText(call.At(0));
  const auto length = static_cast<std::int64_t>(rt::Length(text));
  const std::int64_t count = std::clamp<std::int64_t>(call.At(1).AsLong(), 0, length);
  return Cut(text, length - count, count);
}

Value MidValue(const CallArguments& call) {
  const std::int64_t first = std::max(1, call.At(1).AsLong());
  const std::int64_t count = call.Count() > 2 ? std::max(0, call.At(2).AsLong()) : INT32_MAX;
  return Cut(JoinedText(call.At(0)), first - 1, count);
}

Value LengthValue(const CallArguments& call) {
  return static_cast<std::int32_t>(rt::Length(JoinedText(call.At(0))));
}

Value ReplaceValue(const CallArguments& call) {
  const std::string text = JoinedText(call.At(0));
  const std::string sought = JoinedText(call.At(1));
  const std::string other = JoinedText(call.At(2));
  if (sought.empty()) return text;
  constexpr std::size_t kMostBytes = 1'000'000;
  std::string result;
  std::size_t at = 0;
  for (std::size_t found = text.find(sought); found != std::string::npos; found = text.find(sought, at)) {
    result.append(text, at, found - at).append(other);
    at = found + sought.size();
    if (result.size() > kMostBytes) throw PrintError("Replace makes a text of more than a million bytes.");
  }
  return result.append(text, at);
}

Value TextValue(const CallArguments& call) {
  const Value value = call.At(0);
  return FormatValue(value, call.Count() > 1 ? JoinedText(call.At(1)) : std::string());
}

Value DateValue(const CallArguments& call) {
  try {
    return rt::DateTime(call.At(0).AsLong(), call.At(1).AsLong(), call.At(2).AsLong());
  } catch (const rt::RuntimeError&) {
    return rt::Null{};
  }
}

Value YearValue(const CallArguments& call) { return std::int32_t{call.At(0).AsDate().Year()}; }
Value MonthValue(const CallArguments& call) { return std::int32_t{call.At(0).AsDate().Month()}; }
Value DayValue(const CallArguments& call) { return std::int32_t{call.At(0).AsDate().Day()}; }

Value DateAddValue(const CallArguments& call) {
  return rt::DateAdd(JoinedText(call.At(0)), call.At(1).AsLong(), call.At(2).AsDate());
}

Value DateDiffValue(const CallArguments& call) {
  return std::int32_t{rt::DateDiff(JoinedText(call.At(0)), call.At(1).AsDate(), call.At(2).AsDate())};
}

Value MonthNameValue(const CallArguments& call) {
  const Value value = call.At(0);
  const int month = value.Type() == ValueType::Date ? value.AsDate().Month() : value.AsLong();
  if (month < 1 || month > static_cast<int>(kMonths.size())) return rt::Null{};
  return kMonths[static_cast<std::size_t>(month) - 1];
}

constexpr std::array kFunctions{
    FormulaFunction{"Abs", "n", 's', true, AbsValue},
    FormulaFunction{"Between", "aaa", 'b', false, BetweenValue},
    FormulaFunction{"Coalesce", "aa*", 'c', false, CoalesceValue},
    FormulaFunction{"Date", "www", 'd', true, DateValue},
    FormulaFunction{"DateAdd", "twd", 'd', true, DateAddValue},
    FormulaFunction{"DateDiff", "tdd", 'w', true, DateDiffValue},
    FormulaFunction{"Day", "d", 'w', true, DayValue},
    FormulaFunction{"If", "ba?a", 'm', false, IfValue},
    FormulaFunction{"In", "aa*", 'b', false, InValue},
    FormulaFunction{"Int", "n", 'w', true, IntValue},
    FormulaFunction{"IsNull", "a", 'b', false, IsNullValue},
    FormulaFunction{"Left", "tw", 't', true, LeftValue},
    FormulaFunction{"Length", "t", 'w', true, LengthValue},
    FormulaFunction{"Lower", "t", 't', true, LowerValue},
    FormulaFunction{"Mid", "tw?w", 't', true, MidValue},
    FormulaFunction{"Month", "d", 'w', true, MonthValue},
    FormulaFunction{"MonthName", "v", 't', true, MonthNameValue},
    FormulaFunction{"Number", "a", 'n', true, NumberValue},
    FormulaFunction{"Ratio", "nn", 'n', true, RatioValue},
    FormulaFunction{"Replace", "ttt", 't', true, ReplaceValue},
    FormulaFunction{"Right", "tw", 't', true, RightValue},
    FormulaFunction{"Round", "n?w", 's', true, RoundValue},
    FormulaFunction{"Text", "a?t", 't', false, TextValue},
    FormulaFunction{"Trim", "t", 't', true, TrimValue},
    FormulaFunction{"Upper", "t", 't', true, UpperValue},
    FormulaFunction{"Year", "d", 'w', true, YearValue},
};

}  // namespace

std::size_t FormulaFunction::Least() const {
  const auto optional = arguments.find('?');
  if (optional != std::string_view::npos) return optional;
  return arguments.ends_with('*') ? arguments.size() - 1 : arguments.size();
}

std::size_t FormulaFunction::Most() const {
  if (arguments.ends_with('*')) return std::numeric_limits<std::size_t>::max();
  return static_cast<std::size_t>(
      std::count_if(arguments.begin(), arguments.end(), [](char c) { return c != '?'; }));
}

char FormulaFunction::Letter(std::size_t place) const {
  for (std::size_t i = 0, argument = 0; i < arguments.size(); ++i) {
    if (arguments[i] == '?') continue;
    if (arguments[i] == '*') return arguments[i - 1];
    if (argument++ == place) return arguments[i];
  }
  return 'a';
}

const FormulaFunction* FindFunction(std::string_view name) {
  for (const auto& function : kFunctions)
    if (rt::EqualNoCase(function.name, name)) return &function;
  return nullptr;
}

std::vector<std::string_view> FunctionNames() {
  std::vector<std::string_view> names;
  for (const auto& function : kFunctions) names.push_back(function.name);
  return names;
}

}  // namespace print
