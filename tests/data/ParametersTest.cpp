#include "data/Parameters.h"

#include <gtest/gtest.h>

#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using rt::DateTime;

TEST(Parameters, AreEmptyUntilTheyAreSet) {
  test::SmallFleet fleet;
  test::ScreenScript script;
  const DateTime none(1800, 1, 1);
  EXPECT_EQ(dw::GetCloseOutDate(), none);
  EXPECT_EQ(dw::GetDeletedInventoryID(), 0);
  EXPECT_FALSE(dw::InternalFuelAvailable());

  fleet.Add("Parameters", {{"ID", 1}});
  EXPECT_EQ(dw::GetCloseOutDate(), none);
  EXPECT_EQ(dw::GetDeletedInventoryID(), 0);
  EXPECT_FALSE(dw::InternalFuelAvailable());

  fleet.Run(
      "UPDATE [Parameters] SET [Transaction Close Out Date] = #2/1/2026#, [Deleted Inventory ID] = 70000, "
      "[Internal_Fuel_Available] = TRUE");
  EXPECT_EQ(dw::GetCloseOutDate(), DateTime(2026, 2, 1));
  EXPECT_EQ(dw::GetDeletedInventoryID(), 70000);
  EXPECT_TRUE(dw::InternalFuelAvailable());
}

}  // namespace
