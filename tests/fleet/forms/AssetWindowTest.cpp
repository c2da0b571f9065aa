#include <gtest/gtest.h>

#include <QImage>
#include <QTabBar>

#include "costing/CostCheck.h"
#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "fleet/forms/frmInventoryMaint.h"
#include "platform/runtime/Clock.h"
#include "reports/forms/DateRangeForm.h"
#include "support/OtherUser.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"
#include "support/desktop/FormDriver.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kNoAsset = "Unable to find asset to report.\r\nThis should never happen.";
constexpr const char* kNoCode = "You must assign a unique Asset ID to this entry.";

class AssetWindowTest : public testing::Test {
 protected:
  AssetWindowTest() {
    dw::CurrentUserName = "Clerk";
    fleet_.Add("Parameters", {{"ID", 1}, {"Internal_Fuel_Available", true}});
    fleet_.Add("Fuel Types", {{"Description", "Unleaded"}});
    fleet_.Add("Divisions", {{"Division ID", "N"}, {"Description", "North"}});
  }
  dw::frmInventoryMaint& Open(std::int32_t id, bool add = false) {
    auto& window = ui::The<dw::frmInventoryMaint>();
    window.LoadForm();
    window.DataID = id;
    window.AddMode = add;
    window.ShowForm();
    test::Settle();
    return window;
  }
  dw::frmInventoryMaint& OpenNew() {
    screen_->Expect(kNoAsset, Icon::Information);
    return Open(-1, true);
  }
  std::string Ask(const std::string& column, std::int32_t id) {
    return fleet_.Ask("SELECT [" + column + "] FROM [Vehicles] WHERE [ID] = " + std::to_string(id));
  }
  /// Whether another user could change the record now.
  bool Free(std::int32_t id) {
    try {
      fleet_.Run("UPDATE [Vehicles] SET [Location ID] = 'X' WHERE [ID] = " + std::to_string(id));
      return true;
    } catch (const store::StoreError& error) {
      EXPECT_EQ(error.Number(), 3260);
      return false;
    }
  }
  std::string Pictures() {
    return fleet_.Ask("SELECT COUNT(*) FROM [Vehicles] WHERE [Photograph] IS NOT NULL");
  }
  void Post() {
    screen_->Expect("Posting is Complete.", Icon::Information);
    dw::RunPosting(false, {});
  }
  /// Whether the cost tables equal the sums of the posted transactions.
  static bool InStep() {
    return dw::CheckCosts(*store::Connection::Open({.path = dw::DataFile, .readOnly = true})).empty();
  }
  void ShowPage(dw::frmInventoryMaint& window, int page) {
    window.pages.setCurrentIndex(page);
    test::Settle();
  }

  test::OtherUser other_;
  test::SmallFleet fleet_;
  rt::FixedClock clock_{rt::DateTime(2026, 3, 1, 14, 5, 9)};
  test::ScreenScript screen_;
  test::FormsEnd end_;
};

TEST_F(AssetWindowTest, AnAddedAssetIsStoredWithItsDatesAndCodes) {
  auto& window = OpenNew();
  EXPECT_EQ(window.windowTitle(), "Detail for New Asset");
  const std::int32_t id = window.DataID;
  EXPECT_EQ(Ask("Asset ID", id), "Null");
  EXPECT_EQ(window.dueUsage.Text(), "0");
  EXPECT_EQ(window.dueBy.Text(), "3/15/2026");

  screen_->Expect(kNoCode, Icon::Information);
  test::Click(window, "OKButton");
  EXPECT_TRUE(window.assetCode.hasFocus());
  test::Type(window, "AssetText", "trk-9");
  test::Type(window, "Text9", "Dump truck");
  test::Type(window, "Text14", "2x0y19");
  test::Type(window, "Text16", "2/28/2019");
  test::Type(window, "Text1", "$41,250.50");
  window.division.Choose("N");
  window.fuelType.Choose(1);
  test::Click(window, "OKButton");
  ASSERT_EQ(ui::FindForm("frmInventoryMaint"), nullptr);
  EXPECT_EQ(Ask("Asset ID", id), "TRK-9");
  EXPECT_EQ(Ask("Model Year", id), "2019");
  EXPECT_EQ(Ask("Purchase Date", id), "2/28/2019");
  EXPECT_EQ(Ask("Replacement Date", id), "Null");
  EXPECT_EQ(Ask("Purchase Price", id), "41250.5");
  EXPECT_EQ(Ask("Division ID", id), "N");
  EXPECT_EQ(Ask("Fuel Type", id), "1");
  EXPECT_EQ(Ask("Notes", id), "Null");
  EXPECT_EQ(Ask("Created By", id), "Clerk");
  EXPECT_EQ(Ask("Updated By", id), "Null");
  EXPECT_TRUE(Free(id));
}

