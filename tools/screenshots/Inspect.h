// What can be wrong with how a window looks, found without an eye.
#pragma once

#include <string>
#include <vector>

class QWidget;

namespace shots {

/// Looks for what is out of reach or cut off: a window or a button beyond the screen's work area, a text that
/// does not fit into its label, button or heading, a date or number that its field or column cuts off, a
/// control that sticks out of its frame. One line for each, empty where all is well.
std::vector<std::string> Inspect(QWidget& window);

}  // namespace shots
