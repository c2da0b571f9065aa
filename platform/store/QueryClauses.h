// A query taken apart at its clauses, so that a list can be sorted and searched by another column.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/store/Cursor.h"

namespace store {

/// The clauses of a SELECT as it is written; runs of blanks count as one. What is in quotation marks,
/// brackets or parentheses belongs to the clause around it.
class QueryClauses {
 public:
  /// A column that the rows are ordered by.
  struct Order {
    std::string column;  ///< as it is written
    bool descends = false;
  };

  /// Takes a SELECT apart; a table's name alone is a query for all of it. Throws StoreError 3075 for what the
  /// dialect's tokens do not allow, and for a clause that is doubled or in the wrong place.
  explicit QueryClauses(std::string_view source);

  /// What is behind WHERE; empty without one.
  const std::string& Where() const { return where_; }
  const std::vector<Order>& OrderedBy() const { return orders_; }
  /// Whether it has TOP, DISTINCT or groups: its rows cannot be cut down by a further condition.
  bool Limited() const { return limited_; }

  std::string Text() const { return TextWith(select_, where_, orderBy_); }
  /// The query with its rows in another order, written as behind ORDER BY.
  std::string WithOrder(const std::string& orderBy) const { return TextWith(select_, where_, orderBy); }
  /// The query for the first `count` rows that also satisfy a condition. Not for a limited one.
  std::string First(int count, const std::string& condition) const;

 private:
  std::string TextWith(const std::string& select, const std::string& where, const std::string& orderBy) const;

  std::string select_;   // from SELECT on, up to and with the tables
  std::string where_;    // without its keyword
  std::string groupBy_;  // GROUP BY and HAVING, with their keywords
  std::string orderBy_;  // without its keyword
  std::vector<Order> orders_;
  bool limited_ = false;
};

/// How a query calls the column of one of its fields: "[table].[column]", or its own name for a computed one.
std::string ColumnReference(const FieldInfo& field);

}  // namespace store
