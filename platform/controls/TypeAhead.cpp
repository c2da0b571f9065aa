#include "platform/controls/TypeAhead.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>
#include <QWindow>
#include <deque>
#include <memory>

#include "platform/controls/Form.h"

// Qt's own test library delivers keys with this function: it tries a window's access keys and shortcuts
// first.
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* receiver, ulong timestamp, int key,
                                               Qt::KeyboardModifiers modifiers, const QString& text,
                                               bool autoRepeat, ushort count);

namespace ui {
namespace {

constexpr int kRetry = 5;        ///< milliseconds between two checks for the focus
constexpr int kMostLooks = 200;  ///< after so many checks without the focus, the window system has refused it
/// No user reads a box in less. Keys in quick succession began before the box; that counts for a second at
/// most.
constexpr qint64 kToSee = 250;
constexpr qint64 kLongestBurst = 1000;

QWidget* TopLevelOf(const QObject* window) {
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->windowHandle() == window) return widget;
  return nullptr;
}

bool IsForm(QWidget* widget) { return dynamic_cast<Form*>(widget) != nullptr; }

class Held {
 public:
  Held() {
    retry_.setInterval(kRetry);
    retry_.setSingleShot(true);
    QObject::connect(&retry_, &QTimer::timeout, &retry_, [this] {
      ++looks_;
      GiveOut();
    });
  }

  bool Hold(QObject& receiver, QKeyEvent& key);
  void Forget() {
    keys_.clear();
    looks_ = 0;
  }

  int atWork = 0;

 private:
  bool MayPass(QWidget* addressed, const QKeyEvent& key);
  void GiveOut();
  void Give(QWindow& window, const QKeyEvent& key);

  std::deque<std::unique_ptr<QKeyEvent>> keys_;
  QTimer retry_;
  int looks_ = 0;
  QPointer<Form> withoutFocus_;  ///< an active form without the focus: the window system refused it
  bool passing_ = false;         ///< the next key is one that was kept back
};

/// The kept keys end with the application, whose timers they use.
Held& Keys() {
  static QPointer<QObject> owner;
  static std::unique_ptr<Held> held;
  if (!owner) {
    held = std::make_unique<Held>();
    owner = new QObject(qApp);
    QObject::connect(owner, &QObject::destroyed, [] { held.reset(); });
  }
  return *held;
}

bool Held::MayPass(QWidget* addressed, const QKeyEvent& key) {
  auto* form = dynamic_cast<Form*>(addressed);
  // Other windows, such as the help, keep their keys while they are visible.
  if (addressed && !form && addressed->isVisible()) return true;
  if (!form || !keys_.empty()) return false;
  Form* active = ActiveForm();
  if (active && active == withoutFocus_ && !active->isActiveWindow()) return true;
  if (form != active || !form->TakesKeys() || !form->isActiveWindow()) return false;
  if (atWork == 0 || key.key() == Qt::Key_Escape) return true;
  return qobject_cast<QAbstractButton*>(QApplication::focusWidget()) != nullptr;
}

bool Held::Hold(QObject& receiver, QKeyEvent& key) {
  if (passing_) {
    passing_ = false;
    return false;
  }
  if (QApplication::activePopupWidget() && keys_.empty()) return false;
  QWidget* addressed = TopLevelOf(&receiver);
  QWidget* modal = QApplication::activeModalWidget();
  if (modal && !IsForm(modal)) {
    Forget();
    // The windows behind a dialog take no keys, and the dialog must not get keys that were meant for them.
    return IsForm(addressed);
  }
  if (MayPass(addressed, key)) return false;
  // Accepting the shortcut override keeps Qt from trying shortcuts now.
  key.accept();
  if (key.type() == QEvent::ShortcutOverride) return true;
  // The repeats of a key that is down a little too long must not answer to the next window.
  if (key.isAutoRepeat()) return true;
  keys_.emplace_back(key.clone());
  GiveOut();
  return true;
}

void Held::GiveOut() {
  while (!keys_.empty()) {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal && !IsForm(modal)) {
      Forget();
      break;
    }
    Form* form = ActiveForm();
    if (!form && looks_ > kMostLooks) {
      Forget();
      break;
    }
    if (!form || !form->TakesKeys() || !form->windowHandle() || atWork > 0) break;
    if (!form->isActiveWindow()) {
      if (looks_ <= kMostLooks) break;
      withoutFocus_ = form;
    } else {
      withoutFocus_ = nullptr;
    }
    looks_ = 0;
    const std::unique_ptr<QKeyEvent> key = std::move(keys_.front());
    keys_.pop_front();
    Give(*form->windowHandle(), *key);
  }
  if (keys_.empty())
    looks_ = 0;
  else if (!retry_.isActive())
    retry_.start();
}

void Held::Give(QWindow& window, const QKeyEvent& key) {
  const QPointer<QWindow> alive(&window);
  if (key.type() == QEvent::KeyPress) {
    passing_ = true;
    const bool done = qt_sendShortcutOverrideEvent(&window, key.timestamp(), key.key(), key.modifiers(),
                                                   key.text(), false, 1);
    passing_ = false;
    if (done || !alive) return;
  }
  const std::unique_ptr<QKeyEvent> copy(key.clone());
  passing_ = true;
  QCoreApplication::sendEvent(&window, copy.get());
  passing_ = false;
}

/// Swallows the keys that reach a box before the user can have seen it.
class BoxGuard : public QObject {
 public:
  explicit BoxGuard(QWidget& box) : QObject(&box), box_(box) { qApp->installEventFilter(this); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == &box_ && event->type() == QEvent::Paint && !sinceSeen_.isValid()) {
      sinceSeen_.start();
      sinceKey_.start();
    }
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease ||
                     event->type() == QEvent::ShortcutOverride;
    if (!key || !box_.isVisible() || watched != box_.windowHandle()) return false;
    if (!Unseen()) {
      qApp->removeEventFilter(this);
      return false;
    }
    if (sinceKey_.isValid()) sinceKey_.start();
    event->accept();
    return true;
  }

 private:
  bool Unseen() const {
    return !sinceSeen_.isValid() || (sinceSeen_.elapsed() < kLongestBurst && sinceKey_.elapsed() < kToSee);
  }

  QWidget& box_;
  QElapsedTimer sinceSeen_;
  QElapsedTimer sinceKey_;
};

}  // namespace

bool HoldKey(QObject& receiver, QEvent& event) {
  const bool key = event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease ||
                   event.type() == QEvent::ShortcutOverride;
  return key && receiver.isWindowType() && Keys().Hold(receiver, static_cast<QKeyEvent&>(event));
}

void GuardFromEarlierKeys(QWidget& box) {
  Keys().Forget();
  new BoxGuard(box);
}

HandlerAtWork::HandlerAtWork() { ++Keys().atWork; }
HandlerAtWork::~HandlerAtWork() { --Keys().atWork; }

}  // namespace ui
