#include "fleet/DueReport.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "platform/runtime/Clock.h"
#include "support/DueFleet.h"
#include "support/ScreenScript.h"

namespace {

class DueReportTest : public testing::Test {
 protected:
  std::string Write(const std::string& dueBy = "3/29/2026", const std::string& usage = "500") {
    return dw::WriteDueReport(program_.Path(), dueBy, usage,
                              [this](const dw::DueItem& item) { items_.push_back(item); });
  }
  std::string Log() const {
    std::ifstream file(program_.Path("Maintenance Report.Log"), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }
  bool ProgramDirectoryIsEmpty() const { return std::filesystem::is_empty(program_.Path()); }

  rt::FixedClock clock_{rt::DateTime(2026, 3, 15, 10, 30, 0)};
  test::DueFleet fleet_;
  test::ScreenScript screen_;
  test::TempDirectory program_;
  std::vector<dw::DueItem> items_;
};

TEST_F(DueReportTest, WritesABlockForEachAssetInServiceAndReplacesTheLog) {
  fleet_.Type(1, "Inspection");
  fleet_.Type(2, "Oil Change");
  fleet_.Asset("V2", "#2/1/2025#", "NULL");
  fleet_.Line("V2", "1", "12", "100");
  fleet_.Line("V2", "2", "NULL", "400.0");
  fleet_.Asset("V3", "#2/1/2025#", "'Retired'", true);
  fleet_.Asset("V1", "NULL", "'Van, the old one'");
  { std::ofstream(program_.Path("Maintenance Report.Log")) << std::string(5000, 'x'); }

  EXPECT_EQ(Write(), program_.Path("Maintenance Report.Log"));
  EXPECT_EQ(Log(),
            "Maintenance Schedule as of 3/15/2026 10:30:00 AM\r\n"
            "-----------------------\r\n"
            "Items due in the next 500 mile(s) or by 3/29/2026\r\n"
            "-----------------------\r\n"
            "\r\n"
            "-----------------------\r\n"
            "Asset ID: V1\r\n"
            "Van, the old one\r\n"
            "ERROR: Purchase date missing.\r\n"
            "Latest mileage on file is 0 on 3/15/2026\r\n"
            "\r\n"
            "There are no scheduled maintenance items to analyze.\r\n"
            "-----------------------\r\n"
            "Asset ID: V2\r\n"
            "Null\r\n"
            "Latest mileage on file is 0 on 2/1/2025\r\n"
            "\r\n"
            "Inspection due on 2/1/2026\r\n"
            "Oil Change due on mileage 400\r\n"
            "-----------------------\r\n"
            "--- End of Schedule ---\r\n"
            "-----------------------\r\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(program_.Path()), {}), 1);

  ASSERT_EQ(items_.size(), 2U);
  EXPECT_EQ(items_[0].assetID, "V2");
  EXPECT_EQ(items_[0].type, "Inspection");
  EXPECT_TRUE(items_[0].byDate);
  EXPECT_EQ(items_[0].nextDate, rt::DateTime(2026, 2, 1));
  EXPECT_EQ(items_[1].type, "Oil Change");
  EXPECT_FALSE(items_[1].byDate);
  EXPECT_EQ(items_[1].nextMileage, 400.0F);
}

TEST_F(DueReportTest, SaysOfAnAssetWhatItsWindowSays) {
  fleet_.Type(1, "Inspection");
  fleet_.Type(2, "Oil Change");
  fleet_.Asset("V1", "NULL");
  fleet_.Reading("V1", "#3/10/2026#", "9000.9");
  fleet_.Line("V1", "1", "12", "5000");
  fleet_.Line("V1", "2", "3", "5000");
  fleet_.Line("V1", "2", "3", "NULL");
  fleet_.Transaction(1, "V1", "#3/2/2026#", "4500.5");
  fleet_.Performed(1, 1);
  fleet_.Transaction(2, "V1", "#12/31/2025#", "10.1");
  fleet_.Performed(2, 2);

  // The window parts the head from the items by hyphens, the report by an empty line.
  std::string window = dw::CalculateDue("V1", rt::DateTime(2026, 3, 31), 509.6F);
  window.erase(0, window.find('\n') + 1);
  const auto rule = window.find("-----------------------\r\n");
  ASSERT_NE(rule, std::string::npos);
  window.replace(rule, 25, "\r\n");

  Write("3/31/2026", "509.6");
  std::string block = Log();
  block.erase(0, block.find("Truck\r\n") + 7);
  block.erase(block.find("-----------------------\r\n--- End"));
  EXPECT_EQ(block, window);
  EXPECT_EQ(items_.size(), 3U) << window;
}

TEST_F(DueReportTest, AnAssetThatAnotherUserRemovesMeanwhileIsLeftOut) {
  for (const char* code : {"V1", "V2", "V3"}) {
    fleet_.Asset(code, "#2/1/2025#");
    fleet_.Line(code, "0", "1", "NULL");
  }
  const std::string path =
      dw::WriteDueReport(program_.Path(), "3/29/2026", "500", [&](const dw::DueItem& item) {
        if (item.assetID == "V1") fleet_.Run("DELETE * FROM [Vehicles] WHERE [Asset ID] = 'V2'");
      });
  EXPECT_NE(path, "");
  EXPECT_EQ(Log().find("Asset ID: V2"), std::string::npos);
  EXPECT_NE(Log().find("Asset ID: V3"), std::string::npos);
  EXPECT_NE(Log().find("--- End of Schedule ---"), std::string::npos);
}

TEST_F(DueReportTest, NoAssetInServiceTouchesNoFile) {
  fleet_.Asset("V3", "#2/1/2025#", "'Retired'", true);
  { std::ofstream(program_.Path("Maintenance Report.Log")) << "earlier"; }
  screen_->Expect("There are no assets in service to report.", screen::Icon::Information);
  EXPECT_EQ(Write("no date", ""), "");
  EXPECT_EQ(Log(), "earlier");
}

TEST_F(DueReportTest, TextsAreConvertedAtEachScheduleLine) {
  fleet_.Asset("V1", "#2/1/2025#");
  // Without a schedule line nothing is converted.
  EXPECT_NE(Write("someday", ""), "");
  EXPECT_NE(Log().find("Items due in the next  mile(s) or by someday\r\n"), std::string::npos);

  // A run that breaks off leaves neither its beginning nor the log of an earlier run.
  fleet_.Line("V1", "1", "12", "100");
  screen_->Expect("The date 'someday' is not a valid date.\rNo maintenance report was written.",
                  screen::Icon::Critical);
  EXPECT_EQ(Write("someday"), "");
  EXPECT_TRUE(ProgramDirectoryIsEmpty());
  for (const std::string usage : {"", "1.2.3", "1E39"}) {
    screen_->Expect("The usage '" + usage + "' is not a valid number.\rNo maintenance report was written.",
                    screen::Icon::Critical);
    EXPECT_EQ(Write("3/29/2026", usage), "");
    EXPECT_TRUE(ProgramDirectoryIsEmpty());
  }
}

TEST_F(DueReportTest, AnAssetThatCannotBeAnalysedEndsTheRun) {
  fleet_.Asset("A1", "#2/1/2025#");
  fleet_.Asset("O''BRIEN", "#2/1/2025#");
  screen_->ExpectPart("Unknown error", screen::Icon::Critical);
  screen_->Expect(
      "The analysis of asset 'O'BRIEN' could not be finished.\rNo maintenance report was written.",
      screen::Icon::Critical);
  EXPECT_EQ(Write(), "");
  EXPECT_TRUE(ProgramDirectoryIsEmpty());
}

TEST_F(DueReportTest, AFileThatCannotBeWrittenLeavesNothingBehind) {
  fleet_.Asset("V1", "#2/1/2025#");
  for (int line = 0; line < 60; ++line) fleet_.Line("V1", "0", "1", "NULL");
  screen_->ExpectPart("Unable to write '/nowhere/at/all/Maintenance Report.Log'.", screen::Icon::Critical);
  EXPECT_EQ(dw::WriteDueReport("/nowhere/at/all", "3/29/2026", "500"), "");

  // As a full disk does, the limit lets the first bytes through.
  { std::ofstream(program_.Path("Maintenance Report.Log")) << "earlier"; }
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit earlier{};
  getrlimit(RLIMIT_FSIZE, &earlier);
  rlimit small = earlier;
  small.rlim_cur = 1024;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  screen_->ExpectPart("No maintenance report was written.", screen::Icon::Critical);
  const std::string written = Write();
  setrlimit(RLIMIT_FSIZE, &earlier);
  EXPECT_EQ(written, "");
  EXPECT_TRUE(ProgramDirectoryIsEmpty());
  EXPECT_NE(Write(), "");
}

}  // namespace
