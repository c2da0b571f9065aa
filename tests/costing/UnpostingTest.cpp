#include "costing/Unposting.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "costing/CostCheck.h"
#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "platform/runtime/Clock.h"
#include "support/ScreenScript.h"
#include "support/SecondProcess.h"
#include "support/SmallFleet.h"

namespace {

using rt::DateTime;
using screen::Icon;
using test::Money;
using test::SecondProcess;

const char* const kTables[] = {"Assets Period Costs", "Assets Annual Costs", "Assets Lifetime Costs",
                               "Fuel Period Costs", "Fuel Annual Costs"};

void Post() {
  test::ScreenScript script;
  script->Expect("Posting is Complete.", Icon::Information);
  dw::RunPosting(false, {});
}

std::string Sums(test::SmallFleet& fleet) {
  std::string text;
  for (const char* table : kTables) text += fleet.Everything(table);
  return text;
}

/// Works on a record in edit, as the transaction's window does.
void WithHeldTransaction(std::int32_t id, const std::function<void(const dw::DaoRecordsetPtr&)>& work) {
  const auto workspace = dao::DBEngine::CreateWorkspace("Window", "admin", "");
  const auto database = workspace->OpenDatabase(dw::DataFile);
  const auto record =
      database->OpenRecordset("SELECT * FROM [Maintenance Transactions] WHERE [ID] = " + std::to_string(id));
  record->Edit();
  work(record);
  if (record->Editing()) record->CancelUpdate();
}

test::Row Figures() {
  return {{"Internal Fuel Units", 10.5F},
          {"Internal Fuel Cost", Money(21.1234)},
          {"Oil", 2.0F},
          {"Oil Cost", Money(5)},
          {"Time", 1.5F},
          {"Outside Fuel Units", 3.0F},
          {"Outside Fuel Cost", Money(9)},
          {"Outside Cost", Money(13)}};
}

TEST(Unposting, OutAndInAgainLeavesTheSumsAsTheyWere) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 4);
  fleet.AddTransaction("TRK-1", 2026, 3, Figures());
  const auto id = fleet.AddTransaction("TRK-1", 2026, 3, Figures());
  Post();
  const std::string before = Sums(fleet);
  {
    test::ScreenScript script;
    const rt::FixedClock clock(DateTime(2026, 5, 1, 10, 0, 0));
    WithHeldTransaction(id, [&](const auto& record) {
      EXPECT_TRUE(dw::UnpostHeldTransaction(record));
      EXPECT_TRUE(record->Editing());
      EXPECT_EQ(record->Get("ID").AsLong(), id);
    });
    EXPECT_EQ(script->CurrentPointer(), screen::Pointer::Normal);
  }
  EXPECT_EQ(fleet.OfTransaction(id, "When Posted"), "Null");
  EXPECT_EQ(fleet.OfTransaction(id, "Last Updated"), "5/1/2026 10:00:00 AM");
  EXPECT_EQ(fleet.OfTransaction(id, "Updated By"), "TESTER");
  EXPECT_EQ(fleet.OfTransaction(id, "Total Internal Cost"), "26.1234");  // stays until the next posting
  for (const auto& column : dw::kAssetCostColumns) {
    const std::string once = fleet.OfTransaction(id, column.transaction);
    EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 3}, column.accumulator), once)
        << column.accumulator;
    EXPECT_EQ(fleet.Sum("Assets Annual Costs", {"TRK-1", 2026}, column.accumulator), once)
        << column.accumulator;
    EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, column.accumulator), once) << column.accumulator;
  }
  EXPECT_EQ(fleet.Sum("Fuel Period Costs", {4, 2026, 3}, "Internal Units"), "10.5");
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {4, 2026}, "Outside Cost"), "9");
  Post();
  EXPECT_EQ(Sums(fleet), before);

  // Pressing the button twice subtracts twice. Rows may become zero or negative, and stay.
  test::ScreenScript script;
  WithHeldTransaction(id, [&](const auto& record) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(dw::UnpostHeldTransaction(record));
  });
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Cost"), "-5");
  EXPECT_EQ(fleet.OfTransaction(id, "When Posted"), "Null");
}

