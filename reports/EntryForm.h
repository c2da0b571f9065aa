// The work table behind the form for meter readings.
#pragma once

#include <string>

namespace dw {

/// Replaces the signed-on user's rows in `Odometer Entry Work Table` by the readings without an asset, and
/// sets the globals of the launch; the selection finds this user's rows only. False, with nothing set, if the
/// main file cannot be opened, which has been reported. Throws StoreError.
bool PrepareEntryForm();

/// The selection that finds a user's rows.
std::string EntryFormSelection(const std::string& user);

}  // namespace dw
