// What all lists and their windows have in common, tested with the divisions and the classes.
#include <gtest/gtest.h>

#include <filesystem>

#include "data/Application.h"
#include "data/BrackenfelGlobals.h"
#include "fleet/forms/frmClassList.h"
#include "fleet/forms/frmDivisionList.h"
#include "fleet/forms/frmDivisionMaint.h"
#include "platform/runtime/Clock.h"
#include "support/OtherUser.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"
#include "support/desktop/FormDriver.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kNoRecords = "There are no records for which to display detail.";
constexpr const char* kSure = "Are you sure you want to delete this record?";

class PatternTest : public testing::Test {
 protected:
  PatternTest() { dw::CurrentUserName = "Clerk"; }

  std::int32_t Division(const std::string& code, const std::string& description) {
    return fleet_.Add("Divisions", {{"Division ID", code}, {"Description", description}});
  }
  std::string Ask(const std::string& column, std::int32_t id) {
    return fleet_.Ask("SELECT [" + column + "] FROM [Divisions] WHERE [ID] = " + std::to_string(id));
  }
  std::string Rows(const std::string& table = "Divisions") {
    return fleet_.Ask("SELECT COUNT(*) FROM [" + table + "]");
  }
  /// Opens the list of the divisions or brings it to the front, with its first row current.
  dw::frmDivisionList& List() {
    auto& list = ui::The<dw::frmDivisionList>();
    list.ShowForm();
    test::Settle();
    list.Grid().SetRow(0);
    return list;
  }
  dw::frmDivisionMaint& OpenFirst() {
    test::Press(List().Grid(), Qt::Key_Space);
    return dynamic_cast<dw::frmDivisionMaint&>(test::Open("frmDivisionMaint"));
  }
  dw::frmDivisionMaint& OpenNew() {
    test::Press(List().Grid(), Qt::Key_Insert);
    return dynamic_cast<dw::frmDivisionMaint&>(test::Open("frmDivisionMaint"));
  }

  test::OtherUser other_;
  test::SmallFleet fleet_;
  rt::FixedClock clock_{rt::DateTime(2026, 3, 1, 14, 5, 9)};
  test::ScreenScript screen_;
  test::FormsEnd end_;
};

TEST_F(PatternTest, AnAddedRecordIsThereAtOnceAndStaysWithItsCreator) {
  Division("N", "North");
  auto& window = OpenNew();
  EXPECT_EQ(window.windowTitle(), "Division Detail");
  EXPECT_EQ(Rows(), "2") << "the placeholder exists while the window is open";
  EXPECT_EQ(window.recordNumber.Text(), std::to_string(window.DataID));
  EXPECT_EQ(Ask("Division ID", window.DataID), "");
  const std::int32_t id = window.DataID;

  test::Type(window, "Text2", "S");
  test::Type(window, "Text3", "South");
  test::Press(window.description, Qt::Key_Return);
  EXPECT_EQ(ui::FindForm("frmDivisionMaint"), nullptr);
  EXPECT_EQ(Ask("Division ID", id), "S");
  EXPECT_EQ(Ask("Created By", id), "Clerk");
  EXPECT_EQ(Ask("Date Created", id), "3/1/2026 2:05:09 PM");
  EXPECT_EQ(Ask("Updated By", id), "Null");
  EXPECT_EQ(Ask("Last Updated", id), "Null");
  EXPECT_EQ(Ask("Notes", id), "Null") << "an unchanged field";
  auto& list = *ui::Existing<dw::frmDivisionList>();
  EXPECT_EQ(list.Grid().RecordCount(), 2) << "the list came forward and was read again";
  EXPECT_EQ(ui::ActiveForm(), &list);
}

TEST_F(PatternTest, ACanceledAddLeavesNothingAndABlankCodeKeepsTheWindow) {
  auto& window = OpenNew();
  screen_->Expect("Division Code cannot be blank.", Icon::Question);
  test::Click(window, "OKButton");
  ASSERT_EQ(ui::FindForm("frmDivisionMaint"), &window);
  EXPECT_TRUE(window.code.hasFocus());
  EXPECT_EQ(Rows(), "1");
  test::Type(window, "Text3", "Never kept");
  test::Press(window, Qt::Key_Escape);
  EXPECT_EQ(ui::FindForm("frmDivisionMaint"), nullptr);
  EXPECT_EQ(Rows(), "0");
}

