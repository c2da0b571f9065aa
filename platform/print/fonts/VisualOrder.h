// Texts of scripts that are written from right to left.
#pragma once

#include <string>
#include <string_view>

namespace print {

/// Whether the text may have letters that are written from right to left. Cheap; for nearly all texts false.
inline bool MayRunLeft(std::string_view text) {
  for (const char c : text)
    if (static_cast<unsigned char>(c) >= 0xD6) return true;
  return false;
}

/// The characters of one line from left to right as they are drawn: Hebrew and Arabic letters reversed,
/// numbers and other letters among them as they are, brackets mirrored. The first letter decides the
/// direction of the line. The width does not change.
std::string VisualOrder(std::string_view line);

}  // namespace print
