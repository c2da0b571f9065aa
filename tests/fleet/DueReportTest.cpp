#include "fleet/DueReport.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
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
  long FilesInProgramDirectory() const {
    return std::distance(std::filesystem::directory_iterator(program_.Path()), {});
  }

  void OtherToolRuns(const std::string& sql) const {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(fleet_.Path().c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
  }

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
  EXPECT_EQ(FilesInProgramDirectory(), 1);

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

  // The window has hyphens between the head and the items, the report an empty line.
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

TEST_F(DueReportTest, AnAssetThatAnotherUserRenamesMeanwhileKeepsItsFacts) {
  fleet_.Asset("V1", "#2/1/2025#");
  fleet_.Line("V1", "0", "1", "NULL");
  fleet_.Asset("V2", "#2/1/2025#");
  fleet_.Reading("V2", "#3/1/2026#", "9000");
  const std::string path = dw::WriteDueReport(program_.Path(), "3/29/2026", "500", [&](const dw::DueItem&) {
    fleet_.Run("UPDATE [Vehicles] SET [Asset ID] = 'W2' WHERE [Asset ID] = 'V2'");
    fleet_.Run("UPDATE [Odometer Entries] SET [Asset ID] = 'W2' WHERE [Asset ID] = 'V2'");
  });
  EXPECT_NE(path, "");
  EXPECT_NE(Log().find("Asset ID: W2\r\nTruck\r\nLatest mileage on file is 9000 on 3/1/2026\r\n"),
            std::string::npos)
      << Log();
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
  // Without a schedule line, the report converts nothing.
  EXPECT_NE(Write("someday", ""), "");
  EXPECT_NE(Log().find("Items due in the next  mile(s) or by someday\r\n"), std::string::npos);

  // If a run breaks off, the earlier log stays and the run leaves nothing.
  const std::string earlier = Log();
  fleet_.Line("V1", "1", "12", "100");
  screen_->Expect("The date 'someday' is not a valid date.\rNo maintenance report was written.",
                  screen::Icon::Critical);
  EXPECT_EQ(Write("someday"), "");
  EXPECT_EQ(Log(), earlier);
  for (const std::string usage : {"", "1.2.3", "1E39"}) {
    screen_->Expect("The usage '" + usage + "' is not a valid number.\rNo maintenance report was written.",
                    screen::Icon::Critical);
    EXPECT_EQ(Write("3/29/2026", usage), "");
    EXPECT_EQ(Log(), earlier);
    EXPECT_EQ(FilesInProgramDirectory(), 1);
  }
}

TEST_F(DueReportTest, AnAssetThatCannotBeAnalyzedCostsOnlyItself) {
  fleet_.Type(1, "Inspection");
  for (const char* code : {"A1", "O''BRIEN", "P1", "V1"}) {
    fleet_.Asset(code, "#2/1/2025#");
    fleet_.Line(code, "1", "12", "NULL");
  }
  // A value of the wrong type, as other tools write it.
  fleet_.Reading("P1", "#3/1/2026#", "10");
  OtherToolRuns("UPDATE \"Odometer Entries\" SET \"Date\" = 'soon'");
  screen_->Expect("What is due could not be worked out for these assets. The report says why.\r\rO'BRIEN\rP1",
                  screen::Icon::Exclamation);
  EXPECT_NE(Write(), "");
  const std::string good =
      "\r\nTruck\r\nLatest mileage on file is 0 on 2/1/2025\r\n\r\nInspection due on 2/1/2026\r\n";
  const std::string rule = "-----------------------\r\n";
  std::string log = Log();
  // The line ends with the engine's words about the code.
  const auto words = log.find("ERROR: A text is not closed");
  ASSERT_NE(words, std::string::npos) << log;
  log.erase(words + 7, log.find("\r\n", words) - words - 7);
  EXPECT_EQ(log.substr(log.find(rule + "Asset ID")),
            rule + "Asset ID: A1" + good + rule + "Asset ID: O'BRIEN\r\nTruck\r\nERROR: \r\n" + rule +
                "Asset ID: P1\r\nTruck\r\nERROR: Type mismatch\r\n" + rule + "Asset ID: V1" + good + rule +
                "--- End of Schedule ---\r\n" + rule);
  ASSERT_EQ(items_.size(), 2U);
  EXPECT_EQ(items_[1].assetID, "V1");

  // The message names at most ten.
  for (int i = 10; i < 20; ++i) fleet_.Asset("B''" + std::to_string(i), "#2/1/2025#");
  screen_->ExpectPart("\rB'10\r", screen::Icon::Exclamation);
  EXPECT_NE(Write(), "");
  EXPECT_TRUE(screen_->Shown().back().text.ends_with("\rB'19\rand 2 more")) << screen_->Shown().back().text;
}

TEST_F(DueReportTest, ADataFileThatCannotBeReadEndsTheRun) {
  fleet_.Asset("A1", "#2/1/2025#");
  { std::ofstream(program_.Path("Maintenance Report.Log")) << "earlier"; }
  fleet_.Run("DROP TABLE [Maintenance Schedule]");
  screen_->ExpectPart("The analysis of asset 'A1' could not be finished.", screen::Icon::Critical);
  EXPECT_EQ(Write(), "");
  EXPECT_EQ(Log(), "earlier");
  EXPECT_EQ(FilesInProgramDirectory(), 1);
}

TEST_F(DueReportTest, AFileThatCannotBeWrittenLeavesNothingBehind) {
  fleet_.Asset("V1", "#2/1/2025#");
  for (int line = 0; line < 60; ++line) fleet_.Line("V1", "0", "1", "NULL");
  screen_->ExpectPart("Unable to write '/nowhere/at/all/Maintenance Report.Log'.", screen::Icon::Critical);
  EXPECT_EQ(dw::WriteDueReport("/nowhere/at/all", "3/29/2026", "500"), "");

  // Like a full disk, the limit lets the first bytes through.
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
  EXPECT_EQ(Log(), "earlier");
  EXPECT_EQ(FilesInProgramDirectory(), 1);
  EXPECT_NE(Write(), "");
  EXPECT_NE(Log(), "earlier");
}

}  // namespace
