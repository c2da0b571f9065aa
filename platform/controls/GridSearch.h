// Finding the first row of a list whose text begins with what was typed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/controls/Adodc.h"
#include "platform/controls/Beginning.h"

namespace ui {

/// The number of the first row, in the order of the recordset, for which a condition of SQL holds. The store
/// is asked in one query, which reads the whole table where no index helps. The recordset's place stays.
/// Throws ado::Error. Not for queries with TOP, DISTINCT or groups.
std::optional<std::int64_t> FirstRowWhere(Adodc& source, const std::string& condition);

/// The number of the first row whose value of this field begins so. A list that is in the order of the field
/// is searched by halves among the keys that it has read, which takes some dozen rows whatever its length.
/// What other users have changed since then counts as it was in place: such a row can be passed over in a
/// list of more than 100,000 rows. Otherwise as FirstRowWhere.
std::optional<std::int64_t> FirstRowThatBegins(Adodc& source, const store::FieldInfo& field,
                                               const Beginning& beginning);

}  // namespace ui
