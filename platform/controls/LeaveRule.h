// Rules that run when the focus leaves a field.
#pragma once

#include <functional>

class QFocusEvent;
class QWidget;

namespace ui {

/// Runs a rule as a control's focusOutEvent must: only if the focus goes to another control of the same
/// window. If the rule returns false, the focus comes back, unless the rule has moved it somewhere else, and
/// the click that took it away is dropped.
void RunLeaveRule(QWidget& control, const QFocusEvent& event, const std::function<bool()>& rule);
/// Whether a click of the mouse caused the rule that is running now.
bool LeavingByMouse();

}  // namespace ui