TEST(Unposting, AnAssetWithoutAFuelTypeHasOneRowInEachFuelTable) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRAILER", rt::Null{});
  const auto id = fleet.AddTransaction("TRAILER", 2026, 3, Figures());
  fleet.AddTransaction("TRAILER", 2026, 3, Figures());
  Post();
  fleet.AddTransaction("TRAILER", 2026, 3, Figures());
  Post();
  for (const char* table : {"Fuel Period Costs", "Fuel Annual Costs"}) {
    EXPECT_EQ(fleet.Ask("SELECT COUNT(*) FROM [" + std::string(table) + "]"), "1") << table;
    EXPECT_EQ(fleet.Ask("SELECT [Internal Units] FROM [" + std::string(table) + "]"), "31.5") << table;
  }
  const std::string before = Sums(fleet);
  test::ScreenScript script;
  WithHeldTransaction(id, [&](const auto& record) { EXPECT_TRUE(dw::UnpostHeldTransaction(record)); });
  EXPECT_EQ(fleet.Ask("SELECT [Internal Units] FROM [Fuel Annual Costs]"), "21");
  Post();
  EXPECT_EQ(Sums(fleet), before);
}

TEST(Unposting, WhatIsMissingIsToldAndTheRestIsReduced) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 4);
  fleet.AddAsset("SOLD", 4);
  const auto id = fleet.AddTransaction("TRK-1", 2026, 3, Figures());
  const auto sold = fleet.AddTransaction("SOLD", 2026, 3, Figures());
  Post();
  fleet.Run("DELETE FROM [Vehicles] WHERE [Asset ID] = 'SOLD'");
  fleet.Run("UPDATE [Vehicles] SET [Fuel Type] = 5");
  const std::string before = Sums(fleet);
  {
    test::ScreenScript script;
    script->Expect("Unable to unpost transaction.", Icon::Critical);
    WithHeldTransaction(sold, [&](const auto& record) {
      EXPECT_FALSE(dw::UnpostHeldTransaction(record));
      EXPECT_TRUE(record->Editing());
    });
    EXPECT_EQ(Sums(fleet), before);
  }
  EXPECT_NE(fleet.OfTransaction(sold, "When Posted"), "Null");
  {
    // The asset has another fuel type now, without rows for it. The message names the annual table both
    // times.
    test::ScreenScript script;
    script->Expect("Could not find Fuel Annual Cost record.", Icon::Critical);
    script->Expect("Could not find Fuel Annual Cost record.", Icon::Critical);
    WithHeldTransaction(id, [](const auto& record) { EXPECT_TRUE(dw::UnpostTransaction(*record)); });
  }
  EXPECT_EQ(fleet.Sum("Assets Annual Costs", {"TRK-1", 2026}, "Oil Cost"), "0");
  EXPECT_EQ(fleet.Sum("Fuel Annual Costs", {4, 2026}, "Internal Units"), "21");
  EXPECT_NE(fleet.OfTransaction(id, "When Posted"), "Null");  // the caller marks it

  for (const char* table : kTables) fleet.Run("DELETE FROM [" + std::string(table) + "]");
  test::ScreenScript script;
  for (const char* words :
       {"Could not find Asset Period Cost record.", "Could not find Asset Annual Cost record.",
        "Could not find Asset Lifetime Cost record.", "Could not find Fuel Annual Cost record.",
        "Could not find Fuel Annual Cost record."}) {
    script->Expect(words, Icon::Critical);
  }
  WithHeldTransaction(id, [](const auto& record) { EXPECT_TRUE(dw::UnpostHeldTransaction(record)); });
  EXPECT_EQ(fleet.OfTransaction(id, "When Posted"), "Null");
  EXPECT_EQ(Sums(fleet), "");
}

