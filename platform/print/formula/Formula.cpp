#include "platform/print/formula/Formula.h"

#include <algorithm>
#include <set>

#include "platform/print/formula/FormulaFunctions.h"
#include "platform/print/formula/FormulaParser.h"
#include "platform/print/formula/ValueRules.h"
#include "platform/runtime/RuntimeError.h"

namespace print {
namespace {

using rt::Value;

/// The fields of a tree. Trees share parts, so each part is visited once.
void CollectFields(const FormulaNode& node, std::vector<int>& fields, std::set<const FormulaNode*>& seen) {
  if (!seen.insert(&node).second) return;
  const bool reads = node.kind == NodeKind::Field || node.kind == NodeKind::Neighbor;
  if (reads && std::find(fields.begin(), fields.end(), node.place) == fields.end())
    fields.push_back(node.place);
  if (node.kind == NodeKind::Total) CollectFields(*node.total.argument, fields, seen);
  for (const auto& operand : node.operands) CollectFields(*operand, fields, seen);
}

/// AND and OR with three values: `decisive` decides whatever the others are.
Value Logical(const FormulaNode& node, const FormulaValues& values, bool decisive) {
  bool unknown = false;
  Value scratch;
  for (const auto& operand : node.operands) {
    const auto truth = Truth(Look(*operand, values, scratch));
    if (truth == decisive) return decisive;
    unknown = unknown || !truth;
  }
  return unknown ? Value() : Value(!decisive);
}

Value Joined(const FormulaNode& node, const FormulaValues& values) {
  std::string text;
  Value scratch;
  for (const auto& operand : node.operands) text += JoinedText(Look(*operand, values, scratch));
  return text;
}

Value Called(const FormulaNode& node, const FormulaValues& values) {
  if (node.function->nullIfAnyIs) {
    Value scratch;
    for (const auto& operand : node.operands)
      if (Look(*operand, values, scratch).IsNull()) return rt::Null{};
  }
  return node.function->evaluate(CallArguments(node, values));
}

/// Runs an evaluation; errors of the runtime become errors of the report.
template <typename Work>
auto InWords(Work work) {
  try {
    return work();
  } catch (const rt::RuntimeError& error) {
    constexpr int kOverflow = 6;
    throw PrintError(error.Number() == kOverflow ? "A number is beyond what it can be."
                                                 : "A value is of a kind that cannot be used here.");
  }
}

}  // namespace

const Value& Look(const FormulaNode& node, const FormulaValues& values, Value& scratch) {
  switch (node.kind) {
    case NodeKind::Literal:
      return node.literal;
    case NodeKind::Field:
      return values.Field(node.place);
    default:
      scratch = Evaluate(node, values);
      return scratch;
  }
}

Value Evaluate(const FormulaNode& node, const FormulaValues& values) {
  switch (node.kind) {
    case NodeKind::Literal:
      return node.literal;
    case NodeKind::Field:
      return values.Field(node.place);
    case NodeKind::Neighbor:
      return values.Neighbor(node.place, node.distance);
    case NodeKind::And:
      return Logical(node, values, false);
    case NodeKind::Or:
      return Logical(node, values, true);
    case NodeKind::Not: {
      const auto truth = Truth(Evaluate(*node.operands[0], values));
      return truth ? Value(!*truth) : Value();
    }
    case NodeKind::Compare: {
      Value left;
      Value right;
      return Compare(node.comparison, Look(*node.operands[0], values, left),
                     Look(*node.operands[1], values, right));
    }
    case NodeKind::Arithmetic: {
      Value left;
      Value right;
      return Calculate(node.operation, Look(*node.operands[0], values, left),
                       Look(*node.operands[1], values, right));
    }
    case NodeKind::Negate:
      return Negated(Evaluate(*node.operands[0], values));
    case NodeKind::Join:
      return Joined(node, values);
    case NodeKind::Call:
      return Called(node, values);
    case NodeKind::Total:
      return values.TotalOf(node.place);
    case NodeKind::FirstInGroup:
      return values.FirstInGroup(node.place);
    case NodeKind::LastInGroup:
      return values.LastInGroup(node.place);
    case NodeKind::RowNumber: {
      const std::int64_t row = values.RowNumber();
      return row <= INT32_MAX ? Value(static_cast<std::int32_t>(row)) : Value(static_cast<double>(row));
    }
    case NodeKind::Page:
      return std::int32_t{values.PageNumber()};
    case NodeKind::Pages:
      return values.PageCount();
    case NodeKind::Continued:
      return values.Continued();
    case NodeKind::ReportName:
      return values.ReportName();
    case NodeKind::User:
      return values.User();
    case NodeKind::PrintTime:
      return values.PrintTime();
    case NodeKind::Today:
      return values.PrintTime().DateOnly();
  }
  return rt::Null{};
}

Formula Formula::Read(std::string_view text, const FormulaScope& scope, FormulaUse use) {
  Formula formula;
  formula.text_ = text;
  FormulaParser parser(text, scope, use);
  formula.root_ = parser.Read();
  formula.totals_ = parser.TakeTotals();
  std::set<const FormulaNode*> seen;
  CollectFields(*formula.root_, formula.fields_, seen);
  formula.needsPages_ = (formula.root_->uses & kUsesPages) != 0;
  formula.type_ = formula.root_->type;
  return formula;
}

std::optional<int> Formula::SoleTotal() const {
  if (!root_ || root_->kind != NodeKind::Total) return std::nullopt;
  return root_->place;
}

Value Formula::Evaluate(const FormulaValues& values) const {
  if (!root_) return rt::Null{};
  return InWords([&] { return print::Evaluate(*root_, values); });
}

bool Formula::Holds(const FormulaValues& values) const {
  if (!root_) return true;
  return InWords([&] {
    Value scratch;
    return Truth(Look(*root_, values, scratch)).value_or(false);
  });
}

Value EvaluateArgument(const Total& total, const FormulaValues& values) {
  return InWords([&] { return Evaluate(*total.argument, values); });
}

std::string FaultText(std::string_view name, const FormulaError& error) {
  std::string text(name);
  if (error.Where().line > 1) text += ", line " + std::to_string(error.Where().line);
  return text + ", column " + std::to_string(error.Where().column) + ": " + error.what();
}

}  // namespace print
