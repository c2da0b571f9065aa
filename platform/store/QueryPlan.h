// A query translated and cut into the statements that a cursor needs.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/store/Cursor.h"
#include "platform/store/Dialect.h"
#include "platform/store/Schema.h"
#include "platform/store/Statements.h"

namespace store {

struct QueryPlan {
  Translation translation;
  std::shared_ptr<const Schema> schema;
  std::vector<FieldInfo> fields;
  const TableInfo* leading = nullptr;  ///< the first table: the one whose fields can be changed
  std::vector<int> leadingColumn;      ///< of each field: its column in `leading`, or -1
  std::vector<ColumnType> types;       ///< of the result columns
  bool keyed = false;                  ///< its rows can be found again by the keys of their tables
  std::string keys;                    ///< the keys of all rows, in order
  std::string row;                     ///< one row by its keys :k0, :k1 …
  std::string rows;                    ///< several rows by a list of keys, :keys
  std::string whole;                   ///< all rows, where they have no keys
  std::vector<std::string> apart;  ///< of each field: its value alone by the keys, where rows leave it out
};

std::shared_ptr<const QueryPlan> MakePlan(Translation translation, std::shared_ptr<const Schema> schema,
                                          const Statements& statements);

}  // namespace store
