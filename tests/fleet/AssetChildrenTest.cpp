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

struct Kind {
  const char* table;
  bool (*take)(std::int32_t id);
  const char* question;
};
const Kind kKinds[] = {
    {"Maintenance Transactions", dw::RemoveTransaction, kRemove},
    {"Odometer Entries", dw::RemoveReading, kRemove},
    {"Maintenance Schedule", dw::DeleteScheduleLine, "Are you sure you want to delete this record?"}};

TEST(AssetChildrenTest, OneRowGoesAfterAYes) {
  test::OtherUser other;
  test::SmallFleet fleet;
  test::ScreenScript screen;
  const auto take = [&](const Kind& kind, std::int32_t id, Answer answer) {
    screen->Expect(kind.question, Icon::Question, Buttons::YesNo, answer);
    return kind.take(id);
  };
  for (const Kind& kind : kKinds) {
    const std::string table = kind.table;
    const auto count = [&] { return fleet.Ask("SELECT COUNT(*) FROM [" + table + "]"); };
    const auto add = [&] {
      if (kind.take == dw::RemoveTransaction) return fleet.AddTransaction("V1", 2026, 3);
      return fleet.Add(table, {{"Asset ID", "V1"}});
    };
    const std::int32_t id = add();
    add();
    EXPECT_FALSE(take(kind, id, Answer::No));
    EXPECT_EQ(count(), "2") << table;

    if (kind.take == dw::RemoveTransaction) {
      other.Hold(fleet.Path(), "SELECT * FROM [" + table + "] WHERE [ID] = " + std::to_string(id));
      screen->onSleep = [&](int) {
        if (screen->SleepCount() == 2) other.Leave();
      };
    }
    EXPECT_TRUE(take(kind, id, Answer::Yes));
    EXPECT_EQ(screen->SleepCount(), 2) << "waits for a row that another user holds";
    EXPECT_EQ(count(), "1") << table;

    // The grid still shows the row.
    screen->Expect(kind.question, Icon::Question, Buttons::YesNo, Answer::Yes);
    screen->Expect("That ID is no longer on file.", Icon::Exclamation);
    EXPECT_TRUE(kind.take(id));
  }
}

TEST(AssetChildrenTest, RecurringMaintenanceKeepsItsTransaction) {
  test::SmallFleet fleet;
  test::ScreenScript screen;
  const std::int32_t id = fleet.AddTransaction("V1", 2026, 3);
  fleet.Add("Maintenance_Performed", {{"Maintenance_Entry_ID", id}, {"Maintenance_Type_ID", 1}});
  screen->Expect("That Maintenance Entry has recurring maintenance entries which must be removed first.",
                 Icon::Information);
  EXPECT_FALSE(dw::RemoveTransaction(id));
  EXPECT_EQ(fleet.Ask("SELECT COUNT(*) FROM [Maintenance Transactions]"), "1");
}

}  // namespace
