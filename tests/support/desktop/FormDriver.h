// Uses forms as a user does: controls by their names, keys, clicks.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QCoreApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <string>

#include "platform/controls/Form.h"

namespace test {

/// Runs all pending events, including deletions.
inline void Settle() {
  for (int i = 0; i < 3; ++i) {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

/// A control of a form by its name; ends the test if there is none.
template <class Control = QWidget>
Control& Find(QWidget& form, const char* name) {
  auto* control = form.findChild<Control*>(name);
  if (!control) throw std::runtime_error(std::string("no control ") + name);
  return *control;
}

inline void Click(QWidget& form, const char* button) {
  auto& control = Find<QAbstractButton>(form, button);
  // A check box may be wider than its clickable part.
  const bool check = qobject_cast<QCheckBox*>(&control) != nullptr;
  QTest::mouseClick(&control, Qt::LeftButton, {}, check ? QPoint(6, control.height() / 2) : QPoint());
  Settle();
}

/// Moves the focus to a control as the Tab key does.
inline void Enter(QWidget& form, const char* control) {
  Find(form, control).setFocus(Qt::TabFocusReason);
  Settle();
}

/// Moves to a field, replaces its content by typing, and stays there.
inline void Type(QWidget& form, const char* field, const std::string& text) {
  Enter(form, field);
  auto& control = Find(form, field);
  if (auto* line = qobject_cast<QLineEdit*>(&control)) line->selectAll();
  QTest::keyClick(&control, Qt::Key_Delete);
  QTest::keyClicks(&control, QString::fromStdString(text));
  Settle();
}

inline void Press(QWidget& control, Qt::Key key) {
  QTest::keyClick(&control, key);
  Settle();
}

/// The loaded form with this name; fails the test if there is none.
inline ui::Form& Open(const char* name) {
  ui::Form* form = ui::FindForm(name);
  if (!form) throw std::runtime_error(std::string("form is not open: ") + name);
  return *form;
}

/// Unloads the forms that a test has left open.
class FormsEnd {
 public:
  FormsEnd() = default;
  FormsEnd(const FormsEnd&) = delete;
  FormsEnd& operator=(const FormsEnd&) = delete;
  ~FormsEnd() {
    while (!ui::Forms().empty()) ui::Forms().back()->Unload();
    Settle();
  }
};

}  // namespace test
