// Removing an asset with the records that belong to it.
#pragma once

#include <cstdint>
#include <string>

namespace dw {

enum class RemovalResult { Refused, RolledBack, Removed };

/// Removes the asset with this database number and code, after its questions. `recordCount` is the number of
/// rows of the list that asks. After Refused the list is unchanged; otherwise it has to be read again.
RemovalResult RemoveAsset(std::int32_t id, const std::string& assetID, std::int64_t recordCount);

}  // namespace dw
