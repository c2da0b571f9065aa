// Selections as conditions of the store's SQL.
#pragma once

#include <functional>
#include <string>

#include "platform/print/formula/FormulaNode.h"
#include "platform/store/Schema.h"

namespace print {

/// A column of the query as SQL names it.
struct QueryColumn {
  std::string name;  ///< "[Vehicles].[Class ID]"
  store::ColumnType type = store::ColumnType::Text;
};

/// A condition that holds for every row for which the selection holds, and for as few others as SQL can say;
/// empty if it can say nothing. The selection is tested for each row that comes, so that the rows are right
/// even where a file holds values of the wrong kind. `column` gives the column of a field; `values` serves
/// for what a run fixes, such as Today.
std::string PushedCondition(const FormulaNode& selection, const std::function<QueryColumn(int field)>& column,
                            const FormulaValues& values);

/// A value as a literal of the store's SQL; empty for one that it has no literal for.
std::string SqlLiteral(const rt::Value& value);

}  // namespace print
