#include "support/Json.h"

#include <cctype>
#include <regex>
#include <stdexcept>

namespace test {
namespace {

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Json Whole() {
    Json value = Value();
    Blanks();
    if (at_ != text_.size()) Fail("something behind the end");
    return value;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw std::runtime_error(what + " at " + std::to_string(at_));
  }
  void Blanks() {
    while (at_ < text_.size() && std::string_view(" \t\r\n").find(text_[at_]) != std::string_view::npos)
      ++at_;
  }
  bool Take(std::string_view word) {
    Blanks();
    if (text_.substr(at_, word.size()) != word) return false;
    at_ += word.size();
    return true;
  }
  void Need(std::string_view word) {
    if (!Take(word)) Fail("no '" + std::string(word) + "'");
  }

  Json Value() {
    if (Take("null")) return {};
    if (Take("true")) return {.kind = Json::Kind::True};
    if (Take("false")) return {.kind = Json::Kind::False};
    Blanks();
    if (at_ == text_.size()) Fail("no value");
    switch (text_[at_]) {
      case '"':
        return {.kind = Json::Kind::Text, .text = Text()};
      case '[':
        return Array();
      case '{':
        return Object();
      default:
        return Number();
    }
  }

  Json Array() {
    Json array{.kind = Json::Kind::Array};
    Need("[");
    if (Take("]")) return array;
    do array.items.push_back(Value());
    while (Take(","));
    Need("]");
    return array;
  }

  Json Object() {
    Json object{.kind = Json::Kind::Object};
    Need("{");
    if (Take("}")) return object;
    do {
      Blanks();
      const std::string name = Text();
      Need(":");
      if (!object.members.emplace(name, Value()).second) Fail("a doubled name");
    } while (Take(","));
    Need("}");
    return object;
  }

  Json Number() {
    static const std::regex kNumber(R"(-?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][-+]?[0-9]+)?)");
    std::match_results<std::string_view::const_iterator> match;
    if (!std::regex_search(text_.begin() + static_cast<std::ptrdiff_t>(at_), text_.end(), match, kNumber,
                           std::regex_constants::match_continuous))
      Fail("no number");
    at_ += static_cast<std::size_t>(match.length());
    return {.kind = Json::Kind::Number, .text = match.str()};
  }

  std::string Text() {
    Need("\"");
    std::string text;
    for (;;) {
      if (at_ == text_.size()) Fail("an open text");
      const char c = text_[at_++];
      if (c == '"') return text;
      if (static_cast<unsigned char>(c) < 0x20) Fail("a control character");
      text += c == '\\' ? Escaped() : std::string(1, c);
    }
  }

  std::string Escaped() {
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    if (at_ == text_.size()) Fail("an open escape");
    const char letter = text_[at_++];
    if (const auto place = kLetters.find(letter); place != std::string_view::npos)
      return std::string(1, kMeanings[place]);
    const std::string digits(text_.substr(at_, 4));
    if (letter != 'u' || digits.size() != 4 ||
        digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos)
      Fail("an unknown escape");
    at_ += 4;
    // Code points of three bytes at most; the tests use no surrogate pairs.
    const auto code = static_cast<unsigned>(std::stoul(digits, nullptr, 16));
    const auto byte = [](unsigned bits) { return static_cast<char>(bits); };
    if (code < 0x80) return {byte(code)};
    if (code < 0x800) return {byte(0xC0 | (code >> 6U)), byte(0x80 | (code & 63U))};
    return {byte(0xE0 | (code >> 12U)), byte(0x80 | ((code >> 6U) & 63U)), byte(0x80 | (code & 63U))};
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

Json ParseJson(std::string_view text) { return Parser(text).Whole(); }

}  // namespace test
