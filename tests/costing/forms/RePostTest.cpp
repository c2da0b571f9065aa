// The window of the posting run.
#include <QCheckBox>
#include <QCoreApplication>
#include <QLabel>
#include <QProgressBar>
#include <set>

#include "costing/forms/TransactionFixture.h"
#include "costing/forms/frmRePost.h"
#include "platform/controls/Application.h"

namespace {

using screen::Icon;

class RePost : public test::TransactionTest {
 protected:
  static dw::frmRePost& Shown() {
    auto& form = ui::The<dw::frmRePost>();
    form.ShowForm();
    test::Settle();
    return form;
  }
};

TEST_F(RePost, ShowsItsProgressAndIsNotClosedMeanwhile) {
  fleet_.AddTransactions(8, [](int, test::Row&) { return std::string("TRK-1"); });
  bool ended = false;
  ui::InstallLastFormGone([&ended] { ended = true; });
  auto& list = List();
  auto& form = Shown();
  EXPECT_EQ(form.windowTitle(), "Post Transactions ");
  EXPECT_FALSE(form.progress->isVisible() || form.clearFirst->isChecked());
  form.clearFirst->setChecked(true);
  std::set<int> percents;
  screen_->onEvents = [&] {
    EXPECT_TRUE(form.progress->isVisible());
    EXPECT_FALSE(form.proceedButton->isEnabled() || form.cancelButton->isEnabled());
    EXPECT_EQ(form.status->text(), "Posting. Please stand by...");
    form.close();
    QTest::keyClick(&form, Qt::Key_Escape);
    if (percents.empty()) {
      // Other work goes on meanwhile: a window saves; then the list closes, so that this window is the last
      // one.
      fleet_.Run("UPDATE [Vehicles] SET [Description] = 'saved meanwhile'");
      list.Unload();
    }
    percents.insert(form.progress->value());
    QCoreApplication::processEvents();
  };
  Expect("Posting is Complete.", Icon::Information);
  screen_->onBox = [&](const screen::Box&) { EXPECT_FALSE(ended); };
  test::Click(form, "cmdProceed");
  EXPECT_EQ(percents, (std::set<int>{12, 25, 37, 50, 62, 75, 87, 100}));
  EXPECT_TRUE(ended);
  EXPECT_TRUE(ui::Forms().empty());
  EXPECT_EQ(fleet_.Ask("SELECT [Description] FROM [Vehicles]"), "saved meanwhile");
  EXPECT_TRUE(InStep());
  ui::InstallLastFormGone({});
}

TEST_F(RePost, SurvivesTheEndOfItsWindow) {
  fleet_.AddTransactions(8, [](int, test::Row&) { return std::string("TRK-1"); });
  auto& form = Shown();
  bool gone = false;
  screen_->onEvents = [&] {
    if (!gone) form.Unload();
    gone = true;
    test::Settle();
  };
  Expect("Posting is Complete.", Icon::Information);
  test::Click(form, "cmdProceed");
  EXPECT_EQ(fleet_.Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] IS NULL"), "0");
}

TEST_F(RePost, ARunOnAnEmptyTableEndsWithTheEnginesError) {
  std::string told;
  auto earlier =
      ui::InstallUncaught([&](const std::exception_ptr& error) { told = ui::UncaughtText(error); });
  auto& form = Shown();
  test::Click(form, "cmdProceed");
  ui::InstallUncaught(std::move(earlier));
  EXPECT_EQ(told.substr(0, 22), "Run-time error '3021':");
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
  EXPECT_NO_THROW(store::Connection::Open({.path = dw::DataFile, .share = store::Share::Exclusive}))
      << "nothing is kept";
  EXPECT_TRUE(form.cancelButton->isEnabled());
  test::Press(form, Qt::Key_Escape);
  EXPECT_FALSE(IsOpen("frmRePost"));
}

TEST_F(RePost, AClearingBesideAnOpenTransactionEndsTheRunAlone) {
  fleet_.AddTransactions(3, [](int, test::Row&) { return std::string("TRK-1"); });
  {
    auto& form = Shown();
    Expect("Posting is Complete.", Icon::Information);
    test::Click(form, "cmdProceed");
  }
  const std::string posted = fleet_.Everything("Maintenance Transactions");
  List();
  auto& window = OpenFirst();
  auto& form = Shown();
  form.clearFirst->setChecked(true);
  screen_->ExpectPart("Maintenance Transactions, record 1: user ", Icon::Critical);
  test::Click(form, "cmdProceed");
  EXPECT_FALSE(IsOpen("frmRePost"));
  EXPECT_TRUE(IsOpen("frmTransactionMaint") && IsOpen("frmTransactionList"));
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
  EXPECT_EQ(fleet_.Everything("Maintenance Transactions"), posted);
  EXPECT_TRUE(InStep());
  window.workOrder.SetText("WO 7");
  test::Click(window, "OkButton");
  EXPECT_EQ(fleet_.OfTransaction(1, "Work Order Number"), "WO 7");
}

}  // namespace
