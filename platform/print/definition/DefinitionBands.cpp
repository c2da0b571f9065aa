// Bands of a definition and what stands in them.
#include <algorithm>
#include <array>

#include "platform/print/definition/DefinitionBuilder.h"
#include "platform/print/formula/FormulaChecks.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

using Kind = ItemDefinition::Kind;

struct ItemName {
  std::string_view element;
  Kind kind;
};

/// A <cell> is a <text> that lies in a column.
constexpr std::array kItems{
    ItemName{"text", Kind::Text},
    ItemName{"cell", Kind::Text},
    ItemName{"headings", Kind::Headings},
    ItemName{"line", Kind::Line},
    ItemName{"bar", Kind::Bar},
    ItemName{"rectangle", Kind::Rectangle},
    ItemName{"subreport", Kind::Subreport},
};

/// The format of a value whose item and style say nothing.
std::string FormatOfValue(const Formula& value, const std::vector<FieldDefinition>& fields) {
  const FormulaNode* root = value.Root();
  if (!root) return {};
  if (root->kind == NodeKind::Field) return fields[static_cast<std::size_t>(root->place)].format;
  switch (value.Type()) {
    case rt::ValueType::Currency:
      return "money";
    case rt::ValueType::Boolean:
      return "yesno";
    case rt::ValueType::Single:
    case rt::ValueType::Double:
      return "number2";
    case rt::ValueType::Date:
      return root->kind == NodeKind::PrintTime ? "datetime" : "date";
    default:
      return {};
  }
}

bool OnlyBlanks(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

}  // namespace

std::string PlainWords(std::string_view text) {
  std::string words;
  bool blank = false;
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      blank = !words.empty();
      continue;
    }
    if (blank) words.push_back(' ');
    blank = false;
    words.push_back(c);
  }
  return words;
}

BandDefinition DefinitionBuilder::ReadBand(const XmlElement& element) {
  ElementReader reader(element, faults_);
  CheckNoText(element);
  BandDefinition band;
  band.present = true;
  band.minimumHeight = reader.LengthOf("height").value_or(0);
  band.spaceBefore = reader.LengthOf("spaceBefore").value_or(0);
  band.spaceAfter = reader.LengthOf("spaceAfter").value_or(0);
  if (const auto shade = reader.Choice("shade", {"none", "alternate", "always"}))
    band.shade = static_cast<Shade>(*shade);
  band.visible = reader.YesNo("visible", true);
  band.showIf = FormulaAt(reader, "showIf");
  if (const auto page = reader.Choice("newPage", {"before", "after", "both"})) {
    band.newPageBefore = *page != 1;
    band.newPageAfter = *page != 0;
  }
  if (element.name == "detail" && reader.YesNo("blankRows", false)) report_->fillBlankRows = 1;
  for (const auto& child : element.children) ReadItem(child, band);
  return band;
}

void DefinitionBuilder::ReadItem(const XmlElement& element, BandDefinition& band) {
  const auto known = std::find_if(kItems.begin(), kItems.end(),
                                  [&](const ItemName& item) { return item.element == element.name; });
  if (known == kItems.end()) {
    faults_.Add(element.place, "A band has no element <" + element.name +
                                   ">. It has text, cell, headings, line, rectangle, bar and subreport.");
    return;
  }
  ElementReader reader(element, faults_);
  ItemDefinition item;
  item.kind = known->kind;
  ReadPlace(reader, item, band);
  item.visible = FormulaAt(reader, "visible");
  switch (item.kind) {
    case Kind::Text:
      ReadLook(reader, item);
      ReadValue(reader, item);
      ReadLines(reader, item);
      break;
    case Kind::Headings:
      item.style = StyleAt(reader, 0);
      if (!reader.Take("style"))
        for (std::size_t i = 0; i < report_->styles.size(); ++i)
          if (report_->styles[i].name == "heading") item.style = static_cast<int>(i);
      item.grows = true;
      ReadLines(reader, item);
      break;
    case Kind::Bar:
      item.value = FormulaAt(reader, "value");
      if (!reader.Take("value")) reader.Fault("A <bar> needs a value from 0 to 1.");
      [[fallthrough]];
    case Kind::Line:
    case Kind::Rectangle:
      item.color = reader.ColorOf("color").value_or(item.color);
      break;
    case Kind::Subreport:
      item.subreport = reader.NeededWord("name");
      item.grows = true;
      if (!item.subreport.empty() && std::none_of(report_->subreports.begin(), report_->subreports.end(),
                                                  [&](const SubreportDefinition& subreport) {
                                                    return subreport.name == item.subreport;
                                                  }))
        reader.Fault("There is no subreport \"" + item.subreport + "\".");
      break;
  }
  if (item.kind != Kind::Text) CheckNoText(element);
  if (!element.children.empty())
    faults_.Add(element.children[0].place, "<" + element.name + "> has no elements.");
  band.items.push_back(std::move(item));
}