TEST_F(AssetWindowTest, ACanceledAddLeavesNothing) {
  auto& window = OpenNew();
  EXPECT_FALSE(Free(window.DataID));
  test::Type(window, "AssetText", "TRK-9");
  test::Click(window, "CancelButton");
  EXPECT_EQ(fleet_.Ask("SELECT COUNT(*) FROM [Vehicles]"), "0");
}

TEST_F(AssetWindowTest, AnAssetThatCannotBeStoredKeepsItsWindowItsRecordAndWhatWasTyped) {
  fleet_.AddAsset("TRK-1");
  auto& window = OpenNew();
  test::Type(window, "AssetText", "trk-1");
  test::Type(window, "Text16", "2/28/2019");
  screen_->ExpectPart("Contact your System Administrator about performing this function.", Icon::Information,
                      Buttons::OkCancel, Answer::Cancel);
  test::Press(window.assetCode, Qt::Key_Return);
  ASSERT_EQ(ui::FindForm("frmInventoryMaint"), &window);
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
  EXPECT_FALSE(Free(window.DataID));
  test::Type(window, "AssetText", "TRK-2");
  const std::int32_t id = window.DataID;
  test::Click(window, "OKButton");
  EXPECT_EQ(Ask("Asset ID", id), "TRK-2");
  EXPECT_EQ(Ask("Purchase Date", id), "2/28/2019");
  EXPECT_EQ(Ask("Created By", id), "Clerk");
}

TEST_F(AssetWindowTest, ABlankCodeGetsNoChildren) {
  auto& window = OpenNew();
  const std::string words = "You cannot add maintenance items until you assign an Asset ID.";
  screen_->Expect(words, Icon::Exclamation);
  ShowPage(window, 1);
  test::Press(window.transactionGrid, Qt::Key_Insert);
  screen_->Expect(words, Icon::Exclamation);
  ShowPage(window, 4);
  test::Press(window.readingGrid, Qt::Key_Insert);
  screen_->Expect(kNoCode, Icon::Information);
  ShowPage(window, 2);
  test::Press(window.scheduleGrid, Qt::Key_Insert);
  EXPECT_EQ(ui::Forms().size(), 1U);
}

TEST_F(AssetWindowTest, AChildSavesTheAssetAndCancelUndoesOnlyWhatCameLater) {
  const std::int32_t id = fleet_.AddAsset("TRK-1", 1, {{"Description", "Old"}});
  auto& window = Open(id);
  EXPECT_EQ(window.windowTitle(), "Detail for Asset ID TRK-1");
  EXPECT_FALSE(window.assetCode.isEnabled());
  test::Type(window, "Text9", "Saved");
  ShowPage(window, 4);
  test::Press(window.readingGrid, Qt::Key_Insert);
  auto& reading = test::Open("frmOdometerMaint");
  EXPECT_EQ(Ask("Description", id), "Saved");
  EXPECT_EQ(Ask("Updated By", id), "Clerk");
  EXPECT_TRUE(Free(id)) << "while a child window is open, others can change the asset";
  test::Type(reading, "Text8", "3/1/2026");
  test::Type(reading, "MaskedEdit1", "1200");
  test::Click(reading, "OKButton");
  ASSERT_EQ(ui::ActiveForm(), &window);
  EXPECT_EQ(window.readingGrid.RecordCount(), 1);
  EXPECT_EQ(window.location.Text(), "X") << "shows the changes that the other user has made meanwhile";
  EXPECT_NE(window.due.Text().find("Latest mileage on file is 1200 on 3/1/2026"), std::string::npos);
  EXPECT_FALSE(Free(id));
  test::Type(window, "Text9", "Never kept");
  test::Press(window.description, Qt::Key_Escape);
  EXPECT_EQ(Ask("Description", id), "Saved");
  EXPECT_TRUE(Free(id));
}

