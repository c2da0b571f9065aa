#include "support/desktop/TypeFast.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <cctype>
#include <utility>

namespace test {
namespace {

/// Records when which window got the focus. A handler can keep the program busy while the user presses keys.
class FocusHistory {
 public:
  explicit FocusHistory(const QElapsedTimer& clock) : clock_(clock) {
    Note(QGuiApplication::focusWindow());
    connection_ = QObject::connect(qApp, &QGuiApplication::focusWindowChanged,
                                   [this](QWindow* window) { Note(window); });
  }
  ~FocusHistory() { QObject::disconnect(connection_); }
  FocusHistory(const FocusHistory&) = delete;
  FocusHistory& operator=(const FocusHistory&) = delete;

  QWindow* At(qint64 time) const {
    QWindow* window = nullptr;
    for (const auto& [since, focused] : changes_)
      if (since <= time) window = focused;
    return window;
  }

 private:
  void Note(QWindow* window) { changes_.emplace_back(clock_.elapsed(), window); }

  const QElapsedTimer& clock_;
  std::vector<std::pair<qint64, QPointer<QWindow>>> changes_;
  QMetaObject::Connection connection_;
};

}  // namespace

std::vector<Key> Letters(const std::string& text) {
  std::vector<Key> keys;
  for (const char letter : text)
    keys.push_back({static_cast<Qt::Key>(std::toupper(static_cast<unsigned char>(letter))), {letter}});
  return keys;
}

int TypeFast(const std::vector<Key>& keys, int milliseconds) {
  QElapsedTimer clock;
  clock.start();
  const FocusHistory history(clock);
  std::size_t next = 0;
  int lost = 0;
  const auto type = [&] {
    while (next < keys.size() && static_cast<qint64>(next) * milliseconds <= clock.elapsed()) {
      const Key key = keys[next];
      QPointer<QWindow> window = history.At(static_cast<qint64>(next) * milliseconds);
      ++next;
      const QString text = QString::fromStdString(key.text);
      if (window) qt_handleKeyEvent(window, QEvent::KeyPress, key.key, Qt::NoModifier, text);
      if (window) qt_handleKeyEvent(window, QEvent::KeyRelease, key.key, Qt::NoModifier, text);
      if (!window) ++lost;
    }
  };
  // Events from the window system come before work that the program has queued for itself.
  auto* dispatcher = QAbstractEventDispatcher::instance();
  const auto connection = QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, type);
  QTimer wakes;
  wakes.start(1);
  while (next < keys.size()) QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
  QObject::disconnect(connection);
  constexpr int kQuiet = 150;
  QTest::qWait(kQuiet);
  return lost;
}

}  // namespace test
