#include "fleet/ScheduleLines.h"

#include <gtest/gtest.h>

#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

class ScheduleLinesTest : public testing::Test {
 protected:
  std::int32_t Line(const char* asset, const rt::Value& lineItem) {
    return fleet_.Add("Maintenance Schedule", {{"Asset ID", asset}, {"Line Item", lineItem}});
  }

  test::SmallFleet fleet_;
  test::ScreenScript screen_;
};

TEST_F(ScheduleLinesTest, TheNextNumberStandsAboveTheHighestOfTheAsset) {
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 1);
  Line("V2", 9);
  Line("O'BRIEN", rt::Null{});
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 1);
  Line("O'BRIEN", 5);
  Line("O'BRIEN", 2);
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 6) << "what lies between is not used again";
  fleet_.Run("DELETE * FROM [Maintenance Schedule] WHERE [Line Item] = 5");
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 3);

  for (const int lineItem : {1, 2, 0, 32767}) Line("O'BRIEN", lineItem);
  EXPECT_EQ(dw::NextLineItem("O'BRIEN"), 3) << "nothing is above the highest";
}

TEST_F(ScheduleLinesTest, ANumberIsInUseByAnotherLineOfTheSameAsset) {
  const std::int32_t first = Line("V1", 1);
  const std::int32_t second = Line("V1", 2);
  Line("V2", 3);
  EXPECT_FALSE(dw::LineItemInUse("V1", 2, second)) << "its own";
  EXPECT_TRUE(dw::LineItemInUse("V1", 2, first));
  EXPECT_FALSE(dw::LineItemInUse("V1", 3, first)) << "another asset's";
}

}  // namespace
