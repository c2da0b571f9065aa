// Posting while other workstations are at work.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "costing/CostCheck.h"
#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "platform/runtime/Waits.h"
#include "support/ScreenScript.h"
#include "support/SecondProcess.h"
#include "support/SmallFleet.h"

namespace {

using screen::Icon;
using test::Money;
using test::SecondProcess;

/// Another user with one row of a table in edit until the test says to go on.
std::function<void(SecondProcess::Channel&)> HoldingRow(const std::string& table, std::int32_t id) {
  return [table, id](SecondProcess::Channel& channel) {
    const auto workspace = dao::DBEngine::CreateWorkspace("Other", "admin", "");
    const auto database = workspace->OpenDatabase(dw::DataFile);
    const auto rows = database->OpenRecordset(table, dao::RecordsetType::Table);
    rows->SetIndex("PrimaryKey");
    rows->Seek({id});
    if (rows->NoMatch()) throw std::runtime_error("no such row");
    rows->Edit();
    channel.Say("held");
    channel.Hear();
    rows->CancelUpdate();
  };
}

std::vector<dw::CostDifference> Check() {
  const auto connection =
      store::Connection::Open({.path = dw::DataFile, .share = store::Share::Shared, .readOnly = true});
  return dw::CheckCosts(*connection);
}

std::int64_t Post(bool clearFirst = false) {
  test::ScreenScript script;
  script->Expect("Posting is Complete.", Icon::Information);
  return dw::RunPosting(clearFirst, {}).posted;
}

TEST(PostingUsers, ARowHeldInAWindowStaysUnpostedWhileTheRunGoesOn) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1");
  const auto before = fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", Money(1)}});
  const auto held = fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", Money(2)}});
  const auto after = fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", Money(4)}});
  SecondProcess other(HoldingRow("Maintenance Transactions", held));
  ASSERT_EQ(other.Talk().Hear(), "held");
  {
    test::ScreenScript script;
    script->ExpectPart("Unknown error #3218 during record edit.", Icon::Critical);
    script->Expect("Unable to lock transaction for updating.", Icon::Critical);
    script->Expect("Posting is Complete.", Icon::Information);
    EXPECT_EQ(dw::RunPosting(false, {}).posted, 2);
  }
  EXPECT_NE(fleet.OfTransaction(before, "When Posted"), "Null");
  EXPECT_EQ(fleet.OfTransaction(held, "When Posted"), "Null");
  EXPECT_NE(fleet.OfTransaction(after, "When Posted"), "Null");
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Cost"), "5");

  other.Talk().Say("let go");
  EXPECT_EQ(other.Join(), 0);
  EXPECT_EQ(Post(), 1);
  EXPECT_EQ(fleet.Sum("Assets Lifetime Costs", {"TRK-1"}, "Oil Cost"), "7");
  EXPECT_TRUE(Check().empty());
}

TEST(PostingUsers, AHeldCostRowLacksTheFiguresUntilTheSumsAreRebuilt) {
  const std::pair<const char*, const char*> tables[] = {
      {"Assets Period Costs", "Unable to update period costs."},
      {"Assets Annual Costs", "Unable to update annual costs."},
      {"Assets Lifetime Costs", "Unable to update lifetime costs."},
      {"Fuel Period Costs", "Unable to update fuel's period costs."},
      {"Fuel Annual Costs", "Unable to update fuel's annual cost."}};
  for (const auto& [table, words] : tables) {
    test::SmallFleet fleet;
    fleet.AddAsset("TRK-1", 7);
    fleet.AddTransaction("TRK-1", 2026, 3, {{"Internal Fuel Cost", Money(1)}});
    Post();
    const auto second = fleet.AddTransaction("TRK-1", 2026, 3, {{"Internal Fuel Cost", Money(2)}});
    SecondProcess other(HoldingRow(table, 1));
    ASSERT_EQ(other.Talk().Hear(), "held");
    {
      test::ScreenScript script;
      script->ExpectPart("Unknown error #3218 during record edit.", Icon::Critical);
      script->Expect(words, Icon::Critical);
      script->Expect("Posting is Complete.", Icon::Information);
      const auto counts = dw::RunPosting(false, {});
      EXPECT_EQ(counts.posted, 1) << table;
      EXPECT_EQ(counts.changed, 4) << table;
    }
    other.Talk().Say("let go");
    EXPECT_EQ(other.Join(), 0);
    EXPECT_NE(fleet.OfTransaction(second, "When Posted"), "Null");
    const auto differences = Check();
    ASSERT_FALSE(differences.empty()) << table;
    for (const auto& difference : differences) {
      EXPECT_EQ(difference.table, table);
      EXPECT_EQ(difference.stored, "1");
      EXPECT_EQ(difference.expected, "3");
    }
    EXPECT_EQ(Post(), 0);  // a plain run takes the row as posted
    EXPECT_FALSE(Check().empty());
    EXPECT_EQ(Post(true), 2);
    EXPECT_TRUE(Check().empty());
  }
}

