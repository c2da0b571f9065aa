// Showing a form for reading.
#pragma once

class QWidget;

namespace ui {

/// Disables each text field, combo, check box and option button of a form. Grids, labels and buttons stay as
/// they are, so that the user can still look around and leave.
void DisableEntryControls(QWidget& form);

}  // namespace ui
