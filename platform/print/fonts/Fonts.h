// Widths and heights of text, from the advance tables of the fonts that are shipped.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/print/Units.h"

namespace print {

/// The width of one line of UTF-8 text: the sum of the glyphs' advances, without kerning. Characters that the
/// font lacks are drawn, and measured, as '?'.
Length TextWidth(const TextStyle& style, std::string_view text);
/// The distance from one baseline to the next.
Length LineHeight(const TextStyle& style);
/// The distance from the top of a line to its baseline.
Length Ascent(const TextStyle& style);

/// The text in lines that are at most `width` wide: broken at blanks and after hyphens, inside a word only if
/// the word alone is wider, and at each line break of the text. At least one line, also for an empty text.
std::vector<std::string> Wrap(const TextStyle& style, std::string_view text, Length width);
/// The text if it fits, otherwise its beginning with an ellipsis that does.
std::string Shorten(const TextStyle& style, std::string_view text, Length width);

/// The path of the font's file. Throws PrintError, which names the package to install, if it is missing.
const std::string& FontFile(FontFace face);

}  // namespace print
