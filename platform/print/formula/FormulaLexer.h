// Words, numbers, texts, fields and signs of a formula.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/print/formula/Formula.h"

namespace print {

enum class TokenKind { End, Number, Text, Field, Word, Sign };

struct Token {
  TokenKind kind = TokenKind::End;
  /// A number's digits, a text without its quotation marks, what stands between the braces of a field, a word
  /// as it was typed, or one of ( ) , + - * / & = <> < <= > >=.
  std::string text;
  Place where;
};

/// Cuts a text into tokens, one at a time.
class FormulaLexer {
 public:
  explicit FormulaLexer(std::string_view text) : text_(text) {}
  /// Throws FormulaError for a character that begins nothing and for a quotation mark or brace without its
  /// partner.
  Token Next();

 private:
  char At(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
  void Advance();
  void SkipBlanks();
  std::string Number();
  std::string Enclosed(char mark);
  std::string Field();
  std::string Word();
  std::string Sign();

  std::string_view text_;
  std::size_t at_ = 0;
  Place place_;
};

}  // namespace print
