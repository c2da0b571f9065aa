// The wheel scrolls; it changes no value in passing and does not move the focus.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabBar>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

#include "platform/controls/TextBox.h"
#include "support/desktop/FormDriver.h"

namespace {

/// One notch towards the user over the middle of a widget, as the window system sends it.
void Notch(QWidget& widget) {
  const QPointF at = widget.rect().center();
  QWheelEvent turn(at, widget.mapToGlobal(at), {}, QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                   Qt::NoScrollPhase, false);
  // Qt does not pass an event on to the parent widget if the program sent it, so this one must look like the
  // window system's.
  QSpontaneKeyEvent::setSpontaneous(&turn);
  QWidget* under = widget.childAt(at.toPoint());
  qApp->notify(under ? under : &widget, &turn);
  test::Settle();
}

TEST(Wheel, ScrollsTheWindowAndChangesNoField) {
  QWidget window;
  auto* column = new QVBoxLayout(&window);
  auto* scroll = new QScrollArea;
  auto* content = new QWidget;
  auto* fields = new QVBoxLayout(content);
  auto* first = new QLineEdit;
  auto* combo = new QComboBox;
  auto* editable = new QComboBox;
  auto* spin = new QSpinBox;
  auto* date = new QDateEdit(QDate(2026, 3, 1));
  auto* tabs = new QTabBar;
  editable->setEditable(true);
  for (auto* box : {combo, editable}) box->addItems({"a", "b", "c", "d"});
  for (int i = 0; i < 4; ++i) tabs->addTab("page");
  for (QWidget* field : std::initializer_list<QWidget*>{first, combo, editable, spin, date, tabs})
    fields->addWidget(field);
  auto* below = new QWidget;
  below->setMinimumHeight(2000);
  fields->addWidget(below);
  scroll->setWidget(content);
  scroll->setWidgetResizable(true);
  column->addWidget(scroll);
  window.resize(400, 400);
  window.show();
  window.activateWindow();
  test::Settle();

  for (const bool focused : {false, true})
    for (QWidget* field : std::initializer_list<QWidget*>{combo, editable, spin, date, tabs}) {
      (focused ? field : first)->setFocus();
      const QWidget* focus = QApplication::focusWidget();
      scroll->verticalScrollBar()->setValue(0);
      Notch(*field);
      EXPECT_GT(scroll->verticalScrollBar()->value(), 0) << field->metaObject()->className();
      EXPECT_EQ(QApplication::focusWidget(), focus);
    }
  EXPECT_EQ(combo->currentIndex() + editable->currentIndex() + spin->value() + tabs->currentIndex(), 0);
  EXPECT_EQ(date->date(), QDate(2026, 3, 1));
}

TEST(Wheel, ScrollsNotesWithoutTakingTheFocus) {
  QWidget window;
  auto* column = new QVBoxLayout(&window);
  QLineEdit first;
  ui::NotesBox notes("Notes");
  notes.setPlainText(QString("line\n").repeated(100));
  // Some styles and controls of the toolkit give the focus to what the wheel turns over.
  notes.setFocusPolicy(Qt::WheelFocus);
  notes.viewport()->setFocusPolicy(Qt::WheelFocus);
  column->addWidget(&first);
  column->addWidget(&notes);
  window.resize(300, 200);
  window.show();
  window.activateWindow();
  first.setFocus();
  test::Settle();
  Notch(notes);
  EXPECT_GT(notes.verticalScrollBar()->value(), 0);
  EXPECT_TRUE(first.hasFocus());
  EXPECT_TRUE(notes.focusPolicy() & Qt::ClickFocus);
}

}  // namespace
