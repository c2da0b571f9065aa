#include "platform/runtime/Value.h"

#include <cmath>
#include <limits>

#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"

namespace rt {
namespace {

constexpr int kOverflow = 6;
constexpr int kMismatch = 13;
constexpr int kNull = 94;
constexpr double kSecondsOfDay = 86'400;
constexpr std::int64_t kUnits = 10'000;

/// Why a value cannot become a number.
[[noreturn]] void Refuse(ValueType type) { throw RuntimeError(type == ValueType::Null ? kNull : kMismatch); }

/// The nearest whole number, ties to even.
template <typename Whole>
Whole WholeOf(double number) {
  const double whole = std::nearbyint(number);
  // Written so that what is not a number fails too.
  if (!(whole >= std::numeric_limits<Whole>::min() && whole <= std::numeric_limits<Whole>::max())) {
    throw RuntimeError(kOverflow);
  }
  return static_cast<Whole>(whole);
}

template <typename Whole>
Whole Fitting(std::int64_t number) {
  if (number < std::numeric_limits<Whole>::min() || number > std::numeric_limits<Whole>::max()) {
    throw RuntimeError(kOverflow);
  }
  return static_cast<Whole>(number);
}

std::int64_t WholeOf(Currency amount) {
  const std::int64_t whole = amount.Units() / kUnits;
  const std::int64_t rest = amount.Units() % kUnits;
  const std::int64_t size = rest < 0 ? -rest : rest;
  const bool away = size > kUnits / 2 || (size == kUnits / 2 && whole % 2 != 0);
  if (!away) return whole;
  return rest < 0 ? whole - 1 : whole + 1;
}

float SingleOf(double number) {
  const auto single = static_cast<float>(number);
  if (std::isinf(single)) throw RuntimeError(kOverflow);
  return single;
}

double NumberOf(const std::string& text) {
  const auto number = ParseNumber(text);
  if (!number) throw RuntimeError(kMismatch);
  return *number;
}

/// Days since the day zero. The fraction is the time of day and counts forward, even before the day zero.
double SerialOf(DateTime date) {
  const auto seconds = static_cast<double>((date.Time() - DateTime().Time()).count());
  const double days = std::floor(seconds / kSecondsOfDay);
  const double time = (seconds - days * kSecondsOfDay) / kSecondsOfDay;
  return days < 0 ? days - time : days + time;
}

DateTime DateOf(double serial) {
  // 1/1/100 and 12/31/9999.
  static constexpr double kFirstDay = -657'434;
  static constexpr double kLastDay = 2'958'465;
  const double days = std::trunc(serial);
  const double seconds = std::nearbyint(std::abs(serial - days) * kSecondsOfDay);
  const double lastSecond = seconds == kSecondsOfDay ? kLastDay - 1 : kLastDay;
  if (!(days >= kFirstDay && days <= lastSecond)) throw RuntimeError(kOverflow);
  return DateTime(DateTime().Time() +
                  std::chrono::seconds(static_cast<std::int64_t>(days * kSecondsOfDay + seconds)));
}

template <typename Whole>
Whole WholeValue(const Value& value) {
  switch (value.Type()) {
    case ValueType::Boolean:
      return std::get<bool>(value.Data()) ? Whole{-1} : Whole{0};
    case ValueType::Integer:
      return std::get<std::int16_t>(value.Data());
    case ValueType::Long:
      return Fitting<Whole>(std::get<std::int32_t>(value.Data()));
    case ValueType::Currency:
      return Fitting<Whole>(WholeOf(std::get<Currency>(value.Data())));
    default:
      return WholeOf<Whole>(value.AsDouble());
  }
}

bool IsWhole(ValueType type) {
  return type == ValueType::Boolean || type == ValueType::Integer || type == ValueType::Long;
}

bool IsShort(ValueType type) { return type == ValueType::Boolean || type == ValueType::Integer; }

/// The type of a sum or difference of two values that are not Null.
ValueType ResultType(ValueType a, ValueType b) {
  const auto oneIs = [&](ValueType type) { return a == type || b == type; };
  const auto bothAre = [&](auto test) { return test(a) && test(b); };
  if (oneIs(ValueType::Binary)) throw RuntimeError(kMismatch);
  if (bothAre(IsShort)) return ValueType::Integer;
  if (bothAre(IsWhole)) return ValueType::Long;
  if (bothAre([](ValueType t) { return t == ValueType::Currency || IsWhole(t); })) return ValueType::Currency;
  if (bothAre([](ValueType t) { return t == ValueType::Single || IsShort(t); })) return ValueType::Single;
  return oneIs(ValueType::Date) ? ValueType::Date : ValueType::Double;
}

Value Combine(const Value& a, const Value& b, bool subtract) {
  // What most sums are made of.
  if (const auto* x = std::get_if<Currency>(&a.Data()))
    if (const auto* y = std::get_if<Currency>(&b.Data())) return subtract ? *x - *y : *x + *y;
  if (a.IsNull() || b.IsNull()) return Null{};
  const std::int64_t sign = subtract ? -1 : 1;
  switch (ResultType(a.Type(), b.Type())) {
    case ValueType::Integer:
      return Fitting<std::int16_t>(a.AsLong() + sign * b.AsLong());
    case ValueType::Long:
      return Fitting<std::int32_t>(a.AsLong() + sign * b.AsLong());
    case ValueType::Currency:
      return subtract ? a.AsCurrency() - b.AsCurrency() : a.AsCurrency() + b.AsCurrency();
    case ValueType::Single:
      return SingleOf(subtract ? a.AsSingle() - b.AsSingle() : a.AsSingle() + b.AsSingle());
    default:
      break;
  }
  const double result = subtract ? a.AsDouble() - b.AsDouble() : a.AsDouble() + b.AsDouble();
  if (!std::isfinite(result)) throw RuntimeError(kOverflow);
  const bool aDate = a.Type() == ValueType::Date;
  const bool bDate = b.Type() == ValueType::Date;
  if (aDate != bDate || (aDate && !subtract)) return DateOf(result);
  return result;
}

}  // namespace

bool Value::AsBoolean() const {
  switch (Type()) {
    case ValueType::Boolean:
      return std::get<bool>(data_);
    case ValueType::Currency:
      return std::get<Currency>(data_) != Currency();
    case ValueType::Text: {
      const auto& text = std::get<std::string>(data_);
      if (EqualNoCase(text, "True")) return true;
      if (EqualNoCase(text, "False")) return false;
      return NumberOf(text) != 0;
    }
    default:
      return AsDouble() != 0;
  }
}

std::int16_t Value::AsInteger() const { return WholeValue<std::int16_t>(*this); }

std::int32_t Value::AsLong() const { return WholeValue<std::int32_t>(*this); }

float Value::AsSingle() const {
  if (const float* single = std::get_if<float>(&data_)) return *single;
  return SingleOf(AsDouble());
}

double Value::AsDouble() const {
  switch (Type()) {
    case ValueType::Boolean:
      return std::get<bool>(data_) ? -1 : 0;
    case ValueType::Integer:
      return std::get<std::int16_t>(data_);
    case ValueType::Long:
      return std::get<std::int32_t>(data_);
    case ValueType::Single:
      return std::get<float>(data_);
    case ValueType::Double:
      return std::get<double>(data_);
    case ValueType::Currency:
      return std::get<Currency>(data_).ToDouble();
    case ValueType::Date:
      return SerialOf(std::get<DateTime>(data_));
    case ValueType::Text:
      return NumberOf(std::get<std::string>(data_));
    default:
      Refuse(Type());
  }
}

Currency Value::AsCurrency() const {
  switch (Type()) {
    case ValueType::Currency:
      return std::get<Currency>(data_);
    case ValueType::Boolean:
    case ValueType::Integer:
    case ValueType::Long:
      return Currency::FromWhole(AsLong());
    case ValueType::Text: {
      const auto& text = std::get<std::string>(data_);
      if (const auto amount = Currency::Parse(text)) return *amount;
      throw RuntimeError(IsNumeric(text) ? kOverflow : kMismatch);
    }
    default:
      return Currency::RoundedToEven(AsDouble());
  }
}

DateTime Value::AsDate() const {
  switch (Type()) {
    case ValueType::Date:
      return std::get<DateTime>(data_);
    case ValueType::Text:
      if (const auto date = ParseDate(std::get<std::string>(data_))) return *date;
      return DateOf(AsDouble());
    default:
      return DateOf(AsDouble());
  }
}

const Binary& Value::AsBinary() const {
  if (const Binary* binary = std::get_if<Binary>(&data_)) return *binary;
  Refuse(Type());
}

std::string Value::AsText() const {
  switch (Type()) {
    case ValueType::Text:
      return std::get<std::string>(data_);
    case ValueType::Boolean:
      return std::get<bool>(data_) ? "True" : "False";
    case ValueType::Integer:
      return std::to_string(std::get<std::int16_t>(data_));
    case ValueType::Long:
      return std::to_string(std::get<std::int32_t>(data_));
    case ValueType::Single:
      return PlainText(std::get<float>(data_));
    case ValueType::Double:
      return PlainText(std::get<double>(data_));
    case ValueType::Currency:
      return std::get<Currency>(data_).PlainText();
    case ValueType::Date:
      return GeneralDate(std::get<DateTime>(data_));
    default:
      Refuse(Type());
  }
}

std::string Value::Shown() const { return IsNull() ? std::string() : AsText(); }

Value Add(const Value& a, const Value& b) { return Combine(a, b, false); }

Value Subtract(const Value& a, const Value& b) { return Combine(a, b, true); }

}  // namespace rt
