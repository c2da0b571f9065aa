#include "platform/print/formula/FormulaParser.h"

#include <array>
#include <optional>
#include <utility>

#include "platform/print/formula/FormulaChecks.h"
#include "platform/runtime/Text.h"

namespace print {

/// A binary operator. A larger precedence binds closer.
struct FormulaParser::Operator {
  enum class Family { Or, And, Compare, Join, Arithmetic };
  std::string_view text;
  int precedence;
  Family family;
  Comparison comparison = Comparison::Equal;
  Operation operation = Operation::Add;
};

/// Counts brackets, calls and signs that stand inside each other: each takes stack.
class FormulaParser::Nesting {
 public:
  Nesting(int& count, Place where) : count_(count) {
    constexpr int kMost = 250;
    if (++count_ > kMost) {
      --count_;
      throw FormulaError("Brackets are nested too deeply here: more than 250.", where);
    }
  }
  ~Nesting() { --count_; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

 private:
  int& count_;
};

namespace {

constexpr int kNotPrecedence = 3;
constexpr int kSignPrecedence = 8;

struct TotalName {
  std::string_view name;
  TotalKind kind;
  bool ofPage = false;
};

constexpr std::array kTotals{
    TotalName{"Sum", TotalKind::Sum},
    TotalName{"Count", TotalKind::Count},
    TotalName{"DistinctCount", TotalKind::DistinctCount},
    TotalName{"Average", TotalKind::Average},
    TotalName{"Minimum", TotalKind::Minimum},
    TotalName{"Maximum", TotalKind::Maximum},
    TotalName{"First", TotalKind::First},
    TotalName{"Last", TotalKind::Last},
    TotalName{"Percent", TotalKind::Percent},
    TotalName{"Running", TotalKind::Running},
    TotalName{"PageSum", TotalKind::Sum, true},
};

struct SpecialName {
  std::string_view name;
  NodeKind kind;
  rt::ValueType type;
  unsigned uses = 0;
};

constexpr std::array kSpecials{
    SpecialName{"Today", NodeKind::Today, rt::ValueType::Date},
    SpecialName{"Now", NodeKind::PrintTime, rt::ValueType::Date},
    SpecialName{"PrintTime", NodeKind::PrintTime, rt::ValueType::Date},
    SpecialName{"Page", NodeKind::Page, rt::ValueType::Long, kUsesPage},
    SpecialName{"Pages", NodeKind::Pages, rt::ValueType::Long, kUsesPages},
    SpecialName{"Continued", NodeKind::Continued, rt::ValueType::Boolean, kUsesPage},
    SpecialName{"RowNumber", NodeKind::RowNumber, rt::ValueType::Long, kUsesNeighbors},
    SpecialName{"ReportName", NodeKind::ReportName, rt::ValueType::Text},
    SpecialName{"User", NodeKind::User, rt::ValueType::Text},
};

/// A token as messages show it.
std::string Shown(const Token& token) {
  constexpr std::size_t kMostBytes = 40;
  std::string text = token.text.substr(0, kMostBytes);
  while (text.size() < token.text.size() && !text.empty() && rt::IsContinuation(token.text[text.size()]))
    text.pop_back();
  if (text.size() < token.text.size()) text += "...";
  switch (token.kind) {
    case TokenKind::End:
      return "the end";
    case TokenKind::Text:
      return "'" + text + "'";
    case TokenKind::Field:
      return "{" + text + "}";
    default:
      return "\"" + text + "\"";
  }
}

}  // namespace

std::string NormalizedField(std::string_view inBraces) {
  std::string plain;
  for (const char c : inBraces)
    if (c != '[' && c != ']') plain.push_back(c);
  const auto dot = plain.find('.');
  if (dot == std::string::npos) return rt::Trim(plain);
  const std::string_view all = plain;
  return rt::Trim(all.substr(0, dot)) + "." + rt::Trim(all.substr(dot + 1));
}

FormulaParser::FormulaParser(std::string_view text, const FormulaScope& scope, FormulaUse use)
    : lexer_(text), scope_(scope), use_(use) {
  constexpr std::size_t kMostBytes = 100'000;
  if (text.size() > kMostBytes) throw FormulaError("The formula is longer than 100,000 bytes.", Place{});
}

NodePointer FormulaParser::Read() {
  Advance();
  if (token_.kind == TokenKind::End) throw FormulaError("The formula is empty.", token_.where);
  NodePointer root = Expression(0);
  if (token_.kind != TokenKind::End) {
    if (IsSign(")")) throw FormulaError("There is a \")\" without its \"(\".", token_.where);
    if (IsSign(",")) throw FormulaError("There is a comma outside of a function's brackets.", token_.where);
    throw FormulaError("An operator, such as AND or +, is missing before " + Shown(token_) + ".",
                       token_.where);
  }
  return root;
}

void FormulaParser::Advance() {
  before_ = std::move(token_);
  token_ = lexer_.Next();
}

bool FormulaParser::IsSign(std::string_view sign) const {
  return token_.kind == TokenKind::Sign && token_.text == sign;
}

bool FormulaParser::IsWord(std::string_view word) const {
  return token_.kind == TokenKind::Word && rt::EqualNoCase(token_.text, word);
}

void FormulaParser::Expect(std::string_view sign, std::string_view after) {
  if (!IsSign(sign)) {
    throw FormulaError("A \"" + std::string(sign) + "\" is missing after " + std::string(after) +
                           ", before " + Shown(token_) + ".",
                       token_.where);
  }
  Advance();
}

const FormulaParser::Operator* FormulaParser::OperatorOf(const Token& token) {
  using Family = Operator::Family;
  static constexpr std::array kOperators{
      Operator{"OR", 1, Family::Or},
      Operator{"AND", 2, Family::And},
      Operator{"=", 4, Family::Compare, Comparison::Equal},
      Operator{"<>", 4, Family::Compare, Comparison::NotEqual},
      Operator{"<", 4, Family::Compare, Comparison::Less},
      Operator{"<=", 4, Family::Compare, Comparison::LessEqual},
      Operator{">", 4, Family::Compare, Comparison::Greater},
      Operator{">=", 4, Family::Compare, Comparison::GreaterEqual},
      Operator{"&", 5, Family::Join},
      Operator{"+", 6, Family::Arithmetic, Comparison::Equal, Operation::Add},
      Operator{"-", 6, Family::Arithmetic, Comparison::Equal, Operation::Subtract},
      Operator{"*", 7, Family::Arithmetic, Comparison::Equal, Operation::Multiply},
      Operator{"/", 7, Family::Arithmetic, Comparison::Equal, Operation::Divide},
  };
  if (token.kind != TokenKind::Sign && token.kind != TokenKind::Word) return nullptr;
  for (const auto& known : kOperators)
    if (rt::EqualNoCase(known.text, token.text)) return &known;
  return nullptr;
}

NodePointer FormulaParser::Expression(int least) {
  NodePointer left = Prefix();
  for (;;) {
    const Operator* binary = OperatorOf(token_);
    if (!binary || binary->precedence < least) return left;
    const Place where = token_.where;
    std::vector<NodePointer> operands{std::move(left)};
    // A chain of conditions or texts is one node, however long it is.
    do {
      Advance();
      operands.push_back(Expression(binary->precedence + 1));
    } while (binary->family != Operator::Family::Compare && binary->family != Operator::Family::Arithmetic &&
             OperatorOf(token_) == binary);
    left = Apply(*binary, std::move(operands), where);
  }
}

NodePointer FormulaParser::Apply(const Operator& binary, std::vector<NodePointer> operands, Place where) {
  switch (binary.family) {
    case Operator::Family::Or:
      return MakeLogical(NodeKind::Or, std::move(operands), where);
    case Operator::Family::And:
      return MakeLogical(NodeKind::And, std::move(operands), where);
    case Operator::Family::Join:
      return MakeJoin(std::move(operands), where);
    case Operator::Family::Compare:
      return MakeComparison(binary.comparison, std::move(operands[0]), std::move(operands[1]), where);
    case Operator::Family::Arithmetic:
      return MakeArithmetic(binary.operation, std::move(operands[0]), std::move(operands[1]), where);
  }
  return operands[0];
}

NodePointer FormulaParser::Prefix() {
  const Place where = token_.where;
  if (IsWord("NOT")) {
    const Nesting deeper(nesting_, where);
    Advance();
    return MakeLogical(NodeKind::Not, {Expression(kNotPrecedence + 1)}, where);
  }
  if (IsSign("-") || IsSign("+")) {
    const Nesting deeper(nesting_, where);
    const bool minus = IsSign("-");
    Advance();
    NodePointer operand = Expression(kSignPrecedence);
    return minus ? MakeNegation(std::move(operand), where) : operand;
  }
  return Primary();
}

NodePointer FormulaParser::Primary() {
  const Nesting deeper(nesting_, token_.where);
  if (IsSign("(")) {
    Advance();
    NodePointer inner = Expression(0);
    Expect(")", "the bracketed part");
    return inner;
  }
  if (token_.kind == TokenKind::End || token_.kind == TokenKind::Sign || OperatorOf(token_)) {
    if (before_.kind == TokenKind::End)
      throw FormulaError("A value is missing before " + Shown(token_) + ".", token_.where);
    throw FormulaError("A value is missing after " + Shown(before_) + ".", before_.where);
  }
  if (token_.kind == TokenKind::Number) return NumberLiteral();
  Advance();
  // A copy: the calls below go on reading.
  const Token token = before_;
  if (token.kind == TokenKind::Text) return MakeLiteral(token.text, token.where);
  if (token.kind == TokenKind::Field) return FieldOrFormula(token);
  return Word(token);
}

NodePointer FormulaParser::NumberLiteral() {
  const auto number = rt::ParseNumber(token_.text);
  if (!number) throw FormulaError("The number " + Shown(token_) + " is too large.", token_.where);
  const bool whole = token_.text.find_first_of(".eE") == std::string::npos && *number <= INT32_MAX;
  const Place where = token_.where;
  Advance();
  if (whole) return MakeLiteral(static_cast<std::int32_t>(*number), where);
  return MakeLiteral(*number, where);
}

NodePointer FormulaParser::FieldOrFormula(const Token& token) {
  const std::string name = NormalizedField(token.text);
  if (name.starts_with('@')) {
    NodePointer tree;
    try {
      tree = scope_.NamedFormula(name.substr(1));
    } catch (const FormulaError& error) {
      throw FormulaError(error.what(), token.where);
    }
    if (!tree) throw FormulaError("There is no formula " + Shown(token) + ".", token.where);
    if (inTotal_ && (tree->uses & kUsesTotals) != 0)
      throw FormulaError(Shown(token) + " has a total itself and cannot be totaled.", token.where);
    if (inTotal_ && (tree->uses & (kUsesPage | kUsesPages)) != 0)
      throw FormulaError(Shown(token) + " depends on the page and cannot be totaled.", token.where);
    CheckUse(tree->uses, token.where);
    return WithOwnTotals(tree);
  }
  const auto place = scope_.FieldPlace(name);
  if (!place) {
    throw FormulaError(name.find('.') == std::string::npos
                           ? "A field is written {Table.Field}; " + Shown(token) + " has no table."
                           : "There is no field " + Shown(token) + " in the tables of the report.",
                       token.where);
  }
  return MakeField(*place, scope_.FieldType(*place), token.where);
}

/// Totals of a named formula become totals of the formula that uses it.
NodePointer FormulaParser::WithOwnTotals(const NodePointer& tree) {
  if ((tree->uses & kUsesTotals) == 0) return tree;
  auto copy = std::make_shared<FormulaNode>(*tree);
  if (copy->kind == NodeKind::Total) {
    copy->place = static_cast<int>(totals_.size());
    totals_.push_back(copy->total);
  }
  for (auto& operand : copy->operands) operand = WithOwnTotals(operand);
  return copy;
}

NodePointer FormulaParser::Word(const Token& word) {
  const auto is = [&](std::string_view name) { return rt::EqualNoCase(word.text, name); };
  if (const FormulaFunction* function = FindFunction(word.text)) return Call(*function, word);
  for (const auto& total : kTotals)
    if (is(total.name)) return TotalCall(word, total.kind, total.ofPage);
  if (is("Previous")) return NeighborCall(word, -1);
  if (is("Next")) return NeighborCall(word, 1);
  if (is("FirstInGroup")) return GroupCall(word, NodeKind::FirstInGroup);
  if (is("LastInGroup")) return GroupCall(word, NodeKind::LastInGroup);
  if (is("True") || is("Yes")) return MakeLiteral(true, word.where);
  if (is("False") || is("No")) return MakeLiteral(false, word.where);
  if (is("Null")) return MakeLiteral(rt::Null{}, word.where);
  return SpecialValue(word);
}

NodePointer FormulaParser::SpecialValue(const Token& name) {
  for (const auto& special : kSpecials) {
    if (!rt::EqualNoCase(special.name, name.text)) continue;
    if (special.uses & (kUsesPage | kUsesPages)) RefuseInTotal(name);
    CheckUse(special.uses, name.where);
    if (IsSign("(")) {
      Advance();
      Expect(")", name.text + "(");
    }
    FormulaNode node;
    node.kind = special.kind;
    node.type = special.type;
    node.uses = special.uses;
    node.where = name.where;
    return MakeSpecial(std::move(node));
  }
  if (IsSign("(")) throw FormulaError("There is no function " + Shown(name) + ".", name.where);
  throw FormulaError("The word " + Shown(name) +
                         " has no meaning here. A text stands in quotation marks, a field in braces.",
                     name.where);
}

NodePointer FormulaParser::Call(const FormulaFunction& function, const Token& name) {
  Expect("(", name.text);
  std::vector<NodePointer> arguments;
  if (!IsSign(")")) {
    arguments.push_back(Expression(0));
    while (IsSign(",")) {
      Advance();
      arguments.push_back(Expression(0));
    }
  }
  Expect(")", "the arguments of " + std::string(function.name));
  return MakeCall(function, std::move(arguments), name.where);
}

NodePointer FormulaParser::TotalCall(const Token& name, TotalKind kind, bool ofPage) {
  RefuseInTotal(name);
  CheckUse(kUsesTotals, name.where);
  Total total;
  total.kind = kind;
  total.scope = ofPage ? TotalScope::Page : TotalScope::Band;
  const bool mayCountRows = kind == TotalKind::Count;
  if (mayCountRows && !IsSign("(")) {
    total.argument = MakeLiteral(std::int32_t{1}, name.where);
  } else {
    Expect("(", name.text);
    if (mayCountRows && IsSign(")")) {
      total.argument = MakeLiteral(std::int32_t{1}, name.where);
    } else {
      inTotal_ = true;
      total.argument = Expression(0);
      inTotal_ = false;
      if (IsSign(",")) {
        if (ofPage) throw FormulaError("PageSum takes one argument.", token_.where);
        Advance();
        ReadTotalScope(total, name);
      }
    }
    Expect(")", "the arguments of " + name.text);
  }
  NodePointer made = MakeTotal(total, static_cast<int>(totals_.size()), name.text, name.where);
  totals_.push_back(std::move(total));
  return made;
}

void FormulaParser::ReadTotalScope(Total& total, const Token& name) {
  if (token_.kind == TokenKind::Word && !IsWord("report") && !IsWord("page"))
    throw FormulaError(
        "A total covers the report, the page or the {field} of a group, not " + Shown(token_) + ".",
        token_.where);
  if (IsWord("report")) {
    total.scope = TotalScope::Report;
    Advance();
  } else if (IsWord("page")) {
    if (total.kind == TotalKind::Percent) throw FormulaError("Percent has no scope \"page\".", token_.where);
    total.scope = TotalScope::Page;
    Advance();
  } else {
    total.scope = TotalScope::Group;
    total.group = ReadGroup(name);
  }
}

int FormulaParser::ReadGroup(const Token& name) {
  if (token_.kind != TokenKind::Field)
    throw FormulaError(name.text + " needs the field of a group here, such as {Table.Field}.", token_.where);
  const auto group = scope_.GroupOf(NormalizedField(token_.text));
  if (!group) throw FormulaError("The report has no group by " + Shown(token_) + ".", token_.where);
  Advance();
  return *group;
}

NodePointer FormulaParser::NeighborCall(const Token& name, int distance) {
  CheckUse(kUsesNeighbors, name.where);
  Expect("(", name.text);
  const Token token = token_;
  if (token.kind != TokenKind::Field)
    throw FormulaError(name.text + " takes a field, such as {Table.Field}.", token.where);
  Advance();
  const NodePointer field = FieldOrFormula(token);
  if (field->kind != NodeKind::Field)
    throw FormulaError(name.text + " takes a field; " + Shown(token) + " is a formula.", token.where);
  Expect(")", "the field of " + name.text);
  FormulaNode node;
  node.kind = NodeKind::Neighbor;
  node.place = field->place;
  node.distance = distance;
  node.type = field->type;
  node.uses = kUsesNeighbors;
  node.where = name.where;
  return MakeSpecial(std::move(node));
}

NodePointer FormulaParser::GroupCall(const Token& name, NodeKind kind) {
  CheckUse(kUsesNeighbors, name.where);
  Expect("(", name.text);
  FormulaNode node;
  node.kind = kind;
  node.place = ReadGroup(name);
  node.type = rt::ValueType::Boolean;
  node.uses = kUsesNeighbors;
  node.where = name.where;
  Expect(")", "the field of " + name.text);
  return MakeSpecial(std::move(node));
}

void FormulaParser::RefuseInTotal(const Token& name) const {
  if (inTotal_) throw FormulaError(name.text + " cannot stand in a total.", name.where);
}

void FormulaParser::CheckUse(unsigned uses, Place where) const {
  if (use_ == FormulaUse::Anywhere || uses == 0) return;
  const std::string_view what = (uses & kUsesTotals) != 0      ? "a total"
                                : (uses & kUsesNeighbors) != 0 ? "a value of other rows"
                                                               : "a value of the page";
  throw FormulaError("Here a formula can only use the row itself, not " + std::string(what) + ".", where);
}

}  // namespace print
