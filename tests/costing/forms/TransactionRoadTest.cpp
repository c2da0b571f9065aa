// The life of a transaction: entered, posted, unposted; its tasks; and other users who hold it.
#include <QCheckBox>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "costing/forms/TransactionFixture.h"
#include "costing/forms/frmMaintTaskMaint.h"
#include "costing/forms/frmRePost.h"
#include "platform/runtime/Waits.h"
#include "support/OtherUser.h"
#include "support/desktop/Role.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kNoRecords = "There are no records for which to display detail.";
constexpr const char* kHeldElsewhere =
    "This record is currently being updated elsewhere.\rYou will not be able to change this record now.";

class TransactionRoad : public test::TransactionTest {
 protected:
  void Post(bool clearFirst) {
    auto& form = ui::The<dw::frmRePost>();
    form.ShowForm();
    form.clearFirst->setChecked(clearFirst);
    Expect("Posting is Complete.", Icon::Information);
    test::Click(form, "cmdProceed");
    EXPECT_FALSE(IsOpen("frmRePost"));
  }
  std::int32_t Posted() {
    const auto id = fleet_.AddTransaction("TRK-1", 2026, 3, {{"Outside Cost", test::Money(7)}});
    Post(false);
    return id;
  }
  std::string OutsideSum() {
    return fleet_.Sum("Assets Period Costs", {"TRK-1", 2026, 3}, "Outside Parts Cost");
  }
  dw::frmMaintTaskMaint& Task() {
    return dynamic_cast<dw::frmMaintTaskMaint&>(test::Open("frmMaintTaskMaint"));
  }

  test::OtherUser other_;
};

TEST_F(TransactionRoad, FromTheKeysIntoTheCostTablesAndOutAgain) {
  std::int32_t id = 0;
  {
    auto& window = OpenNew();
    id = window.DataID;
    EXPECT_EQ(fleet_.OfTransaction(id, "Transaction Date"), "3/5/2026") << "the empty row is there";
    EXPECT_EQ(fleet_.OfTransaction(id, "Time"), "Null");
    EXPECT_FALSE(window.unpostButton->isEnabled());
    test::Type(window, "txtAssetID", "trk-1");
    test::Type(window, "Text8", "3/6/2026");
    test::Type(window, "Text9", "WO 7");
    EXPECT_FALSE(window.fiscalPeriod.isEnabled());
    const std::pair<const char*, const char*> figures[] = {
        {"MaskEdBox3", "1200.5"}, {"MaskedEdit5", "10"}, {"txtOilUnits", "2"}, {"MaskEdBox2", "1.5"},
        {"MaskedEdit3", "12.25"}, {"MaskedEdit1", "30"}, {"MaskedEdit18", "7"}};
    for (const auto& [field, text] : figures) test::Type(window, field, text);
    test::Click(window, "OkButton");
  }
  ASSERT_FALSE(IsOpen("frmTransactionMaint"));
  const std::pair<const char*, const char*> saved[] = {{"Asset ID", "TRK-1"},
                                                       {"Transaction Date", "3/6/2026"},
                                                       {"Year", "2026"},
                                                       {"Period", "3"},
                                                       {"Internal Fuel Cost", "25"},
                                                       {"Oil Cost", "6"},
                                                       {"Internal Time Cost", "60"},
                                                       {"Outside Cost", "7"},
                                                       {"Total Internal Cost", "0"},
                                                       {"When Posted", "Null"},
                                                       {"Created By", "Clerk"},
                                                       {"Updated By", "Null"},
                                                       {"Notes", "Null"}};
  for (const auto& [column, value] : saved) EXPECT_EQ(fleet_.OfTransaction(id, column), value) << column;
  EXPECT_EQ(Rows("Assets Period Costs"), "0") << "saving posts nothing";

  Post(false);
  EXPECT_EQ(fleet_.OfTransaction(id, "When Posted"), "3/5/2026 2:05:09 PM");
  EXPECT_EQ(OutsideSum(), "7");
  EXPECT_TRUE(InStep());
  {
    auto& window = OpenFirst();
    EXPECT_EQ(window.auditLabels[4].text(), "3/5/2026 2:05:09 PM");
    test::Type(window, "Text9", "WO 8");
    test::Click(window, "cmdUnpost");
    EXPECT_EQ(OutsideSum(), "0");
    EXPECT_TRUE(InStep());
    EXPECT_EQ(fleet_.OfTransaction(id, "When Posted"), "Null");
    EXPECT_EQ(fleet_.OfTransaction(id, "Work Order Number"), "WO 8") << "unposting stores the window";
    EXPECT_EQ(window.auditLabels[4].text(), "");
    EXPECT_FALSE(window.outsideCost.isEnabled()) << "disabled until the window is opened again";
    // Nothing prevents a second subtraction of the same figures.
    test::Click(window, "cmdUnpost");
    EXPECT_EQ(OutsideSum(), "-7");
    EXPECT_FALSE(InStep());
    test::Click(window, "OkButton");
  }
  Post(false);
  EXPECT_EQ(OutsideSum(), "0");
  EXPECT_FALSE(InStep());
  Post(true);
  EXPECT_EQ(OutsideSum(), "7");
  EXPECT_TRUE(InStep());
  // The list deletes a posted row, but its costs stay.
  auto& list = List();
  screen_->Expect("Are you sure you want to delete this record?", Icon::Question, Buttons::YesNo,
                  Answer::Yes);
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(list.Grid().RecordCount(), 0);
  EXPECT_EQ(OutsideSum(), "7");
  fleet_.Run("DELETE FROM [Vehicles]");
  Expect("You must first define some Assets.", Icon::Exclamation);
  test::Press(list.Grid(), Qt::Key_Insert);
}

