#include "shell/forms/HelpKey.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QWidget>
#include <string>

#include "platform/controls/Form.h"
#include "shell/Help.h"
#include "shell/forms/HelpWindow.h"

namespace dw {
namespace {

/// The nearest window around the widget that has a page, else the active form.
std::string WindowToExplain(const QWidget* widget) {
  for (const QWidget* window = widget->window(); window != nullptr;) {
    std::string name = window->objectName().toStdString();
    if (!PageOf(name).empty()) return name;
    window = window->parentWidget() != nullptr ? window->parentWidget()->window() : nullptr;
  }
  return ui::ActiveForm() != nullptr ? ui::ActiveForm()->Name() : std::string();
}

class HelpKey : public QObject {
 public:
  explicit HelpKey(QObject* parent) : QObject(parent) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier) return false;
    // An open menu would grab the mouse.
    while (QWidget* popup = QApplication::activePopupWidget())
      if (!popup->close()) break;
    if (!key->isAutoRepeat()) ShowHelpFor(WindowToExplain(static_cast<QWidget*>(watched)));
    return true;
  }
};

}  // namespace

void InstallHelpKey(QApplication& application) { application.installEventFilter(new HelpKey(&application)); }

}  // namespace dw
