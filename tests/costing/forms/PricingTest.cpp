// Prices of labor, oil and fuel, and the fuel types: their lists and windows.
#include "costing/forms/frmFuelPriceLogMaint.h"
#include "costing/forms/frmFuelTypeMaint.h"
#include "costing/forms/frmFuelTypesList.h"
#include "costing/forms/frmPriceLogList.h"
#include "costing/forms/frmPricingList.h"
#include "costing/forms/frmPricingMaint.h"
#include "support/desktop/ListTest.h"

namespace {

using dw::frmFuelPriceLogMaint;
using dw::frmFuelTypeMaint;
using dw::frmFuelTypesList;
using dw::frmPriceLogList;
using dw::frmPricingList;
using dw::frmPricingMaint;
using screen::Answer;
using screen::Icon;

class PricingTest : public test::ListTest {};

TEST_F(PricingTest, PricesAreAddedChangedAndDeleted) {
  Fill(Add<frmPricingMaint, frmPricingList>(),
       {{"Text2", "1/5/26"}, {"MaskEdBox6", "x2.125"}, {"MaskEdBox1", "1042.5"}}, "OkButton");
  EXPECT_EQ(Shown<frmPricingList>(3), "1/5/2026|$1,042.50|2.125");
  Fill(Show<frmPricingMaint, frmPricingList>(), {{"MaskEdBox6", ""}, {"MaskEdBox1", ""}}, "OkButton");
  EXPECT_EQ(Only("Internal Pricing Log", "Oil Price"), "Null");
  EXPECT_EQ(Only("Internal Pricing Log", "Updated By"), "TESTER");
  Fill(Add<frmPricingMaint, frmPricingList>(), {{"Text2", "1/5/2026"}}, "OkButton");
  EXPECT_EQ(Count("Internal Pricing Log"), "2") << "two prices from one date on";
  ExpectSure(Answer::Yes);
  PressDelete<frmPricingList>();
  EXPECT_EQ(Count("Internal Pricing Log"), "1");
}

TEST_F(PricingTest, APriceThatIsNoneAndADateThatIsNoneKeepTheWindow) {
  auto& window = Add<frmPricingMaint, frmPricingList>();
  screen_->Expect(kDateRequired, Icon::Critical);
  test::Click(window, "CancelButton");
  EXPECT_TRUE(window.effectiveDate.hasFocus()) << "not even the mouse on Cancel leaves an empty date";
  Fill(window, {{"Text2", "1/5/2026"}, {"MaskEdBox1", "."}, {"MaskEdBox6", "1.2.3"}});
  screen_->Expect("Oil price is not numeric. Please check.", Icon::Critical);
  test::Click(window, "OkButton");
  EXPECT_TRUE(window.oilPrice.hasFocus());
  screen_->Expect("Hourly labor price is not numeric. Please check.", Icon::Critical);
  Fill(window, {{"MaskEdBox6", "2"}}, "OkButton");
  EXPECT_TRUE(window.hourlyRate.hasFocus());
  EXPECT_EQ(Only("Internal Pricing Log", "Effective Date"), "Null") << "nothing is stored yet";
  test::Click(window, "CancelButton");
  EXPECT_EQ(Count("Internal Pricing Log"), "0");
}

TEST_F(PricingTest, FuelPricesAreLoggedByTypeAndDate) {
  const std::string log = "Internal Fuel Pricing Log";
  const std::int32_t gas = fleet_.Add("Fuel Types", {{"Description", "Unleaded"}});
  fleet_.Add("Fuel Types", {{"Description", "Diesel"}});
  {
    auto& window = Add<frmFuelPriceLogMaint, frmPriceLogList>();
    EXPECT_EQ(window.windowTitle(), "New Log Detail");
    EXPECT_EQ(window.fuelType.itemText(0), "Diesel");
    EXPECT_TRUE(window.fuelType.hasFocus());
    test::Press(window.fuelType, Qt::Key_U);
    Fill(window, {{"Text1", "2/1/2026"}, {"MaskEdBox2", "3.4567"}}, "OkButton");
  }
  EXPECT_EQ(Only(log, "Fuel Type"), std::to_string(gas));
  EXPECT_EQ(Only(log, "Updated By"), "") << "empty, where other windows leave a Null";
  EXPECT_EQ(Only(log, "Last Updated"), "Null");
  EXPECT_EQ(Shown<frmPriceLogList>(5), "Unleaded|2/1/2026|3.4567||TESTER");
  {
    auto& window = Show<frmFuelPriceLogMaint, frmPriceLogList>();
    EXPECT_EQ(window.windowTitle(), "Log Detail for '01-Feb-26'");
    EXPECT_EQ(window.fuelType.Text(), "Unleaded");
    test::Press(window.fuelType, Qt::Key_Delete);
    Fill(window, {{"MaskEdBox2", ""}}, "OkButton");
  }
  EXPECT_EQ(Shown<frmPriceLogList>(3), "|2/1/2026|") << "a price without a fuel type is saved";
  screen_->Expect("Not Yet Implemented.", Icon::None);
  PressDelete<frmPriceLogList>();
  EXPECT_EQ(Count(log), "1");
}

TEST_F(PricingTest, TheDateOfAFuelPriceLetsCancelThrough) {
  auto& window = Add<frmFuelPriceLogMaint, frmPriceLogList>();
  Fill(window, {{"Text1", "13/13/2026"}});
  screen_->Expect(kNoDate, Icon::Exclamation);
  test::Enter(window, "MaskEdBox2");
  EXPECT_TRUE(window.effectiveDate.hasFocus());
  screen_->Expect("'13/13/2026' is not a date. Please check \"Effective Date\".", Icon::Critical);
  test::Press(window.effectiveDate, Qt::Key_Return);
  ASSERT_EQ(ui::ActiveForm(), &window) << "OK has no rule for the date, but cannot store it";
  test::Click(window, "CancelButton");
  EXPECT_EQ(Count("Internal Fuel Pricing Log"), "0");
}

TEST_F(PricingTest, AFuelTypeInUseByAnAssetStays) {
  Fill(Add<frmFuelTypeMaint, frmFuelTypesList>(), {{"Text1", "Diesel"}}, "OkButton");
  EXPECT_EQ(Shown<frmFuelTypesList>(4), "Diesel||TESTER|3/1/2026 2:05:00 PM");
  Fill(Show<frmFuelTypeMaint, frmFuelTypesList>(), {{"Text1", ""}}, "OkButton");
  EXPECT_EQ(Shown<frmFuelTypesList>(1), "") << "a blank description is accepted";
  const int id = std::stoi(Only("Fuel Types", "ID"));
  fleet_.Add("Internal Fuel Pricing Log", {{"Fuel Type", id}, {"Fuel Price", test::Money(3)}});
  fleet_.AddAsset("TRK-1", id, {{"No_Longer_In_Service", true}});
  screen_->Expect("This fuel type is being used by Assets. You cannot delete it.", Icon::Critical);
  PressDelete<frmFuelTypesList>();
  EXPECT_EQ(Count("Fuel Types"), "1");
  fleet_.Run("DELETE * FROM [Vehicles]");
  ExpectSure(Answer::Yes);
  PressDelete<frmFuelTypesList>();
  EXPECT_EQ(Count("Fuel Types"), "0") << "prices of it do not prevent the deletion";
}

TEST_F(PricingTest, VanishedRecordsAreNamedByEachWindow) {
  ExpectVanished<frmPricingList>("Internal Pricing Log", "Inventory #", {{"Notes", "x"}});
  ExpectVanished<frmPriceLogList>("Internal Fuel Pricing Log", "#", {{"Notes", "x"}});
  ExpectVanished<frmFuelTypesList>("Fuel Types", "Fuel Type #", {{"Notes", "x"}});
}

}  // namespace
