#include "costing/CostCheck.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "costing/Posting.h"
#include "costing/Unposting.h"
#include "data/BrackenfelGlobals.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using screen::Icon;
using test::Money;

void Post(bool clearFirst = false) {
  test::ScreenScript script;
  script->Expect("Posting is Complete.", Icon::Information);
  dw::RunPosting(clearFirst, {});
}

/// One line for each difference.
std::string Differences() {
  const auto connection =
      store::Connection::Open({.path = dw::DataFile, .share = store::Share::Shared, .readOnly = true});
  std::string text;
  for (const auto& d : dw::CheckCosts(*connection)) {
    text += d.table + " (" + d.key + ") " + d.column + ": " + d.stored + " <> " + d.expected + "\n";
  }
  return text;
}

TEST(CostCheck, TellsWhatIsOutOfStepAndWhere) {
  test::SmallFleet fleet;
  EXPECT_EQ(Differences(), "");
  fleet.AddAsset("TRK-1", 4);
  fleet.AddAsset("TRK-2", 4);
  fleet.AddTransaction("trk-1", 2026, 3, {{"Oil", 1.0F}, {"Time", 1.0F}, {"Oil Cost", Money(5)}});
  fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil", 2.5F}, {"Time", 1.0F}, {"Oil Cost", Money(0.0001)}});
  fleet.AddTransaction(
      "TRK-2", 2026, 4,
      {{"Internal Fuel Units", 20.0F}, {"Internal Fuel Cost", Money(40)}, {"Oil", 0.0F}, {"Time", 0.0F}});
  EXPECT_EQ(Differences(), "");  // nothing is posted
  Post();
  fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", Money(99)}});
  EXPECT_EQ(Differences(), "");

  fleet.Run("UPDATE [Assets Annual Costs] SET [Oil Cost] = 5.0002 WHERE [Asset ID] = 'TRK-1'");
  fleet.Run("UPDATE [Assets Lifetime Costs] SET [Oil Units] = 3.4 WHERE [Asset ID] = 'TRK-1'");
  fleet.Run("DELETE FROM [Fuel Period Costs] WHERE [Period] = 3");
  EXPECT_EQ(Differences(),
            "Assets Annual Costs (trk-1, 2026) Oil Cost: 5.0002 <> 5.0001\n"
            "Assets Lifetime Costs (trk-1) Oil Units: 3.4 <> 3.5\n"
            "Fuel Period Costs (4, 2026, 3) : no row <> 2 transactions\n");
  Post(true);
  EXPECT_EQ(Differences(), "");

  // A removed asset and a changed fuel type leave sums without transactions.
  fleet.Run("DELETE FROM [Vehicles] WHERE [Asset ID] = 'TRK-1'");
  fleet.Run("UPDATE [Vehicles] SET [Fuel Type] = 6");
  const std::string left =
      "Oil Units Null, Oil Cost 104.0001, Internal Time Null, Total Internal Cost 104.0001 <> no "
      "transactions\n";
  EXPECT_EQ(Differences(),
            "Assets Period Costs (trk-1, 2026, 3) : " + left + "Assets Annual Costs (trk-1, 2026) : " + left +
                "Assets Lifetime Costs (trk-1) : " + left +
                "Fuel Period Costs (4, 2026, 4) : Internal Units 20, Internal Cost 40 <> no transactions\n"
                "Fuel Period Costs (6, 2026, 4) : no row <> 1 transaction\n"
                "Fuel Annual Costs (4, 2026) : Internal Units 20, Internal Cost 40 <> no transactions\n"
                "Fuel Annual Costs (6, 2026) : no row <> 1 transaction\n");
}

TEST(CostCheck, RowsAtZeroAndRoundedUnitsAgree) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 1);
  fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil", 10000.3F}, {"Time", 0.0F}, {"Oil Cost", Money(1)}});
  fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil", 0.1F}, {"Time", 0.0F}, {"Oil Cost", Money(2)}});
  Post();
  EXPECT_EQ(Differences(), "");
  // The large amount is subtracted first: the rest has lost digits of the small one by then.
  dw::UnpostAll();
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Cost"), "0");
  EXPECT_NE(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Units"), "0");
  EXPECT_EQ(Differences(), "");
  fleet.Run("UPDATE [Assets Lifetime Costs] SET [Oil Units] = 0.1");
  EXPECT_EQ(Differences(), "Assets Lifetime Costs (TRK-1) : Oil Units 0.1 <> no transactions\n");
}

TEST(CostCheck, ANullStaysAndIsExplainedByTheRowThatLeftIt) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", rt::Null{});
  const auto null = fleet.AddTransaction("TRK-1", rt::Null{}, 3, {{"Oil Cost", Money(1)}});
  fleet.AddTransaction("TRK-1", rt::Null{}, 3, {{"Oil", 2.0F}, {"Time", 0.0F}});
  Post();
  // All transactions without a year share one row, as those of a year do.
  EXPECT_EQ(fleet.Ask("SELECT COUNT(*) FROM [Assets Period Costs]"), "1");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Units"), "Null");
  EXPECT_EQ(Differences(), "");

  test::ScreenScript script;
  dw::UnpostAll();
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Units"), "Null");
  EXPECT_EQ(Differences(), "");  // the Null came from a transaction that still has it
  fleet.Run("UPDATE [Maintenance Transactions] SET [Oil] = 1 WHERE [ID] = " + std::to_string(null));
  EXPECT_NE(Differences().find("Assets Lifetime Costs (TRK-1) : Oil Units Null <> no transactions\n"),
            std::string::npos);
}

TEST(CostCheck, NamesRowsThatOlderFilesHaveTwiceAndARePostLeavesOne) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRAILER", rt::Null{});
  fleet.AddTransaction("TRAILER", 2026, 3, {{"Outside Fuel Cost", Money(5)}});
  Post();
  const std::string once = fleet.Everything("Fuel Annual Costs");
  EXPECT_EQ(Differences(), "");
  fleet.Add("Fuel Annual Costs", {{"Fiscal Year", 2026}, {"Outside Cost", Money(5)}});
  fleet.Add("Fuel Period Costs", {{"Fiscal Year", 2026}, {"Period", 3}, {"Outside Cost", Money(0)}});
  EXPECT_EQ(Differences(),
            "Fuel Period Costs (Null, 2026, 3) : 2 rows <> there can be only one\n"
            "Fuel Annual Costs (Null, 2026) : 2 rows <> there can be only one\n");
  Post(true);
  EXPECT_EQ(Differences(), "");
  EXPECT_EQ(fleet.Ask("SELECT COUNT(*) FROM [Fuel Annual Costs]"), "1");
  EXPECT_EQ(fleet.Ask("SELECT [Outside Cost] FROM [Fuel Annual Costs]"), "5");
}

TEST(CostCheck, AmountsThatOverflowTheirSumAreDifferences) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 4);
  const auto most = rt::Currency::FromUnits(INT64_MAX);
  const rt::Value posted(rt::DateTime(2026, 3, 2));
  for (int i = 0; i < 2; ++i)
    fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", most}, {"When Posted", posted}});
  fleet.Add("Assets Lifetime Costs", {{"Asset ID", "TRK-1"}, {"Oil Cost", most}});
  const std::string found = Differences();
  EXPECT_NE(found.find("Assets Lifetime Costs (TRK-1) Oil Cost: 922337203685477.5807 <> an amount that the "
                       "column cannot hold\n"),
            std::string::npos)
      << found;
  EXPECT_NE(found.find("Fuel Annual Costs (4, 2026) : no row <> 2 transactions\n"), std::string::npos)
      << found;
}

}  // namespace
