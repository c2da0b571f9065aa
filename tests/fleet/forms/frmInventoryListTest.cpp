// The list of assets: its rows, the windows that it opens, and the removal of an asset.
#include "fleet/forms/frmInventoryList.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "data/BrackenfelGlobals.h"
#include "fleet/forms/frmInventoryMaint.h"
#include "support/OtherUser.h"
#include "support/desktop/ListTest.h"
#include "support/desktop/Role.h"

namespace {

using dw::frmInventoryList;
using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kReadings = "The item has odometer entries. Continue?";
constexpr const char* kTransactions = "The item has maintenance entries. Continue?";
constexpr const char* kSure = "Are you sure you want to delete this record?";
constexpr const char* kOpenAlready = "That window is already open with another record.";

/// Made before the data files, so that it shares nothing with them.
struct BeforeTheFiles {
  test::OtherUser other_;
};

class frmInventoryListTest : private BeforeTheFiles, public test::ListTest {
 protected:
  frmInventoryListTest() {
    fleet_.Add("Divisions", {{"Division ID", "N"}, {"Description", "North"}});
    id_ = fleet_.AddAsset("TRK-1", 1,
                          {{"Description", "Truck"},
                           {"Division ID", "N"},
                           {"Purchase Price", test::Money(31250.5)},
                           {"Life Fuel Cost", test::Money(1234)},
                           {"No_Longer_In_Service", false}});
    fleet_.AddAsset("VAN-1", 1, {{"No_Longer_In_Service", true}});
    fleet_.Add("Odometer Entries", {{"Asset ID", "TRK-1"}});
    fleet_.AddTransaction("TRK-1", 2026, 3);
  }
  void Expect(const std::string& question, Answer answer) {
    screen_->Expect(question, question == kSure ? Icon::None : Icon::Question, Buttons::YesNo, answer);
  }
  frmInventoryList& List() { return OpenList<frmInventoryList>(); }

