// From the syntax of expressions to the file's SQL.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/store/DialectFragment.h"
#include "platform/store/DialectScope.h"

namespace store::dialect {

/// Where an expression is used: whether totals over rows make sense there.
enum class Totals { Forbidden, Allowed };

class Emitter {
 public:
  Emitter(const Scope& scope, const Spelling& spelled, std::string_view key)
      : scope_(scope), spelled_(spelled), key_(key) {}

  /// The expression, with names from table `first` on. A bare Currency column and its MIN, MAX and SUM come
  /// in units.
  Fragment Emit(const Expr& expr, Totals totals, int first = 0);
  /// A condition for WHERE, ON and HAVING.
  Fragment EmitCondition(const Expr& expr, Totals totals, int first = 0);
  /// A column alone.
  Fragment EmitColumn(int table, const ColumnInfo& column) const;
  /// Throws 3075 for a column that is neither grouped by nor inside a total.
  void CheckGrouped(const Expr& expr, const std::vector<std::string>& groups);

 private:
  enum class Inside { NoTotals, Totals, Total };

  Fragment Any(const Expr& expr);
  Fragment Operand(const Expr& expr, std::size_t index) { return Any(*expr.operands[index]); }
  Fragment Parameter(const Expr& expr);
  Fragment Not(const Expr& expr);
  Fragment Negate(const Expr& expr);
  Fragment Binary(const Expr& expr);
  Fragment Logical(const Expr& expr, Level level, std::string_view word);
  Fragment Compare(const Expr& expr, std::string_view sign);
  Fragment JoinTexts(const Expr& expr);
  Fragment Add(const Expr& expr);
  Fragment Calculate(const Fragment& a, const Fragment& b, Level level, std::string_view sign) const;
  Fragment Divide(const Expr& expr);
  Fragment Like(const Expr& expr);
  Fragment Between(const Expr& expr);
  Fragment In(const Expr& expr);
  Fragment Is(const Expr& expr, std::string_view word);
  Fragment Negated(const Expr& expr, Fragment fragment) const;

  // Functions
  struct Function;
  static const Function* FindFunction(std::string_view name);
  Fragment Call(const Expr& expr);
  Fragment Left(const Expr& expr);
  Fragment Right(const Expr& expr);
  Fragment Middle(const Expr& expr);
  Fragment Choice(const Expr& expr);
  Fragment Fallback(const Expr& expr);
  Fragment Date(const Expr& expr);

  // Totals over rows
  Fragment CountRows(const Expr& expr);
  Fragment Total(const Expr& expr, std::string_view opening, ValueKind kind);
  Fragment Extreme(const Expr& expr, std::string_view opening);
  Fragment Totalled(const Expr& expr);
  void CheckTotal(const Expr& expr) const;

  const Scope& scope_;
  const Spelling& spelled_;
  std::string_view key_;
  Inside inside_ = Inside::NoTotals;
  int first_ = 0;
};

}  // namespace store::dialect
