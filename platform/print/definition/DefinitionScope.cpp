#include "platform/print/definition/DefinitionScope.h"

#include <algorithm>

#include "platform/print/formula/FormulaChecks.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

/// How a plain field is shown if neither its item nor its style says otherwise.
std::string FormatOfType(rt::ValueType type) {
  switch (type) {
    case rt::ValueType::Boolean:
      return "yesno";
    case rt::ValueType::Single:
      return "number1";
    case rt::ValueType::Double:
      return "number2";
    case rt::ValueType::Currency:
      return "money";
    case rt::ValueType::Date:
      return "date";
    default:
      return {};
  }
}

}  // namespace

rt::ValueType TypeOfColumn(store::ColumnType type) {
  switch (type) {
    case store::ColumnType::Counter:
    case store::ColumnType::Long:
      return rt::ValueType::Long;
    case store::ColumnType::Boolean:
      return rt::ValueType::Boolean;
    case store::ColumnType::Short:
      return rt::ValueType::Integer;
    case store::ColumnType::Single:
      return rt::ValueType::Single;
    case store::ColumnType::Double:
      return rt::ValueType::Double;
    case store::ColumnType::Currency:
      return rt::ValueType::Currency;
    case store::ColumnType::DateTime:
      return rt::ValueType::Date;
    case store::ColumnType::Text:
    case store::ColumnType::Memo:
      return rt::ValueType::Text;
    case store::ColumnType::LongBinary:
      return rt::ValueType::Binary;
  }
  return rt::ValueType::Null;
}

int FindTable(const std::vector<TableDefinition>& tables, std::string_view name) {
  for (std::size_t i = 0; i < tables.size(); ++i)
    if (rt::EqualNoCase(tables[i].alias, name)) return static_cast<int>(i);
  for (std::size_t i = 0; i < tables.size(); ++i)
    if (rt::EqualNoCase(tables[i].name, name)) return static_cast<int>(i);
  return -1;
}

bool DefinitionScope::Knows(std::string_view name) const {
  return std::any_of(named_.begin(), named_.end(),
                     [&](const Named& named) { return rt::EqualNoCase(named.text.name, name); });
}

std::optional<int> DefinitionScope::FieldPlace(std::string_view name) const {
  const auto dot = name.find('.');
  if (dot == std::string_view::npos) return std::nullopt;
  const int table = FindTable(report_.tables, name.substr(0, dot));
  if (table < 0) return std::nullopt;
  FieldDefinition field;
  field.table = table;
  field.column = name.substr(dot + 1);
  if (field.column.empty()) return std::nullopt;
  if (schema_) {
    const auto* info = schema_->Find(report_.tables[static_cast<std::size_t>(table)].name);
    const int column = info ? info->Find(field.column) : -1;
    // A table that is not there has its own fault; each of its fields would repeat it.
    if (info && column < 0) return std::nullopt;
    if (info) {
      const auto& found = info->columns[static_cast<std::size_t>(column)];
      field.column = found.name;
      field.type = TypeOfColumn(found.type);
      field.format = FormatOfType(field.type);
    }
  }
  for (std::size_t i = 0; i < report_.fields.size(); ++i) {
    const auto& known = report_.fields[i];
    if (known.table == table && rt::EqualNoCase(known.column, field.column)) return static_cast<int>(i);
  }
  report_.fields.push_back(std::move(field));
  return static_cast<int>(report_.fields.size()) - 1;
}

rt::ValueType DefinitionScope::FieldType(int place) const {
  return report_.fields[static_cast<std::size_t>(place)].type;
}

std::optional<int> DefinitionScope::GroupOf(std::string_view key) const {
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    if (rt::EqualNoCase(groups_[i], key)) return static_cast<int>(i);
    if (key.starts_with('@') || groups_[i].find('.') == std::string::npos) continue;
    // The same field may be written with the table's name or with its alias.
    const auto place = FieldPlace(key);
    if (place && place == FieldPlace(groups_[i])) return static_cast<int>(i);
  }
  return std::nullopt;
}

std::shared_ptr<const FormulaNode> DefinitionScope::NamedFormula(std::string_view name) const {
  for (auto& named : named_) {
    if (!rt::EqualNoCase(named.text.name, name)) continue;
    if (named.state == State::Reading) {
      std::string circle;
      for (auto at = std::find(chain_.begin(), chain_.end(), named.text.name); at != chain_.end(); ++at)
        circle += "{@" + *at + "}, ";
      throw FormulaError("Formulas use each other in a circle: " + circle + "{@" + named.text.name + "}.",
                         Place{});
    }
    if (named.state == State::Unread) Read(named);
    // A faulty formula is reported once, where it stands.
    if (named.state == State::Faulty) return MakeLiteral(rt::Null{}, Place{});
    return named.formula.Tree();
  }
  return nullptr;
}

void DefinitionScope::Read(Named& named) const {
  constexpr std::size_t kLongestChain = 100;
  if (chain_.size() >= kLongestChain)
    throw FormulaError("More than 100 formulas use each other in a chain.", Place{});
  named.state = State::Reading;
  chain_.push_back(named.text.name);
  try {
    named.formula = Formula::Read(named.text.text, *this);
    named.state = State::Read;
  } catch (const FormulaError& error) {
    named.state = State::Faulty;
    const std::string called = "Formula \"" + named.text.name + "\"";
    if (named.text.source)
      faults_.Add(named.text.source->pieces.empty() ? named.text.place : named.text.source->At(error.Where()),
                  called + ": " + error.what());
    else
      faults_.AddOfRun(FaultText(called, error));
  }
  chain_.pop_back();
}

void DefinitionScope::ReadAll() {
  for (auto& named : named_) {
    if (named.state == State::Unread) Read(named);
    report_.formulas.emplace_back(named.text.name, named.formula);
  }
}

}  // namespace print
