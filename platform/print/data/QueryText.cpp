#include "platform/print/data/QueryText.h"

#include "platform/print/PrintError.h"
#include "platform/print/definition/DefinitionScope.h"
#include "platform/runtime/Text.h"

namespace print {
namespace {

std::string InBrackets(const std::string& name) { return "[" + name + "]"; }

}  // namespace

QuerySource::QuerySource(const ReportDefinition& report, const store::Schema& schema,
                         const std::string& dataFile)
    : report_(report), schema_(schema), fields_(report.fields), held_(report.tables.size()) {
  if (report.tables.empty()) throw PrintError("The report '" + report.name + "' has no tables.");
  for (const auto& table : report.tables) {
    if (!schema.Find(table.name))
      throw PrintError("The data file '" + dataFile + "' has no table '" + table.name +
                       "', which the report reads.");
  }
  const auto need = [&](int table, const std::string& column) {
    if (Find(table, column)) return;
    throw PrintError("The table '" + Table(table).name + "' of the data file '" + dataFile +
                     "' has no field '" + column + "', which the report reads.");
  };
  for (auto& field : fields_) {
    need(field.table, field.column);
    const auto* info = Find(field.table, field.column);
    field.type = TypeOfColumn(info->type);
    types_.push_back(info->type);
  }
  for (std::size_t i = 0; i < report.tables.size(); ++i) {
    for (const auto& join : report.tables[i].joins) {
      need(static_cast<int>(i), join.field);
      if (!join.otherTable.empty()) need(FindTable(report.tables, join.otherTable), join.otherField);
    }
  }
}

const store::ColumnInfo* QuerySource::Find(int table, const std::string& column) const {
  if (table < 0 || static_cast<std::size_t>(table) >= report_.tables.size()) return nullptr;
  const auto* info = schema_.Find(Table(table).name);
  const int place = info->Find(column);
  return place < 0 ? nullptr : &info->columns[static_cast<std::size_t>(place)];
}

std::optional<int> QuerySource::PlaceOf(std::string_view name) {
  const auto dot = name.find('.');
  if (dot == std::string_view::npos) return std::nullopt;
  return PlaceOf(FindTable(report_.tables, name.substr(0, dot)), std::string(name.substr(dot + 1)));
}

std::optional<int> QuerySource::PlaceOfJoin(const JoinDefinition& join) {
  return PlaceOf(FindTable(report_.tables, join.otherTable), join.otherField);
}

std::optional<int> QuerySource::PlaceOf(int table, const std::string& column) {
  const auto* info = Find(table, column);
  if (!info) return std::nullopt;
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (fields_[i].table == table && rt::EqualNoCase(fields_[i].column, info->name))
      return static_cast<int>(i);
  FieldDefinition field;
  field.table = table;
  field.column = info->name;
  field.type = TypeOfColumn(info->type);
  fields_.push_back(std::move(field));
  types_.push_back(info->type);
  return static_cast<int>(fields_.size()) - 1;
}

store::ColumnType QuerySource::TypeOf(int table, const std::string& column) const {
  return Find(table, column)->type;
}

std::string QuerySource::ColumnName(int table, const std::string& column) const {
  return InBrackets(Table(table).alias) + "." + InBrackets(column);
}

QueryColumn QuerySource::ColumnOf(int field) const {
  const auto& known = fields_[static_cast<std::size_t>(field)];
  return {ColumnName(known.table, known.column), types_[static_cast<std::size_t>(field)]};
}

std::string QuerySource::ShownName(int field) const {
  const auto& known = fields_[static_cast<std::size_t>(field)];
  return Table(known.table).alias + "." + known.column;
}

std::vector<int> QuerySource::QueriedFields() const {
  std::vector<int> queried;
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (!IsHeld(fields_[i].table)) queried.push_back(static_cast<int>(i));
  return queried;
}

std::string QuerySource::ColumnList() const {
  std::string list;
  for (const int field : QueriedFields()) list += (list.empty() ? "" : ", ") + ColumnOf(field).name;
  // A report may show words and totals alone.
  return list.empty() ? "1" : list;
}

std::string QuerySource::OneTable(int table) const {
  return InBrackets(Table(table).name) + " AS " + InBrackets(Table(table).alias);
}

std::string QuerySource::JoinCondition(int table, Joins which) const {
  std::string condition;
  for (const auto& join : Table(table).joins) {
    if (which == Joins::ToConstants && !join.otherTable.empty()) continue;
    if (!condition.empty()) condition += " AND ";
    condition += ColumnName(table, join.field) + " = ";
    if (join.otherTable.empty())
      condition += SqlLiteral(join.constant);
    else
      condition += ColumnName(FindTable(report_.tables, join.otherTable), join.otherField);
  }
  return condition;
}

std::string QuerySource::From() const {
  std::string from = OneTable(0);
  bool joined = false;
  for (int i = 1; i < static_cast<int>(report_.tables.size()); ++i) {
    if (IsHeld(i)) continue;
    if (joined) from = "(" + from + ")";
    from += " LEFT JOIN " + OneTable(i) + " ON " + JoinCondition(i);
    joined = true;
  }
  return from;
}

}  // namespace print
