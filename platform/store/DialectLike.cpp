// Patterns of LIKE: * any text, ? any character, # any digit, [list] and [!list] one of (or none of) a list.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "platform/runtime/Text.h"
#include "platform/store/Dialect.h"

namespace store {
namespace {

enum class Part { AnyText, AnyCharacter, Digit, OneOf };

struct Range {
  char32_t first;
  char32_t last;
};

struct Element {
  Part part = Part::OneOf;
  bool negated = false;
  std::vector<Range> ranges;
};

// The characters of a text in lower case; a byte that is not UTF-8 counts as a character of its own.
std::u32string Characters(std::string_view text) {
  const std::string lower = rt::LowerCase(text);
  std::u32string result;
  for (std::string_view rest = lower; !rest.empty();) {
    const rt::Character character = rt::FirstCharacter(rest);
    result.push_back(character.valid ? character.code : static_cast<unsigned char>(rest.front()));
    rest.remove_prefix(character.bytes);
  }
  return result;
}

// Reads a list behind its bracket, up to and with the closing one. Empty if it is not closed.
std::optional<Element> ReadList(const std::u32string& pattern, std::size_t& at) {
  const std::size_t end = pattern.find(U']', at);
  if (end == std::u32string::npos) return std::nullopt;
  Element element;
  if (pattern[at] == U'!' && end > at + 1) {
    element.negated = true;
    ++at;
  }
  while (at < end) {
    const char32_t first = pattern[at++];
    if (at + 1 < end && pattern[at] == U'-') {
      element.ranges.push_back({first, pattern[at + 1]});
      at += 2;
    } else {
      element.ranges.push_back({first, first});
    }
  }
  at = end + 1;
  return element;
}

std::optional<std::vector<Element>> ReadPattern(const std::u32string& pattern) {
  std::vector<Element> elements;
  for (std::size_t at = 0; at < pattern.size();) {
    const char32_t character = pattern[at++];
    if (character == U'*') {
      elements.push_back({Part::AnyText, false, {}});
    } else if (character == U'?') {
      elements.push_back({Part::AnyCharacter, false, {}});
    } else if (character == U'#') {
      elements.push_back({Part::Digit, false, {}});
    } else if (character == U'[') {
      auto element = ReadList(pattern, at);
      if (!element) return std::nullopt;
      // An empty list matches no character at all.
      if (!element->ranges.empty()) elements.push_back(std::move(*element));
    } else {
      elements.push_back({Part::OneOf, false, {{character, character}}});
    }
  }
  return elements;
}

bool Fits(const Element& element, char32_t character) {
  if (element.part == Part::AnyCharacter) return true;
  if (element.part == Part::Digit) return character >= U'0' && character <= U'9';
  const bool listed = std::any_of(element.ranges.begin(), element.ranges.end(), [&](const Range& range) {
    return character >= range.first && character <= range.last;
  });
  return listed != element.negated;
}

}  // namespace

bool LikeMatch(std::string_view pattern, std::string_view text) {
  const auto elements = ReadPattern(Characters(pattern));
  if (!elements) return false;
  const std::u32string characters = Characters(text);
  // When a match fails, the last * takes one character more; earlier ones never need to.
  std::size_t element = 0;
  std::size_t at = 0;
  std::optional<std::size_t> star;
  std::size_t starAt = 0;
  while (at < characters.size()) {
    if (element < elements->size() && (*elements)[element].part == Part::AnyText) {
      star = element++;
      starAt = at;
    } else if (element < elements->size() && Fits((*elements)[element], characters[at])) {
      ++element;
      ++at;
    } else if (star) {
      element = *star + 1;
      at = ++starAt;
    } else {
      return false;
    }
  }
  while (element < elements->size() && (*elements)[element].part == Part::AnyText) ++element;
  return element == elements->size();
}

}  // namespace store
