// How values of reports are computed with and compared: in formulas, totals, groups and selections alike.
#pragma once

#include <optional>

#include "platform/print/formula/FormulaNode.h"
#include "platform/runtime/Value.h"

namespace print {

/// The kinds of values between which operators tell. Boolean counts as a number only where nothing else fits.
enum class ValueKind { Unknown, Boolean, Number, Date, Text, Binary };
ValueKind KindOf(rt::ValueType type);
/// "a number", "a text", ...
std::string_view KindName(ValueKind kind);

/// a + b and so on. Null on either side makes Null; a division by zero is Null. Whole numbers stay whole
/// until they no longer fit, and become Doubles then. Money with a number stays money, exact to four decimals
/// with ties to even; a quotient is a Double. A Date and a number of days make a Date, two Dates a number of
/// days. Throws PrintError where a value is no number or the result is beyond the range.
rt::Value Calculate(Operation operation, const rt::Value& a, const rt::Value& b);
/// For totals: a + b, where a Null counts as nothing.
rt::Value AddToTotal(const rt::Value& total, const rt::Value& value);
rt::Value Negated(const rt::Value& value);

/// Below 0, 0 or above 0; nothing if one is Null. Texts compare without regard to the case of A to Z. Money
/// and whole numbers compare exactly. Throws PrintError for a text with a number and the like.
std::optional<int> Compared(const rt::Value& a, const rt::Value& b);
/// Whether the comparison holds: a Boolean, or Null.
rt::Value Compare(Comparison comparison, const rt::Value& a, const rt::Value& b);
/// An order of all values, as rows are sorted: Null first, then numbers, dates, texts, pictures; within a
/// kind as Compared.
int SortOrder(const rt::Value& a, const rt::Value& b);
/// Whether two keys are of one group.
inline bool SameKey(const rt::Value& a, const rt::Value& b) { return SortOrder(a, b) == 0; }

/// Whether a condition holds: 1, 0, or nothing for Null. A number holds if it is not 0. Throws PrintError for
/// a value that is no condition.
std::optional<bool> Truth(const rt::Value& value);
/// As '&' joins it: Null and pictures are empty.
std::string JoinedText(const rt::Value& value);

}  // namespace print
