#include "platform/runtime/Letters.h"

#include <algorithm>
#include <clocale>
#include <cwctype>

namespace rt {
namespace {

void Encode(std::uint32_t code, std::string& text) {
  const auto put = [&](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0U | (code >> 6U));
    put(0x80U | (code & 0x3FU));
  } else if (code < 0x10000) {
    put(0xE0U | (code >> 12U));
    put(0x80U | ((code >> 6U) & 0x3FU));
    put(0x80U | (code & 0x3FU));
  } else {
    put(0xF0U | (code >> 18U));
    put(0x80U | ((code >> 12U) & 0x3FU));
    put(0x80U | ((code >> 6U) & 0x3FU));
    put(0x80U | (code & 0x3FU));
  }
}

/// The rules of the letters themselves, whatever language the workstation uses: the same text must have the
/// same key everywhere.
locale_t LetterRules() {
  static const locale_t rules = [] {
    const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return unicode != nullptr ? unicode : newlocale(LC_CTYPE_MASK, "C", nullptr);
  }();
  return rules;
}

template <typename Ascii, typename Wide>
std::string Converted(std::string_view text, Ascii ascii, Wide wide) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Character character = FirstCharacter(text);
    if (!character.valid) {
      result.push_back(text.front());
    } else if (character.code < 0x80) {
      result.push_back(ascii(text.front()));
    } else {
      Encode(static_cast<std::uint32_t>(wide(static_cast<std::wint_t>(character.code), LetterRules())),
             result);
    }
    text.remove_prefix(character.bytes);
  }
  return result;
}

}  // namespace

std::string FoldCase(std::string_view text) {
  std::string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), FoldLetter);
  return folded;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char left, char right) { return FoldLetter(left) == FoldLetter(right); });
}

std::string UpperCase(std::string_view text) {
  const auto ascii = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; };
  return Converted(text, ascii, [](std::wint_t c, locale_t rules) { return towupper_l(c, rules); });
}

std::string LowerCase(std::string_view text) {
  return Converted(text, FoldLetter, [](std::wint_t c, locale_t rules) { return towlower_l(c, rules); });
}

Character FirstCharacter(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return {first, 1, true};
  std::size_t bytes = 0;
  std::uint32_t code = 0;
  std::uint32_t smallest = 0;
  if ((first & 0xE0U) == 0xC0U) {
    bytes = 2, code = first & 0x1FU, smallest = 0x80;
  } else if ((first & 0xF0U) == 0xE0U) {
    bytes = 3, code = first & 0x0FU, smallest = 0x800;
  } else if ((first & 0xF8U) == 0xF0U) {
    bytes = 4, code = first & 0x07U, smallest = 0x10000;
  } else {
    return {};
  }
  if (text.size() < bytes) return {};
  for (std::size_t i = 1; i < bytes; ++i) {
    if (!IsContinuation(text[i])) return {};
    code = (code << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < smallest || code > 0x10FFFF || surrogate) return {};
  return {code, bytes, true};
}

std::size_t Length(std::string_view text) {
  std::size_t count = 0;
  while (!text.empty()) {
    text.remove_prefix(FirstCharacter(text).bytes);
    ++count;
  }
  return count;
}

}  // namespace rt
