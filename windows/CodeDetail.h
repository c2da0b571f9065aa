// What the windows of the two codes that group assets share.
#pragma once

#include <functional>
#include <string>

#include "platform/controls/DataGrid.h"
#include "windows/RecordHold.h"

class QWidget;

namespace dw {

inline constexpr const char* kNoAssets = "SELECT * FROM Vehicles WHERE [ID] = -1";

/// The query for the assets that have the record's code (as stored, not as being typed).
std::function<std::string(RecordHold&)> AssetsWithCode(std::string column);
/// The grid of those assets in a group of its own.
QWidget* AssetsGroup(ui::DataGrid& grid);

}  // namespace dw
