#include "platform/store/Tokenizer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include "platform/runtime/DateTime.h"
#include "platform/runtime/Text.h"
#include "platform/store/Dialect.h"

namespace store {
namespace {

enum class Class : std::uint8_t { Unknown, Blank, Letter, Digit, Sign, Apostrophe, Quotation, Hash, Bracket };

constexpr std::array<Class, 256> MakeClasses() {
  std::array<Class, 256> classes{};
  for (const char c : {' ', '\t', '\r', '\n', '\f', '\v'})
    classes[static_cast<unsigned char>(c)] = Class::Blank;
  for (unsigned c = 'a'; c <= 'z'; ++c) classes[c] = classes[c - 'a' + 'A'] = Class::Letter;
  // Every byte of a letter beyond ASCII.
  for (unsigned c = 0x80; c <= 0xff; ++c) classes[c] = Class::Letter;
  classes['_'] = Class::Letter;
  for (unsigned c = '0'; c <= '9'; ++c) classes[c] = Class::Digit;
  for (const char c : {'(', ')', ',', ';', '.', '*', '+', '-', '/', '&', '=', '<', '>'})
    classes[static_cast<unsigned char>(c)] = Class::Sign;
  classes['\''] = Class::Apostrophe;
  classes['"'] = Class::Quotation;
  classes['#'] = Class::Hash;
  classes['['] = Class::Bracket;
  return classes;
}

constexpr std::array<Class, 256> kClasses = MakeClasses();

Class ClassOf(char c) { return kClasses[static_cast<unsigned char>(c)]; }

bool IsWordPart(char c) {
  const Class found = ClassOf(c);
  return found == Class::Letter || found == Class::Digit;
}

[[noreturn]] void Refuse(std::string_view sql, std::size_t place, const char* reason) {
  std::size_t end = std::min(place + 40, sql.size());
  while (end < sql.size() && rt::IsContinuation(sql[end])) ++end;
  throw StoreError(kSyntax, std::string(reason) + " at character " + std::to_string(place + 1) + ": " +
                                std::string(sql.substr(place, end - place)));
}

/// Takes a statement apart in one pass.
class Normalizer {
 public:
  explicit Normalizer(std::string_view sql, std::vector<std::string_view>* literals = nullptr)
      : sql_(sql), literals_(literals) {
    result_.key.reserve(sql.size() + 8);
  }

  Normalized Run() {
    while (at_ < sql_.size()) {
      const char c = sql_[at_];
      switch (ClassOf(c)) {
        case Class::Blank:
          blank_ = true;
          ++at_;
          continue;
        case Class::Letter:
          TakeWord();
          break;
        case Class::Digit:
          TakeNumber();
          break;
        case Class::Sign:
          if (c == '.' && at_ + 1 < sql_.size() && ClassOf(sql_[at_ + 1]) == Class::Digit &&
              (blank_ || !afterName_)) {
            TakeNumber();
          } else {
            TakeSign();
          }
          break;
        case Class::Apostrophe:
        case Class::Quotation:
          TakeText(c);
          break;
        case Class::Hash:
          TakeDate();
          break;
        case Class::Bracket:
          TakeBracket();
          break;
        case Class::Unknown:
          Refuse(sql_, at_, "Unknown character");
      }
    }
    return std::move(result_);
  }

 private:
  // A run of blanks and line ends counts as one blank; those at the ends of the statement are dropped.
  void Keep(std::size_t begin, std::size_t end) {
    Separate();
    result_.key.append(sql_, begin, end - begin);
  }

  void Separate() {
    if (blank_ && !result_.key.empty()) result_.key.push_back(' ');
    blank_ = false;
  }

  /// Takes out the literal that reaches from `begin` to here.
  void Take(char letter, std::size_t begin, rt::Value value) {
    Separate();
    if (literals_) literals_->push_back(sql_.substr(begin, at_ - begin));
    result_.key.push_back('?');
    result_.key.push_back(letter);
    if (result_.parameters.empty()) result_.parameters.reserve(4);
    result_.parameters.push_back(std::move(value));
    afterName_ = afterTop_ = false;
  }

  void TakeWord() {
    const std::size_t begin = at_;
    while (at_ < sql_.size() && IsWordPart(sql_[at_])) ++at_;
    const std::string_view word = sql_.substr(begin, at_ - begin);
    if (result_.key.empty()) definition_ = rt::EqualNoCase(word, "CREATE") || rt::EqualNoCase(word, "ALTER");
    Keep(begin, at_);
    afterName_ = true;
    afterTop_ = word.size() == 3 && rt::EqualNoCase(word, "TOP");
  }

  void TakeSign() {
    Keep(at_, at_ + 1);
    ++at_;
    afterName_ = afterTop_ = false;
  }