TEST(PostingUsers, ACostRowInAnothersTransactionIsWaitedFor) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1");
  fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", Money(1)}});
  Post();
  fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", Money(2)}});
  SecondProcess other([](SecondProcess::Channel& channel) {
    const auto workspace = dao::DBEngine::CreateWorkspace("Other", "admin", "");
    const auto database = workspace->OpenDatabase(dw::DataFile);
    const auto rows = database->OpenRecordset("Assets Annual Costs", dao::RecordsetType::Table);
    workspace->BeginTrans();
    rows->Edit();
    rows->Set("Oil Cost", Money(100));
    rows->Update();
    rt::AboutToWait();
    channel.Say("changed");
    channel.Hear();
    workspace->CommitTrans();
    channel.Say("committed");
    channel.Hear();
  });
  ASSERT_EQ(other.Talk().Hear(), "changed");
  {
    test::ScreenScript script;
    script->onSleep = [&](int milliseconds) {
      EXPECT_EQ(milliseconds, 1000);
      other.Talk().Say("commit");
      EXPECT_EQ(other.Talk().Hear(), "committed");
      script->onSleep = {};
    };
    script->Expect("Posting is Complete.", Icon::Information);
    EXPECT_EQ(dw::RunPosting(false, {}).posted, 1);
    EXPECT_EQ(script->SleepCount(), 1);
  }
  other.Talk().Say("end");
  EXPECT_EQ(other.Join(), 0);
  // The run adds its figures to what the other user has written meanwhile.
  EXPECT_EQ(fleet.Sum("Assets Annual Costs", {"TRK-1", 2026}, "Oil Cost"), "102");
  EXPECT_EQ(fleet.Sum("Assets Period Costs", {"TRK-1", 2026, 3}, "Oil Cost"), "3");
}

/// A fleet of twenty assets with many transactions.
void Fill(test::SmallFleet& fleet, int transactions) {
  for (int i = 0; i < 20; ++i) fleet.AddAsset("A" + std::to_string(i), i % 3);
  fleet.AddTransactions(transactions, [](int i, test::Row& row) {
    row = {{"Oil Cost", Money(i * 0.01)},
           {"Internal Fuel Units", 0.1F * static_cast<float>(i % 50)},
           {"Outside Fuel Cost", Money(i % 7)}};
    return "A" + std::to_string(i % 20);
  });
}

TEST(PostingUsers, TwoRunsAtOnceCountNoRowTwice) {
  constexpr int kTransactions = 3000;
  test::SmallFleet fleet;
  Fill(fleet, kTransactions);
  const auto run = [](SecondProcess::Channel& channel) {
    channel.Hear();
    test::ScreenScript script;
    script->Expect("Posting is Complete.", Icon::Information);
    const auto counts = dw::RunPosting(false, {});
    script.ThrowFaults();
    channel.Say(std::to_string(counts.posted));
  };
  SecondProcess one(run);
  SecondProcess two(run);
  one.Talk().Say("go");
  two.Talk().Say("go");
  const int posted = std::stoi(one.Talk().Hear()) + std::stoi(two.Talk().Hear());
  EXPECT_EQ(one.Join(), 0);
  EXPECT_EQ(two.Join(), 0);
  EXPECT_EQ(posted, kTransactions);
  EXPECT_EQ(fleet.Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] IS NULL"), "0");
  const auto differences = Check();
  EXPECT_TRUE(differences.empty()) << differences.front().table << " " << differences.front().key;
}

