#include "platform/print/formula/FormulaLexer.h"

#include "platform/runtime/Text.h"

namespace print {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Letters of other languages may stand in words, so that the message names the whole word.
bool IsWordStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         (static_cast<unsigned char>(c) & 0x80U);
}

}  // namespace

/// To the next character.
void FormulaLexer::Advance() {
  if (text_[at_] == '\n') {
    ++place_.line;
    place_.column = 1;
  } else {
    ++place_.column;
  }
  at_ += rt::FirstCharacter(text_.substr(at_)).bytes;
}

void FormulaLexer::SkipBlanks() {
  while (at_ < text_.size() && (At() == ' ' || At() == '\t' || At() == '\n' || At() == '\r')) Advance();
}

Token FormulaLexer::Next() {
  SkipBlanks();
  Token token;
  token.where = place_;
  if (at_ >= text_.size()) return token;
  const char c = At();
  if (IsDigit(c) || (c == '.' && IsDigit(At(1)))) {
    token.kind = TokenKind::Number;
    token.text = Number();
  } else if (c == '\'' || c == '"') {
    token.kind = TokenKind::Text;
    token.text = Enclosed(c);
  } else if (c == '{') {
    token.kind = TokenKind::Field;
    token.text = Field();
  } else if (IsWordStart(c)) {
    token.kind = TokenKind::Word;
    token.text = Word();
  } else {
    token.kind = TokenKind::Sign;
    token.text = Sign();
  }
  return token;
}

std::string FormulaLexer::Number() {
  const std::size_t first = at_;
  const Place where = place_;
  while (IsDigit(At())) Advance();
  if (At() == '.') Advance();
  while (IsDigit(At())) Advance();
  if ((At() == 'E' || At() == 'e') &&
      (IsDigit(At(1)) || ((At(1) == '+' || At(1) == '-') && IsDigit(At(2))))) {
    Advance();
    Advance();
    while (IsDigit(At())) Advance();
  }
  std::string number(text_.substr(first, at_ - first));
  if (at_ < text_.size() && (IsWordStart(At()) || At() == '.')) {
    throw FormulaError("\"" + number +
                           std::string(text_.substr(at_, rt::FirstCharacter(text_.substr(at_)).bytes)) +
                           "\" is not a number.",
                       where);
  }
  return number;
}

std::string FormulaLexer::Enclosed(char mark) {
  const Place where = place_;
  std::string content;
  Advance();
  for (;;) {
    if (at_ >= text_.size()) throw FormulaError("A text begins here and does not end.", where);
    const std::size_t from = at_;
    if (At() == mark) {
      if (At(1) != mark) break;
      Advance();
    }
    const std::size_t character = At() == mark ? at_ : from;
    Advance();
    content.append(text_.substr(character, at_ - character));
  }
  Advance();
  return content;
}

std::string FormulaLexer::Field() {
  const Place where = place_;
  Advance();
  const std::size_t first = at_;
  while (at_ < text_.size() && At() != '}') {
    if (At() == '{') break;
    Advance();
  }
  if (At() != '}') throw FormulaError("A field begins here and has no closing brace.", where);
  std::string name(text_.substr(first, at_ - first));
  Advance();
  return name;
}

std::string FormulaLexer::Word() {
  const std::size_t first = at_;
  while (at_ < text_.size() && (IsWordStart(At()) || IsDigit(At()))) Advance();
  return std::string(text_.substr(first, at_ - first));
}

std::string FormulaLexer::Sign() {
  const Place where = place_;
  const std::string two(text_.substr(at_, 2));
  if (two == "<>" || two == "<=" || two == ">=") {
    Advance();
    Advance();
    return two;
  }
  const std::size_t first = at_;
  Advance();
  std::string sign(text_.substr(first, at_ - first));
  constexpr std::string_view kSigns = "(),+-*/&=<>";
  if (sign.size() != 1 || kSigns.find(sign[0]) == std::string_view::npos) {
    const auto code = static_cast<unsigned char>(sign[0]);
    throw FormulaError(
        code < ' ' ? "There is a control character here." : "There is no meaning for \"" + sign + "\" here.",
        where);
  }
  return sign;
}

}  // namespace print