TEST_F(AssetWindowTest, AnAssetHeldElsewhereIsForReading) {
  const std::int32_t id = fleet_.AddAsset("TRK-1");
  other_.Hold(fleet_.Path(), "SELECT * FROM [Vehicles] WHERE [ID] = " + std::to_string(id));
  screen_->Expect(
      "This record is apparently being updated elsewhere. You will not be able to change any information at "
      "this "
      "time.",
      Icon::Information);
  screen_->ExpectPart("Current Computers In Use:", Icon::Information);
  auto& window = Open(id);
  EXPECT_FALSE(window.okButton->isEnabled());
  EXPECT_FALSE(window.description.isEnabled());
  EXPECT_FALSE(window.assetClass.isEnabled());
  EXPECT_FALSE(window.renameButton->isEnabled());
  EXPECT_TRUE(window.focusWidget() && window.focusWidget()->isEnabled());
  EXPECT_TRUE(window.transactionGrid.isEnabled());
  test::Click(window, "CancelButton");
  other_.Leave();
}

TEST_F(AssetWindowTest, PostedCostsHoldTheFuelTypeAndUnpostTakesTheWholeTable) {
  const std::int32_t id = fleet_.AddAsset("TRK-1");
  fleet_.AddAsset("TRK-2");
  const rt::Value posted(rt::DateTime(2026, 2, 1));
  fleet_.AddTransaction("TRK-1", 2026, 3);
  fleet_.AddTransaction("TRK-1", 2026, 3,
                        {{"When Posted", posted}, {"Internal Fuel Cost", test::Money(12.5)}});
  const std::int32_t others = fleet_.AddTransaction("TRK-2", 2026, 3, {{"When Posted", posted}});
  auto& window = Open(id);
  EXPECT_FALSE(window.fuelType.isEnabled());
  EXPECT_TRUE(window.unpostButton->isEnabled());
  EXPECT_EQ(window.transactionGrid.RecordCount(), 2);
  ShowPage(window, 1);
  test::Click(window, "chkNonFuelOnly");
  EXPECT_EQ(window.transactionGrid.RecordCount(), 1);
  test::Click(window, "chkNonFuelOnly");
  for (int row = 0; row < 2; ++row)
    for (const char* words :
         {"Could not find Asset Period Cost record.", "Could not find Asset Annual Cost record.",
          "Could not find Asset Lifetime Cost record.", "Could not find Fuel Annual Cost record.",
          "Could not find Fuel Annual Cost record."})
      screen_->Expect(words, Icon::Critical);
  EXPECT_FALSE(window.unpostButton->focusPolicy() & Qt::TabFocus) << "one Tab too many does not lead to it";
  EXPECT_NE(window.unpostButton->toolTip().indexOf("all assets"), -1);
  EXPECT_NE(window.unpostButton->accessibleDescription().indexOf("all assets"), -1);
  EXPECT_TRUE(screen_->Notices().empty());
  test::Click(window, "cmdUnpost");
  EXPECT_FALSE(screen_->Notices().empty());
  EXPECT_EQ(fleet_.OfTransaction(others, "When Posted"), "Null");
  EXPECT_FALSE(window.unpostButton->isEnabled());
  EXPECT_TRUE(window.fuelType.isEnabled());
}

