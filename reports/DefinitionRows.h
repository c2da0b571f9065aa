// The rows of stored definitions, as their windows add and delete them.
#pragma once

#include <cstdint>
#include <string>

namespace dw {

/// Asks, then deletes a definition and all its lines. True if it is gone.
bool DeleteDefinition(std::int32_t queryID);
/// Asks, then deletes one line of `table` ("Selection Criteria" or "Sort Criteria"). True if it is gone.
bool DeleteLine(const std::string& table, std::int32_t id);
/// The number of a new line: 1 more than the highest of the definition.
std::int32_t NextLineNumber(const std::string& table, std::int32_t queryID);

}  // namespace dw
