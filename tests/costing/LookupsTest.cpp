#include "costing/Lookups.h"

#include <gtest/gtest.h>

#include "platform/runtime/RuntimeError.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using rt::DateTime;
using screen::Icon;
using test::Money;

TEST(Lookups, FuelHoldsFromItsDateAndLaborUpToIt) {
  test::SmallFleet fleet;
  test::ScreenScript script;
  for (const auto& [date, price] :
       {std::pair(DateTime(2026, 6, 1), 3.0), std::pair(DateTime(2026, 1, 1), 2.5)}) {
    fleet.Add("Internal Fuel Pricing Log",
              {{"Fuel Type", 2}, {"Effective Date", date}, {"Fuel Price", Money(price)}});
    fleet.Add(
        "Internal Pricing Log",
        {{"Effective Date", date}, {"Hourly Rate", Money(price * 10)}, {"Oil Price", Money(price * 2)}});
  }
  const char* noFuel =
      "You have no internal pricing set up for that type yet.\rGo to Options and click Internal Pricing "
      "button to set up.";
  const char* noLabor =
      "You have no internal pricing set up for labor yet.\r\nGo to Options and click Internal Pricing button "
      "to set up.";
  const char* noOil =
      "You have no internal pricing set up for labor yet.\rGo to Options and click Internal Pricing button "
      "to set up.";
  const auto fuel = [](const char* date, int type = 2) {
    return dw::GetInternalFuelCost(type, 10, date).PlainText();
  };
  const auto labor = [](const char* date) { return dw::GetLaborCost(2, date).PlainText(); };
  const auto oil = [](const char* date) { return dw::GetOilCost(2, date).PlainText(); };

  EXPECT_EQ(fuel("3/1/2026"), "25");
  EXPECT_EQ(fuel("6/1/2026"), "30");
  EXPECT_EQ(fuel("2026-12-31 23:00"), "30");
  EXPECT_EQ(labor("3/1/2026"), "60");
  EXPECT_EQ(oil("3/1/2026"), "12");
  EXPECT_EQ(labor("6/1/2026 14:30"), "60");  // the time of day does not count
  // Both rows match: the one that was entered first counts, here the one with the later date.
  EXPECT_EQ(labor("12/31/2025"), "60");
  EXPECT_EQ(dw::GetOilCost(0, "3/1/2026").PlainText(), "0");

  script->Expect(noFuel, Icon::Critical);
  EXPECT_EQ(fuel("12/31/2025"), "0");
  script->Expect(noFuel, Icon::Critical);
  EXPECT_EQ(fuel("3/1/2026", 1), "0");
  script->Expect(noLabor, Icon::Critical);
  EXPECT_EQ(labor("7/1/2026"), "0");
  script->Expect(noOil, Icon::Critical);
  EXPECT_EQ(oil("7/1/2026"), "0");

  EXPECT_EQ(fuel("") + labor("") + oil(""), "000");
  for (int i = 0; i < 3; ++i) {
    script->Expect("That is not a valid effective date. Please recheck.", Icon::Critical);
  }
  EXPECT_EQ(fuel("13/45/2026") + labor("soon") + oil("2/30/2026"), "000");
}

TEST(Lookups, AProductIsRoundedToTheEvenTenThousandth) {
  test::SmallFleet fleet;
  test::ScreenScript script;
  fleet.Add("Internal Fuel Pricing Log",
            {{"Fuel Type", 1}, {"Effective Date", DateTime(2026, 1, 1)}, {"Fuel Price", Money(2.0001)}});
  fleet.Add("Internal Fuel Pricing Log", {{"Fuel Type", 2}, {"Effective Date", DateTime(2026, 1, 1)}});
  EXPECT_EQ(dw::GetInternalFuelCost(1, 0.5F, "1/1/2026").PlainText(), "1");       // 1.00005
  EXPECT_EQ(dw::GetInternalFuelCost(1, 1.5F, "1/1/2026").PlainText(), "3.0002");  // 3.00015
  try {
    dw::GetInternalFuelCost(2, 1.5F, "1/1/2026");
    ADD_FAILURE() << "an empty price costs nothing";
  } catch (const rt::RuntimeError& error) {
    EXPECT_EQ(error.Number(), 94);
  }
}

TEST(Lookups, PeriodsTakeBothTheirEndsAndTheFirstRowWins) {
  test::SmallFleet fleet;
  fleet.Add("Fiscal Periods", {{"Fiscal Year", 2026},
                               {"Period", 3},
                               {"Start Date", DateTime(2026, 3, 1)},
                               {"End Date", DateTime(2026, 3, 31)}});
  fleet.Add("Fiscal Periods", {{"Fiscal Year", 2027},
                               {"Period", 1},
                               {"Start Date", DateTime(2026, 3, 31)},
                               {"End Date", DateTime(2026, 4, 30)}});
  fleet.Add("Fiscal Periods", {{"Start Date", DateTime(2026, 5, 1)}, {"End Date", DateTime(2026, 5, 31)}});
  const auto period = [](const DateTime& date) {
    const dw::FiscalPeriod found = dw::GetFiscalPeriod(date);
    return std::to_string(found.year) + "/" + std::to_string(found.period);
  };
  EXPECT_EQ(period(DateTime(2026, 2, 28)), "0/0");
  EXPECT_EQ(period(DateTime(2026, 3, 1)), "2026/3");
  EXPECT_EQ(period(DateTime(2026, 3, 31, 23, 59, 59)), "2026/3");
  EXPECT_EQ(period(DateTime(2026, 4, 30)), "2027/1");
  EXPECT_EQ(period(DateTime(2026, 5, 2)), "0/0");  // a period saved without its numbers
}

TEST(Lookups, FuelTypeOfAnAsset) {
  test::SmallFleet fleet;
  test::ScreenScript script;
  fleet.AddAsset("O'NEIL", 4);
  fleet.AddAsset("NEW", rt::Null{});
  EXPECT_EQ(dw::GetAssetFuelType("o'neil"), 4);
  EXPECT_EQ(dw::GetAssetFuelType("NEW"), 0);
  script->Expect("Asset ID 'O'NEIL 2' is not on file.", Icon::Critical);
  EXPECT_EQ(dw::GetAssetFuelType("O'NEIL 2"), 0);
}

}  // namespace
