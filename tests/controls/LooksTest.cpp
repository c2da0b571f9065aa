// Tests the looks of windows, and what a screen reader says.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>
#include <memory>

#include "platform/controls/DataCombo.h"
#include "platform/controls/Layout.h"
#include "platform/controls/QtScreen.h"
#include "platform/controls/TextBox.h"
#include "support/desktop/FormDriver.h"

namespace {

/// A window that wants more room than any screen has.
class Huge : public ui::Form {
 public:
  Huge() : Form("Huge"), notes("Notes"), ok(new QPushButton("&OK")) {
    auto* column = new QVBoxLayout(this);
    column->addWidget(&notes);
    column->addWidget(ok);
    resize(20000, 20000);
  }
  ui::NotesBox notes;
  QPushButton* ok;
};

TEST(Looks, AWindowFitsTheWorkAreaWithItsFrame) {
  const test::FormsEnd end;
  auto& form = ui::The<Huge>();
  form.ShowForm();
  test::Settle();
  EXPECT_TRUE(form.screen()->availableGeometry().contains(form.frameGeometry()));
  EXPECT_TRUE(form.rect().contains(form.ok->geometry()));
}

TEST(Looks, ALongBoxScrollsAndItsButtonStaysInReach) {
  ui::QtScreen screen;
  const auto show = [&](const std::string& text) {
    bool scrolls = false;
    QTimer::singleShot(50, [&] {
      QWidget* box = QApplication::activeModalWidget();
      ASSERT_NE(box, nullptr);
      EXPECT_TRUE(box->screen()->availableGeometry().contains(box->frameGeometry()));
      auto* area = box->findChild<QScrollArea*>();
      scrolls = area != nullptr;
      EXPECT_TRUE(!area || area->widget()->height() > area->height()) << "the rest can be reached";
      auto* ok = static_cast<QMessageBox*>(box)->button(QMessageBox::Ok);
      EXPECT_TRUE(box->rect().contains(QRect(ok->mapTo(box, QPoint()), ok->size())));
      ok->click();
    });
    screen::Box said{};
    said.text = text;
    screen.ShowBox(said);
    return scrolls;
  };
  EXPECT_FALSE(show("One line."));
  std::string list;
  for (int i = 0; i < 200; ++i) list += "/a/path/that/was/found/" + std::to_string(i) + "\r";
  EXPECT_TRUE(show(list));
}

TEST(Looks, ScreenReadersHearValuesAndWindows) {
  const test::FormsEnd end;
  auto& form = ui::The<Huge>();
  ui::BoundLabel label("Label4(1)");
  const auto prompt = std::unique_ptr<QLabel>(ui::Prompt("&Date Created:", label));
  label.ShowValue(rt::Value("3/1/2026"));
  const auto* said = QAccessible::queryAccessibleInterface(&label);
  EXPECT_EQ(said->text(QAccessible::Name), "3/1/2026");
  EXPECT_EQ(said->text(QAccessible::Description), "Date Created");
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&form)->role(), QAccessible::Window);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&form.notes)->role(), QAccessible::EditableText);
}

TEST(Looks, ALongComboOpensAsAListThatScrolls) {
  QWidget window;
  auto* column = new QVBoxLayout(&window);
  ui::DataCombo combo("cboAsset", "a", "b");
  {
    const QSignalBlocker quiet(combo);
    for (int i = 0; i < 500; ++i) combo.addItem(QString::number(i));
  }
  column->addWidget(&combo);
  window.show();
  test::Settle();
  combo.showPopup();
  test::Settle();
  const QWidget* list = combo.view()->window();
  EXPECT_LT(list->height(), combo.fontMetrics().height() * 30);
  combo.hidePopup();
}

TEST(Looks, AFirstFieldIsOvertyped) {
  const test::FormsEnd end;
  auto* form = new ui::Form("First");
  ui::TextBox field("code");
  (new QVBoxLayout(form))->addWidget(&field);
  field.ShowValue(rt::Value("before"));
  form->ShowForm();
  test::Settle();
  ASSERT_TRUE(field.hasFocus());
  EXPECT_EQ(field.selectedText(), "before");
  // A value that comes after the window is open is marked as well.
  field.ShowValue(rt::Value("later"));
  EXPECT_EQ(field.selectedText(), "later");
}

TEST(Looks, AnyDateFitsItsField) {
  for (const int points : {9, 12, 18}) {
    QFont font = QApplication::font();
    font.setPointSize(points);
    QLineEdit field;
    field.setFont(font);
    ui::SetWidth(field, ui::kDateWidth);
    EXPECT_GT(field.width(), field.fontMetrics().horizontalAdvance("10/28/2008") + 8) << points;
  }
}

}  // namespace
