// Rules that run when the focus leaves a field.
#pragma once

#include <functional>

class QFocusEvent;
class QWidget;

namespace ui {

/// Runs a rule as a control's focusOutEvent must: only when the focus goes to another control of the same
/// window. Where the rule is false the focus comes back, unless the rule has set it somewhere else, and the
/// click that took it away is forgotten.
void RunLeaveRule(QWidget& control, const QFocusEvent& event, const std::function<bool()>& rule);
/// Whether the rule that runs now was called for by the mouse.
bool LeavingByMouse();

}  // namespace ui
