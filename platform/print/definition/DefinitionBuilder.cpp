#include "platform/print/definition/DefinitionBuilder.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include "platform/print/formula/FormulaParser.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

constexpr Length kLetterWidth = 17 * kInch / 2;
constexpr Length kLetterHeight = 11 * kInch;
constexpr Length kA4Width = 59'528;
constexpr Length kA4Height = 84'189;
constexpr Length kSmallestPage = 2 * kInch;

/// The key of a group as GroupOf compares it: one field or formula without its braces, or the text.
std::string KeyText(std::string_view by) {
  const std::string text = rt::Trim(by);
  const bool single = text.size() > 2 && text.front() == '{' && text.find('}') == text.size() - 1;
  return single ? NormalizedField(std::string_view(text).substr(1, text.size() - 2)) : text;
}

}  // namespace

const std::vector<std::string>& TitleFormulas() {
  static const std::vector<std::string> names{"RptTitle1",  "RptTitle2", "RptTitle3", "RptTitle4",
                                              "RptGenedBy", "RptAux1",   "RptAux2",   "RptAux3",
                                              "RptAux4",    "RptAux5",   "RptAux6",   "RptAux7"};
  return names;
}

DefinitionBuilder::DefinitionBuilder(Faults& faults, const store::Schema* schema,
                                     const ReportDefinition* outer)
    : faults_(faults),
      schema_(schema),
      outer_(outer),
      report_(std::make_shared<ReportDefinition>()),
      scope_(*report_, schema, faults) {}

std::shared_ptr<ReportDefinition> DefinitionBuilder::Build(const XmlElement& root, const std::string& file,
                                                           const FormulaTexts& replaced,
                                                           const std::vector<std::string>& extraFields) {
  report_->file = file;
  report_->styles = outer_ ? outer_->styles : OwnStyles();
  const std::string expected = outer_ ? "subreport" : "report";
  if (root.name != expected) {
    faults_.Add(root.place, "The file begins with <" + root.name + ">; a definition begins with <report>.");
    return report_;
  }
  ElementReader reader(root, faults_);
  CheckNoText(root);
  report_->name = reader.NeededWord("name");
  if (!outer_) ReadPage(reader);

  const std::vector<Band> bands{{"reportHeader", &report_->reportHeader},
                                {"pageHeader", &report_->pageHeader},
                                {"detail", &report_->detail},
                                {"pageFooter", &report_->pageFooter},
                                {"reportFooter", &report_->reportFooter}};
  const auto bandOf = [&](std::string_view name) {
    return std::find_if(bands.begin(), bands.end(), [&](const Band& band) { return band.element == name; });
  };
  const auto each = [&](std::string_view name, auto work) {
    for (const auto& child : root.children)
      if (child.name == name) work(child);
  };
  const auto once = [&](std::string_view name, auto work) {
    bool seen = false;
    each(name, [&](const XmlElement& child) {
      if (seen) return faults_.Add(child.place, "There is a second <" + child.name + ">.");
      seen = true;
      work(child);
    });
    return seen;
  };

  // What others refer to comes first, whatever its place in the file.
  if (!once("data", [&](const XmlElement& data) { ReadData(data); }))
    reader.Fault("The report needs <data>.");
  each("style", [&](const XmlElement& style) { ReadStyle(style); });
  each("column",
       [&](const XmlElement& column) { faults_.Add(column.place, "A <column> stands in <columns>."); });
  once("columns", [&](const XmlElement& columns) {
    const ElementReader list(columns, faults_);
    CheckNoText(columns);
    for (const auto& column : columns.children) ReadColumn(column);
  });
  DefineFormulas(root, replaced);
  std::vector<std::string> keys;
  each("group", [&](const XmlElement& group) {
    for (const auto& attribute : group.attributes)
      if (attribute.name == "by") keys.push_back(KeyText(attribute.value.text));
  });
  scope_.SetGroups(std::move(keys));
  scope_.ReadAll();
  each("data", [&](const XmlElement& data) { ReadOrder(data); });
  each("subreport", [&](const XmlElement& subreport) { ReadSubreport(subreport); });
  each("group", [&](const XmlElement& group) { ReadGroup(group); });
  for (const auto& band : bands)
    once(band.element, [&](const XmlElement& element) { *band.band = ReadBand(element); });
  once("empty", [&](const XmlElement& empty) {
    const ElementReader words(empty, faults_);
    report_->emptyText = PlainWords(empty.text.text);
  });
  for (const auto& child : root.children) {
    const std::string& name = child.name;
    const bool known = name == "data" || name == "style" || name == "column" || name == "columns" ||
                       name == "formula" || name == "group" || name == "subreport" || name == "empty" ||
                       bandOf(name) != bands.end();
    if (!known)
      faults_.Add(
          child.place,
          "<" + root.name + "> has no element <" + name +
              ">. It has data, style, columns, formula, group, subreport, empty, reportHeader, pageHeader, "
              "detail, pageFooter and reportFooter.");
  }
  for (const auto& field : extraFields) {
    if (!scope_.FieldPlace(KeyText(field)))
      faults_.AddOfRun("There is no field " + field + " in the tables of the report.");
  }
  return report_;
}

