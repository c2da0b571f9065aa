// Keys that the user types while one window closes and the next one opens.
#pragma once

class QEvent;
class QObject;
class QWidget;

namespace ui {

/// Keys belong to the active form of the program. For a moment, the window system still sends them to the
/// earlier window, or to a form that is busy opening or closing. The program keeps such keys back and gives
/// them to the active form, in their order, as soon as it has the focus. A message box takes none of them: it
/// drops the keys that were typed before the user could see it.
///
/// True if the event is such a key: the caller must not handle it then.
bool HoldKey(QObject& receiver, QEvent& event);

/// Drops the kept keys, and those that the user types before there was time to see this box.
void GuardFromEarlierKeys(QWidget& box);

/// While one of these exists, a handler lets events through in the middle of its work: keys wait for its end,
/// except Esc and the keys of a focused button, which may be there to end the work.
class HandlerAtWork {
 public:
  HandlerAtWork();
  ~HandlerAtWork();
  HandlerAtWork(const HandlerAtWork&) = delete;
  HandlerAtWork& operator=(const HandlerAtWork&) = delete;
};

}  // namespace ui
