// What is entered for an asset needs one.
#pragma once

#include <string>

namespace dw {

/// Whether the query finds an asset, asked over a connection of its own. Tells the user where there is none.
bool AssetsDefined(const std::string& query);

}  // namespace dw
