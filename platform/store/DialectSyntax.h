// What the parser makes of a statement. Every view points into the statement's key.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/store/Dialect.h"

namespace store::dialect {

/// A column as the statement names it.
struct ColumnName {
  std::string_view table;   ///< empty if the statement does not say
  std::string_view column;  ///< may be "table.column" where the whole stood in one pair of brackets
  bool bracketed = false;
  std::size_t place = 0;
};

enum class ExprKind {
  Parameter,
  True,
  False,
  Null,
  Column,
  Not,
  Negate,
  Binary,
  Like,
  Between,  ///< value, lower, upper
  In,       ///< value, list
  IsNull,
  IsTrue,
  IsFalse,
  Call,
  CountRows,  ///< COUNT(*)
};

enum class Operator {
  Or,
  And,
  Equal,
  Unequal,
  Less,
  Greater,
  LessEqual,
  GreaterEqual,
  Join,
  Add,
  Subtract,
  Multiply,
  Divide
};

struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

struct Expr {
  ExprKind kind = ExprKind::Null;
  std::size_t place = 0;
  int depth = 1;                  ///< levels below and with this one
  bool negated = false;           ///< NOT LIKE, NOT BETWEEN, NOT IN, IS NOT
  Operator op = Operator::Equal;  ///< of a Binary
  char letter = 0;                ///< of a Parameter: its type
  std::size_t number = 0;         ///< of a Parameter: from 1, in order of appearance
  ColumnName column;              ///< of a Column
  std::string_view function;      ///< of a Call, as written
  std::vector<ExprPtr> operands;
};

enum class JoinKind { Inner, Left, Right, Cross };

/// A table, or two sides joined.
struct Source {
  std::size_t place = 0;
  std::string_view table;  ///< empty for a join
  std::string_view alias;  ///< empty if the statement has none
  JoinKind join = JoinKind::Inner;
  std::unique_ptr<Source> left, right;
  ExprPtr on;  ///< none for Cross
};

struct SelectItem {
  std::size_t place = 0;
  bool star = false;           ///< * or table.*
  std::string_view starTable;  ///< empty for the * of all tables
  ExprPtr value;
  std::string_view alias;
};

struct OrderTerm {
  ExprPtr value;
  bool descending = false;
};

struct Query {
  bool distinct = false;
  std::optional<std::int64_t> top;
  std::vector<SelectItem> items;
  std::unique_ptr<Source> from;
  ExprPtr where;
  std::vector<ExprPtr> groupBy;
  ExprPtr having;
  std::vector<OrderTerm> orderBy;
};

struct Statement {
  StatementKind kind = StatementKind::Select;
  Query query;  ///< of a Select, and of an Insert … SELECT
  bool hasQuery = false;

  std::string_view target;
  std::size_t targetPlace = 0;
  std::vector<ColumnName> columns;  ///< Insert and Update: what is set; CreateIndex: its columns; DropColumn
  std::vector<ExprPtr> values;      ///< Insert and Update
  ExprPtr where;                    ///< Update and Delete

  ColumnInfo column;
  std::vector<ColumnInfo> newColumns;
  IndexInfo index;
};

}  // namespace store::dialect