TEST_F(TransactionRoad, APostedTransactionKeepsItsFiguresAndTakesNotes) {
  const auto id = Posted();
  // The calendar now has another period than the one with the costs.
  fleet_.Run("UPDATE [Fiscal Periods] SET [Period] = 4 WHERE [Period] = 3");
  auto& window = OpenFirst();
  for (const char* field : {"txtAssetID", "Text8", "Text10", "MaskedEdit5", "txtOutsideOil", "MaskedEdit18"})
    EXPECT_FALSE(test::Find(window, field).isEnabled()) << field;
  EXPECT_TRUE(window.workOrder.hasFocus()) << "the first enabled field";
  test::Type(window, "MaskEdBox3", "55");
  test::Enter(window, "Text2");
  QTest::keyClicks(&window.notes, "towed");
  test::Click(window, "cmdUnpost");
  EXPECT_EQ(OutsideSum(), "0") << "subtracts from the period that got the costs";
  EXPECT_EQ(fleet_.OfTransaction(id, "Period"), "4");
  EXPECT_EQ(fleet_.OfTransaction(id, "Notes"), "towed");
  EXPECT_EQ(fleet_.OfTransaction(id, "Mileage"), "55");
}

TEST_F(TransactionRoad, APostedTransactionKeepsItsPeriodHoweverItIsSaved) {
  const auto id = Posted();
  fleet_.Run("UPDATE [Fiscal Periods] SET [Period] = 4, [Fiscal Year] = 2027 WHERE [Period] = 3");
  {
    auto& window = OpenFirst();
    test::Enter(window, "Text2");
    QTest::keyClicks(&window.notes, "towed");
    test::Click(window, "OkButton");
  }
  EXPECT_EQ(fleet_.OfTransaction(id, "Notes"), "towed");
  EXPECT_EQ(fleet_.OfTransaction(id, "Year") + " " + fleet_.OfTransaction(id, "Period"), "2026 3");
  // If unposting fails, the row stays posted.
  fleet_.Run("UPDATE [Vehicles] SET [Asset ID] = 'SOLD'");
  {
    auto& window = OpenFirst();
    Expect("Unable to unpost transaction.");
    test::Click(window, "cmdUnpost");
    test::Click(window, "OkButton");
  }
  EXPECT_EQ(fleet_.OfTransaction(id, "Year") + " " + fleet_.OfTransaction(id, "Period"), "2026 3");
  fleet_.Run("UPDATE [Vehicles] SET [Asset ID] = 'TRK-1'");
  EXPECT_TRUE(InStep());
}

