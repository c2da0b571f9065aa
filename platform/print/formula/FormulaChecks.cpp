#include "platform/print/formula/FormulaChecks.h"

#include <algorithm>
#include <array>

#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

using rt::Value;
using rt::ValueType;

/// Deep enough for every formula that a person or a program writes; each level takes stack at evaluation.
constexpr int kMostDepth = 1'000;
/// Named formulas that double each other would take forever.
constexpr int kMostWeight = 100'000;

/// The values of a formula that reads nothing.
class NoValues : public FormulaValues {
 public:
  const Value& Field(int) const override { return null_; }
  Value Neighbor(int, int) const override { return {}; }
  Value TotalOf(int) const override { return {}; }
  bool FirstInGroup(int) const override { return false; }
  bool LastInGroup(int) const override { return false; }
  std::int64_t RowNumber() const override { return 0; }
  int PageNumber() const override { return 0; }
  Value PageCount() const override { return {}; }
  bool Continued() const override { return false; }
  std::string ReportName() const override { return {}; }
  std::string User() const override { return {}; }
  rt::DateTime PrintTime() const override { return {}; }

 private:
  Value null_;
};

bool AllLiterals(const FormulaNode& node) {
  return std::all_of(node.operands.begin(), node.operands.end(),
                     [](const NodePointer& operand) { return operand->kind == NodeKind::Literal; });
}

/// Counts the tree and folds it.
NodePointer Finish(FormulaNode node) {
  for (const auto& operand : node.operands) {
    node.depth = std::max(node.depth, operand->depth + 1);
    node.weight = std::min(kMostWeight + 1, node.weight + operand->weight);
    node.uses |= operand->uses;
  }
  if (node.depth > kMostDepth)
    throw FormulaError("The formula is nested too deeply here: more than 1,000 steps.", node.where);
  if (node.weight > kMostWeight)
    throw FormulaError("The formula is too large: more than 100,000 steps with its named formulas.",
                       node.where);
  if (!node.operands.empty() && AllLiterals(node)) {
    try {
      return MakeLiteral(Evaluate(node, NoValues()), node.where);
    } catch (const rt::Error&) {
      // It fails at evaluation in the same words, where the row is known.
    }
  }
  return std::make_shared<const FormulaNode>(std::move(node));
}

FormulaNode NodeOf(NodeKind kind, std::vector<NodePointer> operands, Place where) {
  FormulaNode node;
  node.kind = kind;
  node.operands = std::move(operands);
  node.where = where;
  return node;
}

ValueKind Kind(const NodePointer& node) { return KindOf(node->type); }
std::string Name(const NodePointer& node) { return std::string(KindName(Kind(node))); }

bool IsCondition(ValueKind kind) {
  return kind == ValueKind::Boolean || kind == ValueKind::Number || kind == ValueKind::Unknown;
}

bool IsNumber(ValueKind kind) { return kind == ValueKind::Number || kind == ValueKind::Unknown; }

bool IsWhole(ValueType type) { return type == ValueType::Integer || type == ValueType::Long; }

/// The type of a value that is one of several; Null if these are of different kinds.
ValueType Common(ValueType a, ValueType b) {
  if (a == b) return a;
  if (KindOf(a) != ValueKind::Number || KindOf(b) != ValueKind::Number) return ValueType::Null;
  return a == ValueType::Currency || b == ValueType::Currency ? ValueType::Currency : ValueType::Double;
}

ValueType TypeOfArithmetic(Operation operation, ValueType a, ValueType b) {
  if (a == ValueType::Date || b == ValueType::Date) {
    if (a == b) return ValueType::Double;
    return ValueType::Date;
  }
  if (a == ValueType::Null || b == ValueType::Null) return ValueType::Null;
  if (operation == Operation::Divide) return ValueType::Double;
  if (a == ValueType::Currency || b == ValueType::Currency) return ValueType::Currency;
  return IsWhole(a) && IsWhole(b) ? ValueType::Long : ValueType::Double;
}

/// The number of an argument in words.
std::string Ordinal(std::size_t place) {
  constexpr std::array<std::string_view, 5> kNames{"first", "second", "third", "fourth", "fifth"};
  return place < kNames.size() ? std::string(kNames[place]) : std::to_string(place + 1) + "th";
}

void CheckArgument(const FormulaFunction& function, std::size_t place, const NodePointer& argument) {
  const ValueKind kind = Kind(argument);
  bool fits = true;
  std::string_view wanted;
  switch (function.Letter(place)) {
    case 'b':
      fits = IsCondition(kind);
      wanted = "a condition";
      break;
    case 'n':
    case 'w':
      fits = IsNumber(kind);
      wanted = "a number";
      break;
    case 'd':
      fits = kind == ValueKind::Date || kind == ValueKind::Unknown;
      wanted = "a date";
      break;
    case 'v':
      fits = kind == ValueKind::Date || IsNumber(kind);
      wanted = "a date or the number of a month";
      break;
    case 't':
      fits = kind != ValueKind::Binary;
      wanted = "a text";
      break;
    default:
      break;
  }
  if (fits) return;
  throw FormulaError("The " + Ordinal(place) + " argument of " + std::string(function.name) + " must be " +
                         std::string(wanted) + "; this is " + Name(argument) + ".",
                     argument->where);
}