void DefinitionBuilder::ReadPlace(ElementReader& reader, ItemDefinition& item, const BandDefinition& band) {
  const bool cell = reader.Element().name == "cell";
  if (cell || item.kind == Kind::Bar) {
    const XmlAttribute* column = reader.Take("column");
    for (std::size_t i = 0; column && i < report_->columns.size(); ++i)
      if (report_->columns[i].name == column->value.text) item.column = static_cast<int>(i);
    if (column && item.column < 0)
      reader.Fault(*column, "There is no column \"" + column->value.text + "\".");
    else if (!column && cell)
      reader.Fault("A <cell> needs the name of its column.");
  }
  if (item.column >= 0) {
    const auto& column = report_->columns[static_cast<std::size_t>(item.column)];
    item.left = column.left;
    item.width = column.width;
    item.style = column.style;
  } else if (item.kind != Kind::Headings) {
    item.left = reader.LengthOf("x").value_or(0);
    item.width = reader.LengthOf("width");
  }
  if (item.left + item.width.value_or(0) > UsableWidth())
    reader.Fault("<" + reader.Element().name + "> ends right of the margin.");
  if (const auto top = reader.LengthOf("y")) {
    item.top = *top;
  } else if (item.kind == Kind::Headings) {
    // Headings stand below the titles.
    for (const auto& other : band.items) {
      const Length size = report_->styles[static_cast<std::size_t>(other.style)].text.size;
      const Length line = size + size / 4;
      item.top = std::max(item.top, other.top + other.height.value_or(other.kind == Kind::Text ? line : 0));
    }
  }
  item.height = reader.LengthOf("height");
}

void DefinitionBuilder::ReadLook(ElementReader& reader, ItemDefinition& item) {
  item.grows = reader.YesNo("grows", false);
  item.style = StyleAt(reader, item.style);
  if (const auto align = reader.Choice("align", {"left", "center", "right"}))
    item.align = static_cast<Align>(*align);
  if (const XmlAttribute* format = reader.Take("format")) {
    if (IsFormat(format->value.text))
      item.format = format->value.text;
    else
      reader.Fault(*format, "There is no display format \"" + format->value.text + "\".");
  }
}

/// The value, or fixed words between the tags.
void DefinitionBuilder::ReadValue(ElementReader& reader, ItemDefinition& item) {
  const XmlElement& element = reader.Element();
  const bool words = !OnlyBlanks(element.text.text);
  const bool value = reader.Take("value") != nullptr;
  if (words == value) {
    reader.Fault("<" + element.name + "> has either a value=\"formula\" or fixed words between its tags.");
    return;
  }
  if (words) {
    item.value = Formula::Read(rt::Quoted(PlainWords(element.text.text)), scope_);
    return;
  }
  item.value = FormulaAt(reader, "value");
  const auto& style = report_->styles[static_cast<std::size_t>(item.style)];
  if (item.format.empty() && style.format.empty()) item.format = FormatOfValue(item.value, report_->fields);
}

void DefinitionBuilder::ReadLines(ElementReader& reader, ItemDefinition& item) {
  if (const auto line = reader.Choice("line", {"above", "below", "both"})) {
    item.lineAbove = *line != 1;
    item.lineBelow = *line != 0;
  }
}

}  // namespace print