/// Another user with rows in edit until the test says to go on.
std::function<void(SecondProcess::Channel&)> Holding(
    const std::vector<std::pair<std::string, std::int32_t>>& held) {
  return [held](SecondProcess::Channel& channel) {
    const auto workspace = dao::DBEngine::CreateWorkspace("Other", "admin", "");
    const auto database = workspace->OpenDatabase(dw::DataFile);
    std::vector<std::shared_ptr<dao::Recordset>> sets;
    for (const auto& [table, id] : held) {
      sets.push_back(database->OpenRecordset(table, dao::RecordsetType::Table));
      sets.back()->SetIndex("PrimaryKey");
      sets.back()->Seek({id});
      sets.back()->Edit();
    }
    channel.Say("held");
    channel.Hear();
  };
}

TEST(Unposting, AllGoesOverEveryAssetAndTellsWhatIsHeld) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 4);
  fleet.AddAsset("TRK-2", 4);
  fleet.AddAsset("SOLD", 4);
  const auto first = fleet.AddTransaction("TRK-1", 2026, 3, Figures());
  const auto sold = fleet.AddTransaction("SOLD", 2026, 3, Figures());
  const auto held = fleet.AddTransaction("TRK-2", 2026, 3, Figures());
  Post();
  const auto waiting = fleet.AddTransaction("TRK-1", 2026, 3, Figures());
  fleet.Run("DELETE FROM [Vehicles] WHERE [Asset ID] = 'SOLD'");
  SecondProcess other(Holding({{"Maintenance Transactions", held}}));
  ASSERT_EQ(other.Talk().Hear(), "held");
  {
    test::ScreenScript script;
    script->Expect("Unable to unpost transaction.", Icon::Critical);
    script->ExpectPart("Unknown error #3218 during record edit.", Icon::Critical);
    script->Expect("Unable to mark transaction as unposted.", Icon::Critical);
    dw::UnpostAll();
  }
  other.Talk().Say("let go");
  EXPECT_EQ(other.Join(), 0);
  EXPECT_EQ(fleet.OfTransaction(first, "When Posted"), "Null");
  EXPECT_EQ(fleet.OfTransaction(first, "Updated By"), "TESTER");
  EXPECT_NE(fleet.OfTransaction(sold, "When Posted"), "Null");
  EXPECT_NE(fleet.OfTransaction(held, "When Posted"), "Null");  // reduced, yet still marked as posted
  EXPECT_EQ(fleet.OfTransaction(waiting, "Updated By"), "Null");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Total Internal Cost"), "0");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-2"}, "Total Internal Cost"), "0");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"SOLD"}, "Total Internal Cost"), "26.1234");
}

std::string PostedRows(test::SmallFleet& fleet) {
  return fleet.Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] IS NOT NULL");
}

/// Twenty assets whose transactions are all posted.
void FillAndPost(test::SmallFleet& fleet, int transactions) {
  for (int i = 0; i < 20; ++i) fleet.AddAsset("A" + std::to_string(i), i % 3);
  fleet.AddTransactions(transactions, [](int i, test::Row& row) {
    row = {{"Oil Cost", Money(i * 0.01)}, {"Oil", 1.0F}, {"Time", 2.0F}, {"Outside Cost", Money(i % 7)}};
    return "A" + std::to_string(i % 20);
  });
  Post();
}

std::size_t CountOfDifferences() {
  return dw::CheckCosts(*store::Connection::Open({.path = dw::DataFile, .readOnly = true})).size();
}

