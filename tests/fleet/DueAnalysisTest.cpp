#include "fleet/DueAnalysis.h"

#include <gtest/gtest.h>

#include "platform/runtime/Clock.h"
#include "support/DueFleet.h"
#include "support/ScreenScript.h"

namespace {

const rt::DateTime kDueBy(2026, 3, 29);
const std::string kHead = "Maintenance Schedule as of 3/15/2026 10:30:00 AM\r\n";
const std::string kRule = "-----------------------\r\n";

class DueAnalysisTest : public testing::Test {
 protected:
  /// The text after the first line.
  std::string Due(const std::string& code, const rt::DateTime& dueBy, float usage) {
    const std::string text = dw::CalculateDue(code, dueBy, usage);
    EXPECT_EQ(text.substr(0, kHead.size()), kHead);
    return text.substr(std::min(kHead.size(), text.size()));
  }
  /// Only the items, of an analysis without messages.
  std::string Items(const std::string& code, const rt::DateTime& dueBy, float usage) {
    const std::string text = Due(code, dueBy, usage);
    const auto rule = text.find(kRule);
    EXPECT_NE(rule, std::string::npos) << text;
    return text.substr(rule + kRule.size());
  }

  rt::FixedClock clock_{rt::DateTime(2026, 3, 15, 10, 30, 0)};
  test::DueFleet fleet_;
  test::ScreenScript screen_;
};

TEST_F(DueAnalysisTest, LatestMileageComesFromReadingsUnlessALaterTransactionStandsHigher) {
  const std::string none = kRule + "There are no scheduled maintenance items to analyze.\r\n";
  fleet_.Asset("BARE", "#1/10/2025#");
  EXPECT_EQ(Due("BARE", kDueBy, 500), "Latest mileage on file is 0 on 1/10/2025\r\n" + none);

  fleet_.Asset("LOST", "NULL");
  EXPECT_EQ(Due("LOST", kDueBy, 500),
            "ERROR: Purchase date missing.\r\nLatest mileage on file is 0 on 3/15/2026\r\n" + none);

  // The newest reading counts, not the highest one; the Purchase Date doesn't matter then.
  fleet_.Asset("READ", "NULL");
  fleet_.Reading("READ", "#2/1/2026#", "9500");
  fleet_.Reading("READ", "#2/10/2026#", "9400.5");
  fleet_.Reading("OTHER", "#3/1/2026#", "1");
  EXPECT_EQ(Due("READ", kDueBy, 500), "Latest mileage on file is 9400.5 on 2/10/2026\r\n" + none);

  // A transaction of the same day does not count, even at a later hour. Neither does a higher mileage on an
  // earlier day.
  fleet_.Transaction(1, "READ", "#2/10/2026 3:00:00 PM#", "9600");
  EXPECT_EQ(Due("READ", kDueBy, 500), "Latest mileage on file is 9400.5 on 2/10/2026\r\n" + none);
  // Only the highest mileage counts, even if a later transaction has a lower one.
  fleet_.Transaction(2, "READ", "#2/20/2026#", "9550");
  EXPECT_EQ(Due("READ", kDueBy, 500), "Latest mileage on file is 9400.5 on 2/10/2026\r\n" + none);
  fleet_.Transaction(3, "READ", "#2/21/2026 8:05:00 AM#", "9601");
  EXPECT_EQ(Due("READ", kDueBy, 500), "Latest mileage on file is 9601 on 2/21/2026 8:05:00 AM\r\n" + none);

  // A transaction without mileage does not count.
  fleet_.Transaction(4, "BARE", "#3/1/2026#", "0");
  EXPECT_EQ(Due("BARE", kDueBy, 500), "Latest mileage on file is 0 on 1/10/2025\r\n" + none);
}

TEST_F(DueAnalysisTest, DateRuleCountsMonthsFromTheLastPerformanceOrThePurchase) {
  fleet_.Type(1, "Inspection");
  fleet_.Type(2, "Oil Change");
  fleet_.Asset("T1", "#1/10/2024#");
  fleet_.Line("T1", "1", "12", "NULL");
  EXPECT_EQ(Items("T1", kDueBy, 0), "Inspection due on 1/10/2025\r\n")
      << "the first anniversary, though long past";

  // A performance counts if it has a row in Maintenance_Performed, of this type and this asset.
  fleet_.Transaction(1, "T1", "#3/29/2025#", "0");
  EXPECT_EQ(Items("T1", kDueBy, 0), "Inspection due on 1/10/2025\r\n");
  fleet_.Performed(1, 2);
  fleet_.Transaction(2, "T2", "#3/20/2026#", "0");
  fleet_.Performed(2, 1);
  EXPECT_EQ(Items("T1", kDueBy, 0), "Inspection due on 1/10/2025\r\n");
  fleet_.Performed(1, 1);
  EXPECT_EQ(Items("T1", kDueBy, 0), "Inspection due on 3/29/2026\r\n") << "on the horizon's day";
  EXPECT_EQ(Items("T1", rt::DateTime(2026, 3, 28, 23, 59, 59), 0), "");

  // The last of several, the end of a month, and a time of day that the comparison ignores.
  fleet_.Transaction(3, "T1", "#10/31/2025 6:00:00 PM#", "0");
  fleet_.Performed(3, 2);
  fleet_.Line("T1", "2", "4", "NULL");
  EXPECT_EQ(Items("T1", rt::DateTime(2026, 2, 28), 0), "Oil Change due on 2/28/2026 6:00:00 PM\r\n");
  EXPECT_EQ(Items("T1", rt::DateTime(2026, 2, 27), 0), "");

  // Without a purchase date, the months count from today; a day beyond the calendar never comes.
  fleet_.Asset("T3", "NULL");
  fleet_.Reading("T3", "#3/1/2026#", "10");
  fleet_.Line("T3", "1", "1", "NULL");
  fleet_.Line("T3", "1", "1000000", "NULL");
  EXPECT_EQ(Items("T3", rt::DateTime(2026, 4, 15), 0), "Inspection due on 4/15/2026\r\n");
  EXPECT_EQ(Items("T3", rt::DateTime(2026, 4, 14), 0), "");
}

TEST_F(DueAnalysisTest, UsageRuleAddsTheFrequencyToTheMileageOfTheLastPerformance) {
  fleet_.Type(1, "Oil Change");
  fleet_.Asset("T1", "#1/10/2026#");
  fleet_.Line("T1", "1", "0", "10000");
  fleet_.Reading("T1", "#3/1/2026#", "9499.9");
  EXPECT_EQ(Items("T1", kDueBy, 500), "");
  fleet_.Reading("T1", "#3/2/2026#", "9500");
  EXPECT_EQ(Items("T1", kDueBy, 500), "Oil Change due on mileage 10000\r\n");

  fleet_.Transaction(1, "T1", "#2/1/2026#", "123.25");
  fleet_.Performed(1, 1);
  EXPECT_EQ(Items("T1", kDueBy, 500), "");
  EXPECT_EQ(Items("T1", kDueBy, 1000), "Oil Change due on mileage 10123.25\r\n");

  // A performance without a mileage counts from 0.
  fleet_.Transaction(2, "T1", "#2/2/2026#", "NULL");
  fleet_.Performed(2, 1);
  EXPECT_EQ(Items("T1", kDueBy, 500), "Oil Change due on mileage 10000\r\n");
}

TEST_F(DueAnalysisTest, ALineIsReportedOnceAndByDateFirst) {
  fleet_.Type(1, "Inspection");
  fleet_.Type(2, "Tires");
  fleet_.Asset("T1", "#1/10/2026#");
  fleet_.Reading("T1", "#3/1/2026#", "5000");
  fleet_.Line("T1", "2", "2", "5000");
  fleet_.Line("T1", "1", "3", "5000");
  fleet_.Line("T1", "0", "1", "NULL");
  fleet_.Line("T1", "NULL", "NULL", "100");
  fleet_.Line("T1", "1", "NULL", "NULL");
  fleet_.Line("T1", "1", "-1", "-1");
  EXPECT_EQ(Items("T1", kDueBy, 0),
            "Tires due on 3/10/2026\r\nInspection due on mileage 5000\r\n due on 2/10/2026\r\n due on "
            "mileage 100\r\n");
}

TEST_F(DueAnalysisTest, AssetThatIsNotOnFileLeavesTheTextEmpty) {
  screen_->Expect("Unable to find asset to report.\r\nThis should never happen.", screen::Icon::Information);
  EXPECT_EQ(dw::CalculateDue("GONE", kDueBy, 0), "");
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);

  // The query contains the code as it is, so an apostrophe breaks it.
  screen_->ExpectPart("Unknown error", screen::Icon::Critical);
  EXPECT_EQ(dw::CalculateDue("O'BRIEN", kDueBy, 0), "");
}

TEST_F(DueAnalysisTest, AScheduleThatCannotBeReadGivesNoHalfAnalysis) {
  fleet_.Asset("T1", "#1/10/2026#");
  fleet_.Run("DROP TABLE [Maintenance Schedule]");
  screen_->ExpectPart("Unknown error", screen::Icon::Critical);
  EXPECT_EQ(dw::CalculateDue("T1", kDueBy, 0), "");
}

}  // namespace
