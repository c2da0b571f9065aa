#include "fleet/AssetChildren.h"

#include <gtest/gtest.h>

#include "support/OtherUser.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kRemove = "Are you sure you want to remove this entry?";
constexpr const char* kGone = "That ID is no longer on file.";

struct Kind {
  const char* table;
  bool (*take)(std::int32_t id);
  const char* question;
};

class AssetChildrenTest : public testing::Test {
 protected:
  std::int32_t Row(const std::string& table) {
    if (table == "Maintenance Transactions") return fleet_.AddTransaction("V1", 2026, 3);
    return fleet_.Add(table, {{"Asset ID", "V1"}});
  }
  std::string Count(const std::string& table) { return fleet_.Ask("SELECT COUNT(*) FROM [" + table + "]"); }
  void Expect(const char* question, Answer answer) {
    screen_->Expect(question, Icon::Question, Buttons::YesNo, answer);
  }

  test::OtherUser other_;
  test::SmallFleet fleet_;
  test::ScreenScript screen_;
};

class EachKindTest : public AssetChildrenTest, public testing::WithParamInterface<Kind> {};

TEST_P(EachKindTest, OneRowGoesAfterAYes) {
  const auto [table, take, question] = GetParam();
  const std::int32_t id = Row(table);
  Row(table);
  Expect(question, Answer::No);
  EXPECT_FALSE(take(id));
  EXPECT_EQ(Count(table), "2");

  other_.Hold(fleet_.Path(), "SELECT * FROM [" + std::string(table) + "] WHERE [ID] = " + std::to_string(id));
  Expect(question, Answer::Yes);
  screen_->onSleep = [&](int) {
    if (screen_->SleepCount() == 2) other_.Leave();
  };
  EXPECT_TRUE(take(id));
  EXPECT_GE(screen_->SleepCount(), 2) << "a row that another user holds is waited for";
  EXPECT_EQ(Count(table), "1");

  // The grid still shows it.
  Expect(question, Answer::Yes);
  screen_->Expect(kGone, Icon::Exclamation);
  EXPECT_TRUE(take(id));
  EXPECT_EQ(Count(table), "1");
}

INSTANTIATE_TEST_SUITE_P(All, EachKindTest,
                         testing::Values(Kind{"Maintenance Transactions", dw::RemoveTransaction, kRemove},
                                         Kind{"Odometer Entries", dw::RemoveReading, kRemove},
                                         Kind{"Maintenance Schedule", dw::DeleteScheduleLine,
                                              "Are you sure you want to delete this record?"}));

TEST_F(AssetChildrenTest, RecurringMaintenanceKeepsItsTransaction) {
  const std::int32_t id = Row("Maintenance Transactions");
  const std::int32_t bare = Row("Maintenance Transactions");
  fleet_.Add("Maintenance_Performed", {{"Maintenance_Entry_ID", id}, {"Maintenance_Type_ID", 1}});
  screen_->Expect("That Maintenance Entry has recurring maintenance entries which must be removed first.",
                  Icon::Information);
  EXPECT_FALSE(dw::RemoveTransaction(id));
  EXPECT_EQ(Count("Maintenance Transactions"), "2");
  Expect(kRemove, Answer::Yes);
  EXPECT_TRUE(dw::RemoveTransaction(bare));
}

}  // namespace
