// Finds the first row of a list whose text begins with the typed text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/controls/Adodc.h"
#include "platform/controls/Beginning.h"

namespace ui {

/// The number of the first row, in the order of the recordset, that satisfies an SQL condition. Asks the
/// store with one query, which reads the whole table if no index helps. The recordset's place stays. Throws
/// ado::Error. Not for queries with TOP, DISTINCT or groups.
std::optional<std::int64_t> FirstRowWhere(Adodc& source, const std::string& condition);

/// The number of the first row whose value of this field begins so. If the list is ordered by the field, a
/// binary search over its keys reads some dozen rows whatever its length. That search takes rows that other
/// users have changed since as if they were still in order, so it can miss such a row in a list of more than
/// 100,000 rows. Otherwise like FirstRowWhere.
std::optional<std::int64_t> FirstRowThatBegins(Adodc& source, const store::FieldInfo& field,
                                               const Beginning& beginning);

}  // namespace ui