TEST_F(AssetWindowTest, ARenameReachesTheReadingsAndTakesTheRecordAgain) {
  const std::int32_t id = fleet_.AddAsset("TRK-1");
  fleet_.AddAsset("TRK-2");
  fleet_.Add("Odometer Entries", {{"Asset ID", "TRK-1"}, {"Mileage", 10.0F}});
  auto& window = Open(id);
  screen_->ExpectInput("Enter New Asset ID:", "trk-2");
  screen_->Expect("The new Asset ID is already in use.", Icon::Information);
  test::Click(window, "cmdRename");
  EXPECT_FALSE(Free(id));
  screen_->ExpectInput("Enter New Asset ID:", "");
  screen_->Expect("Rename cancelled. No new ID given.", Icon::Information);
  test::Click(window, "cmdRename");
  screen_->ExpectInput("Enter New Asset ID:", "TRK-9");
  test::Click(window, "cmdRename");
  EXPECT_EQ(window.assetCode.Text(), "TRK-9");
  EXPECT_EQ(window.windowTitle(), "Detail for Asset ID TRK-9");
  EXPECT_EQ(window.readingGrid.RecordCount(), 1);
  EXPECT_FALSE(Free(id));
}

TEST_F(AssetWindowTest, TheSumsFollowARenameAnUnpostingAndTheNextPosting) {
  const std::int32_t id = fleet_.AddAsset("TRK-1");
  fleet_.AddAsset("TRK-2");
  const test::Row costs{{"Outside Cost", test::Money(7)},
                        {"Internal Fuel Units", 10.5F},
                        {"Internal Fuel Cost", test::Money(31.25)}};
  const std::int32_t transaction = fleet_.AddTransaction("TRK-1", 2026, 3, costs);
  fleet_.AddTransaction("TRK-2", 2026, 2, costs);
  const auto sum = [this](const char* asset) {
    return fleet_.Sum("Assets Period Costs", {asset, 2026, 3}, "Outside Parts Cost");
  };
  Post();
  auto& window = Open(id);
  screen_->ExpectInput("Enter New Asset ID:", "TRK-9");
  test::Click(window, "cmdRename");
  EXPECT_TRUE(InStep());
  EXPECT_EQ(sum("TRK-9"), "7");
  test::Click(window, "cmdUnpost");
  EXPECT_TRUE(InStep());
  EXPECT_EQ(sum("TRK-9"), "0");
  EXPECT_EQ(fleet_.OfTransaction(transaction, "When Posted"), "Null");
  Post();
  EXPECT_TRUE(InStep());
  EXPECT_EQ(sum("TRK-9"), "7");
  EXPECT_EQ(fleet_.Sum("Fuel Annual Costs", {1, 2026}, "Internal Cost"), "62.5");
}

TEST_F(AssetWindowTest, AllPagesAreReachedByKeys) {
  auto& window = Open(fleet_.AddAsset("TRK-1"));
  const auto press = [&](Qt::Key key, Qt::KeyboardModifiers with) {
    QTest::keyClick(window.focusWidget(), key, with);
    test::Settle();
    return window.focusWidget();
  };
  test::Enter(window, "Text9");
  EXPECT_EQ(press(Qt::Key_PageDown, Qt::ControlModifier), &window.transactionGrid);
  EXPECT_EQ(window.pages.currentIndex(), 1);
  EXPECT_EQ(press(Qt::Key_Tab, {}), window.okButton) << "not into the pages behind";
  test::Enter(window, "grdMaintenance");
  EXPECT_EQ(press(Qt::Key_PageDown, Qt::ControlModifier), &window.scheduleGrid);
  EXPECT_EQ(press(Qt::Key_Tab, Qt::ControlModifier), &window.notes);
  EXPECT_EQ(press(Qt::Key_PageDown, Qt::ControlModifier), &window.readingGrid);
  EXPECT_EQ(press(Qt::Key_PageDown, Qt::ControlModifier), &window.due);
  EXPECT_EQ(window.pages.currentIndex(), 0);
  EXPECT_EQ(press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier), &window.readingGrid);

  // Turning a page leaves a field as the Tab key does.
  press(Qt::Key_Tab, Qt::ControlModifier);
  test::Type(window, "txtDueBy", "soon");
  screen_->Expect("That is not a valid date. Please try again.", Icon::Exclamation);
  EXPECT_EQ(press(Qt::Key_PageDown, Qt::ControlModifier), &window.dueBy);
  EXPECT_EQ(window.pages.currentIndex(), 0);
}

