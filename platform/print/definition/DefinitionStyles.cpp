// Styles of definitions: those that every definition has, and those that a file adds or changes.
#include <algorithm>

#include "platform/print/definition/DefinitionBuilder.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

constexpr Color kRed{0xB0, 0x00, 0x20};
constexpr Color kGray{0x60, 0x60, 0x60};
constexpr Length kSmallSize = 8 * kPoint;

NamedStyle StyleOf(std::string name, FontFace face, Length size, Align align = Align::Left,
                   std::string format = {}) {
  NamedStyle style;
  style.name = std::move(name);
  style.text.face = face;
  style.text.size = size;
  style.align = align;
  style.format = std::move(format);
  return style;
}

FontFace FaceOf(FontFace face, std::optional<bool> bold, std::optional<bool> italic) {
  if (face == FontFace::Mono) return face;
  const bool isBold = bold.value_or(face == FontFace::SansBold || face == FontFace::SansBoldItalic);
  const bool isItalic = italic.value_or(face == FontFace::SansItalic || face == FontFace::SansBoldItalic);
  if (isBold) return isItalic ? FontFace::SansBoldItalic : FontFace::SansBold;
  return isItalic ? FontFace::SansItalic : FontFace::Sans;
}

}  // namespace

std::vector<NamedStyle> OwnStyles() {
  constexpr Length kSize = 9 * kPoint;
  std::vector<NamedStyle> styles{
      StyleOf("default", FontFace::Sans, kSize),
      StyleOf("title", FontFace::SansBold, 14 * kPoint),
      StyleOf("subtitle", FontFace::Sans, 10 * kPoint),
      StyleOf("heading", FontFace::SansBold, kSmallSize),
      StyleOf("group", FontFace::SansBold, 10 * kPoint),
      StyleOf("strong", FontFace::SansBold, kSize),
      StyleOf("right", FontFace::Sans, kSize, Align::Right),
      StyleOf("center", FontFace::Sans, kSize, Align::Center),
      StyleOf("money", FontFace::Sans, kSize, Align::Right, "money"),
      StyleOf("number", FontFace::Sans, kSize, Align::Right, "number0"),
      StyleOf("decimal", FontFace::Sans, kSize, Align::Right, "number1"),
      StyleOf("plain", FontFace::Sans, kSize, Align::Right, "plain0"),
      StyleOf("percent", FontFace::Sans, kSize, Align::Right, "percent1"),
      StyleOf("date", FontFace::Sans, kSize, Align::Left, "date"),
      StyleOf("yesno", FontFace::Sans, kSize, Align::Center, "yesno"),
      StyleOf("total", FontFace::SansBold, kSize, Align::Right, "money"),
      StyleOf("note", FontFace::SansItalic, kSmallSize),
      StyleOf("small", FontFace::Sans, kSmallSize),
  };
  for (auto& style : styles) {
    if (style.format == "money" || style.format.starts_with("number")) style.negative = kRed;
    if (style.name == "note") style.text.color = kGray;
  }
  return styles;
}

void DefinitionBuilder::ReadStyle(const XmlElement& element) {
  ElementReader reader(element, faults_);
  CheckNoText(element);
  auto& styles = report_->styles;
  const auto find = [&](std::string_view name) {
    return std::find_if(styles.begin(), styles.end(),
                        [&](const NamedStyle& style) { return style.name == name; });
  };
  const std::string name = reader.NeededWord("name");
  auto own = find(name);
  NamedStyle style = own == styles.end() ? styles[0] : *own;
  if (const XmlAttribute* like = reader.Take("like")) {
    const auto other = find(like->value.text);
    if (other == styles.end())
      reader.Fault(*like, "There is no style \"" + like->value.text + "\" before this one.");
    else
      style = *other;
  }
  style.name = name;
  if (const auto font = reader.Choice("font", {"sans", "mono"}))
    style.text.face = *font == 0 ? FaceOf(FontFace::Sans, {}, {}) : FontFace::Mono;
  const auto given = [&](std::string_view attribute) -> std::optional<bool> {
    const auto choice = reader.Choice(attribute, {"yes", "no"});
    if (!choice) return std::nullopt;
    return *choice == 0;
  };
  const auto bold = given("bold");
  style.text.face = FaceOf(style.text.face, bold, given("italic"));
  if (const auto size = reader.LengthOf("size")) {
    constexpr Length kSmallest = 3 * kPoint;
    constexpr Length kLargest = 144 * kPoint;
    if (*size < kSmallest || *size > kLargest)
      reader.Fault(*reader.Take("size"), "A font has a size from 3pt to 144pt.");
    else
      style.text.size = *size;
  }
  if (const auto color = reader.ColorOf("color")) style.text.color = *color;
  if (const auto align = reader.Choice("align", {"left", "center", "right"}))
    style.align = static_cast<Align>(*align);
  if (const XmlAttribute* format = reader.Take("format")) {
    if (IsFormat(format->value.text))
      style.format = format->value.text;
    else
      reader.Fault(*format, "There is no display format \"" + format->value.text + "\".");
  }
  if (const auto negative = reader.ColorOf("negative")) style.negative = negative;
  if (own == styles.end())
    styles.push_back(std::move(style));
  else
    *own = std::move(style);
}

int DefinitionBuilder::StyleAt(ElementReader& reader, int otherwise) {
  const XmlAttribute* attribute = reader.Take("style");
  if (!attribute) return otherwise;
  for (std::size_t i = 0; i < report_->styles.size(); ++i)
    if (report_->styles[i].name == attribute->value.text) return static_cast<int>(i);
  reader.Fault(*attribute, "There is no style \"" + attribute->value.text + "\".");
  return otherwise;
}

}  // namespace print
