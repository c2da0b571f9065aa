// The parser's part for expressions, from the loosest operator to the tightest:
// OR, AND, NOT, comparison, &, + and -, * and /, the sign.
#include <algorithm>

#include "platform/store/DialectParser.h"

namespace store::dialect {
namespace {

// A chain of operators is as deep as it is long, and the file's engine walks it by recursion as we do.
constexpr int kMostDepth = 250;

}  // namespace

ExprPtr Parser::Make(ExprKind kind, std::size_t place, std::vector<ExprPtr> operands) {
  auto expr = std::make_unique<Expr>();
  expr->kind = kind;
  expr->place = place;
  for (const auto& operand : operands) expr->depth = std::max(expr->depth, operand->depth + 1);
  if (expr->depth > kMostDepth) NotUnderstood(key_, place, "The statement is nested too deeply");
  expr->operands = std::move(operands);
  return expr;
}

namespace {

template <typename... Operands>
std::vector<ExprPtr> List(Operands... operands) {
  std::vector<ExprPtr> list;
  (list.push_back(std::move(operands)), ...);
  return list;
}

}  // namespace

ExprPtr Parser::MakeBinary(Operator op, ExprPtr left, ExprPtr right) {
  const std::size_t place = left->place;
  auto expr = Make(ExprKind::Binary, place, List(std::move(left), std::move(right)));
  expr->op = op;
  return expr;
}

ExprPtr Parser::ParseOr() {
  auto left = ParseAnd();
  while (Accept("OR")) left = MakeBinary(Operator::Or, std::move(left), ParseAnd());
  return left;
}

ExprPtr Parser::ParseAnd() {
  auto left = ParseNot();
  while (Accept("AND")) left = MakeBinary(Operator::And, std::move(left), ParseNot());
  return left;
}

ExprPtr Parser::ParseNot() {
  const std::size_t place = Now().place;
  if (!Accept("NOT")) return ParseComparison();
  const Nesting nesting(*this);
  return Make(ExprKind::Not, place, List(ParseNot()));
}

ExprPtr Parser::ParseComparison() {
  auto left = ParseJoined();
  const std::size_t place = Now().place;
  if (Now().kind == TokenKind::Sign) {
    static constexpr std::pair<std::string_view, Operator> kSigns[] = {
        {"=", Operator::Equal},   {"<>", Operator::Unequal},   {"<", Operator::Less},
        {">", Operator::Greater}, {"<=", Operator::LessEqual}, {">=", Operator::GreaterEqual}};
    for (const auto& [sign, op] : kSigns)
      if (AcceptSign(sign)) return MakeBinary(op, std::move(left), ParseJoined());
    return left;
  }
  if (Accept("IS")) return ParseIs(std::move(left));
  const bool negated = Accept("NOT");
  ExprPtr result;
  if (Accept("LIKE")) {
    result = Make(ExprKind::Like, place, List(std::move(left), ParseJoined()));
  } else if (Accept("BETWEEN")) {
    auto lower = ParseJoined();
    Expect("AND");
    result = Make(ExprKind::Between, place, List(std::move(left), std::move(lower), ParseJoined()));
  } else if (Accept("IN")) {
    const Nesting nesting(*this);
    ExpectSign("(");
    auto operands = ParseExprList();
    ExpectSign(")");
    operands.insert(operands.begin(), std::move(left));
    result = Make(ExprKind::In, place, std::move(operands));
  } else if (negated) {
    Refuse();
  } else {
    return left;
  }
  result->negated = negated;
  return result;
}

ExprPtr Parser::ParseIs(ExprPtr value) {
  const std::size_t place = value->place;
  const bool negated = Accept("NOT");
  ExprKind kind = ExprKind::IsNull;
  if (Accept("TRUE")) {
    kind = ExprKind::IsTrue;
  } else if (Accept("FALSE")) {
    kind = ExprKind::IsFalse;
  } else {
    Expect("NULL");
  }
  auto result = Make(kind, place, List(std::move(value)));
  result->negated = negated;
  return result;
}

ExprPtr Parser::ParseJoined() {
  auto left = ParseSum();
  while (AcceptSign("&")) left = MakeBinary(Operator::Join, std::move(left), ParseSum());
  return left;
}

ExprPtr Parser::ParseSum() {
  auto left = ParseProduct();
  for (;;) {
    if (AcceptSign("+")) {
      left = MakeBinary(Operator::Add, std::move(left), ParseProduct());
    } else if (AcceptSign("-")) {
      left = MakeBinary(Operator::Subtract, std::move(left), ParseProduct());
    } else {
      return left;
    }
  }
}

ExprPtr Parser::ParseProduct() {
  auto left = ParseSigned();
  for (;;) {
    if (AcceptSign("*")) {
      left = MakeBinary(Operator::Multiply, std::move(left), ParseSigned());
    } else if (AcceptSign("/")) {
      left = MakeBinary(Operator::Divide, std::move(left), ParseSigned());
    } else {
      return left;
    }
  }
}

ExprPtr Parser::ParseSigned() {
  const std::size_t place = Now().place;
  if (!AcceptSign("-")) return ParsePrimary();
  const Nesting nesting(*this);
  return Make(ExprKind::Negate, place, List(ParseSigned()));
}

ExprPtr Parser::ParsePrimary() {
  const Token& token = Now();
  if (token.kind == TokenKind::Parameter) return ParseParameter();
  if (token.IsSign("(")) {
    const Nesting nesting(*this);
    ++at_;
    auto inner = ParseExpr();
    ExpectSign(")");
    return inner;
  }
  // LEFT and RIGHT are functions if a bracket follows, and joins elsewhere.
  const bool call = token.kind == TokenKind::Word && Ahead(1).IsSign("(");
  if (call && (AtName() || token.Is("LEFT") || token.Is("RIGHT"))) return ParseCall();
  if (Accept("TRUE")) return Make(ExprKind::True, token.place, {});
  if (Accept("FALSE")) return Make(ExprKind::False, token.place, {});
  if (Accept("NULL")) return Make(ExprKind::Null, token.place, {});
  if (!AtName()) Refuse();
  auto expr = Make(ExprKind::Column, token.place, {});
  expr->column = ParseColumnName();
  return expr;
}

ExprPtr Parser::ParseParameter() {
  auto expr = Make(ExprKind::Parameter, Now().place, {});
  expr->letter = Now().text.front();
  expr->number = ++parameters_;
  ++at_;
  return expr;
}

ExprPtr Parser::ParseCall() {
  const Nesting nesting(*this);
  const Token name = Now();
  at_ += 2;
  if (name.Is("COUNT") && AcceptSign("*")) {
    ExpectSign(")");
    return Make(ExprKind::CountRows, name.place, {});
  }
  std::vector<ExprPtr> arguments;
  if (!Now().IsSign(")")) arguments = ParseExprList();
  ExpectSign(")");
  auto expr = Make(ExprKind::Call, name.place, std::move(arguments));
  expr->function = name.text;
  return expr;
}

std::vector<ExprPtr> Parser::ParseExprList() {
  std::vector<ExprPtr> list;
  do list.push_back(ParseExpr());
  while (AcceptSign(","));
  return list;
}

}  // namespace store::dialect
