#include "costing/Posting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "platform/runtime/Clock.h"
#include "platform/store/StoreError.h"
#include "store/OtherTool.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using rt::DateTime;
using screen::Icon;
using test::Money;
using test::Row;

const char* const kTables[] = {"Assets Period Costs", "Assets Annual Costs", "Assets Lifetime Costs",
                               "Fuel Period Costs", "Fuel Annual Costs"};

dw::PostingCounts Post(bool clearFirst = false, const dw::PostingProgress& progress = {}) {
  test::ScreenScript script;
  script->Expect("Posting is Complete.", Icon::Information);
  const auto counts = dw::RunPosting(clearFirst, progress);
  EXPECT_EQ(script->CurrentPointer(), screen::Pointer::Normal);
  return counts;
}

/// A different figure in each column, so that no two can be mistaken for each other.
Row EveryColumn() {
  return {{"Internal Fuel Units", 10.5F},
          {"Internal Fuel Cost", Money(21.1234)},
          {"Oil", 2.25F},
          {"Oil Cost", Money(5)},
          {"Time", 1.5F},
          {"Internal Time Cost", Money(60)},
          {"Parts Cost", Money(7.7)},
          {"Outside Fuel Units", 30.5F},
          {"Outside Fuel Cost", Money(90.01)},
          {"Outside Oil Units", 3.0F},
          {"Outside Oil Cost", Money(11)},
          {"Outside Cost", Money(13)}};
}

std::string Rows(test::SmallFleet& fleet) {
  std::string text;
  for (const char* table : kTables)
    text += fleet.Ask("SELECT COUNT(*) FROM [" + std::string(table) + "]") + " ";
  return text;
}

TEST(Posting, AddsEachColumnToItsSumInAllFiveTables) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 4);
  const auto first = fleet.AddTransaction("trk-1", 2026, 3, EveryColumn());
  const rt::FixedClock clock(DateTime(2026, 4, 2, 8, 15, 30));
  auto counts = Post();
  EXPECT_EQ(counts.posted, 1);
  EXPECT_EQ(counts.added, 5);
  EXPECT_EQ(counts.changed, 0);
  EXPECT_EQ(fleet.OfTransaction(first, "When Posted"), "4/2/2026 8:15:30 AM");
  EXPECT_EQ(fleet.OfTransaction(first, "Total Internal Cost"), "93.8234");
  EXPECT_EQ(fleet.OfTransaction(first, "Total Outside Cost"), "114.01");
  EXPECT_EQ(fleet.OfTransaction(first, "Last Updated"), "Null");
  EXPECT_EQ(fleet.OfTransaction(first, "Updated By"), "Null");

  const std::pair<const char*, const char*> assetSums[] = {{"Internal Fuel Units", "10.5"},
                                                           {"Internal Fuel Cost", "21.1234"},
                                                           {"Oil Units", "2.25"},
                                                           {"Oil Cost", "5"},
                                                           {"Internal Time", "1.5"},
                                                           {"Internal Time Cost", "60"},
                                                           {"Outside Fuel Units", "30.5"},
                                                           {"Outside Fuel Cost", "90.01"},
                                                           {"Outside Parts Cost", "13"},
                                                           {"Internal Parts Cost", "7.7"},
                                                           {"Total Internal Cost", "93.8234"},
                                                           {"Total Outside Cost", "114.01"}};
  for (const auto& [column, sum] : assetSums) {
    EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 3}, column), sum) << column;
    EXPECT_EQ(fleet.Sum("Assets Annual Costs", {"TRK-1", 2026}, column), sum) << column;
    EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, column), sum) << column;
  }
  const std::pair<const char*, const char*> fuelSums[] = {{"Internal Units", "10.5"},
                                                          {"Internal Cost", "21.1234"},
                                                          {"Outside Units", "30.5"},
                                                          {"Outside Cost", "90.01"}};
  for (const auto& [column, sum] : fuelSums) {
    EXPECT_EQ(fleet.Sum("Fuel Period Costs", {4, 2026, 3}, column), sum) << column;
    EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {4, 2026}, column), sum) << column;
  }

  fleet.AddTransaction("TRK-1", 2026, 3, EveryColumn());
  counts = Post();
  EXPECT_EQ(counts.added, 0);
  EXPECT_EQ(counts.changed, 5);
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 3}, "Total Internal Cost"), "187.6468");
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {4, 2026}, "Outside Units"), "61");

  fleet.AddTransaction("TRK-1", 2026, 4, EveryColumn());
  counts = Post();
  EXPECT_EQ(counts.seen, 3);
  EXPECT_EQ(counts.posted, 1);
  EXPECT_EQ(counts.added, 2);
  EXPECT_EQ(counts.changed, 3);
  EXPECT_EQ(Rows(fleet), "2 1 1 2 1 ");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Units"), "6.75");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 4}, "Oil Units"), "2.25");
}

