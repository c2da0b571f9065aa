// Odometer readings: the list and the window.
#include "fleet/forms/frmOdometerList.h"
#include "fleet/forms/frmOdometerMaint.h"
#include "support/desktop/ListTest.h"

namespace {

using dw::frmOdometerList;
using dw::frmOdometerMaint;
using screen::Answer;
using screen::Icon;

class OdometerTest : public test::ListTest {};

TEST_F(OdometerTest, AReadingIsAddedToAnAssetThatIsChosenByItsSerialNumber) {
  fleet_.AddAsset("TRK-2", 1, {{"VIN/Serial Number", "V222"}, {"Description", "B"}, {"Model Year", "2020"}});
  fleet_.AddAsset("TRK-1", 1, {{"VIN/Serial Number", "V111"}, {"Description", "C"}});
  fleet_.Add("Odometer Entries", {{"Asset ID", "TRK-2"}, {"Mileage", 90000}});
  {
    auto& window = Add<frmOdometerMaint, frmOdometerList>();
    EXPECT_TRUE(window.asset.hasFocus());
    EXPECT_EQ(window.asset.itemText(0), "V222") << "by description";
    QTest::keyClicks(&window.asset, "v2");
    Fill(window, {{"Text8", "3/1/26"}, {"MaskedEdit1", "k1234.56"}}, "OKButton");
  }
  EXPECT_EQ(OpenList<frmOdometerList>().Grid().RecordCount(), 2);
  EXPECT_EQ(Shown<frmOdometerList>(8), "TRK-2|B|V222|2020|1234.6|3/1/2026||TESTER")
      << "a lower mileage than before is accepted";
  {
    auto& window = Show<frmOdometerMaint, frmOdometerList>(1);
    EXPECT_EQ(window.AssetID, "TRK-2");
    EXPECT_FALSE(window.asset.isEnabled());
    EXPECT_EQ(window.asset.Text(), "V222");
    Fill(window, {{"Text8", "2/1/2026"}, {"MaskedEdit1", "90001"}}, "OKButton");
  }
  ExpectSure(Answer::Yes);
  PressDelete<frmOdometerList>();
  EXPECT_EQ(Shown<frmOdometerList>(6), "TRK-2|B|V222|2020|90001.0|2/1/2026") << "the lower one has gone";
  ExpectSure(Answer::Yes);
  screen_->Expect("That ID is no longer on file.", Icon::Exclamation);
  screen_->onBox = [&](const screen::Box& box) {
    if (box.icon == Icon::Question) fleet_.Run("DELETE * FROM [Odometer Entries]");
  };
  PressDelete<frmOdometerList>();
}

TEST_F(OdometerTest, AReadingThatIsOpenInItsWindowStays) {
  fleet_.AddAsset("TRK-1");
  fleet_.Add("Odometer Entries", {{"Asset ID", "TRK-1"}, {"Date", rt::Today()}, {"Mileage", 10}});
  screen_->onSleep = [](int) { throw std::runtime_error("it waits"); };
  auto& window = Show<frmOdometerMaint, frmOdometerList>();
  ExpectSure(Answer::Yes);
  screen_->Expect(kOwnWindow, Icon::Exclamation);
  PressDelete<frmOdometerList>();
  EXPECT_EQ(Count("Odometer Entries"), "1");
  // The window has lost nothing.
  Fill(window, {{"MaskedEdit1", "11"}}, "OKButton");
  EXPECT_EQ(Only("Odometer Entries", "Mileage"), "11");
  ExpectSure(Answer::Yes);
  PressDelete<frmOdometerList>();
  EXPECT_EQ(Count("Odometer Entries"), "0");
}

TEST_F(OdometerTest, WithoutAssetsNothingOpens) {
  fleet_.Add("Odometer Entries", {{"Asset ID", "GONE"}});
  for (const Qt::Key key : {Qt::Key_Insert, Qt::Key_Space}) {
    screen_->Expect("You must first define some Assets.", Icon::Exclamation);
    test::Press(OpenList<frmOdometerList>().Grid(), key);
  }
  EXPECT_EQ(ui::FindForm("frmOdometerMaint"), nullptr);
  fleet_.AddAsset("TRK-1");
  ExpectVanished<frmOdometerList>("Odometer Entries", "Odometer #", {{"Asset ID", "AAA"}});
}

TEST_F(OdometerTest, AReadingNeedsADateAndAMileageAndCancelLeavesNothing) {
  fleet_.AddAsset("O'NEILL", 1, {{"VIN/Serial Number", "V1"}});
  {
    auto& window = Add<frmOdometerMaint, frmOdometerList>();
    screen_->Expect(kDateRequired, Icon::Critical);
    test::Click(window, "OKButton");
    EXPECT_TRUE(window.date.hasFocus());
    screen_->Expect("You forgot to fill in the mileage.", Icon::Critical);
    Fill(window, {{"Text8", "3/1/2026"}}, "OKButton");
    EXPECT_TRUE(window.mileage.hasFocus());
    screen_->Expect("The mileage is not numeric. Please check.", Icon::Critical);
    Fill(window, {{"MaskedEdit1", "1.2.3"}}, "OKButton");
    EXPECT_TRUE(window.mileage.hasFocus());
    // A wrong date does not keep a user from Cancel.
    Fill(window, {{"Text8", "never"}}, "CancelButton");
  }
  EXPECT_EQ(Count("Odometer Entries"), "0");
  Fill(Add<frmOdometerMaint, frmOdometerList>(), {{"Text8", "3/1/2026"}, {"MaskedEdit1", "7"}}, "OKButton");
  EXPECT_EQ(Only("Odometer Entries", "Asset ID"), "") << "a reading of no asset";
  auto& window = Show<frmOdometerMaint, frmOdometerList>();
  test::Press(window.asset, Qt::Key_V);
  test::Click(window, "OKButton");
  EXPECT_EQ(Only("Odometer Entries", "Asset ID"), "O'NEILL") << "can still be given one";
  EXPECT_EQ((Show<frmOdometerMaint, frmOdometerList>().asset.Text()), "V1");
}

}  // namespace
