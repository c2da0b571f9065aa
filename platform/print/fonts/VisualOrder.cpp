#include "platform/print/fonts/VisualOrder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/runtime/Letters.h"

namespace print {
namespace {

enum class Kind { Left, Right, Number, Separator, Sign, Neutral };

/// A character with the marks that follow it, which stay behind it.
struct Unit {
  std::string text;
  std::uint32_t code = 0;
  Kind kind = Kind::Neutral;
  int level = 0;
};

bool IsMark(std::uint32_t code) {
  return (code >= 0x300 && code <= 0x36F) || (code >= 0x591 && code <= 0x5BD) || code == 0x5BF ||
         (code >= 0x5C1 && code <= 0x5C7 && code != 0x5C3 && code != 0x5C6) ||
         (code >= 0x64B && code <= 0x65F);
}

Kind KindOf(std::uint32_t code) {
  if ((code >= '0' && code <= '9') || (code >= 0x660 && code <= 0x669) || (code >= 0x6F0 && code <= 0x6F9))
    return Kind::Number;
  if ((code >= 0x590 && code <= 0x8FF) || (code >= 0xFB1D && code <= 0xFDFF) ||
      (code >= 0xFE70 && code <= 0xFEFC) || (code >= 0x10800 && code <= 0x10FFF) || code == 0x200F)
    return Kind::Right;
  if ((code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z')) return Kind::Left;
  if (code == '+' || code == '-' || code == ',' || code == '.' || code == '/' || code == ':')
    return Kind::Separator;
  if (code == '$' || code == '%' || code == '#' || code == 0xA2 || code == 0xA3 || code == 0x20AC)
    return Kind::Sign;
  const bool sign = code < 0xC0 || code == 0xD7 || code == 0xF7 || (code >= 0x2000 && code <= 0x2BFF) ||
                    (code >= 0x3000 && code <= 0x3004);
  return sign ? Kind::Neutral : Kind::Left;
}

std::uint32_t Mirrored(std::uint32_t code) {
  static constexpr std::string_view kPairs = "()[]{}<>";
  const std::size_t place = code < 128 ? kPairs.find(static_cast<char>(code)) : std::string_view::npos;
  return place == std::string_view::npos ? code : static_cast<unsigned char>(kPairs[place ^ 1U]);
}

std::vector<Unit> UnitsOf(std::string_view line) {
  std::vector<Unit> units;
  while (!line.empty()) {
    const rt::Character character = rt::FirstCharacter(line);
    if (IsMark(character.code) && !units.empty()) {
      units.back().text += line.substr(0, character.bytes);
    } else {
      const std::uint32_t code = character.valid ? character.code : '?';
      units.push_back({std::string(line.substr(0, character.bytes)), code, KindOf(code), 0});
    }
    line.remove_prefix(character.bytes);
  }
  return units;
}

/// A separator between digits and a sign beside digits belong to the number; others are neutral.
void JoinNumbers(std::vector<Unit>& units) {
  const auto isNumber = [&](std::size_t i) { return i < units.size() && units[i].kind == Kind::Number; };
  for (std::size_t i = 0; i < units.size(); ++i)
    if (units[i].kind == Kind::Separator)
      units[i].kind = i > 0 && isNumber(i - 1) && isNumber(i + 1) ? Kind::Number : Kind::Neutral;
  for (std::size_t i = 0; i < units.size(); ++i)
    if (units[i].kind == Kind::Sign && ((i > 0 && isNumber(i - 1)) || isNumber(i + 1)))
      units[i].kind = Kind::Number;
}

enum class Way { None, Left, Right };

Way WayOf(const Unit& unit, bool numberRunsRight) {
  if (unit.kind == Kind::Left) return Way::Left;
  if (unit.kind == Kind::Right) return Way::Right;
  if (unit.kind == Kind::Number) return numberRunsRight ? Way::Right : Way::Left;
  return Way::None;
}

/// Brackets go with what they enclose: a pair with anything of the line's own way inside goes that way, one
/// with only the other way inside goes with the text before it.
void SetBrackets(const std::vector<Unit>& units, Way line, std::vector<Way>& ways) {
  static constexpr std::string_view kBrackets = "()[]{}";
  std::vector<std::pair<char, std::size_t>> open;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char letter = units[i].code < 128 ? static_cast<char>(units[i].code) : '\0';
    const std::size_t place = letter == '\0' ? std::string_view::npos : kBrackets.find(letter);
    if (place == std::string_view::npos) continue;
    if (place % 2 == 0) {
      open.emplace_back(letter, i);
      continue;
    }
    const auto match = std::find_if(open.rbegin(), open.rend(),
                                    [&](const auto& entry) { return entry.first == kBrackets[place - 1]; });
    if (match == open.rend()) continue;
    const std::size_t begin = match->second;
    open.erase(match.base() - 1, open.end());
    const auto first = ways.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto last = ways.begin() + static_cast<std::ptrdiff_t>(i);
    const Way other = line == Way::Left ? Way::Right : Way::Left;
    if (std::find(first, last, line) != last) {
      ways[begin] = ways[i] = line;
    } else if (std::find(first, last, other) != last) {
      Way before = line;
      for (std::size_t k = begin; k-- > 0;) {
        if (ways[k] == Way::None) continue;
        before = ways[k];
        break;
      }
      ways[begin] = ways[i] = before;
    }
  }
}

/// Numbers behind letters that run right to left belong to those; the others are like letters that run left
/// to right. Neutral characters go with their neighbors if those agree, otherwise with the line.
void SetLevels(std::vector<Unit>& units, Way line) {
  std::vector<Way> ways;
  Way letters = line;
  for (const Unit& unit : units) {
    if (unit.kind == Kind::Left) letters = Way::Left;
    if (unit.kind == Kind::Right) letters = Way::Right;
    ways.push_back(WayOf(unit, letters == Way::Right));
  }
  SetBrackets(units, line, ways);
  for (std::size_t i = 0; i < ways.size();) {
    std::size_t end = i;
    while (end < ways.size() && ways[end] == Way::None) ++end;
    const Way before = i == 0 ? line : ways[i - 1];
    const Way after = end == ways.size() ? line : ways[end];
    for (std::size_t k = i; k < end; ++k) ways[k] = before == after ? before : line;
    i = end + 1;
  }
  for (std::size_t i = 0; i < units.size(); ++i) {
    const bool runsLeft = ways[i] == Way::Right;
    units[i].level = runsLeft ? 1 : (line == Way::Right ? 2 : 0);
    if (runsLeft && units[i].kind == Kind::Number) units[i].level = 2;
  }
}

}  // namespace

std::string VisualOrder(std::string_view line) {
  std::vector<Unit> units = UnitsOf(line);
  const auto strong = std::find_if(units.begin(), units.end(), [](const Unit& unit) {
    return unit.kind == Kind::Left || unit.kind == Kind::Right;
  });
  if (std::none_of(units.begin(), units.end(), [](const Unit& unit) { return unit.kind == Kind::Right; }))
    return std::string(line);
  JoinNumbers(units);
  SetLevels(units, strong->kind == Kind::Right ? Way::Right : Way::Left);
  for (const int level : {2, 1}) {
    for (auto begin = units.begin(); begin != units.end();) {
      begin = std::find_if(begin, units.end(), [&](const Unit& unit) { return unit.level >= level; });
      const auto end = std::find_if(begin, units.end(), [&](const Unit& unit) { return unit.level < level; });
      std::reverse(begin, end);
      begin = end;
    }
  }
  std::string visual;
  visual.reserve(line.size());
  for (const Unit& unit : units) {
    const std::uint32_t mirrored = unit.level == 1 ? Mirrored(unit.code) : unit.code;
    if (mirrored == unit.code)
      visual += unit.text;
    else
      visual.push_back(static_cast<char>(mirrored));
  }
  return visual;
}

}  // namespace print
