// The case of letters, and the characters of UTF-8 texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace rt {

/// A to Z as a to z, every other byte as it is.
constexpr char FoldLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
/// The text with A to Z as a to z: texts that fold alike are equal in a text column.
std::string FoldCase(std::string_view text);
/// Equal without regard to the case of the letters A to Z, as text columns compare.
bool EqualNoCase(std::string_view a, std::string_view b);

/// Upper and lower case of all letters, in UTF-8. Bytes that are not UTF-8 stay as they are.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);

/// A character (code point) and the number of bytes it takes. Not valid, and one byte long, if the bytes are
/// not UTF-8.
struct Character {
  std::uint32_t code = 0;
  std::size_t bytes = 1;
  bool valid = false;
};

/// The character at the start of a text, which must not be empty.
Character FirstCharacter(std::string_view text);
/// Whether the byte continues a character, so that a cut before it would split one.
constexpr bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }
/// The number of characters of a text; a byte that is not UTF-8 counts as one.
std::size_t Length(std::string_view text);

}  // namespace rt
