#include "platform/controls/DisableEntry.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTextEdit>

namespace ui {
namespace {

template <class Control>
void DisableAll(QWidget& form) {
  for (Control* control : form.findChildren<Control*>()) control->setEnabled(false);
}

}  // namespace

void DisableEntryControls(QWidget& form) {
  DisableAll<QLineEdit>(form);
  DisableAll<QPlainTextEdit>(form);
  DisableAll<QTextEdit>(form);
  DisableAll<QComboBox>(form);
  DisableAll<QCheckBox>(form);
  DisableAll<QRadioButton>(form);
}

}  // namespace ui
