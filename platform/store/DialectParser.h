// From tokens to syntax.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store/DialectSyntax.h"
#include "platform/store/Tokenizer.h"

namespace store::dialect {

/// Reads one statement from beginning to end. Throws 3075 for everything that the dialect does not know, and
/// for statements that are nested more deeply than the stack of this program, or of the file's engine, may
/// bear.
class Parser {
 public:
  explicit Parser(std::string_view key) : key_(key), tokens_(Tokenize(key)) {}
  Statement Parse();

 private:
  // Statements
  void ParseInsert(Statement& statement);
  void ParseUpdate(Statement& statement);
  void ParseDelete(Statement& statement);
  Query ParseQuery();
  SelectItem ParseSelectItem();
  std::unique_ptr<Source> ParseSources();
  std::unique_ptr<Source> ParseJoins();
  std::unique_ptr<Source> ParseTable();
  std::unique_ptr<Source> Join(std::unique_ptr<Source> left, JoinKind kind, std::unique_ptr<Source> right);
  std::vector<OrderTerm> ParseOrder();

  // Definitions
  void ParseAlter(Statement& statement);
  void ParseCreate(Statement& statement);
  void ParseCreateTable(Statement& statement);
  void ParseDrop(Statement& statement);
  ColumnInfo ParseColumnDefinition(IndexInfo* primary);
  void ParseColumnType(ColumnInfo& column);
  std::vector<std::string> ParseNameList();

  // Expressions
  ExprPtr ParseExpr() { return ParseOr(); }
  ExprPtr ParseOr();
  ExprPtr ParseAnd();
  ExprPtr ParseNot();
  ExprPtr ParseComparison();
  ExprPtr ParseIs(ExprPtr value);
  ExprPtr ParseJoined();
  ExprPtr ParseSum();
  ExprPtr ParseProduct();
  ExprPtr ParseSigned();
  ExprPtr ParsePrimary();
  ExprPtr ParseParameter();
  ExprPtr ParseCall();
  std::vector<ExprPtr> ParseExprList();
  ExprPtr Make(ExprKind kind, std::size_t place, std::vector<ExprPtr> operands);
  ExprPtr MakeBinary(Operator op, ExprPtr left, ExprPtr right);

  // Names
  ColumnName ParseColumnName();
  std::string_view ParseName();
  bool AtName() const;

  // Tokens
  const Token& Now() const { return tokens_[at_]; }
  const Token& Ahead(std::size_t count) const { return tokens_[std::min(at_ + count, tokens_.size() - 1)]; }
  bool Accept(std::string_view word);
  bool AcceptSign(std::string_view sign);
  void Expect(std::string_view word);
  void ExpectSign(std::string_view sign);
  [[noreturn]] void Refuse(std::string_view reason = {}) const { NotUnderstood(key_, Now().place, reason); }
  void CheckLength(std::size_t count) const;

  /// Counts one level of nesting for as long as it lives.
  class Nesting {
   public:
    explicit Nesting(Parser& parser);
    ~Nesting() { --parser_.nesting_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    Parser& parser_;
  };

  std::string_view key_;
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::size_t parameters_ = 0;
  int nesting_ = 0;
  int tables_ = 0;
};

}  // namespace store::dialect
