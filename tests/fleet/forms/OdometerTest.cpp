// Odometer readings: the list and the window.
#include "fleet/forms/frmOdometerList.h"
#include "fleet/forms/frmOdometerMaint.h"
#include "support/desktop/ListTest.h"

namespace {

using dw::frmOdometerList;
using dw::frmOdometerMaint;
using screen::Answer;
using screen::Icon;
using test::Type;

class OdometerTest : public test::ListTest {
 protected:
  void AddReading(const std::string& asset, double mileage) {
    fleet_.Add("Odometer Entries",
               {{"Asset ID", asset}, {"Mileage", mileage}, {"Date", rt::DateTime(2026, 2, 1)}});
  }
};

TEST_F(OdometerTest, AReadingIsAddedToAnAssetThatIsChosenByItsSerialNumber) {
  fleet_.AddAsset("TRK-2", 1, {{"VIN/Serial Number", "V222"}, {"Description", "B"}, {"Model Year", "2020"}});
  fleet_.AddAsset("TRK-1", 1, {{"VIN/Serial Number", "V111"}, {"Description", "C"}});
  AddReading("TRK-2", 90000);
  {
    auto& window = Add<frmOdometerMaint, frmOdometerList>();
    EXPECT_TRUE(window.AssetCombo.isEnabled());
    EXPECT_TRUE(window.AssetCombo.hasFocus());
    EXPECT_EQ(window.AssetCombo.itemText(0), "V222") << "by description";
    QTest::keyClicks(&window.AssetCombo, "v2");
    Type(window, "Text8", "3/1/26");
    Type(window, "MaskedEdit1", "k1234.56");
    test::Enter(window, "Text3");
    EXPECT_EQ(window.MaskedEdit1.text(), "1234.6");
    test::Click(window, "OKButton");
  }
  EXPECT_EQ(OpenList<frmOdometerList>().Grid().RecordCount(), 2);
  EXPECT_EQ(Shown<frmOdometerList>(8), "TRK-2|B|V222|2020|1234.6|3/1/2026||TESTER")
      << "a lower mileage than before is accepted";
  {
    auto& window = Show<frmOdometerMaint, frmOdometerList>(1);
    EXPECT_EQ(window.AssetID, "TRK-2");
    EXPECT_FALSE(window.AssetCombo.isEnabled());
    EXPECT_EQ(window.AssetCombo.Text(), "V222");
    Type(window, "MaskedEdit1", "90001");
    test::Click(window, "OKButton");
  }
  EXPECT_EQ(Shown<frmOdometerList>(8, 1), "TRK-2|B|V222|2020|90001.0|2/1/2026||");
  ExpectSure(Answer::Yes);
  PressDelete<frmOdometerList>();
  EXPECT_EQ(Only("Odometer Entries", "Mileage"), "90001");
  ExpectSure(Answer::Yes);
  screen_->Expect("That ID is no longer on file.", Icon::Exclamation);
  screen_->onBox = [&](const screen::Box& box) {
    if (box.icon == Icon::Question) fleet_.Run("DELETE * FROM [Odometer Entries]");
  };
  PressDelete<frmOdometerList>();
}

TEST_F(OdometerTest, WithoutAssetsNothingOpens) {
  AddReading("GONE", 5);
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
    EXPECT_EQ(Only("Odometer Entries", "Asset ID"), "");
    screen_->Expect(kDateRequired, Icon::Critical);
    test::Click(window, "OKButton");
    EXPECT_TRUE(window.Text8.hasFocus());
    screen_->Expect(kDateRequired, Icon::Critical);
    test::Enter(window, "MaskedEdit1");
    EXPECT_TRUE(window.Text8.hasFocus());
    Type(window, "Text8", "3/1/2026");
    screen_->Expect("You forgot to fill in the mileage.", Icon::Critical);
    test::Click(window, "OKButton");
    EXPECT_TRUE(window.MaskedEdit1.hasFocus());
    Type(window, "MaskedEdit1", "1.2.3");
    screen_->Expect("The mileage is not numeric. Please check.", Icon::Critical);
    test::Click(window, "OKButton");
    EXPECT_TRUE(window.MaskedEdit1.hasFocus());
    Type(window, "Text8", "never");
    test::Click(window, "CancelButton");
  }
  EXPECT_EQ(Count("Odometer Entries"), "0");
  {
    auto& window = Add<frmOdometerMaint, frmOdometerList>();
    Type(window, "Text8", "3/1/2026");
    Type(window, "MaskedEdit1", "7");
    test::Press(window.MaskedEdit1, Qt::Key_Return);
  }
  auto& window = Show<frmOdometerMaint, frmOdometerList>();
  EXPECT_TRUE(window.AssetCombo.isEnabled()) << "a reading of no asset can still be given one";
  window.Unload();
  test::Settle();
  fleet_.Run("UPDATE [Odometer Entries] SET [Asset ID] = 'O''NEILL'");
  EXPECT_EQ((Show<frmOdometerMaint, frmOdometerList>().AssetCombo.Text()), "V1");
}

}  // namespace
