// Nodes of formulas, made only if their operands can fit.
#pragma once

#include <string>
#include <vector>

#include "platform/print/formula/FormulaFunctions.h"
#include "platform/print/formula/FormulaNode.h"

namespace print {

/// Each makes a node at this place of the text, folded to a literal if all its operands are literals. They
/// throw FormulaError where the types of the operands can never fit, and for a tree that is too large.
NodePointer MakeLiteral(rt::Value value, Place where);
NodePointer MakeField(int place, rt::ValueType type, Place where);
NodePointer MakeLogical(NodeKind kind, std::vector<NodePointer> operands, Place where);
NodePointer MakeComparison(Comparison comparison, NodePointer left, NodePointer right, Place where);
NodePointer MakeArithmetic(Operation operation, NodePointer left, NodePointer right, Place where);
NodePointer MakeNegation(NodePointer operand, Place where);
NodePointer MakeJoin(std::vector<NodePointer> operands, Place where);
NodePointer MakeCall(const FormulaFunction& function, std::vector<NodePointer> operands, Place where);
/// A total whose place in the formula's totals is `place`.
NodePointer MakeTotal(const Total& total, int place, std::string_view name, Place where);
/// A value that comes from the run: Page, User, a neighboring field...
NodePointer MakeSpecial(FormulaNode node);

}  // namespace print
