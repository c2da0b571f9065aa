// A query taken apart at its clauses, so that a list can be sorted and searched by another column.
#pragma once

#include <string>
#include <vector>

#include "platform/store/Cursor.h"

namespace ui {

/// The clauses of a SELECT, each without its keyword; a table's name alone is a query for all of it. What
/// stands in quotation marks, brackets or parentheses belongs to the clause around it.
struct QueryText {
  explicit QueryText(const std::string& source);

  std::string select;  ///< from SELECT on, up to and with the tables
  std::string where;
  std::string groupBy;  ///< with HAVING
  std::string orderBy;
  bool limited = false;  ///< TOP, DISTINCT or groups: its rows cannot be cut down by a further condition

  std::string Text() const;
  /// The query for the first `count` rows that also satisfy a condition. Not for a limited one.
  std::string First(int count, const std::string& condition) const;
  /// The columns of the order, as they are written, without ASC and DESC.
  std::vector<std::string> OrderColumns() const;
  /// Whether the first column of the order is descending.
  bool FirstDescends() const;
};

/// How a query calls the column of one of its fields: "[table].[column]", or its own name for a computed one.
std::string ColumnReference(const store::FieldInfo& field);

}  // namespace ui
