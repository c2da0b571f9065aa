// The tables of a statement, and which of their columns a name means.
#pragma once

#include <string_view>
#include <vector>

#include "platform/store/DialectSyntax.h"

namespace store::dialect {

class Scope {
 public:
  explicit Scope(const Schema& schema) : schema_(schema) {}

  /// The table of this name; throws 3078 if the file has none.
  const TableInfo& FindTable(std::string_view name) const;
  /// Adds a table behind those that are there. Throws 3078 if the file has none, 3075 if an earlier one has
  /// the same name.
  void Add(std::string_view name, std::string_view alias);

  struct Found {
    int table = 0;
    const ColumnInfo* column = nullptr;
  };
  /// What a name means among the tables from `first` on. A bracket with "table.column" in it means that
  /// column, unless a column has the whole text as its name. Throws 3061 for an unknown name and 3079 for one
  /// that two tables have.
  Found Resolve(const ColumnName& name, int first = 0) const;
  /// The table that a statement calls by this name; throws 3061 if there is none.
  int FindAlias(std::string_view alias) const;

  int Size() const { return static_cast<int>(tables_.size()); }
  const TableInfo& Info(int table) const { return *infos_[static_cast<std::size_t>(table)]; }
  SourceTable& Table(int table) { return tables_[static_cast<std::size_t>(table)]; }
  const SourceTable& Table(int table) const { return tables_[static_cast<std::size_t>(table)]; }
  const std::vector<SourceTable>& Tables() const { return tables_; }

 private:
  /// A null column if there is no such one.
  Found Look(std::string_view table, std::string_view column, int first) const;

  const Schema& schema_;
  std::vector<SourceTable> tables_;
  std::vector<const TableInfo*> infos_;
};

}  // namespace store::dialect