  using BeforeTheFiles::other_;
  std::int32_t id_ = 0;
};

TEST_F(frmInventoryListTest, ShowsAllAssetsOrThoseInService) {
  auto& list = List();
  EXPECT_EQ(list.windowTitle(), "Asset List");
  EXPECT_EQ(Shown<frmInventoryList>(4), "TRK-1|Truck||N");
  EXPECT_EQ(list.Grid().CellText(9), "$31,250.50");
  EXPECT_EQ(list.Grid().CellText(16), "$1,234.00");
  std::string captions;
  for (int column = 0; column < list.Grid().model()->columnCount(); ++column)
    captions += list.Grid().model()->headerData(column, Qt::Horizontal).toString().toStdString() + "|";
  EXPECT_EQ(captions,
            "ID|Asset ID|Description|VIN/Serial Number|Division|Location|Class|Entry Date|Purchase Date|"
            "Purchase Price|Replace Date|Fuel Type|Meter Type|Model Year|Life Maint Cost|Life Oper Cost|"
            "Life Fuel Cost|Life Usage Cost|Notes|Type|Secondary Asset ID|Created By|Date Created|Updated By|"
            "Last Updated|");

  EXPECT_EQ(list.Grid().RecordCount(), 2);
  test::Click(list, "chkInService");
  EXPECT_EQ(list.Grid().RecordCount(), 1);
  fleet_.AddAsset("CAR-1", 1, {{"No_Longer_In_Service", false}});
  list.RefreshList();
  EXPECT_EQ(Shown<frmInventoryList>(1), "CAR-1") << "by code, and still those in service";
  test::Click(list, "chkInService");
  EXPECT_EQ(list.Grid().RecordCount(), 3);
}

TEST_F(frmInventoryListTest, RemovesAnAssetAfterItsQuestions) {
  auto& list = List();
  Expect(kReadings, Answer::No);
  test::Press(list.Grid(), Qt::Key_Delete);
  const auto expectQuestions = [&](Answer last) {
    Expect(kReadings, Answer::Yes);
    Expect(kTransactions, Answer::Yes);
    Expect(kSure, last);
  };
  expectQuestions(Answer::No);
  fleet_.AddAsset("CAR-1");
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(list.Grid().RecordCount(), 2) << "a refusal leaves the list as it is";

  other_.Hold(fleet_.Path(), "SELECT * FROM [Odometer Entries]");
  expectQuestions(Answer::Yes);
  screen_->Expect("Unable to remove asset's odometer readings. Removal cancelled.", Icon::Information);
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(Count("Vehicles"), "3");
  EXPECT_EQ(list.Grid().RecordCount(), 3) << "after a rollback, the list is read again as well";
  other_.Leave();

  list.Grid().SetRow(1);
  expectQuestions(Answer::Yes);
  screen_->ExpectPart("WARNING: Accumulating rermoved Asset costs", Icon::Information);
  test::Press(list.Grid(), Qt::Key_Delete);
  EXPECT_EQ(list.Grid().RecordCount(), 2);
  EXPECT_EQ(fleet_.Ask("SELECT COUNT(*) FROM [Vehicles] WHERE [Asset ID] = 'TRK-1'"), "0");
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
}

TEST_F(frmInventoryListTest, AnAssetThatIsOpenInItsWindowStaysWithAllItsRows) {
  screen_->onSleep = [](int) { throw std::runtime_error("it waits"); };
  auto& window = Show<dw::frmInventoryMaint, frmInventoryList>();
  for (const char* question : {kReadings, kTransactions, kSure}) Expect(question, Answer::Yes);
  screen_->ExpectPart("WARNING: Accumulating rermoved Asset costs", Icon::Information);
  screen_->Expect(kOwnWindow, Icon::Exclamation);
  PressDelete<frmInventoryList>();
  EXPECT_EQ(Count("Vehicles"), "2");
  EXPECT_EQ(Count("Odometer Entries"), "1");
  test::Type(window, "Text9", "Kept");
  test::Click(window, "OKButton");
  EXPECT_EQ(fleet_.Ask("SELECT [Description] FROM [Vehicles] WHERE [Asset ID] = 'TRK-1'"), "Kept");
}

constexpr const char* kOtherData = "DROVEWRIGHT_TEST_DATA";

/// Another workstation with the window of the first asset open.
const test::Role kAssetHolder("asset holder", [] {
  dw::SetDataPath(std::getenv(kOtherData));
  auto& list = ui::The<frmInventoryList>();
  list.ShowForm();
  list.ShowDetail();
  test::Settle();
  if (ui::Existing<dw::frmInventoryMaint>()->Data().Recordset()->Cursor().Editing())
    std::cerr << "holds it" << std::endl;
  std::this_thread::sleep_for(std::chrono::minutes(1));
});

TEST_F(frmInventoryListTest, AnAssetWithItsWindowOpenElsewhereGoesWhenTheWindowDoes) {
  setenv(kOtherData, dw::DataPath.c_str(), 1);
  const auto holder = test::Role::Start("asset holder");
  ASSERT_TRUE(holder->WaitForError("holds it"));
  Expect(kReadings, Answer::Yes);
  Expect(kTransactions, Answer::Yes);
  Expect(kSure, Answer::Yes);
  screen_->ExpectPart("WARNING: Accumulating rermoved Asset costs", Icon::Information);
  bool alive = true;
  screen_->onSleep = [&](int) {
    if (!std::exchange(alive, false)) return;
    EXPECT_EQ(Count("Odometer Entries"), "1") << "nothing is deleted while the removal waits";
    EXPECT_EQ(Count("Vehicles"), "2");
    holder->Signal(SIGKILL);
    holder->Join();
  };
  PressDelete<frmInventoryList>();
  EXPECT_EQ(screen_->SleepCount(), 1);
  EXPECT_EQ(Count("Odometer Entries"), "0");
  EXPECT_EQ(Count("Vehicles"), "1");
}

TEST_F(frmInventoryListTest, AWindowMissesItsAssetWhenItComesBackFromAChild) {
  auto& window = Show<dw::frmInventoryMaint, frmInventoryList>();
  window.pages.setCurrentIndex(4);
  test::Press(window.readingGrid, Qt::Key_Insert);
  fleet_.Run("DELETE * FROM [Vehicles] WHERE [ID] = " + std::to_string(id_));
  screen_->Expect("Internal Error. Unable to re-read Inventory #" + std::to_string(id_) + "'s record.",
                  Icon::None);
  test::Click(test::Open("frmOdometerMaint"), "CancelButton");
  EXPECT_EQ(ui::ActiveForm(), ui::Existing<frmInventoryList>());
}

TEST_F(frmInventoryListTest, TheReservedAssetAndAnEmptyListRemoveNothing) {
  fleet_.Add("Parameters", {{"ID", 1}, {"Deleted Inventory ID", id_}});
  screen_->Expect("This ID is reserved for deleted assets.\rIt cannot be removed.", Icon::Information);
  PressDelete<frmInventoryList>();
  EXPECT_EQ(Count("Vehicles"), "2");
  fleet_.Run("DELETE * FROM [Vehicles]");
  List().RefreshList();
  for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Space}) {
    screen_->Expect("There are no records for which to display detail.", Icon::None);
    test::Press(List().Grid(), key);
  }
}

TEST_F(frmInventoryListTest, OneAssetIsOpenAtATime) {
  auto& window = Show<dw::frmInventoryMaint, frmInventoryList>();
  EXPECT_EQ(window.DataID, id_);
  EXPECT_FALSE(window.AddMode);
  auto& list = *ui::Existing<frmInventoryList>();
  screen_->Expect(kOpenAlready, Icon::Information);
  test::Press(list.Grid(), Qt::Key_Insert);
  list.Grid().SetRow(1);
  screen_->Expect(kOpenAlready, Icon::Information);
  test::Press(list.Grid(), Qt::Key_Space);
  EXPECT_EQ(window.DataID, id_);
  EXPECT_EQ(Count("Vehicles"), "2");
}

}  // namespace
