// The check before anything is entered for an asset: there must be an asset.
#pragma once

#include <string>

namespace dw {

/// Whether the query finds an asset, over a connection of its own. Tells the user if there is none.
bool AssetsDefined(const std::string& query);

}  // namespace dw
