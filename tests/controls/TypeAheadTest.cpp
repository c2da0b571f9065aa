#include "platform/controls/TypeAhead.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QPushButton>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>
#include <string>
#include <vector>

#include "platform/controls/Later.h"
#include "platform/controls/QtScreen.h"
#include "platform/controls/TextBox.h"
#include "support/desktop/FormDriver.h"
#include "support/desktop/TypeFast.h"

namespace {

using test::Key;
using test::Letters;

std::vector<std::string> stored;
bool refuses = false;

/// A window of one record, slow to open and slow to close.
class Record : public ui::Form {
 public:
  Record() : Form("Record"), code("code"), name("name"), ok(new QPushButton("&OK")) {
    auto* column = new QVBoxLayout(this);
    for (QWidget* widget :
         {static_cast<QWidget*>(&code), static_cast<QWidget*>(&name), static_cast<QWidget*>(ok)})
      column->addWidget(widget);
    code.SelectOnEntry();
    name.SelectOnEntry();
    ui::OnClick(*ok, [this] { Ok(); });
    SetDefault(ok);
  }
  void Ok() {
    if (refuses) {
      screen::MessageBox("That is not a code.");
      return;
    }
    stored.push_back(code.Text() + "," + name.Text());
    // Work that waits for another user lets events through.
    screen::DoEvents();
    QThread::msleep(3);
    screen::DoEvents();
    Unload();
  }

  ui::TextBox code;
  ui::TextBox name;
  QPushButton* ok;

 protected:
  void OnActivate() override {
    screen::DoEvents();
    QThread::msleep(5);
    screen::DoEvents();
  }
  void OnUnload() override {
    QThread::msleep(15);
    screen::DoEvents();
  }
};

/// The list that opens the window with Insert; other keys search it.
class List : public ui::Form {
 public:
  List() : Form("List") {
    auto* column = new QVBoxLayout(this);
    column->addWidget(&rows);
    rows.setFocus();
  }
  std::string searched;

 protected:
  void OnActivate() override {
    QThread::msleep(8);
    screen::DoEvents();
  }

 private:
  class Rows : public QWidget {
   public:
    explicit Rows(List& list) : list_(list) { setFocusPolicy(Qt::StrongFocus); }

   protected:
    void keyPressEvent(QKeyEvent* event) override {
      if (event->key() == Qt::Key_Insert)
        ui::The<Record>().ShowForm();
      else
        list_.searched += event->text().toStdString();
    }

   private:
    List& list_;
  };
  Rows rows{*this};
};

class TypeAheadTest : public testing::TestWithParam<int> {
 protected:
  TypeAheadTest() {
    stored.clear();
    refuses = false;
    before_ = screen::Install(std::make_shared<ui::QtScreen>());
    list_.ShowForm();
    test::Settle();
  }
  ~TypeAheadTest() override { screen::Install(before_); }

  static void Append(std::vector<Key>& keys, std::vector<Key> more) {
    keys.insert(keys.end(), more.begin(), more.end());
  }
  static std::vector<Key> Series(int number) {
    std::vector<Key> keys{{Qt::Key_Insert}};
    Append(keys, Letters("ab" + std::to_string(number)));
    keys.push_back({Qt::Key_Tab, "\t"});
    Append(keys, Letters("cd"));
    keys.push_back({Qt::Key_Return, "\r"});
    return keys;
  }

  std::shared_ptr<screen::Screen> before_;
  List& list_ = ui::The<List>();
  test::FormsEnd end_;
};

TEST_P(TypeAheadTest, NoKeyIsLostBetweenTwoWindows) {
  std::vector<Key> keys;
  std::vector<std::string> expected;
  for (int number = 0; number < 10; ++number) {
    Append(keys, Series(number));
    expected.push_back("ab" + std::to_string(number) + ",cd");
  }
  EXPECT_EQ(test::TypeFast(keys, GetParam()), 0);
  EXPECT_EQ(stored, expected);
  EXPECT_EQ(list_.searched, "");
  EXPECT_EQ(ui::ActiveForm(), &list_);
}

TEST_P(TypeAheadTest, ABoxTakesNoKeyThatWasTypedBeforeItCouldBeRead) {
  refuses = true;
  std::vector<Key> keys = Series(1);
  Append(keys, Series(2));
  bool still = false;
  bool answered = false;
  // Nobody types any more; the box is still open, and a key now answers it.
  QTimer::singleShot(static_cast<int>(keys.size()) * GetParam() + 700, &list_, [&] {
    QWidget* box = QApplication::activeModalWidget();
    still = box && box->objectName() == "MessageBox";
    if (!still) return;
    qt_handleKeyEvent(box->windowHandle(), QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r");
    ui::Later(list_, [&] { answered = !QApplication::activeModalWidget(); });
  });
  test::TypeFast(keys, GetParam());
  QElapsedTimer since;
  since.start();
  while (!answered && since.elapsed() < 3000) test::Settle();
  EXPECT_TRUE(still);
  EXPECT_TRUE(answered);
  if (QWidget* box = QApplication::activeModalWidget()) box->close();
  EXPECT_TRUE(stored.empty());
  EXPECT_EQ(ui::The<Record>().code.Text() + "," + ui::The<Record>().name.Text(), "ab1,cd");
}

INSTANTIATE_TEST_SUITE_P(MillisecondsPerKey, TypeAheadTest, testing::Values(0, 2, 12, 20, 40));

}  // namespace
