#include "platform/print/data/Pushdown.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "platform/print/formula/FormulaFunctions.h"
#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

using rt::Value;
using store::ColumnType;

/// More would make a statement that the engine refuses.
constexpr std::size_t kMostTerms = 200;
/// Half of the smallest amount.
constexpr double kHalfUnit = 0.00005;

std::string NumberText(double number) {
  // No exponent, and as many digits as bring the same Double back.
  std::array<char, 400> text;
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed).ptr;
  std::string digits(text.data(), end);
  if (digits.find('.') == std::string::npos && std::abs(number) > INT32_MAX) digits += ".0";
  return digits;
}

std::string DateText(const rt::DateTime& date) {
  constexpr int kFirstYear = 1000;  // shorter years are read in another way
  if (date.Year() < kFirstYear) return {};
  const std::string text = rt::GeneralDate(date);
  // A time on the day zero has no date in its general form.
  return text.find('/') == std::string::npos ? std::string() : "#" + text + "#";
}

Comparison Mirrored(Comparison comparison) {
  switch (comparison) {
    case Comparison::Less:
      return Comparison::Greater;
    case Comparison::LessEqual:
      return Comparison::GreaterEqual;
    case Comparison::Greater:
      return Comparison::Less;
    case Comparison::GreaterEqual:
      return Comparison::LessEqual;
    default:
      return comparison;
  }
}

/// `column` compared with anything between `low` and `high`, which are literals around one value: a value
/// that is stored not quite as it should be is found as well.
std::string Around(const std::string& column, Comparison comparison, const std::string& low,
                   const std::string& high) {
  switch (comparison) {
    case Comparison::Equal:
      return "(" + column + " >= " + low + " AND " + column + " <= " + high + ")";
    case Comparison::Less:
    case Comparison::LessEqual:
      return column + " <= " + high;
    case Comparison::Greater:
    case Comparison::GreaterEqual:
      return column + " >= " + low;
    case Comparison::NotEqual:
      break;
  }
  return {};
}

std::string Exactly(const std::string& column, Comparison comparison, const std::string& literal) {
  constexpr std::array<std::string_view, 6> kSigns{" = ", " <> ", " < ", " <= ", " > ", " >= "};
  return column + std::string(kSigns[static_cast<std::size_t>(comparison)]) + literal;
}

class Pusher {
 public:
  Pusher(const std::function<QueryColumn(int)>& column, const FormulaValues& values)
      : column_(column), values_(values) {}

  std::string Condition(const FormulaNode& node) {
    switch (node.kind) {
      case NodeKind::And:
        return All(node);
      case NodeKind::Or:
        return Any(node);
      case NodeKind::Compare:
        return Comparing(*node.operands[0], node.comparison, *node.operands[1]);
      case NodeKind::Call:
        return Called(node);
      default:
        return {};
    }
  }

 private:
  /// Each part that SQL can say leaves out rows.
  std::string All(const FormulaNode& node) {
    std::string all;
    for (const auto& operand : node.operands) {
      const std::string part = Condition(*operand);
      if (!part.empty()) all += (all.empty() ? "(" : " AND ") + part;
    }
    return all.empty() ? all : all + ")";
  }

  /// Only if SQL can say each part, none leaves out too much.
  std::string Any(const FormulaNode& node) {
    std::string any;
    for (const auto& operand : node.operands) {
      const std::string part = Condition(*operand);
      if (part.empty()) return {};
      any += (any.empty() ? "(" : " OR ") + part;
    }
    return any + ")";
  }

  std::string Called(const FormulaNode& node) {
    const auto& operands = node.operands;
    if (node.function->name == "Between") {
      const std::string low = Comparing(*operands[0], Comparison::GreaterEqual, *operands[1]);
      const std::string high = Comparing(*operands[0], Comparison::LessEqual, *operands[2]);
      if (low.empty() || high.empty()) return low + high;
      return "(" + low + " AND " + high + ")";
    }
    if (node.function->name != "In") return {};
    std::string any;
    for (std::size_t i = 1; i < operands.size(); ++i) {
      const std::string part = Comparing(*operands[0], Comparison::Equal, *operands[i]);
      if (part.empty()) return {};
      any += (any.empty() ? "(" : " OR ") + part;
    }
    return any + ")";
  }

