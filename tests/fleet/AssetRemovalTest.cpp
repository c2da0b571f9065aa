#include "fleet/AssetRemoval.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/OtherUser.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kReadings = "The item has odometer entries. Continue?";
constexpr const char* kTransactions = "The item has maintenance entries. Continue?";
constexpr const char* kSure = "Are you sure you want to delete this record?";
constexpr const char* kWarning =
    "WARNING: Accumulating rermoved Asset costs into the Deleted Asset in not yet functional. "
    "This data will be permanently lost.";

/// The asset V1 with ID 7 and rows in every table that has its code, and the asset V2 with ID 8.
class AssetRemovalTest : public testing::Test {
 protected:
  AssetRemovalTest() {
    for (const std::string code : {"V1", "V2"}) {
      const std::string id = code == "V1" ? "7" : "8";
      fleet_.Run("INSERT INTO [Vehicles] ([ID], [Asset ID]) VALUES (" + id + ", '" + code + "')");
      for (const char* table : {"Odometer Entries", "Maintenance Schedule", "Performed Scheduled Maintenance",
                                "Assets Period Costs", "Assets Annual Costs", "Assets Lifetime Costs"}) {
        fleet_.Run("INSERT INTO [" + std::string(table) + "] ([Asset ID]) VALUES ('" + code + "')");
      }
      fleet_.Run(
          "INSERT INTO [Maintenance Transactions] ([Asset ID], [Transaction Date], [Type_ID]) VALUES ('" +
          code + "', #1/1/2026#, 0)");
    }
    fleet_.Run("INSERT INTO [Parameters] ([ID], [Deleted Inventory ID]) VALUES (1, 8)");
  }

  int CountOf(const std::string& table, const std::string& code) {
    return std::stoi(fleet_.Ask("SELECT COUNT(*) FROM [" + table + "] WHERE [Asset ID] = '" + code + "'"));
  }
  void ExpectQuestion(const char* text, Icon icon, Answer answer) {
    screen_->Expect(text, icon, Buttons::YesNo, answer);
  }
  void ExpectWhole(const std::string& code) {
    for (const char* table :
         {"Vehicles", "Odometer Entries", "Maintenance Schedule", "Performed Scheduled Maintenance",
          "Maintenance Transactions", "Assets Period Costs"}) {
      EXPECT_EQ(CountOf(table, code), 1) << table;
    }
  }

  test::OtherUser other_;  // forked before any data file is open
  test::SmallFleet fleet_;
  test::ScreenScript screen_;
};

TEST_F(AssetRemovalTest, RemovesTheAssetAndKeepsItsCosts) {
  ExpectQuestion(kReadings, Icon::Question, Answer::Yes);
  ExpectQuestion(kTransactions, Icon::Question, Answer::Yes);
  ExpectQuestion(kSure, Icon::None, Answer::Yes);
  screen_->Expect(kWarning, Icon::Information);
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 2), dw::RemovalResult::Removed);
  for (const char* table :
       {"Vehicles", "Odometer Entries", "Maintenance Schedule", "Performed Scheduled Maintenance"}) {
    EXPECT_EQ(CountOf(table, "V1"), 0) << table;
  }
  for (const char* table :
       {"Maintenance Transactions", "Assets Period Costs", "Assets Annual Costs", "Assets Lifetime Costs"}) {
    EXPECT_EQ(CountOf(table, "V1"), 1) << table;
  }
  ExpectWhole("V2");
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
}

TEST_F(AssetRemovalTest, EveryNoLeavesTheAssetWhole) {
  ExpectQuestion(kReadings, Icon::Question, Answer::No);
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 2), dw::RemovalResult::Refused);

  ExpectQuestion(kReadings, Icon::Question, Answer::Yes);
  ExpectQuestion(kTransactions, Icon::Question, Answer::No);
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 2), dw::RemovalResult::Refused);

  ExpectQuestion(kReadings, Icon::Question, Answer::Yes);
  ExpectQuestion(kTransactions, Icon::Question, Answer::Yes);
  ExpectQuestion(kSure, Icon::None, Answer::No);
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 2), dw::RemovalResult::Refused);
  ExpectWhole("V1");

  // Without readings and transactions there is one question.
  fleet_.Run("INSERT INTO [Vehicles] ([ID], [Asset ID]) VALUES (9, 'NEW')");
  ExpectQuestion(kSure, Icon::None, Answer::No);
  EXPECT_EQ(dw::RemoveAsset(9, "NEW", 3), dw::RemovalResult::Refused);
  EXPECT_EQ(CountOf("Vehicles", "NEW"), 1);
}

TEST_F(AssetRemovalTest, RefusesWhatCannotBeRemoved) {
  // The check for the reserved asset comes before all others.
  screen_->Expect("This ID is reserved for deleted assets.\rIt cannot be removed.", Icon::Information);
  EXPECT_EQ(dw::RemoveAsset(8, "V2", 0), dw::RemovalResult::Refused);

  screen_->Expect("There are no records for which to display detail.", Icon::None);
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 0), dw::RemovalResult::Refused);

  // Another user has removed the asset since the list was read.
  ExpectQuestion(kSure, Icon::None, Answer::Yes);
  screen_->Expect("That ID is no longer on file.", Icon::Exclamation);
  EXPECT_EQ(dw::RemoveAsset(99, "V99", 2), dw::RemovalResult::Refused);

  // The code is not quoted, so an apostrophe breaks the first query.
  fleet_.Run("INSERT INTO [Vehicles] ([ID], [Asset ID]) VALUES (9, 'O''BRIEN')");
  screen_->ExpectPart("Unknown error", Icon::Critical);
  EXPECT_EQ(dw::RemoveAsset(9, "O'BRIEN", 3), dw::RemovalResult::Refused);
  EXPECT_EQ(CountOf("Vehicles", "O''BRIEN"), 1);
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
  ExpectWhole("V1");
  ExpectWhole("V2");
}

