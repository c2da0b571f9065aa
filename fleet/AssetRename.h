// Changing an asset's code in every table that has it.
#pragma once

#include <string>

namespace dw {

enum class RenameResult { Canceled, InUse, RolledBack, Renamed };

/// Asks for the new code and renames in ten tables, all or none. A failure in the middle is rolled back
/// silently.
RenameResult RenameAsset(const std::string& assetID);
/// The same without the question; an empty `newID` is a canceled rename.
RenameResult RenameAssetTo(const std::string& assetID, const std::string& newID);

}  // namespace dw
