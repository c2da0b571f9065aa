#include "shell/forms/HelpWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "platform/controls/Contrast.h"
#include "shell/Help.h"
#include "shell/forms/HelpKey.h"
#include "shell/forms/HelpResults.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

namespace {

/// A form with one field.
class SomeForm : public ui::Form {
 public:
  explicit SomeForm(const char* name) : Form(name) { (new QVBoxLayout(this))->addWidget(&field); }
  QLineEdit field;
};

class HelpWindowTest : public testing::Test {
 protected:
  HelpWindowTest() {
    static const bool installed = (dw::InstallHelpKey(*qApp), true);
    EXPECT_TRUE(installed);
    dw::UseHelpDirectory(HELP_PAGES);
  }
  ~HelpWindowTest() override {
    delete Window();
    dw::SetUpHelp();
  }
  static dw::HelpWindow* Window() {
    for (QWidget* widget : QApplication::allWidgets())
      if (auto* window = dynamic_cast<dw::HelpWindow*>(widget)) return window;
    return nullptr;
  }
  static std::string Page() {
    return Window() == nullptr ? "no window" : Window()->pageView->source().fileName().toStdString();
  }
  static std::string Chosen() {
    const auto* item = Window()->contentsTree->currentItem();
    return item == nullptr ? "" : item->text(0).toStdString();
  }

  test::ScreenScript user_;
  test::FormsEnd end_;
};

TEST_F(HelpWindowTest, EachPageCanBeReadOnDarkAndLightGrounds) {
  const QPalette before = QApplication::palette();
  for (const auto& [ground, text] : {std::pair(QColor(30, 30, 32), QColor(225, 225, 225)),
                                     std::pair(QColor(Qt::white), QColor(Qt::black))}) {
    QPalette palette(ground);
    palette.setColor(QPalette::Base, ground);
    palette.setColor(QPalette::AlternateBase, ground.lighter(110));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Link, QColor(0, 0, 255));
    QApplication::setPalette(palette);
    dw::ShowHelpContents();
    int looked = 0;
    for (const auto& page : QDir(HELP_PAGES).entryList({"*.html"})) {
      Window()->ShowPage(page.toStdString());
      const QTextDocument& document = *Window()->pageView->document();
      for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        for (auto part = block.begin(); !part.atEnd(); ++part) {
          const QTextCharFormat format = part.fragment().charFormat();
          const QColor shown =
              format.hasProperty(QTextFormat::ForegroundBrush) ? format.foreground().color() : text;
          EXPECT_GE(ui::Contrast(shown, ground), 4.5)
              << page.toStdString() << ": " << part.fragment().text().toStdString();
          ++looked;
        }
    }
    EXPECT_GT(looked, 500);
    delete Window();
  }
  QApplication::setPalette(before);
}

TEST_F(HelpWindowTest, F1ExplainsTheWindowInFront) {
  auto* list = new SomeForm("frmDivisionList");
  auto* detail = new SomeForm("frmDivisionMaint");
  list->ShowForm();
  detail->ShowForm();
  test::Press(detail->field, Qt::Key_F1);
  EXPECT_EQ(Page(), "frmDivisionList.html");
  EXPECT_EQ(Window()->pageView->source().fragment(), "frmDivisionMaint");
  EXPECT_TRUE(Window()->isVisible());
  EXPECT_TRUE(Window()->windowTitle().startsWith("Divisions"));
  EXPECT_EQ(ui::Forms().size(), 2U);  // the help is not one of the forms

  test::Press(list->field, Qt::Key_F1);
  EXPECT_EQ(Window()->pageView->source().fragment(), "");
  test::Press(*Window()->pageView, Qt::Key_F1);
  EXPECT_EQ(Page(), "HelpWindow.html");

  auto* unknown = new SomeForm("frmWithoutPage");
  unknown->ShowForm();
  test::Press(unknown->field, Qt::Key_F1);
  EXPECT_EQ(Page(), "contents.html");
  QTest::keyClick(&list->field, Qt::Key_F1, Qt::ShiftModifier);
  EXPECT_EQ(Page(), "contents.html");
  test::Press(*Window()->pageView, Qt::Key_Escape);
  EXPECT_EQ(Window(), nullptr);
}

