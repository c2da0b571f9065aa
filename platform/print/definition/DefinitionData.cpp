// The tables, joins and order of a definition.
#include <algorithm>

#include "platform/print/definition/DefinitionBuilder.h"
#include "platform/print/formula/FormulaParser.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

/// "Table.Column", in braces or not.
std::string WithoutBraces(std::string_view text) {
  const std::string trimmed = rt::Trim(text);
  if (trimmed.size() >= 2 && trimmed.front() == '{' && trimmed.back() == '}')
    return NormalizedField(std::string_view(trimmed).substr(1, trimmed.size() - 2));
  return NormalizedField(trimmed);
}

rt::Value ConstantOf(const std::string& text) {
  const auto number = rt::ParseNumber(text);
  if (!number) return text;
  if (*number == static_cast<double>(static_cast<std::int32_t>(*number)))
    return static_cast<std::int32_t>(*number);
  return *number;
}

}  // namespace

void DefinitionBuilder::ReadData(const XmlElement& data) {
  const ElementReader reader(data, faults_);
  CheckNoText(data);
  for (const auto& child : data.children) {
    if (child.name == "table")
      ReadTable(child);
    else if (child.name != "order" && child.name != "select")
      faults_.Add(child.place, "<data> has no element <" + child.name + ">. It has table, order and select.");
  }
  if (report_->tables.empty()) faults_.Add(data.place, "<data> needs a <table>.");
}

void DefinitionBuilder::ReadTable(const XmlElement& element) {
  ElementReader reader(element, faults_);
  CheckNoText(element);
  TableDefinition table;
  table.name = reader.NeededWord("name");
  table.alias = reader.Word("alias", table.name);
  const bool first = report_->tables.empty();
  if (reader.YesNo("primary", first) != first)
    reader.Fault(first ? "The first table is the primary one." : "The primary table stands first.");
  constexpr std::size_t kMostTables = 8;
  if (report_->tables.size() >= kMostTables) return reader.Fault("A report joins eight tables at most.");
  for (const auto& other : report_->tables)
    if (rt::EqualNoCase(other.alias, table.alias))
      reader.Fault("There is a table \"" + table.alias + "\" already; give this one another alias.");
  for (const auto* name : {&table.name, &table.alias})
    if (name->find_first_of(".[]{}") != std::string::npos)
      reader.Fault("A table's name has no dots, brackets or braces.");
  if (schema_) {
    if (const auto* info = schema_->Find(table.name))
      table.name = info->name;
    else
      reader.Fault("The data file has no table \"" + table.name + "\".");
  }
  report_->tables.push_back(table);
  for (const auto& child : element.children) {
    if (child.name == "join")
      ReadJoin(child, table);
    else
      faults_.Add(child.place, "<table> has no element <" + child.name + ">. It has join.");
  }
  if (first && !table.joins.empty()) reader.Fault("The primary table is not joined to another.");
  if (!first && element.children.empty()) reader.Fault("The table \"" + table.alias + "\" needs a <join>.");
  report_->tables.back().joins = std::move(table.joins);
}

bool DefinitionBuilder::HasColumn(int table, const std::string& column, const ElementReader& reader,
                                  std::string_view attribute) {
  if (!schema_ || table < 0) return true;
  const auto* info = schema_->Find(report_->tables[static_cast<std::size_t>(table)].name);
  if (!info || info->Find(column) >= 0) return true;
  for (const auto& at : reader.Element().attributes)
    if (at.name == attribute)
      faults_.Add(at.value.At({}), "The table \"" + info->name + "\" has no field \"" + column + "\".");
  return false;
}

void DefinitionBuilder::ReadJoin(const XmlElement& element, TableDefinition& table) {
  ElementReader reader(element, faults_);
  CheckNoText(element);
  JoinDefinition join;
  join.field = NormalizedField(reader.NeededWord("field"));
  const int own = static_cast<int>(report_->tables.size()) - 1;
  HasColumn(own, join.field, reader, "field");
  const XmlAttribute* to = reader.Take("to");
  const XmlAttribute* equals = reader.Take("equals");
  if ((to == nullptr) == (equals == nullptr)) {
    reader.Fault("A <join> has either to=\"Table.Field\" or equals=\"a value\".");
    return;
  }
  if (equals) {
    join.constant = ConstantOf(equals->value.text);
  } else {
    const std::string other = WithoutBraces(to->value.text);
    const auto dot = other.find('.');
    const int at = dot == std::string::npos ? -1 : FindTable(report_->tables, other.substr(0, dot));
    if (at < 0 || at == own) {
      reader.Fault(*to, "\"" + to->value.text + "\" is no field of a table before this one.");
      return;
    }
    join.otherTable = report_->tables[static_cast<std::size_t>(at)].alias;
    join.otherField = other.substr(dot + 1);
    HasColumn(at, join.otherField, reader, "to");
  }
  table.joins.push_back(std::move(join));
}

void DefinitionBuilder::ReadOrder(const XmlElement& data) {
  for (const auto& child : data.children) {
    if (child.name == "select") {
      const ElementReader reader(child, faults_);
      if (!child.children.empty()) faults_.Add(child.children[0].place, "<select> has no elements.");
      report_->rowTest = FormulaOf(child.text, "The selection", FormulaUse::PerRow);
    }
    if (child.name != "order") continue;
    ElementReader reader(child, faults_);
    CheckNoText(child);
    OrderDefinition order;
    order.descending = reader.YesNo("descending", false);
    const std::string field = reader.NeededWord("field");
    const auto place = scope_.FieldPlace(WithoutBraces(field));
    if (place) {
      order.field = *place;
      report_->order.push_back(order);
    } else if (!field.empty()) {
      reader.Fault(*reader.Take("field"), "There is no field \"" + field + "\" in the tables of the report.");
    }
  }
}

void DefinitionBuilder::ReadLink(ElementReader& reader, const XmlElement& element,
                                 const DefinitionScope& inner, SubreportDefinition& subreport) {
  const std::string link = reader.NeededWord("link");
  if (link.empty()) return;
  const auto equals = link.find('=');
  const auto first = WithoutBraces(link.substr(0, equals));
  const auto second = equals == std::string::npos ? std::string() : WithoutBraces(link.substr(equals + 1));
  // Either side may be the inner one.
  for (const auto& [within, around] : {std::pair(first, second), std::pair(second, first)}) {
    const auto innerPlace = inner.FieldPlace(within);
    const auto outerPlace = innerPlace ? scope_.FieldPlace(around) : std::nullopt;
    if (!outerPlace) continue;
    subreport.innerField = *innerPlace;
    subreport.outerField = *outerPlace;
    return;
  }
  for (const auto& attribute : element.attributes)
    if (attribute.name == "link")
      reader.Fault(attribute, "The link is written {a field of the subreport} = {a field of the report}; \"" +
                                  link + "\" is not.");
}

}  // namespace print
