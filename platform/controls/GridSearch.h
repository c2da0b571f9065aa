// Finding the first row of a list whose text begins with what was typed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/controls/Adodc.h"

namespace ui {

/// The condition of SQL that holds where a column, as a list shows it, begins with a text: texts without
/// regard to case; numbers by their digits, signs of money and commas passed over; dates as month, day and
/// year; flags by "Yes" and "No". Empty where nothing can begin so.
std::string BeginsWith(const store::FieldInfo& field, const std::string& typed);

/// The number of the first row, in the order of the recordset, for which a condition holds. The store is
/// asked in one query. The recordset's place stays. Throws ado::Error. Not for queries with TOP, DISTINCT or
/// groups.
std::optional<std::int64_t> FirstRowWhere(Adodc& source, const std::string& condition);

}  // namespace ui