TEST(Unposting, TwoRunsAtOnceSubtractNoRowTwice) {
  test::SmallFleet fleet;
  FillAndPost(fleet, 2000);
  const auto run = [](SecondProcess::Channel& channel) {
    channel.Hear();
    const test::ScreenScript script;
    dw::UnpostAll();
  };
  SecondProcess one(run);
  SecondProcess two(run);
  one.Talk().Say("go");
  two.Talk().Say("go");
  EXPECT_EQ(one.Join(), 0);
  EXPECT_EQ(two.Join(), 0);
  EXPECT_EQ(PostedRows(fleet), "0");
  EXPECT_EQ(
      fleet.Ask("SELECT COUNT(*) FROM [Assets Lifetime Costs] WHERE [Oil Cost] = 0 AND [Oil Units] = 0"),
      "20");
  EXPECT_EQ(CountOfDifferences(), 0U);
}

TEST(Unposting, AKilledRunLeavesWholeRowsAndTheNextRunDoesTheRest) {
  test::SmallFleet fleet;
  FillAndPost(fleet, 2000);
  for (const int killedAt : {30, 60}) {
    SecondProcess run([killedAt](SecondProcess::Channel& channel) {
      const test::ScreenScript script;
      dw::UnpostAll([&](int percent) {
        if (percent < killedAt) return;
        channel.Say("there");
        channel.Hear();
      });
    });
    ASSERT_EQ(run.Talk().Hear(), "there");
    run.Kill();
    EXPECT_GT(std::stoi(PostedRows(fleet)), 0);
    EXPECT_EQ(CountOfDifferences(), 0U) << "killed at " << killedAt << " percent";
  }
  test::ScreenScript script;
  dw::UnpostAll();
  EXPECT_EQ(PostedRows(fleet), "0");
  EXPECT_EQ(CountOfDifferences(), 0U);
}

TEST(Unposting, CostRowsThatAreHeldKeepTheFigures) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1", 4);
  const auto id = fleet.AddTransaction("TRK-1", 2026, 3, Figures());
  Post();
  std::vector<std::pair<std::string, std::int32_t>> rows;
  for (const char* table : kTables) rows.emplace_back(table, 1);
  SecondProcess other(Holding(rows));
  ASSERT_EQ(other.Talk().Hear(), "held");
  {
    test::ScreenScript script;
    for (const char* words : {"Unable to update Period Costs.", "Unable to update Annual Costs.",
                              "Unable to update Lifetime Costs.", "Unable to update Fuel Costs.",
                              "Unable to update Annual Fuel Costs."}) {
      script->ExpectPart("Unknown error #3218 during record edit.", Icon::Critical);
      script->Expect(words, Icon::Critical);
    }
    dw::UnpostAll();
  }
  other.Talk().Say("let go");
  EXPECT_EQ(other.Join(), 0);
  EXPECT_EQ(fleet.OfTransaction(id, "When Posted"), "Null");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Cost"), "5");
}

TEST(Unposting, ADirectoryThatIsMovedAwayEndsTheRunWithOneError) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1");
  fleet.AddTransactions(2000, [](int, test::Row& row) {
    row = Figures();
    row.emplace_back("Year", std::int16_t{2026});
    row.emplace_back("Period", std::int16_t{3});
    return std::string("TRK-1");
  });
  Post();
  const auto home = std::filesystem::path(fleet.Path()).parent_path();
  const auto away = home.string() + ".away";
  test::ScreenScript script;
  bool moved = false;
  try {
    dw::UnpostAll([&](int percent) {
      if (percent < 30 || moved) return;
      moved = true;
      std::filesystem::rename(home, away);
    });
    ADD_FAILURE() << "the run did not end";
  } catch (const dao::StoreError& error) {
    EXPECT_EQ(error.Number(), store::kPathNotFound) << error.what();
  }
  std::filesystem::rename(away, home);
  EXPECT_GT(
      std::stoi(fleet.Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] IS NOT NULL")),
      0);
  EXPECT_TRUE(dw::CheckCosts(*store::Connection::Open({.path = dw::DataFile})).empty())
      << "what was taken out is whole";
}

}  // namespace
