// The functions that translated statements call.
#pragma once

#include <sqlite3.h>

#include <optional>

#include "platform/store/StoreError.h"

namespace store {

/// The type of the pointer that dw_value takes.
inline constexpr const char* kRowsPointer = "dw_rows";

/// Adds to a database:
/// - ucase(text) and lcase(text), for all letters;
/// - dw_like(pattern, text), see LikeMatch;
/// - dw_now() and dw_date(), as dates of the file;
/// - dw_fit(value, form, column, type, size, takes empty text): the value as a column takes it, see
///   FitToColumn. Form and type are ColumnTypes; the form says what the value is: the type of the column it
///   comes from, or would have;
/// - dw_value(rows, record, column): a value from a RowList that is bound as a kRowsPointer.
///
/// A value that dw_fit refuses ends the statement, which changes nothing, and leaves the reason in `refused`,
/// which must live as long as the database.
void AddFunctions(sqlite3* db, std::optional<StoreError>& refused);

}  // namespace store
