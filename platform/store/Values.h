// Values on their way into columns.
#pragma once

#include <string>

#include "platform/runtime/Value.h"
#include "platform/store/Schema.h"

namespace store {

/// The value as a column takes it: converted to the column's type, its size and range checked. Throws
/// StoreError 3163, 3315, 3421 or 6.
rt::Value FitToColumn(const ColumnInfo& column, const rt::Value& value);
/// The text of an error about one column.
std::string InColumn(const ColumnInfo& column, const std::string& text);

}  // namespace store