  void TakeNumber() {
    const std::size_t begin = at_;
    const auto digits = [this] {
      while (at_ < sql_.size() && ClassOf(sql_[at_]) == Class::Digit) ++at_;
    };
    digits();
    bool whole = true;
    if (at_ < sql_.size() && sql_[at_] == '.') {
      whole = false;
      ++at_;
      digits();
    }
    if (at_ < sql_.size() && (sql_[at_] == 'e' || sql_[at_] == 'E')) {
      whole = false;
      ++at_;
      if (at_ < sql_.size() && (sql_[at_] == '+' || sql_[at_] == '-')) ++at_;
      digits();
    }
    if (at_ < sql_.size() && IsWordPart(sql_[at_])) Refuse(sql_, begin, "A number runs into a name");
    // The digits behind TOP and the sizes of columns shape the statement; they are not values of it.
    if (afterTop_ || definition_) {
      if (!whole) Refuse(sql_, begin, "A whole number is needed");
      Keep(begin, at_);
      afterName_ = afterTop_ = false;
      return;
    }
    const char* first = sql_.data() + begin;
    const char* last = sql_.data() + at_;
    if (std::int32_t number = 0; whole) {
      const auto read = std::from_chars(first, last, number);
      if (read.ec == std::errc() && read.ptr == last) return Take(dialect::kWholeLetter, begin, number);
    }
    double number = 0;
    const auto read = std::from_chars(first, last, number);
    if (read.ec != std::errc() || read.ptr != last) Refuse(sql_, begin, "This is no number");
    Take(dialect::kRealLetter, begin, number);
  }

  void TakeText(char quote) {
    const std::size_t begin = at_++;
    std::string text;
    for (;;) {
      const std::size_t end = sql_.find(quote, at_);
      if (end == std::string_view::npos) Refuse(sql_, begin, "A text is not closed");
      text.append(sql_, at_, end - at_);
      at_ = end + 1;
      if (at_ == sql_.size() || sql_[at_] != quote) break;
      text.push_back(quote);
      ++at_;
    }
    Take(dialect::kTextLetter, begin, std::move(text));
  }

  void TakeDate() {
    const std::size_t begin = at_;
    const std::size_t end = sql_.find('#', begin + 1);
    if (end == std::string_view::npos) Refuse(sql_, begin, "A date is not closed");
    const auto date = rt::ParseDate(sql_.substr(begin + 1, end - begin - 1));
    if (!date) Refuse(sql_, begin, "This is no date");
    at_ = end + 1;
    Take(dialect::kDateLetter, begin, *date);
  }

  void TakeBracket() {
    const std::size_t begin = at_;
    for (++at_; at_ < sql_.size() && sql_[at_] != ']'; ++at_) {
      if (sql_[at_] == '[' || static_cast<unsigned char>(sql_[at_]) < ' ')
        Refuse(sql_, begin, "A name in brackets holds a character that no name has");
    }
    if (at_ == sql_.size()) Refuse(sql_, begin, "A bracket is not closed");
    Keep(begin, ++at_);
    afterName_ = true;
    afterTop_ = false;
  }

  std::string_view sql_;
  std::vector<std::string_view>* literals_;
  std::size_t at_ = 0;
  bool blank_ = false;
  bool afterName_ = false;  // a dot that follows at once joins two names
  bool afterTop_ = false;
  bool definition_ = false;  // CREATE and ALTER have sizes and no values
  Normalized result_;
};

}  // namespace

Normalized Normalize(std::string_view sql) { return Normalizer(sql).Run(); }

namespace dialect {

std::string KeyOf(std::string_view sql, std::vector<std::string_view>& literals) {
  return Normalizer(sql, &literals).Run().key;
}

bool Token::Is(std::string_view word) const { return kind == TokenKind::Word && rt::EqualNoCase(text, word); }

std::vector<Token> Tokenize(std::string_view key) {
  std::vector<Token> tokens;
  tokens.reserve(key.size() / 4 + 2);
  std::size_t at = 0;
  while (at < key.size()) {
    const std::size_t begin = at;
    const char c = key[at++];
    switch (ClassOf(c)) {
      case Class::Blank:
        continue;
      case Class::Letter:
        while (at < key.size() && IsWordPart(key[at])) ++at;
        tokens.push_back({TokenKind::Word, key.substr(begin, at - begin), begin});
        continue;
      case Class::Digit:
        while (at < key.size() && ClassOf(key[at]) == Class::Digit) ++at;
        tokens.push_back({TokenKind::Number, key.substr(begin, at - begin), begin});
        continue;
      case Class::Bracket: {
        const std::size_t end = key.find(']', at);
        if (end == std::string_view::npos) NotUnderstood(key, begin);
        std::string_view name = key.substr(at, end - at);
        name = name.substr(0, name.find_last_not_of(' ') + 1);
        if (name.empty()) NotUnderstood(key, begin, "The brackets are empty");
        at = end + 1;
        tokens.push_back({TokenKind::Bracket, name, begin});
        continue;
      }
      case Class::Sign: {
        const char next = at < key.size() ? key[at] : '\0';
        if ((c == '<' && (next == '=' || next == '>')) || (c == '>' && next == '=')) ++at;
        tokens.push_back({TokenKind::Sign, key.substr(begin, at - begin), begin});
        continue;
      }
      default:
        if (c != '?' || at == key.size()) NotUnderstood(key, begin);
        tokens.push_back({TokenKind::Parameter, key.substr(at, 1), begin});
        ++at;
    }
  }
  tokens.push_back({TokenKind::End, {}, key.size()});
  return tokens;
}

void NotUnderstood(std::string_view key, std::size_t place, std::string_view reason) {
  std::string text = reason.empty() ? "The statement is not understood" : std::string(reason);
  if (place >= key.size()) throw StoreError(kSyntax, text + " at its end.");
  // In the key a literal is a '?' with a letter; the letter would only puzzle the reader.
  std::string shown;
  for (std::size_t at = place; at < key.size() && (shown.size() < 40 || rt::IsContinuation(key[at])); ++at) {
    shown.push_back(key[at]);
    if (key[at] == '?') ++at;
  }
  throw StoreError(kSyntax, text + " at: " + shown);
}

}  // namespace dialect
}  // namespace store