TEST_F(AssetWindowTest, GridsAndNotesKeepTheirPlace) {
  const std::int32_t id = fleet_.AddAsset("TRK-1");
  for (int mile = 9; mile > 0; --mile)
    fleet_.Add("Odometer Entries", {{"Asset ID", "TRK-1"}, {"Mileage", static_cast<float>(mile)}});
  auto& window = Open(id);
  ShowPage(window, 4);
  window.readingGrid.SetRow(6);
  test::Press(window.readingGrid, Qt::Key_Space);
  test::Click(test::Open("frmOdometerMaint"), "CancelButton");
  ASSERT_EQ(ui::ActiveForm(), &window);
  EXPECT_EQ(window.readingGrid.Row(), 6);
  EXPECT_EQ(window.pages.currentIndex(), 0);
  ShowPage(window, 4);
  screen_->Expect("Are you sure you want to remove this entry?", Icon::Question, Buttons::YesNo, Answer::Yes);
  test::Press(window.readingGrid, Qt::Key_Delete);
  EXPECT_EQ(window.readingGrid.CellText(1), "2.0");
  ShowPage(window, 3);
  test::Enter(window, "Text8");
  screen_->ExpectInput("Enter New Asset ID:", "TRK-9");
  window.renameButton->click();
  test::Settle();
  EXPECT_TRUE(window.notes.hasFocus());
}

TEST_F(AssetWindowTest, CodesThatNoListOffersStay) {
  const std::int32_t id = fleet_.AddAsset("TRK-1", 77, {{"Division ID", "OLD"}, {"Class ID", "old"}});
  auto& window = Open(id);
  test::Type(window, "Text9", "Truck");
  test::Enter(window, "dcDivisions");
  test::Enter(window, "dcClasses");
  test::Click(window, "OKButton");
  EXPECT_EQ(Ask("Description", id), "Truck");
  EXPECT_EQ(Ask("Division ID", id), "OLD");
  EXPECT_EQ(Ask("Class ID", id), "old");
  EXPECT_EQ(Ask("Fuel Type", id), "77");
}

TEST_F(AssetWindowTest, TheEndOfTheProgramLetsGoOfTheRecord) {
  const std::int32_t id = fleet_.AddAsset("TRK-1", 1, {{"Description", "Old"}});
  auto& window = Open(id);
  test::Type(window, "Text9", "Never kept");
  EXPECT_FALSE(Free(id));
  window.Unload();
  EXPECT_EQ(Ask("Description", id), "Old");
  EXPECT_TRUE(Free(id));
}

TEST_F(AssetWindowTest, ADateThatIsNoneKeepsTheFocusButNotAnybodyFromCancel) {
  auto& window = Open(fleet_.AddAsset("TRK-1"));
  test::Type(window, "Text3", "soon");
  screen_->Expect("That is not a valid date. Please try again.", Icon::Exclamation);
  QTest::keyClick(&window.entryDate, Qt::Key_Tab);
  test::Settle();
  EXPECT_TRUE(window.entryDate.hasFocus());
  screen_->Expect("That is not a valid date. Please try again.", Icon::Exclamation);
  test::Press(window.entryDate, Qt::Key_Return);
  ASSERT_EQ(ui::FindForm("frmInventoryMaint"), &window);
  test::Click(window, "CancelButton");
  EXPECT_EQ(ui::FindForm("frmInventoryMaint"), nullptr);
}

