#include "fleet/ScheduleLines.h"

#include <gtest/gtest.h>

#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

TEST(ScheduleLinesTest, TheNextNumberStandsAboveTheHighestOfTheAsset) {
  test::SmallFleet fleet;
  test::ScreenScript screen;
  const auto line = [&](const char* asset, const rt::Value& lineItem) {
    fleet.Add("Maintenance Schedule", {{"Asset ID", asset}, {"Line Item", lineItem}});
  };
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 1);
  line("V2", 9);
  line("O'BRIEN", rt::Null{});
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 1);
  line("O'BRIEN", 5);
  line("O'BRIEN", 2);
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 6) << "what lies between is not used again";
  fleet.Run("DELETE * FROM [Maintenance Schedule] WHERE [Line Item] = 5");
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 3);
  for (const int lineItem : {1, 2, 0, 32767}) line("O'BRIEN", lineItem);
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 3) << "nothing is above the highest";
}

}  // namespace
