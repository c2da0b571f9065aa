#include "platform/store/DialectScope.h"

#include <string>

#include "platform/runtime/Text.h"
#include "platform/store/StoreError.h"

namespace store::dialect {
namespace {

std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

}  // namespace

const TableInfo& Scope::FindTable(std::string_view name) const {
  if (const TableInfo* table = schema_.Find(name)) return *table;
  throw StoreError(kTableNotFound, "There is no table '" + std::string(name) + "' in the file.");
}

void Scope::Add(std::string_view name, std::string_view alias) {
  const TableInfo& table = FindTable(name);
  SourceTable source{table.name, alias.empty() ? table.name : std::string(alias), false};
  for (const auto& earlier : tables_)
    if (rt::EqualNoCase(earlier.alias, source.alias))
      throw StoreError(kSyntax, "Two tables of the statement are called '" + source.alias + "'.");
  tables_.push_back(std::move(source));
  infos_.push_back(&table);
}

Scope::Found Scope::Resolve(const ColumnName& name, int first) const {
  Found found = Look(name.table, name.column, first);
  if (!found.column && name.bracketed && name.table.empty()) {
    for (std::size_t dot = name.column.find('.'); dot != std::string_view::npos && !found.column;
         dot = name.column.find('.', dot + 1)) {
      const auto table = WithoutBlanks(name.column.substr(0, dot));
      if (!table.empty()) found = Look(table, WithoutBlanks(name.column.substr(dot + 1)), first);
    }
  }
  if (found.column) return found;
  const std::string shown =
      (name.table.empty() ? "" : std::string(name.table) + ".") + std::string(name.column);
  throw StoreError(kTooFewParameters, "The tables of the statement have no column '" + shown + "'.");
}

Scope::Found Scope::Look(std::string_view table, std::string_view column, int first) const {
  Found found;
  for (int i = first; i < Size(); ++i) {
    if (!table.empty() && !rt::EqualNoCase(table, Table(i).alias)) continue;
    const int at = Info(i).Find(column);
    if (at < 0) continue;
    if (found.column)
      throw StoreError(kAmbiguousColumn, "The column '" + std::string(column) + "' could be that of '" +
                                             Table(found.table).alias + "' or of '" + Table(i).alias + "'.");
    found = {i, &Info(i).columns[static_cast<std::size_t>(at)]};
  }
  return found;
}

int Scope::FindAlias(std::string_view alias) const {
  for (int i = 0; i < Size(); ++i)
    if (rt::EqualNoCase(alias, Table(i).alias)) return i;
  throw StoreError(kTooFewParameters, "No table of the statement is called '" + std::string(alias) + "'.");
}

}  // namespace store::dialect