TEST(Posting, OutsideOilAndZerosAndNulls) {
  test::SmallFleet fleet;
  fleet.AddAsset("OIL", 0);
  fleet.AddAsset("ZERO", rt::Null{});
  fleet.AddAsset("NULL", 2);
  fleet.AddTransaction(
      "OIL", 2026, 1,
      {{"Oil", 0.0F}, {"Time", 0.0F}, {"Outside Oil Units", 4.0F}, {"Outside Oil Cost", Money(19.5)}});
  const auto zero = fleet.AddTransaction("ZERO", 1999, 13);
  const auto null =
      fleet.AddTransaction("NULL", 2026, 1, {{"Parts Cost", rt::Null{}}, {"Oil Cost", Money(4)}});
  Post();

  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"OIL"}, "Total Outside Cost"), "19.5");
  for (const auto& column : dw::kAssetCostColumns) {
    if (std::string(column.accumulator) == "Total Outside Cost") continue;
    EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"OIL"}, column.accumulator), "0") << column.accumulator;
  }
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {0, 2026}, "Outside Cost"),
            "0");  // fuel type 0 is a type like any other

  // All zeros, in a period that is not in the calendar, of an asset without a fuel type: posted like any
  // other.
  EXPECT_NE(fleet.OfTransaction(zero, "When Posted"), "Null");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"ZERO", 1999, 13}, "Oil Cost"), "0");
  EXPECT_EQ(fleet.Ask("SELECT [Fiscal Year] FROM [Fuel Annual Costs] WHERE [Fuel Type ID] IS NULL"), "1999");

  EXPECT_EQ(fleet.OfTransaction(null, "Total Internal Cost"), "Null");
  EXPECT_EQ(fleet.OfTransaction(null, "Total Outside Cost"), "0");
  fleet.AddTransaction("NULL", 2026, 1, {{"Parts Cost", Money(3)}, {"Oil", 2.0F}, {"Oil Cost", Money(1)}});
  Post();
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"NULL", 2026, 1}, "Internal Parts Cost"), "Null");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"NULL", 2026, 1}, "Total Internal Cost"), "Null");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"NULL", 2026, 1}, "Oil Units"), "Null");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"NULL", 2026, 1}, "Oil Cost"), "5");
}

TEST(Posting, RowsWithoutAnAssetAreWalkedInSilence) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 1);
  const auto gone = fleet.AddTransaction("SOLD", 2026, 3, EveryColumn());
  const auto none = fleet.AddTransaction("", 2026, 3, {{"Asset ID", rt::Null{}}});
  const auto there = fleet.AddTransaction("TRK-1", 2026, 3);
  std::vector<int> percents;
  const auto counts =
      Post(false, {.status = {}, .percent = [&](int percent) { percents.push_back(percent); }});
  EXPECT_EQ(counts.seen, 3);
  EXPECT_EQ(counts.posted, 1);
  EXPECT_EQ(fleet.OfTransaction(gone, "When Posted"), "Null");
  EXPECT_EQ(fleet.OfTransaction(none, "When Posted"), "Null");
  EXPECT_NE(fleet.OfTransaction(there, "When Posted"), "Null");
  EXPECT_EQ(percents, (std::vector<int>{0, 33, 66, 100, 100}));

  // Nothing is left to post: the bar moves all the same, and nothing changes.
  std::string before = fleet.Everything("Maintenance Transactions");
  for (const char* table : kTables) before += fleet.Everything(table);
  percents.clear();
  std::vector<std::string> stages;
  EXPECT_EQ(Post(false, {.status = [&](const std::string& stage) { stages.push_back(stage); },
                         .percent = [&](int percent) { percents.push_back(percent); }})
                .posted,
            0);
  std::string after = fleet.Everything("Maintenance Transactions");
  for (const char* table : kTables) after += fleet.Everything(table);
  EXPECT_EQ(after, before);
  EXPECT_EQ(percents, (std::vector<int>{0, 33, 66, 100, 100}));
  EXPECT_EQ(stages, std::vector<std::string>{"Posting. Please stand by..."});
}

