// Splits a query into its clauses, so that a list can be sorted and searched by another column.
#pragma once

#include <string>
#include <vector>

#include "platform/store/Cursor.h"

namespace ui {

/// The clauses of a SELECT, each without its keyword; a table's name alone is a query for the whole table.
/// Words in quotation marks, brackets or parentheses belong to the clause around them.
struct QueryText {
  explicit QueryText(const std::string& source);

  std::string select;  ///< from SELECT up to the last table
  std::string where;
  std::string groupBy;  ///< with HAVING
  std::string orderBy;
  bool limited = false;  ///< TOP, DISTINCT or groups: a further condition cannot select from its rows

  std::string Text() const;
  /// The query for the first `count` rows that also satisfy a condition. Not for a limited query.
  std::string First(int count, const std::string& condition) const;
  /// The columns of the order as the query writes them, without ASC and DESC.
  std::vector<std::string> OrderColumns() const;
  /// Whether the first column of the order is descending.
  bool FirstDescends() const;
};

/// The name by which a query refers to a field: "[table].[column]", or its own name for a computed field.
std::string ColumnReference(const store::FieldInfo& field);

}  // namespace ui