void DefinitionBuilder::ReadPage(ElementReader& root) {
  const bool a4 = root.Choice("page", {"letter", "a4"}).value_or(0) == 1;
  report_->landscape = root.Choice("orientation", {"portrait", "landscape"}).value_or(0) == 1;
  report_->pageWidth = a4 ? kA4Width : kLetterWidth;
  report_->pageHeight = a4 ? kA4Height : kLetterHeight;
  if (report_->landscape) std::swap(report_->pageWidth, report_->pageHeight);
  ReadMargins(root);
}

/// One length for all sides, two for above and beside, or four: above, right, below, left.
void DefinitionBuilder::ReadMargins(ElementReader& root) {
  constexpr Length kUsual = kInch / 2;
  std::vector<Length> sides;
  if (const XmlAttribute* margins = root.Take("margins")) {
    std::istringstream words(margins->value.text);
    for (std::string word; words >> word;) {
      const auto length = ParseLength(word);
      if (!length) root.Fault(*margins, "\"" + word + "\" is no length; write 36pt, 12.5mm or 0.5in.");
      sides.push_back(length.value_or(kUsual));
    }
    if (sides.size() != 1 && sides.size() != 2 && sides.size() != 4)
      root.Fault(*margins,
                 "Margins are one length, two (above and beside) or four (above, right, below, left).");
  }
  if (sides.size() == 2)
    sides = {sides[0], sides[1], sides[0], sides[1]};
  else if (sides.size() != 4)
    sides.assign(4, sides.size() == 1 ? sides[0] : kUsual);
  report_->marginTop = sides[0];
  report_->marginRight = sides[1];
  report_->marginBottom = sides[2];
  report_->marginLeft = sides[3];
  const bool room = report_->pageWidth - sides[1] - sides[3] >= kSmallestPage &&
                    report_->pageHeight - sides[0] - sides[2] >= kSmallestPage;
  if (!room) root.Fault("The margins leave less than two inches of the page.");
}

Length DefinitionBuilder::UsableWidth() const {
  const ReportDefinition& page = outer_ ? *outer_ : *report_;
  return page.pageWidth - page.marginLeft - page.marginRight;
}

void DefinitionBuilder::ReadColumn(const XmlElement& element) {
  if (element.name != "column")
    return faults_.Add(element.place, "<columns> has no element <" + element.name + ">. It has column.");
  ElementReader reader(element, faults_);
  CheckNoText(element);
  ColumnDefinition column;
  column.name = reader.NeededWord("name");
  for (const auto& other : report_->columns)
    if (other.name == column.name) reader.Fault("There is a column \"" + column.name + "\" already.");
  column.left = reader.LengthOf("x").value_or(0);
  const auto width = reader.LengthOf("width");
  if (!width.value_or(0) && !reader.Take("x")) reader.Fault("A <column> needs x and width.");
  if (width && *width == 0) reader.Fault("A column has a width.");
  if (!width) reader.Fault("A <column> needs a width.");
  column.width = width.value_or(0);
  if (column.left + column.width > UsableWidth())
    reader.Fault("The column \"" + column.name + "\" ends right of the margin.");
  column.heading = reader.Word("heading");
  column.style = StyleAt(reader, 0);
  report_->columns.push_back(std::move(column));
}

void DefinitionBuilder::DefineFormulas(const XmlElement& root, const FormulaTexts& replaced) {
  const auto replacement = [&](const std::string& name) -> const std::string* {
    for (const auto& [other, text] : replaced)
      if (rt::EqualNoCase(other, name)) return &text;
    return nullptr;
  };
  for (const auto& child : root.children) {
    if (child.name != "formula") continue;
    ElementReader reader(child, faults_);
    const std::string name = reader.NeededWord("name");
    if (name.find_first_of("{}@[].") != std::string::npos)
      reader.Fault("The name of a formula has no dots, brackets, braces or @.");
    if (scope_.Knows(name)) reader.Fault("There is a formula \"" + name + "\" already.");
    if (!child.children.empty()) faults_.Add(child.children[0].place, "<formula> has no elements.");
    if (const std::string* text = replacement(name))
      scope_.Define({name, *text, nullptr, child.place});
    else
      scope_.Define({name, child.text.text, &child.text, child.place});
  }
  if (outer_) return;
  // Titles that the file does not show are there too, so that a run may set each of them.
  for (const auto& name : TitleFormulas()) {
    if (scope_.Knows(name)) continue;
    const std::string* text = replacement(name);
    scope_.Define({name, text ? *text : "''", nullptr, root.place});
  }
  for (const auto& [name, text] : replaced)
    if (!scope_.Knows(name)) faults_.AddOfRun("The report has no formula \"" + name + "\".");
}

