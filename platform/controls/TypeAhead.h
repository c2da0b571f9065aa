// Keys that are typed while one window closes and the next one opens.
#pragma once

class QEvent;
class QObject;
class QWidget;

namespace ui {

/// Keys belong to the form that is active for the program. The window system still sends them to the earlier
/// window for a moment, or to a form that is busy opening or closing. Such keys are held and given to the
/// active form, in their order, as soon as it has the focus. A message box takes none of them: it forgets
/// what was typed before the user could see it.
///
/// True if the event is such a key: the caller then goes no further with it.
bool HoldKey(QObject& receiver, QEvent& event);

/// Forgets held keys, and those that are typed before the user has had the time to see this box.
void GuardFromEarlierKeys(QWidget& box);

/// While one of these exists, a handler lets events through in the middle of its work: keys wait for its end,
/// except Esc and the keys of a button that has the focus, which may be there to end the work.
class HandlerAtWork {
 public:
  HandlerAtWork();
  ~HandlerAtWork();
  HandlerAtWork(const HandlerAtWork&) = delete;
  HandlerAtWork& operator=(const HandlerAtWork&) = delete;
};

}  // namespace ui
