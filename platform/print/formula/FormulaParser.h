// From the text of a formula to its checked tree.
#pragma once

#include <string_view>
#include <vector>

#include "platform/print/formula/FormulaLexer.h"
#include "platform/print/formula/FormulaNode.h"

namespace print {

/// What stands in the braces of a field, without brackets and blanks around its parts: "[Vehicles].[Asset
/// ID]" and "Vehicles.Asset ID" are the same field.
std::string NormalizedField(std::string_view inBraces);

/// Reads one formula.
class FormulaParser {
 public:
  FormulaParser(std::string_view text, const FormulaScope& scope, FormulaUse use);
  /// The tree. Throws FormulaError.
  NodePointer Read();
  /// The totals that the tree has, by their places.
  std::vector<Total> TakeTotals() { return std::move(totals_); }

 private:
  struct Operator;
  class Nesting;

  void Advance();
  bool IsSign(std::string_view sign) const;
  bool IsWord(std::string_view word) const;
  void Expect(std::string_view sign, std::string_view after);
  static const Operator* OperatorOf(const Token& token);

  NodePointer Expression(int least);
  NodePointer Prefix();
  NodePointer Primary();
  NodePointer NumberLiteral();
  NodePointer FieldOrFormula(const Token& token);
  NodePointer Word(const Token& word);
  NodePointer Call(const FormulaFunction& function, const Token& name);
  NodePointer TotalCall(const Token& name, TotalKind kind, bool ofPage);
  void ReadTotalScope(Total& total, const Token& name);
  NodePointer NeighborCall(const Token& name, int distance);
  NodePointer GroupCall(const Token& name, NodeKind kind);
  int ReadGroup(const Token& name);
  NodePointer SpecialValue(const Token& name);
  NodePointer Apply(const Operator& binary, std::vector<NodePointer> operands, Place where);
  NodePointer WithOwnTotals(const NodePointer& tree);
  void RefuseInTotal(const Token& name) const;
  void CheckUse(unsigned uses, Place where) const;

  FormulaLexer lexer_;
  const FormulaScope& scope_;
  FormulaUse use_;
  Token token_;
  Token before_;  ///< the token before `token_`
  std::vector<Total> totals_;
  int nesting_ = 0;
  bool inTotal_ = false;
};

}  // namespace print
