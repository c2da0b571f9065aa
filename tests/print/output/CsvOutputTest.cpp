#include <gtest/gtest.h>

#include <filesystem>

#include "platform/print/output/Outputs.h"
#include "print/SampleReport.h"
#include "support/TempDirectory.h"

namespace print {
namespace {

using Records = std::vector<std::vector<std::string>>;

std::string AsCsv(const PageStore& pages) {
  const test::TempDirectory directory;
  EXPECT_TRUE(WriteOutput(pages, OutputFormat::Csv, directory.Path("a.csv"), {}, {}));
  return test::ReadFile(directory.Path("a.csv"));
}

/// Reads as RFC 4180 says; a fault of the form is a record "fault".
Records Read(std::string text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  Records records;
  std::vector<std::string> record;
  for (std::size_t i = 0; i < text.size();) {
    std::string field;
    if (text[i] == '"') {
      for (++i; i < text.size() && (text[i] != '"' || text.compare(i, 2, "\"\"") == 0); ++i) {
        if (text[i] == '"') ++i;
        field.push_back(text[i]);
      }
      ++i;
    } else {
      while (i < text.size() && text[i] != ',' && text[i] != '\r') field.push_back(text[i++]);
      if (field.find_first_of("\"\n") != std::string::npos) return {{"fault"}};
    }
    record.push_back(field);
    if (i < text.size() && text[i] == ',') {
      if (text.compare(++i, 2, "\r\n") == 0) record.emplace_back();
      if (text.compare(i, 2, "\r\n") != 0) continue;
    }
    if (text.compare(i, 2, "\r\n") != 0) return {{"fault"}};
    i += 2;
    records.push_back(record);
    record.clear();
  }
  return records;
}

TEST(CsvOutput, HasARecordForEachRowWithItsGroups) {
  test::SampleReport report;
  test::FillSample(report);
  EXPECT_EQ(Read(AsCsv(report.Finish())),
            (Records{{"Class", "Date", "Notes", "Miles", "Cost", "Details"},
                     {"Trucks & <Vans>", "2026-03-01", "Oil \"changed\"; 5,5 l {5W-30} \\ done", "1234",
                      "1234.5", "Filter, seal; Brake \u00fc"},
                     {"Trucks & <Vans>", "2026-03-01", "'=HYPERLINK(\"x\")", "10", "-20", ""},
                     {"Trucks & <Vans>", "2026-03-01",
                      "\u00dcberpr\u00fcfung \u8eca\u4e21 \u05e9\u05dc\u05d5\u05dd", "0", "5", ""},
                     {"Wagons", "2026-12-31",
                      "Two lines of notes that do not fit into the width of the column", "7", "1", ""}}));
}

TEST(CsvOutput, TextsNeverBecomeFormulas) {
  test::SampleReport report;
  const std::vector<std::pair<std::string, std::string>> texts{{"=1+1", "'=1+1"},
                                                               {"+1+1", "'+1+1"},
                                                               {"@SUM(A1)", "'@SUM(A1)"},
                                                               {"-2+3", "'-2+3"},
                                                               {"-12.50", "-12.50"},
                                                               {"-", "-"},
                                                               {"--", "'--"},
                                                               {"a=1", "a=1"},
                                                               {"'x", "'x"},
                                                               {"\t=1+1", "' =1+1"},
                                                               {"a\r\nb", "a\nb"},
                                                               {" x ", " x "},
                                                               {"", ""}};
  for (const auto& [text, shown] : texts) report.Row(rt::DateTime(2026, 1, 2), text, 1, "-5", "($5.00)");
  const Records records = Read(AsCsv(report.Finish()));
  ASSERT_EQ(records.size(), texts.size() + 1);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(records[i + 1][1], texts[i].second);
    EXPECT_EQ(records[i + 1][3], "-5");
  }
}

TEST(CsvOutput, KeysOfInnerGroupsEndWithTheOuterGroup) {
  test::SampleReport report;
  const rt::DateTime day(2026, 1, 2, 15, 4, 5);
  report.Group(0, "Division:", "North");
  report.Group(1, "", "B1");
  report.Row(day, "a", 1, "1", "$1.00");
  report.Group(0, "Division:", "South");
  report.Row(day, "b", 1, "1", "$1.00");
  EXPECT_EQ(Read(AsCsv(report.Finish())), (Records{{"Division", "Group 2", "Date", "Notes", "Miles", "Cost"},
                                                   {"North", "B1", "2026-01-02 15:04:05", "a", "1", "1"},
                                                   {"South", "", "2026-01-02 15:04:05", "b", "1", "1"}}));
}

TEST(CsvOutput, HasTheSumsOfTheGroupsWhereRowsAreHidden) {
  test::SampleReport report;
  report.Group(0, "Class:", "Trucks");
  report.Total(0, "12.3456", "$12.35");
  report.Group(0, "Class:", "Wagons");
  report.Total(0, "-1", "($1.00)");
  report.Total(-1, "11.3456", "$11.35");
  EXPECT_EQ(Read(AsCsv(report.Finish())), (Records{{"Class", "Date", "Notes", "Miles", "Cost"},
                                                   {"Trucks", "", "", "", "12.3456"},
                                                   {"Wagons", "", "", "", "-1"}}));
}

TEST(CsvOutput, FreeCellsBelowAHeadingAreItsColumn) {
  test::SampleReport report;
  report.Row(rt::DateTime(2026, 1, 2), "a", 1, "1", "$1.00");
  report.Last().cells.front() =
      test::TextCell(36 * test::kPt, report.Last().box.top, 60 * test::kPt, "BUS-1");
  // A row of a form that people fill in.
  report.Row(rt::DateTime(2026, 1, 2), "", 1, "1", "$1.00");
  for (Cell& cell : report.Last().cells) {
    cell.lines = {""};
    cell.value = {};
  }
  report.Last().cells.erase(report.Last().cells.begin());
  EXPECT_EQ(AsCsv(report.Finish()), "Date,Notes,Miles,Cost\r\nBUS-1,a,1,1\r\n");
}

TEST(CsvOutput, IsMarkedOnlyWhereItMustBe) {
  test::SampleReport plain;
  plain.Row(rt::DateTime(2026, 1, 2), "plain", 1, "1", "$1.00");
  EXPECT_EQ(AsCsv(plain.Finish()), "Date,Notes,Miles,Cost\r\n2026-01-02,plain,1,1\r\n");
  test::SampleReport marked;
  marked.Row(rt::DateTime(2026, 1, 2), "\u00fc", 1, "1", "$1.00");
  EXPECT_TRUE(AsCsv(marked.Finish())
                  .starts_with("\xEF\xBB\xBF"
                               "Date"));
  test::SampleReport empty;
  EXPECT_EQ(AsCsv(empty.Finish()), "Date,Notes,Miles,Cost\r\n");
}

TEST(CsvOutput, HostilePagesGiveRecordsOfOneLength) {
  PageStore pages({});
  test::RandomPages random(41);
  for (int page = 0; page < 200; ++page) pages.Append(random.Next());
  pages.Finish();
  const Records records = Read(AsCsv(pages));
  ASSERT_GT(records.size(), 50U);
  for (const auto& record : records) ASSERT_EQ(record.size(), records.front().size());
}

}  // namespace
}  // namespace print