TEST_F(PatternTest, OneWindowAtATime) {
  Division("N", "North");
  auto& window = OpenFirst();
  test::Type(window, "Text3", "Far North");
  screen_->Expect("That window is already open with another record.", Icon::Information);
  screen_->Expect("That window is already open with another record.", Icon::Information);
  auto& list = *ui::Existing<dw::frmDivisionList>();
  test::Press(list.Grid(), Qt::Key_Insert);
  QTest::mouseDClick(list.Grid().viewport(), Qt::LeftButton, {}, QPoint(20, 10));
  EXPECT_EQ(Rows(), "1");
  EXPECT_EQ(window.description.Text(), "Far North");
}

TEST_F(PatternTest, AnEditSignsItselfAndCancelUndoesIt) {
  const std::int32_t id = Division("N", "North");
  fleet_.Run("UPDATE [Divisions] SET [Created By] = 'Founder'");
  {
    auto& window = OpenFirst();
    test::Type(window, "Text3", "Nowhere");
    test::Click(window, "CancelButton");
  }
  EXPECT_EQ(Ask("Description", id), "North");
  EXPECT_EQ(Ask("Updated By", id), "Null");
  auto& window = OpenFirst();
  test::Type(window, "Text3", "Far North");
  test::Enter(window, "Text8");
  test::Press(window.notes, Qt::Key_Return);
  ASSERT_EQ(ui::FindForm("frmDivisionMaint"), &window) << "Enter makes a new line in the notes";
  QTest::keyClicks(&window.notes, "cold");
  test::Click(window, "OKButton");
  EXPECT_EQ(Ask("Description", id), "Far North");
  EXPECT_EQ(Ask("Notes", id), "\ncold");
  EXPECT_EQ(Ask("Created By", id), "Founder");
  EXPECT_EQ(Ask("Updated By", id), "Clerk");
  EXPECT_EQ(Ask("Last Updated", id), "3/1/2026 2:05:09 PM");
}

TEST_F(PatternTest, ARecordHeldElsewhereIsForReading) {
  const std::int32_t id = Division("N", "North");
  other_.Hold(fleet_.Path(), "SELECT * FROM [Divisions] WHERE [ID] = " + std::to_string(id));
  screen_->Expect("Record is currently locked elsewhere.", Icon::Information);
  screen_->Expect(
      "This record is currently being updated elsewhere.\rYou will not be able to change this record now.",
      Icon::Exclamation);
  {
    auto& window = OpenFirst();
    EXPECT_FALSE(window.okButton->isEnabled());
    EXPECT_EQ(window.description.Text(), "North");
    test::Type(window, "Text3", "Mine");
    test::Press(window.description, Qt::Key_Return);
    ASSERT_EQ(ui::FindForm("frmDivisionMaint"), &window);
    test::Click(window, "CancelButton");
  }
  EXPECT_EQ(ui::FindForm("frmDivisionMaint"), nullptr);
  other_.Leave();  // the other user still had its record
  EXPECT_EQ(Ask("Description", id), "North");
  auto& window = OpenFirst();
  EXPECT_TRUE(window.okButton->isEnabled());
}

TEST_F(PatternTest, AVanishedRecordOpensNoWindow) {
  const std::int32_t id = Division("N", "North");
  auto& list = List();
  fleet_.Run("DELETE * FROM [Divisions]");
  screen_->Expect("Internal Error. Unable to re-read Division #" + std::to_string(id) + "'s record.",
                  Icon::None);
  test::Press(list.Grid(), Qt::Key_Space);
  EXPECT_EQ(ui::FindForm("frmDivisionMaint"), nullptr);
  EXPECT_EQ(list.Grid().RecordCount(), 0) << "the list came forward and was read again";
}

TEST_F(PatternTest, AnEmptyListHasNothingToShowOrDelete) {
  auto& list = List();
  screen_->Expect(kNoRecords, Icon::None);
  screen_->Expect(kNoRecords, Icon::None);
  test::Press(list.Grid(), Qt::Key_Space);
  test::Press(list.Grid(), Qt::Key_Delete);
}

TEST_F(PatternTest, ADeleteAsksChecksAndSaysWhatIsGone) {
  const std::int32_t id = Division("N", "North");
  // Assets store the code, but the check looks for the number: only a code that equals the number prevents
  // the deletion.
  fleet_.AddAsset("TRK-1", 1, {{"Division ID", "N"}});
  auto& list = List();
  screen_->Expect(kSure, Icon::Question, Buttons::YesNo, Answer::No);
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(Rows(), "1");
  fleet_.Run("UPDATE [Vehicles] SET [Division ID] = '" + std::to_string(id) + "'");
  screen_->Expect("Cannot delete a division ID assigned inventory.", Icon::Exclamation);
  test::Press(list.Grid(), Qt::Key_Delete);
  fleet_.Run("DELETE * FROM [Vehicles]");
  screen_->Expect(kSure, Icon::Question, Buttons::YesNo, Answer::Yes);
  screen_->Expect("That ID is no longer on file.", Icon::Exclamation);
  screen_->onBox = [&](const screen::Box& box) {
    if (box.text == kSure) fleet_.Run("DELETE * FROM [Divisions]");
  };
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(list.Grid().RecordCount(), 1) << "the list is not read again";
  screen_->onBox = {};
  Division("S", "South");
  list.RefreshList();
  screen_->Expect(kSure, Icon::Question, Buttons::YesNo, Answer::Yes);
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(Rows(), "0");
  EXPECT_EQ(list.Grid().RecordCount(), 0);
}