TEST_F(TransactionRoad, AWaitForCostsLeavesTheWindowAlone) {
  test::SecondProcess other([](test::SecondProcess::Channel& channel) {
    channel.Hear();
    const auto workspace = dao::DBEngine::CreateWorkspace("Other", "admin", "");
    const auto database = workspace->OpenDatabase(dw::DataFile);
    const auto rows = database->OpenRecordset("Assets Annual Costs", dao::RecordsetType::Table);
    workspace->BeginTrans();
    rows->Edit();
    rows->Set("Oil Cost", test::Money(1));
    rows->Update();
    rt::AboutToWait();
    channel.Say("changed");
    channel.Hear();
    workspace->RollbackTrans();
  });
  const auto id = Posted();
  auto& window = OpenFirst();
  window.assetCode.setEnabled(true);  // as if the window had been opened without an asset
  window.assetCode.SetText("TRK-2");
  other.Talk().Say("change");
  ASSERT_EQ(other.Talk().Hear(), "changed");
  screen_->onEvents = [&, waits = 0]() mutable {
    if (++waits > 1) return;
    test::Click(window, "cmdUnpost");
    QTest::keyClick(&window, Qt::Key_Escape);
    other.Talk().Say("enough");
    EXPECT_EQ(other.Join(), 0);
  };
  test::Click(window, "cmdUnpost");
  ASSERT_TRUE(IsOpen("frmTransactionMaint"));
  EXPECT_TRUE(window.okButton->isEnabled() && window.isEnabled());
  EXPECT_EQ(OutsideSum(), "0") << "subtracts once, and from the asset that got the costs";
  EXPECT_EQ(fleet_.OfTransaction(id, "When Posted"), "Null");
  EXPECT_EQ(fleet_.OfTransaction(id, "Asset ID"), "TRK-2");
}

TEST_F(TransactionRoad, ATaskNeedsATransactionOnFile) {
  fleet_.Add("Maintenance Types", {{"Description", "Oil Change"}});
  const std::int32_t second = fleet_.Add("Maintenance Types", {{"Description", "Brakes"}});
  auto& window = OpenNew();
  const auto id = window.DataID;
  Expect("You must specify an Asset ID");
  QTest::mouseDClick(window.taskGrid.viewport(), Qt::LeftButton, {}, QPoint(30, 30));
  EXPECT_FALSE(IsOpen("frmMaintTaskMaint"));
  test::Type(window, "txtAssetID", "TRK-1");
  test::Enter(window, "grdTasks");
  QTest::mouseDClick(window.taskGrid.viewport(), Qt::LeftButton, {}, QPoint(30, 30));
  test::Settle();
  {
    auto& task = Task();
    EXPECT_EQ(task.windowTitle(), "New Recurring Maintenance Performed Detail");
    EXPECT_EQ(task.transactionNumber.Text(), std::to_string(id));
    EXPECT_EQ(fleet_.OfTransaction(id, "Created By"), "Clerk") << "the transaction is saved first";
    task.maintenanceType.Choose(second);
    test::Type(task, "mskCost", "x");
    Expect("That is not a valid cost.", Icon::Information);
    test::Press(task.cost, Qt::Key_Return);
    test::Type(task, "mskCost", "");
    test::Press(task.cost, Qt::Key_Return);
    EXPECT_FALSE(IsOpen("frmMaintTaskMaint"));
  }
  EXPECT_EQ(fleet_.Everything("Maintenance_Performed"), "1|" + std::to_string(id) + "|" +
                                                            std::to_string(second) +
                                                            "|0|Null|3/5/2026 2:05:09 PM|Clerk|Null||\n");
  EXPECT_EQ(window.taskRows.RecordCount(), 1);
  EXPECT_TRUE(window.taskGrid.hasFocus());
  EXPECT_EQ(window.taskGrid.CellText(2), "Brakes");
  EXPECT_FALSE(window.AddMode);

  test::Press(window.taskGrid, Qt::Key_Space);
  test::Type(Task(), "mskCost", "12.5");
  test::Click(Task(), "OKButton");
  EXPECT_EQ(window.taskGrid.CellText(3), "$12.50");
  EXPECT_EQ(fleet_.Ask("SELECT [Updated_By] FROM [Maintenance_Performed]"), "Clerk");

  screen_->Expect("Are you sure you want to delete this record?", Icon::Question, Buttons::YesNo,
                  Answer::Yes);
  test::Press(window.taskGrid, Qt::Key_Delete);
  EXPECT_EQ(window.taskRows.RecordCount(), 0);
  // Without a task to show, the window takes its record again and goes on.
  screen_->Expect(kNoRecords, Icon::None);
  test::Press(window.taskGrid, Qt::Key_Delete);
  screen_->Expect(kNoRecords, Icon::None);
  test::Press(window.taskGrid, Qt::Key_Space);
  EXPECT_TRUE(window.Data().Recordset()->Editing());

  // Only one window of tasks at a time. Canceling a task removes its row; canceling the transaction's window
  // leaves the transaction as it was.
  test::Press(window.taskGrid, Qt::Key_Insert);
  window.ShowForm();
  test::Settle();
  Expect("That window is already open with another record.", Icon::Information);
  test::Press(window.taskGrid, Qt::Key_Insert);
  EXPECT_TRUE(window.Data().Recordset()->Editing());
  Task().Cancel();
  test::Settle();
  test::Click(window, "CancelButton");
  EXPECT_EQ(Rows("Maintenance_Performed"), "0");
  EXPECT_EQ(Rows("Maintenance Transactions"), "1");
}

