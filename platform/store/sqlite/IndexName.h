// Names of indexes: each table has its own in the system, one space for all of them in the file.
#pragma once

#include <string>
#include <string_view>

namespace store {

/// "Fuel Period Costs.Fuel By Period".
std::string StoredIndexName(std::string_view table, std::string_view index);
std::string IndexNameOf(std::string_view table, std::string_view stored);

}  // namespace store
