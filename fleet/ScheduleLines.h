// The numbers of the lines in an asset's maintenance schedule.
#pragma once

#include <cstdint>
#include <string>

namespace dw {

/// The number for the asset's next line: one above its highest, 1 for its first line. If no number is above
/// the highest, the lowest free one.
std::int16_t NextLineItem(const std::string& assetID);
/// Whether the asset has another line than the one with this ID that has the number.
bool LineItemInUse(const std::string& assetID, std::int32_t lineItem, std::int32_t id);

}  // namespace dw