TEST_F(PatternTest, ARecordThatIsOpenInItsWindowStays) {
  Division("N", "North");
  auto& list = List();
  test::Press(list.Grid(), Qt::Key_Space);
  test::Open("frmDivisionMaint");
  list.ShowForm();
  test::Settle();
  screen_->onSleep = [](int) { throw std::runtime_error("it waits"); };
  screen_->Expect(kSure, Icon::Question, Buttons::YesNo, Answer::Yes);
  screen_->Expect("This record is open in another window of this program. Close that window and try again.",
                  Icon::Exclamation);
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(Rows(), "1");
}

TEST_F(PatternTest, AMissingFileIsAskedForOnceAndTheListIsThere) {
  Division("N", "North");
  const std::filesystem::path home = std::filesystem::path(fleet_.Path()).parent_path();
  const std::filesystem::path away = home.string() + ".away";
  int asked = 0;
  dw::InstallFileLocator([&](const std::string& name) {
    EXPECT_EQ(name, "DW.MDB");
    ++asked;
    // The directory has a new name, which the user finds.
    dw::SetDataPath(away.string());
  });
  std::filesystem::rename(home, away);
  auto& list = List();
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(list.Grid().RecordCount(), 1);

  // The directory moves again while the list is closed.
  list.Unload();
  test::Settle();
  dw::InstallFileLocator([&](const std::string&) {
    ++asked;
    dw::SetDataPath(home.string());
  });
  std::filesystem::rename(away, home);
  auto& again = List();
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(again.Grid().CellText(1), "N");
  dw::InstallFileLocator({});
}

TEST_F(PatternTest, AClassInUseStays) {
  fleet_.Add("Inventory Classes", {{"Class ID", "PKUP"}, {"Description", "Pickups"}});
  fleet_.AddAsset("TRK-1", 1, {{"Class ID", "PKUP"}});
  auto& list = ui::The<dw::frmClassList>();
  list.ShowForm();
  test::Settle();
  screen_->Expect("This class is being used by assets. Cannot remove.", Icon::Exclamation);
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(Rows("Inventory Classes"), "1");
  test::Press(list.Grid(), Qt::Key_Space);
  auto& window = test::Open("frmClassMaint");
  auto& assets = test::Find<ui::DataGrid>(window, "grdInventory");
  EXPECT_EQ(assets.RecordCount(), 1);
  test::Type(window, "Text2", "");
  test::Click(window, "OKButton");
  EXPECT_EQ(fleet_.Ask("SELECT [Class ID] FROM [Inventory Classes]"), "") << "a class may have no code";
}

TEST_F(PatternTest, TheInnerGridFollowsTheStoredCodeAndOtherWindows) {
  Division("O'N", "North");
  fleet_.AddAsset("TRK-1", 1, {{"Division ID", "O'N"}});
  auto& window = OpenFirst();
  auto& assets = test::Find<ui::DataGrid>(window, "grdInventory");
  EXPECT_EQ(assets.RecordCount(), 1);
  fleet_.AddAsset("TRK-2", 1, {{"Division ID", "O'N"}});
  test::Type(window, "Text2", "OTHER");
  ui::Existing<dw::frmDivisionList>()->ShowForm();
  window.ShowForm();
  EXPECT_EQ(assets.RecordCount(), 2);
}

TEST_F(PatternTest, AMinimizedListIsNotReadAndAClosedOneComesBackFresh) {
  Division("N", "North");
  auto& list = List();
  auto& window = OpenFirst();
  Division("S", "South");
  list.showMinimized();
  window.Cancel();
  test::Settle();
  EXPECT_EQ(list.Grid().RecordCount(), 1);
  list.CurrentRow = 7;
  list.showNormal();
  test::Click(list, "CloseButton");
  EXPECT_EQ(ui::Existing<dw::frmDivisionList>(), nullptr);
  EXPECT_EQ(List().CurrentRow, 0);
  EXPECT_EQ(ui::Existing<dw::frmDivisionList>()->Grid().RecordCount(), 2);
}

}  // namespace
