#include "platform/controls/Application.h"

#include <QAbstractSpinBox>
#include <QAccessibleWidget>
#include <QComboBox>
#include <QDial>
#include <QPalette>
#include <QSlider>
#include <QTabBar>
#include <cstdio>
#include <cstdlib>

#include "platform/controls/TypeAhead.h"
#include "platform/runtime/Error.h"

namespace ui {
namespace {

Uncaught& Installed() {
  static Uncaught handler;
  return handler;
}

}  // namespace

Uncaught InstallUncaught(Uncaught handler) { return std::exchange(Installed(), std::move(handler)); }

void HandleUncaught(std::exception_ptr error) {
  if (Installed()) {
    Installed()(std::move(error));
    return;
  }
  std::fprintf(stderr, "%s\n", UncaughtText(std::move(error)).c_str());
  std::abort();
}

std::string UncaughtText(std::exception_ptr error) {
  try {
    std::rethrow_exception(std::move(error));
  } catch (const rt::Error& e) {
    return "Run-time error '" + std::to_string(e.Number()) + "':\n\n" + e.what();
  } catch (const std::exception& e) {
    return e.what();
  } catch (...) {
    return "Unknown error.";
  }
}

namespace {

/// People still have to read disabled fields: most styles make their text too pale for that.
void DarkenDisabledText() {
  QPalette colors = QApplication::palette();
  const QColor text = colors.color(QPalette::Active, QPalette::Text);
  const QColor ground = colors.color(QPalette::Active, QPalette::Window);
  const auto between = [](int a, int b) { return (a * 13 + b * 7) / 20; };
  colors.setColor(QPalette::Disabled, QPalette::Text,
                  QColor(between(text.red(), ground.red()), between(text.green(), ground.green()),
                         between(text.blue(), ground.blue())));
  QApplication::setPalette(colors);
}

bool ChangesByWheel(const QWidget* widget) {
  return qobject_cast<const QComboBox*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget) ||
         qobject_cast<const QTabBar*>(widget) || qobject_cast<const QSlider*>(widget) ||
         qobject_cast<const QDial*>(widget);
}

/// The widget that may take a turn of the wheel: the wheel scrolls, and neither changes a value in passing
/// nor moves the focus.
QWidget* UnderTheWheel(QWidget* widget) {
  QWidget* scrolled = widget;
  for (QWidget* around = widget; around; around = around->isWindow() ? nullptr : around->parentWidget()) {
    if (ChangesByWheel(around)) scrolled = around->parentWidget();
    if (around->focusPolicy() == Qt::WheelFocus) around->setFocusPolicy(Qt::StrongFocus);
  }
  return scrolled;
}

/// Makes screen readers announce a window of this program as a window.
QAccessibleInterface* WindowForReaders(const QString&, QObject* object) {
  auto* widget = qobject_cast<QWidget*>(object);
  // Dialogs and other windows of the toolkit have roles of their own.
  const bool ours = widget && widget->isWindow() && widget->metaObject() == &QWidget::staticMetaObject;
  return ours ? new QAccessibleWidget(widget, QAccessible::Window) : nullptr;
}

}  // namespace

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName("Drovewright");
  // The program ends when no form is open, whatever other windows are there.
  setQuitOnLastWindowClosed(false);
  DarkenDisabledText();
  QAccessible::installFactory(WindowForReaders);
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    if (HoldKey(*receiver, *event)) return true;
    if (event->type() == QEvent::Wheel && receiver->isWidgetType()) {
      QWidget* scrolled = UnderTheWheel(static_cast<QWidget*>(receiver));
      event->ignore();
      return scrolled && QApplication::notify(scrolled, event);
    }
    return QApplication::notify(receiver, event);
  } catch (...) {
    HandleUncaught(std::current_exception());
    return true;
  }
}

}  // namespace ui
