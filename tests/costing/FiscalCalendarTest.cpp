#include "costing/FiscalCalendar.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/runtime/Clock.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using rt::DateTime;

std::string Period(test::SmallFleet& fleet, int year, int period) {
  const std::string where = " FROM [Fiscal Periods] WHERE [Fiscal Year] = " + std::to_string(year) +
                            " AND [Period] = " + std::to_string(period);
  return fleet.Ask("SELECT [Start Date]" + where) + " to " + fleet.Ask("SELECT [End Date]" + where);
}

TEST(FiscalCalendar, TwelveCalendarMonths) {
  test::SmallFleet fleet;
  test::ScreenScript script;
  const rt::FixedClock clock(DateTime(2025, 12, 1, 9, 30));
  dw::GenerateFiscalYear(2026, DateTime(2026, 1, 1));
  EXPECT_EQ(Period(fleet, 2026, 1), "1/1/2026 to 1/31/2026");
  EXPECT_EQ(Period(fleet, 2026, 2), "2/1/2026 to 2/28/2026");
  EXPECT_EQ(Period(fleet, 2026, 12), "12/1/2026 to 12/31/2026");
  EXPECT_EQ(Period(fleet, 2026, 13), "no row to no row");
  EXPECT_EQ(fleet.Ask("SELECT [Created By] FROM [Fiscal Periods] WHERE [Period] = 7"), "TESTER");
  EXPECT_EQ(fleet.Ask("SELECT [Date Created] FROM [Fiscal Periods] WHERE [Period] = 7"),
            "12/1/2025 9:30:00 AM");
  EXPECT_EQ(fleet.Ask("SELECT [Updated By] FROM [Fiscal Periods] WHERE [Period] = 7"), "Null");

  const std::string before = fleet.Everything("Fiscal Periods");
  dw::GenerateFiscalYear(2026, DateTime(2026, 7, 1));  // all of it exists: nothing is added or moved
  EXPECT_EQ(fleet.Everything("Fiscal Periods"), before);
  EXPECT_EQ(script->CurrentPointer(), screen::Pointer::Normal);
}

TEST(FiscalCalendar, ADayThatAShortMonthCutStaysCut) {
  test::SmallFleet fleet;
  test::ScreenScript script;
  dw::GenerateFiscalYear(2026, DateTime(2026, 1, 31));
  EXPECT_EQ(Period(fleet, 2026, 1), "1/31/2026 to 2/27/2026");
  EXPECT_EQ(Period(fleet, 2026, 2), "2/28/2026 to 3/27/2026");
  EXPECT_EQ(Period(fleet, 2026, 3), "3/28/2026 to 4/27/2026");
  EXPECT_EQ(Period(fleet, 2026, 12), "12/28/2026 to 1/27/2027");

  dw::GenerateFiscalYear(2028, DateTime(2028, 2, 29));
  EXPECT_EQ(Period(fleet, 2028, 1), "2/29/2028 to 3/28/2028");
  EXPECT_EQ(Period(fleet, 2028, 2), "3/29/2028 to 4/28/2028");
}

TEST(FiscalCalendar, APeriodThatExistsStaysAndTheOthersCloseAroundIt) {
  test::SmallFleet fleet;
  test::ScreenScript script;
  fleet.Add("Fiscal Periods", {{"Fiscal Year", 2026},
                               {"Period", 3},
                               {"Start Date", DateTime(2020, 1, 5)},
                               {"End Date", DateTime(2020, 1, 6)}});
  dw::GenerateFiscalYear(2026, DateTime(2025, 10, 1));
  EXPECT_EQ(fleet.Ask("SELECT COUNT(*) FROM [Fiscal Periods]"), "12");
  EXPECT_EQ(Period(fleet, 2026, 2), "11/1/2025 to 11/30/2025");
  EXPECT_EQ(Period(fleet, 2026, 3), "1/5/2020 to 1/6/2020");
  EXPECT_EQ(Period(fleet, 2026, 4), "1/1/2026 to 1/31/2026");
}

}  // namespace
