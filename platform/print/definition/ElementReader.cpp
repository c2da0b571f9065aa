#include "platform/print/definition/ElementReader.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "platform/runtime/Text.h"

namespace print {
namespace {

std::optional<int> HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char small = rt::FoldLetter(c);
  if (small >= 'a' && small <= 'f') return small - 'a' + 10;
  return std::nullopt;
}

std::optional<Color> ParseColor(std::string_view text) {
  constexpr std::size_t kDigits = 6;
  if (text.size() != kDigits + 1 || text[0] != '#') return std::nullopt;
  std::uint32_t code = 0;
  for (const char c : text.substr(1)) {
    const auto digit = HexDigit(c);
    if (!digit) return std::nullopt;
    code = code * 16 + static_cast<std::uint32_t>(*digit);
  }
  return Color{static_cast<std::uint8_t>(code >> 16U), static_cast<std::uint8_t>(code >> 8U & 0xFFU),
               static_cast<std::uint8_t>(code & 0xFFU)};
}

}  // namespace

std::optional<Length> ParseLength(std::string_view text) {
  constexpr double kPointsOfInch = 72;
  constexpr double kMillimetersOfInch = 25.4;
  if (text.size() < 3) return std::nullopt;
  const std::string_view unit = text.substr(text.size() - 2);
  const std::string_view digits = text.substr(0, text.size() - 2);
  if (digits.find_first_not_of("0123456789.") != std::string_view::npos) return std::nullopt;
  const auto number = rt::ParseNumber(digits);
  if (!number) return std::nullopt;
  double points = 0;
  if (unit == "pt")
    points = *number;
  else if (unit == "in")
    points = *number * kPointsOfInch;
  else if (unit == "mm")
    points = *number * kPointsOfInch / kMillimetersOfInch;
  else
    return std::nullopt;
  constexpr double kMostPoints = 200 * kPointsOfInch;
  if (!(points <= kMostPoints)) return std::nullopt;
  return static_cast<Length>(std::lround(points * kPoint));
}

std::vector<DefinitionFault> Faults::Sorted() const {
  auto sorted = all_;
  std::stable_sort(sorted.begin(), sorted.end(), [](const DefinitionFault& a, const DefinitionFault& b) {
    return std::tie(a.place.line, a.place.column) < std::tie(b.place.line, b.place.column);
  });
  return sorted;
}

ElementReader::~ElementReader() {
  for (const auto& attribute : element_.attributes) {
    if (known_.contains(attribute.name)) continue;
    std::string text = "The element <" + element_.name + "> has no attribute \"" + attribute.name + "\".";
    if (!known_.empty()) {
      text += " It has";
      for (const auto& name : known_) text += (name == *known_.begin() ? " " : ", ") + name;
      text += ".";
    }
    faults_.Add(attribute.place, text);
  }
}

const XmlAttribute* ElementReader::Take(std::string_view name) {
  known_.emplace(name);
  for (const auto& attribute : element_.attributes)
    if (attribute.name == name) return &attribute;
  return nullptr;
}

std::string ElementReader::Word(std::string_view name, const std::string& otherwise) {
  const XmlAttribute* attribute = Take(name);
  return attribute ? attribute->value.text : otherwise;
}

std::string ElementReader::NeededWord(std::string_view name) {
  const XmlAttribute* attribute = Take(name);
  if (!attribute) {
    Fault("The element <" + element_.name + "> needs the attribute \"" + std::string(name) + "\".");
    return {};
  }
  if (attribute->value.text.empty())
    Fault(*attribute, "The attribute \"" + std::string(name) + "\" is empty.");
  return attribute->value.text;
}

bool ElementReader::YesNo(std::string_view name, bool otherwise) {
  const auto choice = Choice(name, {"yes", "no"});
  return choice ? *choice == 0 : otherwise;
}

std::optional<Length> ElementReader::LengthOf(std::string_view name) {
  const XmlAttribute* attribute = Take(name);
  if (!attribute) return std::nullopt;
  const auto length = ParseLength(attribute->value.text);
  if (!length)
    Fault(*attribute,
          "\"" + attribute->value.text + "\" is no length; write 36pt, 12.5mm or 0.5in, at most 200in.");
  return length;
}

std::optional<Color> ElementReader::ColorOf(std::string_view name) {
  const XmlAttribute* attribute = Take(name);
  if (!attribute) return std::nullopt;
  const auto color = ParseColor(attribute->value.text);
  if (!color) Fault(*attribute, "\"" + attribute->value.text + "\" is no color; write #B00000.");
  return color;
}

std::optional<int> ElementReader::Choice(std::string_view name, const std::vector<std::string_view>& words) {
  const XmlAttribute* attribute = Take(name);
  if (!attribute) return std::nullopt;
  for (std::size_t i = 0; i < words.size(); ++i)
    if (words[i] == attribute->value.text) return static_cast<int>(i);
  std::string known;
  for (const auto& word : words)
    known += (known.empty() ? "" : word == words.back() ? " or " : ", ") + std::string(word);
  Fault(*attribute, "\"" + attribute->value.text + "\" is no value of \"" + std::string(name) +
                        "\", which is " + known + ".");
  return std::nullopt;
}

}  // namespace print
