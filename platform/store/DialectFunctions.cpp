// The emitter's part for functions and totals.
#include "platform/runtime/Text.h"
#include "platform/store/DialectEmitter.h"
#include "platform/store/DialectSpelling.h"
#include "platform/store/Tokenizer.h"

namespace store::dialect {
namespace {

ValueKind CommonKind(const Fragment& a, const Fragment& b) {
  if (a.kind == b.kind || b.kind == ValueKind::Null) return a.kind;
  if (a.kind == ValueKind::Null) return b.kind;
  const auto number = [](ValueKind kind) {
    return kind == ValueKind::Boolean || kind == ValueKind::Whole || kind == ValueKind::Real;
  };
  if (!number(a.kind) || !number(b.kind)) return ValueKind::Unknown;
  return a.kind == ValueKind::Real || b.kind == ValueKind::Real ? ValueKind::Real : ValueKind::Whole;
}

}  // namespace

struct Emitter::Function {
  std::string_view name;
  std::size_t fewest;
  std::size_t most;
  Fragment (*make)(Emitter& emitter, const Expr& call);
};

const Emitter::Function* Emitter::FindFunction(std::string_view name) {
  using E = Emitter&;
  using C = const Expr&;
  static constexpr Function kFunctions[] = {
      {"UCASE", 1, 1, [](E e, C c) { return e.spelled_.Upper(AsText(e.spelled_, e.Operand(c, 0))); }},
      {"LCASE", 1, 1, [](E e, C c) { return e.spelled_.Lower(AsText(e.spelled_, e.Operand(c, 0))); }},
      {"TRIM", 1, 1, [](E e, C c) { return e.spelled_.Trimmed(AsText(e.spelled_, e.Operand(c, 0))); }},
      {"LEN", 1, 1, [](E e, C c) { return e.spelled_.Length(AsText(e.spelled_, e.Operand(c, 0))); }},
      {"LEFT", 2, 2, [](E e, C c) { return e.Left(c); }},
      {"RIGHT", 2, 2, [](E e, C c) { return e.Right(c); }},
      {"MID", 2, 3, [](E e, C c) { return e.Middle(c); }},
      {"IIF", 3, 3, [](E e, C c) { return e.Choice(c); }},
      {"NZ", 1, 2, [](E e, C c) { return e.Fallback(c); }},
      {"ISNULL", 1, 1, [](E e, C c) { return e.Is(c, "NULL"); }},
      {"ABS", 1, 1, [](E e, C c) { return e.spelled_.Absolute(AsNumber(e.Operand(c, 0))); }},
      {"INT", 1, 1, [](E e, C c) { return e.spelled_.Floor(AsNumber(e.Operand(c, 0))); }},
      {"YEAR", 1, 1, [](E e, C c) { return e.spelled_.Part(DatePart::Year, e.Date(c)); }},
      {"MONTH", 1, 1, [](E e, C c) { return e.spelled_.Part(DatePart::Month, e.Date(c)); }},
      {"DAY", 1, 1, [](E e, C c) { return e.spelled_.Part(DatePart::Day, e.Date(c)); }},
      {"NOW", 0, 0, [](E e, C) { return e.spelled_.Now(); }},
      {"DATE", 0, 0, [](E e, C) { return e.spelled_.Today(); }},
      {"COUNT", 1, 1,
       [](E e, C c) {
         Fragment count = Build(Level::Atom, ValueKind::Whole, {"COUNT(", e.Totalled(c), ")"});
         count.hasAggregate = count.neverNull = true;
         return count;
       }},
      {"SUM", 1, 1, [](E e, C c) { return e.Total(c, "SUM(", ValueKind::Real); }},
      {"AVG", 1, 1, [](E e, C c) { return e.Total(c, "AVG(", ValueKind::Real); }},
      {"MIN", 1, 1, [](E e, C c) { return e.Extreme(c, "MIN("); }},
      {"MAX", 1, 1, [](E e, C c) { return e.Extreme(c, "MAX("); }},
  };
  for (const auto& function : kFunctions)
    if (rt::EqualNoCase(function.name, name)) return &function;
  return nullptr;
}

Fragment Emitter::Call(const Expr& expr) {
  const Function* function = FindFunction(expr.function);
  if (!function) NotUnderstood(key_, expr.place, "There is no such function");
  if (expr.operands.size() < function->fewest || expr.operands.size() > function->most)
    NotUnderstood(key_, expr.place, "The function takes another number of values");
  return function->make(*this, expr);
}

Fragment Emitter::Left(const Expr& expr) {
  const Fragment text = AsText(spelled_, Operand(expr, 0));
  return spelled_.Left(text, AsNumber(Operand(expr, 1)));
}

Fragment Emitter::Right(const Expr& expr) {
  const Fragment text = AsText(spelled_, Operand(expr, 0));
  return spelled_.Right(text, AsNumber(Operand(expr, 1)));
}

Fragment Emitter::Middle(const Expr& expr) {
  const Fragment text = AsText(spelled_, Operand(expr, 0));
  const Fragment start = AsNumber(Operand(expr, 1));
  std::optional<Fragment> count;
  if (expr.operands.size() > 2) count = AsNumber(Operand(expr, 2));
  return spelled_.Middle(text, start, count);
}

Fragment Emitter::Choice(const Expr& expr) {
  const Fragment condition = AsCondition(Operand(expr, 0));
  const Fragment yes = Plain(Operand(expr, 1));
  const Fragment no = Plain(Operand(expr, 2));
  CheckComparable(yes, no);
  Fragment result =
      Build(Level::Atom, CommonKind(yes, no), {"CASE WHEN ", condition, " THEN ", yes, " ELSE ", no, " END"});
  result.neverNull = yes.neverNull && no.neverNull;
  return result;
}

Fragment Emitter::Fallback(const Expr& expr) {
  const Fragment value = Plain(Operand(expr, 0));
  if (expr.operands.size() == 1) {
    const bool text = value.kind == ValueKind::Text;
    if (value.kind == ValueKind::Date)
      NotPossible("For a date it must be said what stands in for a Null", value);
    Fragment result = Build(Level::Atom, value.kind, {"COALESCE(", value, text ? ", '')" : ", 0)"});
    result.neverNull = true;
    return result;
  }
  const Fragment other = Plain(Operand(expr, 1));
  CheckComparable(value, other);
  Fragment result = Build(Level::Atom, CommonKind(value, other), {"COALESCE(", value, ", ", other, ")"});
  result.neverNull = other.neverNull;
  return result;
}

Fragment Emitter::Date(const Expr& expr) {
  Fragment date = Plain(Operand(expr, 0));
  if (date.kind != ValueKind::Date && date.kind != ValueKind::Null && date.kind != ValueKind::Unknown)
    NotPossible("This is not a date", date);
  return date;
}

Fragment Emitter::CountRows(const Expr& expr) {
  CheckTotal(expr);
  Fragment count = Build(Level::Atom, ValueKind::Whole, {"COUNT(*)"});
  count.hasAggregate = count.neverNull = true;
  return count;
}

// A sum of units stays exact; every other total is a Double, whatever it adds up.
Fragment Emitter::Total(const Expr& expr, std::string_view opening, ValueKind kind) {
  const Fragment value = Totalled(expr);
  const bool exact = value.units && opening == "SUM(";
  Fragment result = exact ? Build(Level::Atom, ValueKind::Currency, {opening, value, ")"})
                          : Build(Level::Atom, kind, {opening, AsNumber(value), ")"});
  result.units = exact;
  result.hasAggregate = true;
  return result;
}

Fragment Emitter::Extreme(const Expr& expr, std::string_view opening) {
  const Fragment value = Totalled(expr);
  if (value.kind == ValueKind::Binary) NotPossible("This has no order", value);
  Fragment result = Build(Level::Atom, value.kind, {opening, WithoutCase(spelled_, value), ")"});
  result.units = value.units;
  result.typed = value.typed;
  result.hasAggregate = true;
  return result;
}

Fragment Emitter::Totalled(const Expr& expr) {
  CheckTotal(expr);
  const Inside outside = inside_;
  inside_ = Inside::Total;
  Fragment value = Operand(expr, 0);
  inside_ = outside;
  return value;
}

void Emitter::CheckTotal(const Expr& expr) const {
  if (inside_ == Inside::NoTotals) NotUnderstood(key_, expr.place, "A total over rows has no place here");
  if (inside_ == Inside::Total) NotUnderstood(key_, expr.place, "A total inside a total");
}

}  // namespace store::dialect