TEST_F(AssetWindowTest, APictureComesInAndGoesOut) {
  const std::int32_t id = fleet_.AddAsset("TRK-1");
  const std::string path = fleet_.Path("truck.bmp");
  QImage truck(40, 30, QImage::Format_RGB32);
  truck.fill(Qt::red);
  ASSERT_TRUE(truck.save(QString::fromStdString(path)));
  auto& window = Open(id);
  EXPECT_EQ(window.pictureButtons[1]->text(), "&Add Photo");
  EXPECT_FALSE(window.pictureButtons[0]->isEnabled());

  test::Click(window, "cmdPicture(1)");
  auto& picker = test::Open("frmGetPictureFile");
  window.SetPhoto(path);
  picker.Unload();
  test::Settle();
  EXPECT_EQ(window.pictureButtons[1]->text(), "&Update Photo");
  EXPECT_EQ(Pictures(), "1") << "stored at once, with the record";
  EXPECT_EQ(window.Photo(), "");
  test::Click(window, "cmdPicture(0)");
  test::Open("frmAssetPicture").Unload();
  test::Settle();
  window.SetRemovePhoto(true);
  test::Click(window, "cmdPicture(1)");
  test::Open("frmGetPictureFile").Unload();
  test::Settle();
  EXPECT_EQ(window.pictureButtons[1]->text(), "&Add Photo");
  EXPECT_EQ(Pictures(), "1") << "until OK";
  test::Click(window, "OKButton");
  EXPECT_EQ(Pictures(), "0");
}

TEST_F(AssetWindowTest, PrintSavesTheAssetAndAsksForTheDatesOfItsCosts) {
  const std::int32_t id = fleet_.AddAsset("TRK-1");
  auto& window = Open(id);
  test::Type(window, "Text9", "Grader");
  ShowPage(window, 1);
  test::Click(window, "cmdPrint");
  auto& dates = dynamic_cast<dw::frmRptDWR006&>(test::Open("frmRptDWR006"));
  EXPECT_EQ(dates.AssetID, "TRK-1");
  EXPECT_EQ(Ask("Description", id), "Grader");
  EXPECT_TRUE(Free(id)) << "saved and released";
  test::Click(dates, "cmdCancel");
  EXPECT_EQ(ui::ActiveForm(), &window);
  EXPECT_FALSE(Free(id)) << "taken again";

  test::Type(window, "Text14", "");
  screen_->Expect(kNoCode, Icon::Information);
  window.assetCode.SetText("");
  test::Click(window, "cmdPrint");
  EXPECT_FALSE(ui::FindForm("frmRptDWR006"));
  window.assetCode.SetText("TRK-1");
}

TEST_F(AssetWindowTest, TheKeyOfPrintAndUnpostPressesNeither) {
  const std::int32_t id = fleet_.AddAsset("TRK-1");
  fleet_.AddTransaction("TRK-1", 2026, 3);
  Post();
  auto& window = Open(id);
  ASSERT_TRUE(window.unpostButton->isEnabled());
  ASSERT_TRUE(window.printButton->text().contains("&P") && window.unpostButton->text().contains("&p"));
  for (int i = 0; i < 2; ++i) {
    QTest::keyClick(&window, Qt::Key_P, Qt::AltModifier);
    test::Settle();
    EXPECT_EQ(window.focusWidget(), window.printButton) << "its page comes forward";
    QTest::keyClick(&window, Qt::Key_P, Qt::AltModifier);
    test::Settle();
    EXPECT_EQ(window.focusWidget(), window.unpostButton);
  }
  EXPECT_FALSE(ui::FindForm("frmRptDWR006"));
  EXPECT_EQ(fleet_.Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] IS NULL"), "0");
}

}  // namespace