void CheckComparable(const NodePointer& left, const NodePointer& right, Place where) {
  const ValueKind a = Kind(left);
  const ValueKind b = Kind(right);
  if (a == ValueKind::Binary || b == ValueKind::Binary)
    throw FormulaError("A picture cannot be compared; IsNull tells whether there is one.", where);
  if (a == b || a == ValueKind::Unknown || b == ValueKind::Unknown) return;
  if (IsCondition(a) && IsCondition(b)) return;
  std::string text = "Cannot compare " + Name(left) + " with " + Name(right) + ".";
  if (a == ValueKind::Date || b == ValueKind::Date)
    text += " A date is written Date(year, month, day).";
  else if (a == ValueKind::Text || b == ValueKind::Text)
    text += " A text stands in quotation marks; Number() makes a number of one.";
  throw FormulaError(text, where);
}

ValueType ResultOf(const FormulaFunction& function, const std::vector<NodePointer>& operands) {
  switch (function.result) {
    case 'b':
      return ValueType::Boolean;
    case 'n':
      return ValueType::Double;
    case 'w':
      return ValueType::Long;
    case 't':
      return ValueType::Text;
    case 'd':
      return ValueType::Date;
    case 's':
      return operands[0]->type;
    default:
      break;
  }
  const std::size_t first = function.result == 'm' ? 1 : 0;
  ValueType type = operands[first]->type;
  for (std::size_t i = first + 1; i < operands.size(); ++i) type = Common(type, operands[i]->type);
  return type;
}

/// Words that choose among a few meanings are checked before any row is read.
void CheckWords(const FormulaFunction& function, const std::vector<NodePointer>& operands) {
  const auto literal = [&](std::size_t i) {
    return i < operands.size() && operands[i]->kind == NodeKind::Literal ? JoinedText(operands[i]->literal)
                                                                         : std::string();
  };
  if (function.name == "Text") {
    if (const std::string format = literal(1); !IsFormat(format))
      throw FormulaError("There is no display format \"" + format + "\".", operands[1]->where);
  }
  const bool add = function.name == "DateAdd";
  if (!add && function.name != "DateDiff") return;
  const std::string interval = literal(0);
  if (operands[0]->kind != NodeKind::Literal) return;
  constexpr std::array<std::string_view, 6> kAdded{"d", "m", "yyyy", "h", "n", "s"};
  constexpr std::array<std::string_view, 4> kCounted{"d", "w", "m", "yyyy"};
  const bool known = add ? std::find(kAdded.begin(), kAdded.end(), interval) != kAdded.end()
                         : std::find(kCounted.begin(), kCounted.end(), interval) != kCounted.end();
  if (known) return;
  throw FormulaError(std::string(function.name) + " knows the intervals " +
                         (add ? "d, m, yyyy, h, n and s" : "d, w, m and yyyy") + ", but not \"" + interval +
                         "\".",
                     operands[0]->where);
}

}  // namespace

NodePointer MakeLiteral(Value value, Place where) {
  FormulaNode node;
  node.type = value.Type();
  node.literal = std::move(value);
  node.where = where;
  return std::make_shared<const FormulaNode>(std::move(node));
}

NodePointer MakeField(int place, ValueType type, Place where) {
  FormulaNode node;
  node.kind = NodeKind::Field;
  node.place = place;
  node.type = type;
  node.where = where;
  return std::make_shared<const FormulaNode>(std::move(node));
}

NodePointer MakeLogical(NodeKind kind, std::vector<NodePointer> operands, Place where) {
  const std::string_view name = kind == NodeKind::Not ? "NOT" : kind == NodeKind::And ? "AND" : "OR";
  for (const auto& operand : operands) {
    if (IsCondition(Kind(operand))) continue;
    throw FormulaError(std::string(name) + " needs conditions; this is " + Name(operand) + ".",
                       operand->where);
  }
  FormulaNode node = NodeOf(kind, std::move(operands), where);
  node.type = ValueType::Boolean;
  return Finish(std::move(node));
}

NodePointer MakeComparison(Comparison comparison, NodePointer left, NodePointer right, Place where) {
  CheckComparable(left, right, where);
  FormulaNode node = NodeOf(NodeKind::Compare, {std::move(left), std::move(right)}, where);
  node.comparison = comparison;
  node.type = ValueType::Boolean;
  return Finish(std::move(node));
}