TEST_F(HelpWindowTest, OverAMessageTheFormIsExplained) {
  auto* form = new SomeForm("frmOdometerMaint");
  form->ShowForm();
  QPointer<dw::HelpWindow> help;
  {
    QMessageBox box(QMessageBox::Critical, "Drovewright", "You forgot to fill in the mileage.");
    box.open();
    test::Settle();
    ASSERT_EQ(QApplication::activeModalWidget(), &box);
    test::Press(*box.button(QMessageBox::Ok), Qt::Key_F1);
    help = Window();
    EXPECT_EQ(Page(), "frmOdometerList.html");
    // Beside the box, only windows that belong to it take input; but the help must outlive the box.
    EXPECT_EQ(help->parentWidget(), &box);
    box.accept();
    test::Settle();
  }
  ASSERT_FALSE(help.isNull());
  EXPECT_EQ(help->parentWidget(), nullptr);
  EXPECT_TRUE(help->isVisible());
}

TEST_F(HelpWindowTest, AModalWindowBelowAnotherOneKeepsTheHelp) {
  QMessageBox lower;
  lower.open();
  dw::ShowHelpFor("BFLogon");
  {
    QMessageBox upper(&lower);
    upper.open();
    dw::ShowHelpContents();
    EXPECT_EQ(Window()->parentWidget(), &upper);
    upper.accept();
    test::Settle();
  }
  ASSERT_NE(Window(), nullptr);
  EXPECT_EQ(Window()->parentWidget(), &lower);
  lower.accept();
  test::Settle();
}

TEST_F(HelpWindowTest, SearchShowsPagesAndMarksWords) {
  dw::ShowHelpSearch();
  dw::HelpWindow& help = *Window();
  EXPECT_EQ(help.focusWidget(), help.searchField);
  QTest::keyClicks(help.searchField, "Posting is complete");
  ASSERT_GT(help.results->Found(), 0);
  EXPECT_TRUE(help.results->isVisible());
  EXPECT_FALSE(help.contentsTree->isVisible());
  test::Press(*help.searchField, Qt::Key_Down);
  EXPECT_EQ(help.focusWidget(), help.results);
  EXPECT_EQ(Page(), "frmRePost.html");
  EXPECT_FALSE(help.pageView->extraSelections().isEmpty());
  EXPECT_GT(help.pageView->textCursor().position(), 0);

  help.EnterSearch();
  QTest::keyClicks(help.searchField, "zzz");
  EXPECT_EQ(help.results->Found(), 0);
  EXPECT_EQ(help.results->count(), 1);
  test::Press(*help.searchField, Qt::Key_Return);  // nothing to open
  EXPECT_EQ(Page(), "frmRePost.html");
  test::Press(*help.searchField, Qt::Key_Escape);
  EXPECT_TRUE(help.contentsTree->isVisible());
  EXPECT_TRUE(help.pageView->extraSelections().isEmpty());

  QTest::keyClicks(help.searchField, "fiscal year");
  test::Press(*help.searchField, Qt::Key_Return);
  EXPECT_EQ(Page(), "frmFiscalYearSetup.html");
}

TEST_F(HelpWindowTest, ContentsBackAndForward) {
  dw::ShowHelpContents();
  dw::HelpWindow& help = *Window();
  EXPECT_EQ(Page(), "contents.html");
  EXPECT_EQ(Chosen(), "");
  auto* topics = help.contentsTree->topLevelItem(0);
  help.contentsTree->setCurrentItem(topics->child(1));
  EXPECT_EQ(Page(), "costs.html");
  help.ShowPage("frmRePost.html");
  EXPECT_EQ(Chosen(), "Post Transactions");
  EXPECT_FALSE(help.forwardButton->isEnabled());
  test::Click(help, "cmdBack");
  EXPECT_EQ(Page(), "costs.html");
  QTest::keyClick(help.pageView, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(Page(), "frmRePost.html");
  test::Click(help, "cmdContents");
  EXPECT_EQ(Page(), "contents.html");
}

TEST_F(HelpWindowTest, MissingPagesAreTold) {
  test::TempDirectory empty;
  dw::UseHelpDirectory(empty.Path());
  for (int i = 0; i < 3; ++i) user_->ExpectPart(empty.Path(), screen::Icon::Exclamation);
  dw::ShowHelpContents();
  dw::ShowHelpSearch();
  dw::ShowHelpFor("mnuDW");
  EXPECT_EQ(Window(), nullptr);
}

}  // namespace
