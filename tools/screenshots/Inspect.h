// Finds faults in how a window looks, without a person.
#pragma once

#include <string>
#include <vector>

class QWidget;

namespace shots {

/// Looks for what is out of reach or cut off: a window or a button beyond the screen's work area, a text that
/// does not fit into its label, button or heading, a date or number that its field or column cuts off, a
/// control that sticks out of its frame. Returns one line for each, and nothing if all is well.
std::vector<std::string> Inspect(QWidget& window);

}  // namespace shots
