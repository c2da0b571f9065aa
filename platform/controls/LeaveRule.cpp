#include "platform/controls/LeaveRule.h"

#include <QApplication>
#include <QFocusEvent>
#include <QPointer>
#include <QWidget>

#include "platform/controls/Application.h"

namespace ui {
namespace {

bool byMouse = false;
bool running = false;

/// Swallows the press that took the focus from a field whose rule failed, and the release of that press.
class PressSwallower : public QObject {
 public:
  static void Arm() {
    static QPointer<PressSwallower> swallower;
    if (!swallower) swallower = new PressSwallower;
    swallower->pressed_ = true;
    swallower->released_ = true;
    qApp->removeEventFilter(swallower);
    qApp->installEventFilter(swallower);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (!watched->isWidgetType()) return false;
    // The second press of a double click moves the focus, too.
    const bool press =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (press && pressed_) {
      pressed_ = false;
      return true;
    }
    if (event->type() == QEvent::MouseButtonRelease && released_ && !pressed_) {
      released_ = false;
      qApp->removeEventFilter(this);
      return true;
    }
    // A message box took the release, so the user means this press.
    if (press) qApp->removeEventFilter(this);
    return false;
  }

 private:
  PressSwallower() : QObject(qApp) {}
  bool pressed_ = false;
  bool released_ = false;
};

}  // namespace

bool LeavingByMouse() { return byMouse; }

void RunLeaveRule(QWidget& control, const QFocusEvent& event, const std::function<bool()>& rule) {
  if (!rule || running) return;
  switch (event.reason()) {
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
      return;
    default:
      break;
  }
  const QWidget* next = QApplication::focusWidget();
  if (!next || next == &control || next->window() != control.window()) return;
  const QPointer<QWidget> alive(&control);
  bool good = true;
  running = true;
  byMouse = event.reason() == Qt::MouseFocusReason;
  Guard([&] { good = rule(); });
  const bool wasMouse = byMouse;
  if (alive && !good) {
    // The rule may have moved the focus to another field.
    if (QApplication::focusWidget() == next || !QApplication::focusWidget()) control.setFocus();
    if (wasMouse) PressSwallower::Arm();
  }
  byMouse = false;
  running = false;
}

}  // namespace ui