/// A table, and the text of the box when another user holds the asset's row in it.
class HeldRemovalTest : public AssetRemovalTest,
                        public testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(HeldRemovalTest, ARowHeldElsewhereLeavesTheAssetWhole) {
  const auto [table, words] = GetParam();
  other_.Hold(fleet_.Path("DW.MDB"), "SELECT * FROM [" + std::string(table) + "] WHERE [Asset ID] = 'V1'");
  const auto expectRun = [&] {
    ExpectQuestion(kReadings, Icon::Question, Answer::Yes);
    ExpectQuestion(kTransactions, Icon::Question, Answer::Yes);
    ExpectQuestion(kSure, Icon::None, Answer::Yes);
  };
  expectRun();
  screen_->Expect(words, Icon::Information);
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 2), dw::RemovalResult::RolledBack);
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
  ExpectWhole("V1");

  other_.Leave();
  expectRun();
  screen_->Expect(kWarning, Icon::Information);
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 2), dw::RemovalResult::Removed);
}

INSTANTIATE_TEST_SUITE_P(
    EachTable, HeldRemovalTest,
    testing::Values(
        std::pair("Odometer Entries", "Unable to remove asset's odometer readings. Removal cancelled."),
        std::pair("Maintenance Schedule", "Unable to remove asset's maintenance entries. Removal cancelled."),
        std::pair("Performed Scheduled Maintenance",
                  "Unable to remove asset's scheduled maintenance. Removal cancelled.")));

TEST_F(AssetRemovalTest, AnAssetHeldInItsWindowIsWaitedFor) {
  other_.Hold(fleet_.Path("DW.MDB"), "SELECT * FROM [Vehicles] WHERE [ID] = 7");
  ExpectQuestion(kReadings, Icon::Question, Answer::Yes);
  ExpectQuestion(kTransactions, Icon::Question, Answer::Yes);
  ExpectQuestion(kSure, Icon::None, Answer::Yes);
  screen_->Expect(kWarning, Icon::Information);
  screen_->onSleep = [&](int) {
    if (screen_->SleepCount() == 3) other_.Leave();
  };
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 2), dw::RemovalResult::Removed);
  EXPECT_GE(screen_->SleepCount(), 3);
  EXPECT_EQ(CountOf("Odometer Entries", "V1"), 0) << "writes again what it rolled back for the wait";
}

/// Fails a removal that waits on although no wait can cure the error.
void EndAfterWaits(test::ScreenScript& screen, int most) {
  screen->onSleep = [&screen, most](int) {
    if (screen->SleepCount() > most) throw std::runtime_error("the removal does not end");
  };
}

TEST_F(AssetRemovalTest, AnAssetThatAnotherUserDeletesMeanwhileEndsTheRemoval) {
  ExpectQuestion(kReadings, Icon::Question, Answer::Yes);
  ExpectQuestion(kTransactions, Icon::Question, Answer::Yes);
  ExpectQuestion(kSure, Icon::None, Answer::Yes);
  screen_->Expect(kWarning, Icon::Information);
  screen_->ExpectPart("Unknown error #3167 during record delete.", Icon::Critical);
  screen_->onBox = [&](const screen::Box& box) {
    if (box.text != kWarning) return;
    EXPECT_EQ(other_.Run(fleet_.Path(), "DELETE * FROM [Vehicles] WHERE [ID] = 7"), "done");
  };
  EndAfterWaits(screen_, 3);
  EXPECT_EQ(dw::RemoveAsset(7, "V1", 2), dw::RemovalResult::RolledBack);
  EXPECT_EQ(CountOf("Odometer Entries", "V1"), 1) << "what the removal had deleted is back";
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
  ExpectWhole("V2");
}

TEST_F(AssetRemovalTest, AReadingThatAnotherUserAddsMeanwhileDoesNotKeepTheRemovalWaiting) {
  ExpectQuestion(kReadings, Icon::Question, Answer::Yes);
  ExpectQuestion(kTransactions, Icon::Question, Answer::Yes);
  ExpectQuestion(kSure, Icon::None, Answer::Yes);
  screen_->Expect(kWarning, Icon::Information);
  std::string added;
  screen_->onBox = [&](const screen::Box& box) {
    if (box.text != kWarning) return;
    added = other_.Run(fleet_.Path(), "INSERT INTO [Odometer Entries] ([Asset ID]) VALUES ('V1')");
    // If the store accepts the reading, the removal finds other rows than it prepared for, and reports that.
    if (added == "done") screen_->ExpectPart("Unknown error #3197 during record delete.", Icon::Critical);
  };
  EndAfterWaits(screen_, 3);
  const dw::RemovalResult result = dw::RemoveAsset(7, "V1", 2);
  if (added == "done") {
    EXPECT_EQ(result, dw::RemovalResult::RolledBack);
    EXPECT_EQ(CountOf("Odometer Entries", "V1"), 2);
    EXPECT_EQ(CountOf("Vehicles", "V1"), 1);
  } else {
    EXPECT_EQ(result, dw::RemovalResult::Removed) << added;
    EXPECT_EQ(CountOf("Odometer Entries", "V1"), 0);
  }
}

}  // namespace