NodePointer MakeArithmetic(Operation operation, NodePointer left, NodePointer right, Place where) {
  const ValueKind a = Kind(left);
  const ValueKind b = Kind(right);
  constexpr std::string_view kSigns = "+-*/";
  const std::string sign(1, kSigns[static_cast<std::size_t>(operation)]);
  const bool dateMoves = (operation == Operation::Add && a != b) || operation == Operation::Subtract;
  const auto fits = [&](ValueKind kind) { return IsNumber(kind) || (kind == ValueKind::Date && dateMoves); };
  if (!fits(a) || !fits(b) ||
      (operation == Operation::Subtract && b == ValueKind::Date && a == ValueKind::Number)) {
    std::string text = "Cannot calculate " + Name(left) + " " + sign + " " + Name(right) + ".";
    if (a == ValueKind::Text && b == ValueKind::Text && operation == Operation::Add)
      text += " Texts are joined with &.";
    else if (a == ValueKind::Text || b == ValueKind::Text)
      text += " Number() makes a number of a text.";
    throw FormulaError(text, where);
  }
  FormulaNode node = NodeOf(NodeKind::Arithmetic, {std::move(left), std::move(right)}, where);
  node.operation = operation;
  node.type = TypeOfArithmetic(operation, node.operands[0]->type, node.operands[1]->type);
  return Finish(std::move(node));
}

NodePointer MakeNegation(NodePointer operand, Place where) {
  if (!IsNumber(Kind(operand)))
    throw FormulaError("The sign - needs a number; this is " + Name(operand) + ".", where);
  FormulaNode node = NodeOf(NodeKind::Negate, {std::move(operand)}, where);
  node.type = node.operands[0]->type;
  return Finish(std::move(node));
}

NodePointer MakeJoin(std::vector<NodePointer> operands, Place where) {
  for (const auto& operand : operands)
    if (Kind(operand) == ValueKind::Binary)
      throw FormulaError("A picture cannot be joined to a text.", operand->where);
  FormulaNode node = NodeOf(NodeKind::Join, std::move(operands), where);
  node.type = ValueType::Text;
  return Finish(std::move(node));
}

NodePointer MakeCall(const FormulaFunction& function, std::vector<NodePointer> operands, Place where) {
  const std::size_t count = operands.size();
  if (count < function.Least() || count > function.Most()) {
    const std::string least = std::to_string(function.Least());
    const std::string wanted = function.Most() == function.Least() ? least
                               : function.Most() > function.Least() + 1
                                   ? "at least " + least
                                   : least + " or " + std::to_string(function.Most());
    throw FormulaError(std::string(function.name) + " takes " + wanted +
                           (wanted == "1" ? " argument" : " arguments") + ", not " + std::to_string(count) +
                           ".",
                       where);
  }
  for (std::size_t i = 0; i < count; ++i) CheckArgument(function, i, operands[i]);
  if (function.name == "In" || function.name == "Between")
    for (std::size_t i = 1; i < count; ++i) CheckComparable(operands[0], operands[i], operands[i]->where);
  CheckWords(function, operands);
  const bool dateOfLiterals = function.name == "Date" &&
                              std::all_of(operands.begin(), operands.end(), [](const NodePointer& operand) {
                                return operand->kind == NodeKind::Literal && !operand->literal.IsNull();
                              });
  FormulaNode node = NodeOf(NodeKind::Call, std::move(operands), where);
  node.function = &function;
  node.type = ResultOf(function, node.operands);
  NodePointer made = Finish(std::move(node));
  if (dateOfLiterals && (made->kind != NodeKind::Literal || made->literal.IsNull()))
    throw FormulaError("There is no such date. The order is year, month, day.", where);
  return made;
}

NodePointer MakeTotal(const Total& total, int place, std::string_view name, Place where) {
  const ValueType argument = total.argument->type;
  const ValueKind kind = KindOf(argument);
  const bool counts = total.kind == TotalKind::Count || total.kind == TotalKind::DistinctCount;
  const bool anyKind = counts || total.kind == TotalKind::First || total.kind == TotalKind::Last;
  const bool orders = total.kind == TotalKind::Minimum || total.kind == TotalKind::Maximum;
  const bool fits = anyKind || (orders ? kind != ValueKind::Binary : IsNumber(kind));
  if (!fits)
    throw FormulaError(std::string(name) + " needs numbers; this is " + std::string(KindName(kind)) + ".",
                       total.argument->where);
  FormulaNode node;
  node.kind = NodeKind::Total;
  node.place = place;
  node.total = total;
  node.where = where;
  node.uses = kUsesTotals;
  node.depth = total.argument->depth + 1;
  node.weight = std::min(kMostWeight + 1, total.argument->weight + 1);
  if (counts)
    node.type = ValueType::Long;
  else if (total.kind == TotalKind::Percent || total.kind == TotalKind::Average)
    node.type = ValueType::Double;
  else if (anyKind || orders || argument == ValueType::Currency || argument == ValueType::Null)
    node.type = argument;
  else
    node.type = IsWhole(argument) ? ValueType::Long : ValueType::Double;
  return Finish(std::move(node));
}

NodePointer MakeSpecial(FormulaNode node) { return std::make_shared<const FormulaNode>(std::move(node)); }

}  // namespace print
