// The values of columns, controls and formulas.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/runtime/Currency.h"
#include "platform/runtime/DateTime.h"

namespace rt {

/// The absence of a value. Null, an empty text and zero are three different things everywhere.
struct Null {
  friend bool operator==(Null, Null) = default;
};

enum class ValueType { Null, Boolean, Integer, Long, Single, Double, Currency, Date, Text, Binary };

using Binary = std::vector<std::uint8_t>;

/// A value with its type: Boolean, Integer (16 bits), Long (32 bits), Single, Double, Currency, Date, Text
/// (UTF-8), Binary, or Null. The As... functions convert as the field's runtime does and throw RuntimeError:
/// 94 for a Null, 13 if the value has no such form, 6 if it does not fit. Floating values become whole
/// numbers with ties to even.
class Value {
 public:
  Value() = default;
  Value(Null) {}
  Value(bool v) : data_(v) {}
  Value(std::int16_t v) : data_(v) {}
  Value(std::int32_t v) : data_(v) {}
  Value(float v) : data_(v) {}
  Value(double v) : data_(v) {}
  Value(Currency v) : data_(v) {}
  Value(DateTime v) : data_(v) {}
  Value(std::string v) : data_(std::move(v)) {}
  Value(std::string_view v) : data_(std::string(v)) {}
  Value(const char* v) : data_(std::string(v)) {}
  Value(Binary v) : data_(std::move(v)) {}

  ValueType Type() const { return static_cast<ValueType>(data_.index()); }
  bool IsNull() const { return data_.index() == 0; }

  /// True for every number other than 0 and for the texts "True" and "False" by their meaning.
  bool AsBoolean() const;
  std::int16_t AsInteger() const;
  std::int32_t AsLong() const;
  float AsSingle() const;
  double AsDouble() const;
  Currency AsCurrency() const;
  DateTime AsDate() const;
  const Binary& AsBinary() const;
  /// The plain text of the value: numbers as PlainText writes them, dates in the general form, "True" and
  /// "False".
  std::string AsText() const;
  /// AsText, but a Null is the empty text, as when texts are joined.
  std::string Shown() const;

  const std::variant<Null, bool, std::int16_t, std::int32_t, float, double, Currency, DateTime, std::string,
                     Binary>&
  Data() const {
    return data_;
  }

  /// The same type and the same content; 1 as Integer and 1 as Long are not identical, and Null is identical
  /// to Null.
  friend bool operator==(const Value&, const Value&) = default;

 private:
  std::variant<Null, bool, std::int16_t, std::int32_t, float, double, Currency, DateTime, std::string, Binary>
      data_;
};

/// Sum and difference as the field's runtime computes them. A Null on either side makes the result Null;
/// Currency with a whole number or a Currency stays Currency; Single with Single, Integer or Boolean stays
/// Single; Integer with Integer is Integer; everything wider is Long, then Double. A Date and a number of
/// days make a Date; the difference of two Dates is in days, as a Double. Throws RuntimeError 6 on overflow
/// and 13 for a Binary or a text that is not a number.
Value Add(const Value& a, const Value& b);
Value Subtract(const Value& a, const Value& b);

}  // namespace rt