TEST(Posting, ClearFirstRebuildsTheSumsFromWhatIsOnFile) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 1);
  fleet.AddAsset("SOLD", 1);
  const auto kept = fleet.AddTransaction("TRK-1", 2026, 3, EveryColumn());
  const auto deleted = fleet.AddTransaction("TRK-1", 2026, 3, EveryColumn());
  const auto sold = fleet.AddTransaction("SOLD", 2026, 3, EveryColumn());
  fleet.AddTransaction("TRK-1", 2027, 1, EveryColumn());
  Post();
  std::string before;
  for (const char* table : kTables) before += fleet.Everything(table);

  std::vector<std::string> stages;
  {
    const rt::FixedClock clock(DateTime(2030, 1, 1));
    Post(true, {.status = [&](const std::string& stage) { stages.push_back(stage); }, .percent = {}});
  }
  EXPECT_EQ(stages,
            (std::vector<std::string>{"Clearing Assets Period Costs...", "Clearing Assets Annual Costs...",
                                      "Clearing Assets Lifetime Costs...", "Clearing Fuel Period Costs...",
                                      "Clearing Fuel Annual Costs...", "Clearing When Posted...",
                                      "Posting. Please stand by..."}));
  EXPECT_EQ(fleet.Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] = #1/1/2030#"),
            "4");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 3}, "Total Internal Cost"), "187.6468");
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {1, 2026}, "Internal Units"), "31.5");
  EXPECT_EQ(Rows(fleet), "3 3 2 2 2 ");

  // A deleted transaction and a removed asset keep their costs until the sums are cleared.
  fleet.Run("DELETE FROM [Maintenance Transactions] WHERE [ID] = " + std::to_string(deleted));
  fleet.Run("DELETE FROM [Vehicles] WHERE [Asset ID] = 'SOLD'");
  Post();
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {1, 2026}, "Internal Units"), "31.5");
  Post(true);
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {1, 2026}, "Internal Units"), "10.5");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"SOLD"}, "Oil Cost"), "no row");
  EXPECT_EQ(fleet.OfTransaction(sold, "When Posted"), "Null");
  EXPECT_NE(fleet.OfTransaction(kept, "When Posted"), "Null");

  // The fuel type at the time of posting counts.
  fleet.Run("UPDATE [Vehicles] SET [Fuel Type] = 9");
  Post(true);
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {1, 2026}, "Internal Units"), "no row");
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {9, 2026}, "Internal Units"), "10.5");
}

/// The number of the engine's error that ends a run, which shows no box.
int ErrorOfRun(bool clearFirst = false, std::string* words = nullptr) {
  test::ScreenScript script;
  try {
    dw::RunPosting(clearFirst, {});
  } catch (const store::StoreError& error) {
    EXPECT_EQ(script->CurrentPointer(), screen::Pointer::Normal);
    if (words) *words = error.what();
    return error.Number();
  }
  return 0;
}

TEST(Posting, EngineErrorsEndTheRunAndKeepWhatIsPosted) {
  test::SmallFleet fleet;
  EXPECT_EQ(ErrorOfRun(), 3021);  // no transactions at all
  EXPECT_EQ(ErrorOfRun(true), 3021);

  fleet.AddAsset("TRK-1", 1);
  const auto good = fleet.AddTransaction("TRK-1", 2026, 3, EveryColumn());
  const auto rich = fleet.AddTransaction(
      "TRK-1", 2026, 3, {{"Parts Cost", rt::Currency::FromUnits(INT64_MAX)}, {"Oil Cost", Money(1)}});
  EXPECT_EQ(ErrorOfRun(), 6);
  EXPECT_NE(fleet.OfTransaction(good, "When Posted"), "Null");
  EXPECT_EQ(fleet.OfTransaction(rich, "When Posted"), "Null");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Internal Parts Cost"), "7.7");

  // The sum overflows at the third table: the row's sums in the first two are rolled back.
  fleet.Run("UPDATE [Maintenance Transactions] SET [Oil Cost] = 0 WHERE [ID] = " + std::to_string(rich));
  fleet.Run("UPDATE [Assets Period Costs] SET [Internal Parts Cost] = 0, [Total Internal Cost] = 0");
  fleet.Run("UPDATE [Assets Annual Costs] SET [Internal Parts Cost] = 0, [Total Internal Cost] = 0");
  EXPECT_EQ(ErrorOfRun(), 6);
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 3}, "Internal Parts Cost"), "0");
  EXPECT_EQ(fleet.OfTransaction(rich, "When Posted"), "Null");

  fleet.Run("DELETE FROM [Maintenance Transactions] WHERE [ID] = " + std::to_string(rich));
  fleet.AddAsset("O'NEIL", 1);
  const auto quoted = fleet.AddTransaction("O'NEIL", 2026, 3);
  std::string words;
  EXPECT_EQ(ErrorOfRun(false, &words), 3075);  // the query contains the apostrophe as it is
  EXPECT_TRUE(words.ends_with("The run was at transaction " + std::to_string(quoted) + " of asset 'O'NEIL'."))
      << words;
}

TEST(Posting, RowsThatAnotherProgramHasSpoiledCostOnlyThemselves) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1");
  fleet.AddTransaction("TRK-1", 2026, 1, {{"Oil Cost", Money(1)}});
  fleet.AddTransaction("TRK-1", 2026, 2, {{"Oil Cost", Money(2)}});
  Post();
  {
    test::OtherTool tool(dw::DataFile);
    EXPECT_EQ(tool.Run("UPDATE \"Assets Period Costs\" SET \"Oil Cost\" = 1e300 WHERE Period = 1"),
              "not an error");
    EXPECT_EQ(tool.Run("INSERT INTO \"Assets Period Costs\" (\"Asset ID\", \"Fiscal Year\", Period) VALUES "
                       "('TRK-1', x'2026', 7)"),
              "not an error");
  }
  for (const int period : {2, 3, 3, 4}) fleet.AddTransaction("TRK-1", 2026, period, {{"Oil Cost", Money(4)}});
  Post();
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 2}, "Oil Cost"), "6");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 3}, "Oil Cost"), "8");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 4}, "Oil Cost"), "4");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Cost"), "19");
}

}  // namespace