TEST_F(TransactionRoad, AHeldTransactionIsForReadingAndTheRunPassesItOver) {
  const auto id = Posted();
  other_.Hold(fleet_.Path(), "SELECT * FROM [Maintenance Transactions]");
  Expect("Record is currently locked elsewhere.", Icon::Information);
  Expect(kHeldElsewhere, Icon::Exclamation);
  auto& window = OpenFirst();
  EXPECT_FALSE(window.okButton->isEnabled());
  Expect(kHeldElsewhere, Icon::Exclamation);
  test::Click(window, "cmdUnpost");
  EXPECT_EQ(OutsideSum(), "7") << "subtracts nothing from a transaction that it cannot mark";
  // The task window opens over a record that is read-only; when it closes, the record is free and the window
  // takes it.
  test::Press(window.taskGrid, Qt::Key_Insert);
  other_.Leave();
  Task().Cancel();
  test::Settle();
  EXPECT_TRUE(window.okButton->isEnabled());
  test::Click(window, "cmdUnpost");
  EXPECT_EQ(fleet_.OfTransaction(id, "When Posted"), "Null");
  EXPECT_EQ(OutsideSum(), "0");
  // While the window holds the record, posting cannot.
  screen_->ExpectPart("Unknown error #3218 during record edit.", Icon::Critical);
  Expect("Unable to lock transaction for updating.");
  Post(false);
  EXPECT_EQ(fleet_.OfTransaction(id, "When Posted"), "Null");
}

constexpr const char* kDataOfVictim = "DROVEWRIGHT_TEST_DATA";

/// Another workstation, with its window open on the first transaction.
const test::Role kHolder("holder", [] {
  dw::SetDataPath(qgetenv(kDataOfVictim).toStdString());
  auto& list = ui::The<dw::frmTransactionList>();
  list.ShowForm();
  list.ShowDetail();
  test::Settle();
  if (ui::Existing<dw::frmTransactionMaint>()->Data().Recordset()->Editing())
    std::cerr << "holds it" << std::endl;
  std::this_thread::sleep_for(std::chrono::minutes(1));
});

TEST_F(TransactionRoad, AKilledProgramHoldsNothing) {
  fleet_.AddTransaction("TRK-1", 2026, 3);
  setenv(kDataOfVictim, dw::DataPath.c_str(), 1);
  const auto victim = test::Role::Start("holder");
  ASSERT_TRUE(victim->WaitForError("holds it"));
  Expect("Record is currently locked elsewhere.", Icon::Information);
  Expect(kHeldElsewhere, Icon::Exclamation);
  EXPECT_FALSE(OpenFirst().okButton->isEnabled());
  test::Click(Window(), "CancelButton");
  victim->Signal(SIGKILL);
  EXPECT_EQ(victim->Join().code, -SIGKILL);
  EXPECT_TRUE(OpenFirst().okButton->isEnabled());
}

}  // namespace
