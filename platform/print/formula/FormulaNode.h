// The tree of a formula. Selections are turned into SQL from it, so it is open to data/ as well.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "platform/print/formula/Formula.h"
#include "platform/runtime/Value.h"

namespace print {

using NodePointer = std::shared_ptr<const FormulaNode>;

enum class NodeKind {
  Literal,
  Field,
  Neighbor,  ///< a field in the row before or after
  And,       ///< two operands or more
  Or,
  Not,
  Compare,
  Arithmetic,
  Negate,
  Join,  ///< '&' with two operands or more
  Call,
  Total,
  FirstInGroup,
  LastInGroup,
  RowNumber,
  Page,
  Pages,
  Continued,
  ReportName,
  User,
  PrintTime,
  Today,
};

enum class Comparison { Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual };
enum class Operation { Add, Subtract, Multiply, Divide };

/// What a tree needs besides the row that it is evaluated for.
enum Uses : unsigned {
  kUsesTotals = 1,
  kUsesNeighbors = 2,  ///< other rows, or the place of the row among them
  kUsesPage = 4,       ///< the page that it stands on
  kUsesPages = 8,      ///< how many pages there are
};

/// A function that is computed from its arguments; see FormulaFunctions.h.
struct FormulaFunction;

/// One node. Nodes do not change once a formula is read, and formulas share those of named formulas.
struct FormulaNode {
  NodeKind kind = NodeKind::Literal;
  Comparison comparison = Comparison::Equal;
  Operation operation = Operation::Add;
  /// Field and Neighbor: the column of the row. Total: its place in the formula's totals. FirstInGroup and
  /// LastInGroup: the group, the outermost is 0.
  int place = -1;
  int distance = 0;  ///< Neighbor: -1 for the row before, 1 for the row after
  const FormulaFunction* function = nullptr;
  rt::Value literal;
  std::vector<NodePointer> operands;
  Total total;  ///< of a Total
  /// What the value's type will be; Null where it depends on the row. A Long may become a Double where a
  /// result is too large.
  rt::ValueType type = rt::ValueType::Null;
  unsigned uses = 0;  ///< the Uses of the whole tree, without those inside of totals
  int depth = 1;      ///< of the tree, this node included
  int weight = 1;     ///< the number of its nodes, those of shared trees counted each time
  Place where;        ///< in the text that it was read from
};

/// The value of a node; see Formula::Evaluate.
rt::Value Evaluate(const FormulaNode& node, const FormulaValues& values);
/// The same without a copy where the value lies somewhere already: in the row or in the tree. `scratch` takes
/// it otherwise.
const rt::Value& Look(const FormulaNode& node, const FormulaValues& values, rt::Value& scratch);

}  // namespace print
