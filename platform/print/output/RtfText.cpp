#include "platform/print/output/RtfText.h"

#include <algorithm>

#include "platform/print/output/PageTexts.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

bool IsBold(FontFace face) { return face == FontFace::SansBold || face == FontFace::SansBoldItalic; }
bool IsItalic(FontFace face) { return face == FontFace::SansItalic || face == FontFace::SansBoldItalic; }

/// A unit of UTF-16 as a signed number, and what readers without Unicode show instead.
void AppendUnit(std::string& out, std::uint32_t unit) {
  const int number = unit >= 0x8000 ? static_cast<int>(unit) - 0x10000 : static_cast<int>(unit);
  out += "\\u" + std::to_string(number) + "?";
}

}  // namespace

std::string RtfEscaped(std::string_view text) {
  const std::string clean = CleanLines(text);
  std::string out;
  out.reserve(clean.size() + 8);
  for (std::string_view rest = clean; !rest.empty();) {
    const rt::Character character = rt::FirstCharacter(rest);
    rest.remove_prefix(character.bytes);
    const std::uint32_t code = character.code;
    if (code == '\n') {
      out += "\\line ";
    } else if (code == '\\' || code == '{' || code == '}') {
      out.push_back('\\');
      out.push_back(static_cast<char>(code));
    } else if (code < 128) {
      out.push_back(static_cast<char>(code));
    } else if (code < 0x10000) {
      AppendUnit(out, code);
    } else {
      AppendUnit(out, 0xD800 + ((code - 0x10000) >> 10U));
      AppendUnit(out, 0xDC00 + ((code - 0x10000) & 0x3FFU));
    }
  }
  return out;
}

void RtfColors::Add(const Color& color) {
  if (color != Color{} && PlaceOf(color) == 0) colors_.push_back(color);
}

int RtfColors::PlaceOf(const Color& color) const {
  const auto found = std::find(colors_.begin(), colors_.end(), color);
  return found == colors_.end() ? 0 : static_cast<int>(found - colors_.begin()) + 1;
}

std::string RtfColors::Table() const {
  std::string table = "{\\colortbl;";
  for (const Color& color : colors_)
    table += "\\red" + std::to_string(color.red) + "\\green" + std::to_string(color.green) + "\\blue" +
             std::to_string(color.blue) + ";";
  return table + "}";
}

std::string RtfRun::Text(const TextStyle& style, const std::string& escaped) {
  std::string codes;
  if (!begun_ || IsBold(style.face) != IsBold(style_.face)) codes += IsBold(style.face) ? "\\b" : "\\b0";
  if (!begun_ || IsItalic(style.face) != IsItalic(style_.face))
    codes += IsItalic(style.face) ? "\\i" : "\\i0";
  if (!begun_ || (style.face == FontFace::Mono) != (style_.face == FontFace::Mono))
    codes += style.face == FontFace::Mono ? "\\f1" : "\\f0";
  if (!begun_ || style.size != style_.size) codes += "\\fs" + std::to_string((style.size + 25) / 50);
  if (!begun_ || style.color != style_.color) codes += "\\cf" + std::to_string(colors_.PlaceOf(style.color));
  begun_ = true;
  style_ = style;
  return codes.empty() ? escaped : codes + " " + escaped;
}

}  // namespace print