TEST(PostingUsers, AKilledRunLeavesWholeRowsAndAPlainRunFinishesTheJob) {
  constexpr int kTransactions = 3000;
  test::SmallFleet fleet;
  Fill(fleet, kTransactions);
  SecondProcess run([](SecondProcess::Channel& channel) {
    test::ScreenScript script;
    bool waited = false;
    bool said = false;
    dw::RunPosting(false, {.status = {}, .percent = [&](int percent) {
                             // A wait commits what is posted so far; the kill meets the group after it.
                             if (percent >= 30 && !waited) {
                               waited = true;
                               rt::AboutToWait();
                             }
                             if (percent >= 60 && !said) {
                               said = true;
                               channel.Say("most of it");
                               channel.Hear();
                             }
                           }});
  });
  ASSERT_EQ(run.Talk().Hear(), "most of it");
  run.Kill();
  const int left =
      std::stoi(fleet.Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] IS NULL"));
  EXPECT_GT(left, 0);
  EXPECT_LT(left, kTransactions);
  EXPECT_TRUE(Check().empty());
  EXPECT_EQ(Post(), left);
  EXPECT_TRUE(Check().empty());
}

TEST(PostingUsers, AClearingBesideAHeldTransactionIsRefusedWithItsHolder) {
  test::SmallFleet fleet;
  fleet.AddAsset("TRK-1");
  fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", Money(1)}});
  const auto held = fleet.AddTransaction("TRK-1", 2026, 3, {{"Oil Cost", Money(2)}});
  Post();
  const std::string posted = fleet.Everything("Maintenance Transactions");
  SecondProcess other([held](SecondProcess::Channel& channel) {
    store::SetIdentity("OFFICE", "Bert");
    HoldingRow("Maintenance Transactions", held)(channel);
  });
  ASSERT_EQ(other.Talk().Hear(), "held");
  test::ScreenScript script;
  try {
    dw::RunPosting(true, {});
    ADD_FAILURE() << "it was not refused";
  } catch (const dw::ClearingRefused& refused) {
    EXPECT_NE(std::string(refused.what())
                  .find("Maintenance Transactions, record " + std::to_string(held) +
                        ": user 'Bert' on machine 'OFFICE'"),
              std::string::npos)
        << refused.what();
  }
  other.Talk().Say("let go");
  EXPECT_EQ(other.Join(), 0);
  EXPECT_EQ(fleet.Everything("Maintenance Transactions"), posted);
  EXPECT_TRUE(Check().empty());
}

TEST(PostingUsers, ADirectoryThatIsMovedAwayEndsTheRunWithOneError) {
  constexpr int kTransactions = 2000;
  test::SmallFleet fleet;
  Fill(fleet, kTransactions);
  const auto home = std::filesystem::path(fleet.Path()).parent_path();
  const auto away = home.string() + ".away";
  test::ScreenScript script;
  bool moved = false;
  try {
    dw::RunPosting(false, {.status = {}, .percent = [&](int percent) {
                             if (percent < 30 || moved) return;
                             moved = true;
                             std::filesystem::rename(home, away);
                           }});
    ADD_FAILURE() << "the run did not end";
  } catch (const dao::StoreError& error) {
    EXPECT_EQ(error.Number(), store::kPathNotFound) << error.what();
    EXPECT_NE(std::string(error.what()).find("The run was at transaction "), std::string::npos)
        << error.what();
  }
  std::filesystem::rename(away, home);
  const int left =
      std::stoi(fleet.Ask("SELECT COUNT(*) FROM [Maintenance Transactions] WHERE [When Posted] IS NULL"));
  EXPECT_GT(left, 0);
  EXPECT_TRUE(Check().empty()) << "what was posted is whole";
  EXPECT_EQ(Post(), left);
  EXPECT_TRUE(Check().empty());
}

}  // namespace
