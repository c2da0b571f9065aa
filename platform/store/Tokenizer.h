// The words and signs of a normalized statement.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store/StoreError.h"

namespace store::dialect {

enum class TokenKind {
  End,
  Word,       ///< bare: a keyword, a name or a function
  Bracket,    ///< a name in brackets; `text` is what is between them, without blanks at its end
  Parameter,  ///< a literal that was taken out; `text` is its type's letter
  Number,     ///< a number that belongs to the statement's shape: behind TOP, or the size of a column
  Sign,       ///< one of ( ) , ; . * + - / & = < > <= >= <>
};

/// The letters behind the '?' of a parameter in a key.
constexpr char kTextLetter = 't';
constexpr char kWholeLetter = 'l';
constexpr char kRealLetter = 'f';
constexpr char kDateLetter = 'd';

struct Token {
  TokenKind kind = TokenKind::End;
  std::string_view text;
  std::size_t place = 0;  ///< where it begins in the key

  /// Whether it is this bare word, in whatever case.
  bool Is(std::string_view word) const;
  /// Whether it is this sign.
  bool IsSign(std::string_view sign) const { return kind == TokenKind::Sign && text == sign; }
};

/// The key of a statement as Normalize makes it, and its literals as they are written, in order of
/// appearance. Throws 3075 as Normalize does.
std::string KeyOf(std::string_view sql, std::vector<std::string_view>& literals);

/// Cuts a key into its tokens; the last one is an End. They point into `key`.
std::vector<Token> Tokenize(std::string_view key);

/// Throws 3075 with the text of the key from `place` on, so that the person who wrote the statement finds the
/// spot.
[[noreturn]] void NotUnderstood(std::string_view key, std::size_t place, std::string_view reason = {});

}  // namespace store::dialect