  std::string Comparing(const FormulaNode& left, Comparison comparison, const FormulaNode& right) {
    if (terms_ >= kMostTerms) return {};
    const bool mirrored = right.kind == NodeKind::Field;
    const FormulaNode& field = mirrored ? right : left;
    const auto value = Fixed(mirrored ? left : right);
    if (field.kind != NodeKind::Field || !value) return {};
    const std::string text =
        Compared(column_(field.place), mirrored ? Mirrored(comparison) : comparison, *value);
    if (!text.empty()) ++terms_;
    return text;
  }

  /// The value of a part that is the same for all rows.
  std::optional<Value> Fixed(const FormulaNode& node) const {
    if (!ReadsNothing(node)) return std::nullopt;
    try {
      return Evaluate(node, values_);
    } catch (const rt::Error&) {
      return std::nullopt;
    }
  }

  static bool ReadsNothing(const FormulaNode& node) {
    if (node.uses != 0 || node.kind == NodeKind::Field) return false;
    return std::all_of(node.operands.begin(), node.operands.end(),
                       [](const NodePointer& operand) { return ReadsNothing(*operand); });
  }

  static std::string Compared(const QueryColumn& column, Comparison comparison, const Value& value) {
    const ValueKind kind = KindOf(value.Type());
    switch (column.type) {
      case ColumnType::Text:
      case ColumnType::Memo:
        return kind == ValueKind::Text ? Exactly(column.name, comparison, SqlLiteral(value)) : std::string();
      case ColumnType::DateTime:
        return kind == ValueKind::Date ? ComparedDate(column.name, comparison, value.AsDate())
                                       : std::string();
      case ColumnType::Counter:
      case ColumnType::Short:
      case ColumnType::Long:
      case ColumnType::Double:
        return kind == ValueKind::Number ? Exactly(column.name, comparison, NumberText(value.AsDouble()))
                                         : std::string();
      case ColumnType::Single:
        return kind == ValueKind::Number ? ComparedSingle(column.name, comparison, value.AsDouble())
                                         : std::string();
      case ColumnType::Currency:
        return kind == ValueKind::Number ? ComparedAmount(column.name, comparison, value.AsDouble())
                                         : std::string();
      default:
        return {};
    }
  }

  /// Another program may have stored a date without its time, which comes before the day's own text.
  static std::string ComparedDate(const std::string& column, Comparison comparison,
                                  const rt::DateTime& date) {
    const rt::DateTime dayBefore(date.Time() - std::chrono::hours(24));
    const std::string low = DateText(dayBefore);
    const std::string high = DateText(date);
    return low.empty() || high.empty() ? std::string() : Around(column, comparison, low, high);
  }

  /// A Single may be stored as the Double that it was made from.
  static std::string ComparedSingle(const std::string& column, Comparison comparison, double number) {
    constexpr float kMost = 1e30F;
    if (!(std::abs(number) < static_cast<double>(kMost))) return {};
    const auto single = static_cast<float>(number);
    return Around(column, comparison, NumberText(static_cast<double>(std::nextafterf(single, -kMost))),
                  NumberText(static_cast<double>(std::nextafterf(single, kMost))));
  }

  static std::string ComparedAmount(const std::string& column, Comparison comparison, double number) {
    constexpr double kMost = 9e11;  // beyond it neighboring Doubles are further apart than amounts
    if (!(std::abs(number) < kMost)) return {};
    if (comparison == Comparison::NotEqual) return Exactly(column, comparison, NumberText(number));
    return Around(column, comparison, NumberText(number - kHalfUnit), NumberText(number + kHalfUnit));
  }

  const std::function<QueryColumn(int)>& column_;
  const FormulaValues& values_;
  std::size_t terms_ = 0;
};

}  // namespace

std::string PushedCondition(const FormulaNode& selection, const std::function<QueryColumn(int field)>& column,
                            const FormulaValues& values) {
  return Pusher(column, values).Condition(selection);
}

std::string SqlLiteral(const Value& value) {
  switch (value.Type()) {
    case rt::ValueType::Text: {
      const std::string text = value.AsText();
      return text.find('\0') == std::string::npos ? rt::Quoted(text) : std::string();
    }
    case rt::ValueType::Integer:
    case rt::ValueType::Long:
      return value.AsText();
    case rt::ValueType::Single:
    case rt::ValueType::Double:
      return NumberText(value.AsDouble());
    case rt::ValueType::Date:
      return DateText(value.AsDate());
    default:
      return {};
  }
}

}  // namespace print