void DefinitionBuilder::ReadGroup(const XmlElement& element) {
  ElementReader reader(element, faults_);
  CheckNoText(element);
  GroupDefinition group;
  group.keyText = KeyText(reader.NeededWord("by"));
  group.key = FormulaAt(reader, "by", FormulaUse::PerRow);
  group.descending = reader.YesNo("descending", false);
  ReadKeep(reader, group);
  group.repeatHeader = reader.YesNo("repeat", false);
  group.treeTitle = FormulaAt(reader, "tree");
  for (const auto& child : element.children) {
    BandDefinition* band = child.name == "header"   ? &group.header
                           : child.name == "footer" ? &group.footer
                                                    : nullptr;
    if (!band)
      faults_.Add(child.place, "<group> has no element <" + child.name + ">. It has header and footer.");
    else if (band->present)
      faults_.Add(child.place, "There is a second <" + child.name + ">.");
    else
      *band = ReadBand(child);
  }
  report_->groups.push_back(std::move(group));
}

void DefinitionBuilder::ReadKeep(ElementReader& reader, GroupDefinition& group) {
  const XmlAttribute* keep = reader.Take("keep");
  if (!keep) return;
  constexpr std::string_view kHeader = "header+";
  const std::string& text = keep->value.text;
  if (text == "none") {
    group.keep = Keep::None;
  } else if (text == "group") {
    group.keep = Keep::WholeGroup;
  } else {
    int rows = 0;
    const char* end = text.data() + text.size();
    const bool read = text.starts_with(kHeader) && text.size() > kHeader.size() &&
                      std::from_chars(text.data() + kHeader.size(), end, rows).ptr == end;
    constexpr int kMostRows = 100;
    if (!read || rows < 1 || rows > kMostRows)
      reader.Fault(*keep, "\"" + text + "\" is no value of \"keep\", which is none, group or header+2.");
    else
      group.keepRows = rows;
  }
}

void DefinitionBuilder::ReadSubreport(const XmlElement& element) {
  if (outer_) return faults_.Add(element.place, "A subreport has no subreports of its own.");
  SubreportDefinition subreport;
  for (const auto& attribute : element.attributes)
    if (attribute.name == "name") subreport.name = attribute.value.text;
  for (const auto& other : report_->subreports)
    if (other.name == subreport.name)
      faults_.Add(element.place, "There is a subreport \"" + subreport.name + "\" already.");
  DefinitionBuilder inner(faults_, schema_, report_.get());
  // The link belongs to both; the inner builder must not take it for an unknown attribute.
  XmlElement own = element;
  std::erase_if(own.attributes, [](const XmlAttribute& attribute) { return attribute.name == "link"; });
  auto built = inner.Build(own, report_->file, {}, {});
  {
    ElementReader reader(element, faults_);
    for (const auto& attribute : element.attributes) reader.Take(attribute.name);
    ReadLink(reader, element, inner.Scope(), subreport);
  }
  built->pageWidth = report_->pageWidth;
  built->pageHeight = report_->pageHeight;
  built->landscape = report_->landscape;
  built->marginLeft = report_->marginLeft;
  built->marginTop = report_->marginTop;
  built->marginRight = report_->marginRight;
  built->marginBottom = report_->marginBottom;
  subreport.report = std::move(built);
  report_->subreports.push_back(std::move(subreport));
}

Formula DefinitionBuilder::FormulaAt(ElementReader& reader, std::string_view name, FormulaUse use) {
  const XmlAttribute* attribute = reader.Take(name);
  if (!attribute) return {};
  return FormulaOf(attribute->value, name, use);
}

Formula DefinitionBuilder::FormulaOf(const SourcedText& text, std::string_view called, FormulaUse use) {
  try {
    return Formula::Read(text.text, scope_, use);
  } catch (const FormulaError& error) {
    faults_.Add(text.At(error.Where()), std::string(called) + ": " + error.what());
    return {};
  }
}

void DefinitionBuilder::CheckNoText(const XmlElement& element) {
  const auto& text = element.text.text;
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return;
  Place inside;
  for (const char c : text.substr(0, first)) {
    if (c == '\n') {
      ++inside.line;
      inside.column = 1;
    } else {
      ++inside.column;
    }
  }
  faults_.Add(element.text.At(inside), "<" + element.name + "> has no text.");
}

}  // namespace print
