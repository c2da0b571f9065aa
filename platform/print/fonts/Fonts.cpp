#include "platform/print/fonts/Fonts.h"

#include <algorithm>
#include <cstdint>

#include "platform/print/fonts/FontTable.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

constexpr std::string_view kEllipsis = "\u2026";

/// The largest sum of advances whose width, rounded as TextWidth rounds it, is not more than `width`: a text
/// always fits a box as wide as the text.
std::int64_t LargestAdvance(const FontTable& font, Length size, Length width) {
  if (width < 0 || size <= 0) return width < 0 ? -1 : INT64_MAX;
  const std::int64_t em = font.UnitsPerEm();
  return (width * em + em - 1 - em / 2) / size;
}

struct Step {
  std::uint32_t code = 0;
  std::size_t bytes = 1;
  std::int64_t advance = 0;
};

Step StepAt(const FontTable& font, std::string_view text, std::size_t place) {
  const auto byte = static_cast<unsigned char>(text[place]);
  if (byte < 128) return {byte, 1, font.GlyphOf(byte).advance};
  const rt::Character character = rt::FirstCharacter(text.substr(place));
  if (!character.valid) return {0, 1, font.GlyphOf('?').advance};
  return {character.code, character.bytes, font.GlyphOf(character.code).advance};
}

bool IsBlank(std::uint32_t code) { return code == ' ' || code == '\t' || code == 0x3000; }
bool IsBlankAt(std::string_view text, std::size_t place) { return text[place] == ' ' || text[place] == '\t'; }
/// A hyphen after a letter or digit; not a minus sign, nor a dash between blanks.
bool EndsPart(std::uint32_t code, std::uint32_t before) {
  if (code == 0x2010) return true;
  return code == '-' && before != 0 && !IsBlank(before) && before != '-' && before != '(' && before != '$';
}

std::string_view WithoutBlanksAtEnd(std::string_view text) {
  while (!text.empty() && IsBlankAt(text, text.size() - 1)) text.remove_suffix(1);
  return text;
}

/// Breaks one line of the text.
void WrapLine(const FontTable& font, std::string_view text, std::int64_t room,
              std::vector<std::string>& lines) {
  std::size_t start = 0;
  for (;;) {
    std::int64_t sum = 0;
    std::size_t place = start;
    std::size_t lastBreak = 0;  // where the rest would start; 0 for none
    std::uint32_t before = 0;
    bool inText = false;  // blanks at the start are an indent, not a place to break
    bool tooLong = false;
    while (place < text.size()) {
      const Step step = StepAt(font, text, place);
      sum += step.advance;
      if (IsBlank(step.code)) {
        if (inText) lastBreak = place + step.bytes;
      } else {
        if (sum > room) {
          tooLong = true;
          break;
        }
        inText = true;
        if (EndsPart(step.code, before)) lastBreak = place + step.bytes;
      }
      before = step.code;
      place += step.bytes;
    }
    if (!tooLong) {
      lines.emplace_back(WithoutBlanksAtEnd(text.substr(start)));
      return;
    }
    if (!inText && place > start) {
      start = place;  // an indent that leaves no room for a letter is given up
      continue;
    }
    std::size_t end = lastBreak;
    if (lastBreak == 0) end = place > start ? place : place + StepAt(font, text, place).bytes;
    lines.emplace_back(WithoutBlanksAtEnd(text.substr(start, end - start)));
    start = end;
    if (lastBreak != 0)
      while (start < text.size() && IsBlankAt(text, start)) ++start;
    if (start >= text.size()) return;
  }
}

}  // namespace

Length TextWidth(const TextStyle& style, std::string_view text) {
  const FontTable& font = TableOf(style.face);
  return Scaled(font, font.Advance(text), style.size);
}

Length LineHeight(const TextStyle& style) {
  const FontTable& font = TableOf(style.face);
  return Scaled(font, font.Ascent() + font.Descent() + font.LineGap(), style.size);
}

Length Ascent(const TextStyle& style) {
  const FontTable& font = TableOf(style.face);
  return Scaled(font, font.Ascent(), style.size);
}

std::vector<std::string> Wrap(const TextStyle& style, std::string_view text, Length width) {
  const FontTable& font = TableOf(style.face);
  const std::int64_t room = LargestAdvance(font, style.size, width);
  std::vector<std::string> lines;
  for (;;) {
    const std::size_t end = text.find_first_of("\r\n");
    WrapLine(font, text.substr(0, end), room, lines);
    if (end == std::string_view::npos) return lines;
    const bool both = text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n';
    text.remove_prefix(end + (both ? 2 : 1));
  }
}

std::string Shorten(const TextStyle& style, std::string_view text, Length width) {
  const FontTable& font = TableOf(style.face);
  const std::int64_t room = LargestAdvance(font, style.size, width);
  std::string line(text);
  if (text.find_first_of("\r\n") != std::string_view::npos) {
    line.clear();
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
      line.push_back(text[i] == '\r' || text[i] == '\n' ? ' ' : text[i]);
    }
  }
  if (font.Advance(line) <= room) return line;
  const std::int64_t roomForText = room - font.Advance(kEllipsis);
  if (roomForText < 0) return {};
  std::int64_t sum = 0;
  std::size_t place = 0;
  while (place < line.size()) {
    const Step step = StepAt(font, line, place);
    if (sum + step.advance > roomForText) break;
    sum += step.advance;
    place += step.bytes;
  }
  return std::string(WithoutBlanksAtEnd(std::string_view(line).substr(0, place))) + std::string(kEllipsis);
}

}  // namespace print
