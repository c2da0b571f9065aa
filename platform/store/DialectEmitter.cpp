#include "platform/store/DialectEmitter.h"

#include <algorithm>

#include "platform/store/DialectSpelling.h"
#include "platform/store/Tokenizer.h"

namespace store::dialect {
namespace {

// Text columns are declared to compare without regard to case. If neither side is such a column, or the side
// that decides is a column of another kind, the comparison has to say so.
bool NeedsNoCase(const Fragment& left, const Fragment& right) {
  if (!left.MayBeText() && !right.MayBeText()) return false;
  if (left.IsTextColumn()) return false;
  return !right.IsTextColumn() || left.column;
}

ValueKind NumberKind(const Fragment& a, const Fragment& b) {
  const auto whole = [](const Fragment& f) {
    return f.kind == ValueKind::Whole || f.kind == ValueKind::Boolean;
  };
  return whole(a) && whole(b) ? ValueKind::Whole : ValueKind::Real;
}

}  // namespace

Fragment Emitter::Emit(const Expr& expr, Totals totals, int first) {
  inside_ = totals == Totals::Allowed ? Inside::Totals : Inside::NoTotals;
  first_ = first;
  return Any(expr);
}

Fragment Emitter::EmitCondition(const Expr& expr, Totals totals, int first) {
  return AsCondition(Emit(expr, totals, first));
}

Fragment Emitter::EmitColumn(int table, const ColumnInfo& column) const {
  Fragment result;
  result.text = QuoteName(scope_.Table(table).alias) + "." + QuoteName(column.name);
  result.kind = KindOf(column.type);
  result.table = table;
  result.column = result.typed = &column;
  result.units = column.type == ColumnType::Currency;
  result.hasColumn = true;
  result.weight = 3;
  return result;
}

void Emitter::CheckGrouped(const Expr& expr, const std::vector<std::string>& groups) {
  const Fragment whole = Emit(expr, Totals::Allowed);
  if (!whole.hasColumn || std::find(groups.begin(), groups.end(), whole.text) != groups.end()) return;
  if (expr.kind == ExprKind::Column)
    NotUnderstood(key_, expr.place, "A column is neither grouped by nor inside a total");
  // Inside a total any column is allowed.
  const bool total = expr.kind == ExprKind::Call && whole.hasAggregate &&
                     std::none_of(expr.operands.begin(), expr.operands.end(), [this](const ExprPtr& operand) {
                       return Emit(*operand, Totals::Allowed).hasAggregate;
                     });
  if (total) return;
  for (const auto& operand : expr.operands) CheckGrouped(*operand, groups);
}

Fragment Emitter::Any(const Expr& expr) {
  switch (expr.kind) {
    case ExprKind::Parameter:
      return Parameter(expr);
    case ExprKind::True:
    case ExprKind::False: {
      Fragment flag = Build(Level::Atom, ValueKind::Boolean, {expr.kind == ExprKind::True ? "1" : "0"});
      flag.neverNull = true;
      return flag;
    }
    case ExprKind::Null:
      return Build(Level::Atom, ValueKind::Null, {"NULL"});
    case ExprKind::Column: {
      const auto found = scope_.Resolve(expr.column, first_);
      return EmitColumn(found.table, *found.column);
    }
    case ExprKind::Not:
      return Not(expr);
    case ExprKind::Negate:
      return Negate(expr);
    case ExprKind::Binary:
      return Binary(expr);
    case ExprKind::Like:
      return Like(expr);
    case ExprKind::Between:
      return Between(expr);
    case ExprKind::In:
      return In(expr);
    case ExprKind::IsNull:
      return Is(expr, "NULL");
    case ExprKind::IsTrue:
      return Is(expr, "TRUE");
    case ExprKind::IsFalse:
      return Is(expr, "FALSE");
    case ExprKind::Call:
      return Call(expr);
    case ExprKind::CountRows:
      return CountRows(expr);
  }
  NotUnderstood(key_, expr.place);
}

Fragment Emitter::Parameter(const Expr& expr) {
  ValueKind kind = ValueKind::Unknown;
  switch (expr.letter) {
    case kTextLetter:
      kind = ValueKind::Text;
      break;
    case kWholeLetter:
      kind = ValueKind::Whole;
      break;
    case kRealLetter:
      kind = ValueKind::Real;
      break;
    case kDateLetter:
      kind = ValueKind::Date;
      break;
    default:
      NotUnderstood(key_, expr.place);
  }
  Fragment result = Build(Level::Atom, kind, {"?", std::string_view(std::to_string(expr.number))});
  result.weight = 1;
  result.neverNull = true;
  result.floating = kind == ValueKind::Real;
  return result;
}

Fragment Emitter::Not(const Expr& expr) {
  return Build(Level::Not, ValueKind::Boolean, {"NOT ", AtLeast(Level::Atom, AsCondition(Operand(expr, 0)))});
}

Fragment Emitter::Negate(const Expr& expr) {
  const Fragment operand = AsNumber(Operand(expr, 0));
  const ValueKind kind = NumberKind(operand, operand);
  // Binds like a product, so that a second sign comes in parentheses: two in a row would begin a comment.
  Fragment result = Build(Level::Multiply, kind, {"-", AtLeast(Level::Atom, operand)});
  result.floating = operand.floating;
  return result;
}

Fragment Emitter::Binary(const Expr& expr) {
  switch (expr.op) {
    case Operator::Or:
      return Logical(expr, Level::Or, " OR ");
    case Operator::And:
      return Logical(expr, Level::And, " AND ");
    case Operator::Equal:
      return Compare(expr, " = ");
    case Operator::Unequal:
      return Compare(expr, " <> ");
    case Operator::Less:
      return Compare(expr, " < ");
    case Operator::Greater:
      return Compare(expr, " > ");
    case Operator::LessEqual:
      return Compare(expr, " <= ");
    case Operator::GreaterEqual:
      return Compare(expr, " >= ");
    case Operator::Join:
      return JoinTexts(expr);
    case Operator::Add:
      return Add(expr);
    case Operator::Subtract:
      return Calculate(Operand(expr, 0), Operand(expr, 1), Level::Add, " - ");
    case Operator::Multiply:
      return Calculate(Operand(expr, 0), Operand(expr, 1), Level::Multiply, " * ");
    case Operator::Divide:
      return Divide(expr);
  }
  NotUnderstood(key_, expr.place);
}

Fragment Emitter::Logical(const Expr& expr, Level level, std::string_view word) {
  const Fragment left = AsCondition(Operand(expr, 0));
  const Fragment right = AsCondition(Operand(expr, 1));
  const Level tighter = level == Level::Or ? Level::And : Level::Not;
  return Build(level, ValueKind::Boolean, {AtLeast(level, left), word, AtLeast(tighter, right)});
}

Fragment Emitter::Compare(const Expr& expr, std::string_view sign) {
  const Fragment left = Plain(Operand(expr, 0));
  const Fragment right = Plain(Operand(expr, 1));
  CheckComparable(left, right);
  const Fragment first = AtLeast(Level::Add, left);
  if (!NeedsNoCase(left, right))
    return Build(Level::Compare, ValueKind::Boolean, {first, sign, AtLeast(Level::Add, right)});
  return Build(Level::Compare, ValueKind::Boolean, {first, sign, spelled_.WithoutCase(right)});
}

// A Null counts as the empty text here, and only here.
Fragment Emitter::JoinTexts(const Expr& expr) {
  const auto side = [&](std::size_t index) {
    Fragment text = AsText(spelled_, Operand(expr, index));
    if (text.neverNull) return text;
    return Build(Level::Atom, ValueKind::Text, {"COALESCE(", text, ", '')"});
  };
  const Fragment left = side(0);
  const Fragment right = side(1);
  Fragment result =
      Build(Level::Join, ValueKind::Text, {AtLeast(Level::Join, left), " || ", AtLeast(Level::Atom, right)});
  result.neverNull = true;
  return result;
}

Fragment Emitter::Add(const Expr& expr) {
  const Fragment left = Operand(expr, 0);
  const Fragment right = Operand(expr, 1);
  if (left.kind != ValueKind::Text && right.kind != ValueKind::Text)
    return Calculate(left, right, Level::Add, " + ");
  Fragment result = Build(
      Level::Join, ValueKind::Text,
      {AtLeast(Level::Join, AsText(spelled_, left)), " || ", AtLeast(Level::Atom, AsText(spelled_, right))});
  result.neverNull = left.neverNull && right.neverNull;
  return result;
}

Fragment Emitter::Calculate(const Fragment& a, const Fragment& b, Level level, std::string_view sign) const {
  const Fragment left = AsNumber(a);
  const Fragment right = AsNumber(b);
  const Level tighter = level == Level::Add ? Level::Multiply : Level::Join;
  Fragment result =
      Build(level, NumberKind(left, right), {AtLeast(level, left), sign, AtLeast(tighter, right)});
  result.floating = left.floating || right.floating;
  return result;
}

// The engine would cut the quotient of two whole numbers.
Fragment Emitter::Divide(const Expr& expr) {
  const Fragment left = AsNumber(Operand(expr, 0));
  const Fragment right = AtLeast(Level::Join, AsNumber(Operand(expr, 1)));
  Fragment result =
      left.floating ? Build(Level::Multiply, ValueKind::Real, {AtLeast(Level::Multiply, left), " / ", right})
                    : Build(Level::Multiply, ValueKind::Real, {spelled_.Floating(left), " / ", right});
  result.floating = true;
  return result;
}

Fragment Emitter::Like(const Expr& expr) {
  const Fragment text = AsText(spelled_, Operand(expr, 0));
  const Fragment pattern = AsText(spelled_, Operand(expr, 1));
  return Negated(expr, spelled_.Like(pattern, text));
}

Fragment Emitter::Between(const Expr& expr) {
  const Fragment value = Plain(Operand(expr, 0));
  const Fragment lower = Plain(Operand(expr, 1));
  const Fragment upper = Plain(Operand(expr, 2));
  CheckComparable(value, lower);
  CheckComparable(value, upper);
  const bool noCase = NeedsNoCase(value, lower) || NeedsNoCase(value, upper);
  return Negated(expr, Build(Level::Compare, ValueKind::Boolean,
                             {noCase ? spelled_.WithoutCase(value) : AtLeast(Level::Add, value), " BETWEEN ",
                              AtLeast(Level::Add, lower), " AND ", AtLeast(Level::Add, upper)}));
}

Fragment Emitter::In(const Expr& expr) {
  const Fragment value = Plain(Operand(expr, 0));
  Fragment list;
  bool noCase = false;
  for (std::size_t i = 1; i < expr.operands.size(); ++i) {
    const Fragment element = Plain(Operand(expr, i));
    CheckComparable(value, element);
    // The list compares as its value does, whatever the elements are.
    noCase = noCase || (!value.IsTextColumn() && (value.MayBeText() || element.MayBeText()));
    AppendToList(list, element);
  }
  return Negated(
      expr, Build(Level::Compare, ValueKind::Boolean,
                  {noCase ? spelled_.WithoutCase(value) : AtLeast(Level::Add, value), " IN (", list, ")"}));
}

Fragment Emitter::Is(const Expr& expr, std::string_view word) {
  Fragment value = Operand(expr, 0);
  if (expr.kind != ExprKind::IsNull) value = AsCondition(value);
  Fragment result = Build(Level::Compare, ValueKind::Boolean,
                          {AtLeast(Level::Atom, value), expr.negated ? " IS NOT " : " IS ", word});
  result.neverNull = true;
  return result;
}

Fragment Emitter::Negated(const Expr& expr, Fragment fragment) const {
  if (!expr.negated) return fragment;
  return Build(Level::Not, ValueKind::Boolean, {"NOT ", AtLeast(Level::Atom, fragment)});
}

}  // namespace store::dialect
