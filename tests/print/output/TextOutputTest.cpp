#include <gtest/gtest.h>

#include "platform/print/PrintError.h"
#include "platform/print/output/Outputs.h"
#include "print/SampleReport.h"
#include "support/TempDirectory.h"

namespace print {
namespace {

std::string AsText(const PageStore& pages, const PageRange& range = {}) {
  const test::TempDirectory directory;
  EXPECT_TRUE(WriteOutput(pages, OutputFormat::Text, directory.Path("a.txt"), range, {}));
  return test::ReadFile(directory.Path("a.txt"));
}

/// A page with the cells alone.
std::string AsText(const std::vector<Cell>& cells) {
  PageStore pages({});
  Page page;
  page.bands.resize(1);
  page.bands.front().cells = cells;
  pages.Append(page);
  pages.Finish();
  return AsText(pages);
}

TEST(TextOutput, KeepsColumnsAlignedOverAllPages) {
  test::SampleReport report;
  test::FillSample(report);
  EXPECT_EQ(AsText(report.Finish()),
            test::ReadFile(std::string(DROVEWRIGHT_PRINT_CASES) + "/sample-report.txt"));
}

TEST(TextOutput, TakesTheRangeOfPages) {
  test::SampleReport report;
  for (int page = 2; page <= 5; ++page) {
    report.Inner("on page " + std::to_string(page - 1));
    report.BreakPage();
  }
  const PageStore& pages = report.Finish();
  const std::string two = AsText(pages, {2, 3});
  EXPECT_EQ(two.find("on page 1"), std::string::npos);
  EXPECT_NE(two.find("on page 2"), std::string::npos);
  EXPECT_NE(two.find("on page 3"), std::string::npos);
  EXPECT_EQ(two.find("on page 4"), std::string::npos);
  EXPECT_EQ(std::count(two.begin(), two.end(), '\f'), 1);
  EXPECT_NE(AsText(pages, {5, 99}).find("Page 5 of  5"), std::string::npos);
  EXPECT_THROW(AsText(pages, {6, 0}), PrintError);
  EXPECT_THROW(AsText(pages, {3, 2}), PrintError);
  EXPECT_THROW(AsText(PageStore({})), PrintError);
}

TEST(TextOutput, GivesEachTextItsRoom) {
  using test::TextCell;
  // Narrow boxes with long texts push what is right of them.
  EXPECT_EQ(AsText({TextCell(0, 0, 500, "a long text"), TextCell(1000, 0, 5000, "b"),
                    TextCell(0, 2000, 500, "c"), TextCell(1000, 2000, 5000, "right", -1, Align::Right)}),
            "a long text  b\n\nc            right\n");
  // Boxes that overlap lose nothing.
  EXPECT_EQ(AsText({TextCell(0, 0, 10000, "first"), TextCell(100, 0, 10000, "second")}), "first second\n");
  // Slightly different baselines are one row, different rows are not.
  EXPECT_EQ(AsText({TextCell(0, 100, 3000, "a"), TextCell(4000, 0, 3000, "b"), TextCell(0, 1100, 3000, "c")}),
            "a  b\nc\n");
  // East Asian letters take two columns, accents none.
  EXPECT_EQ(AsText({TextCell(0, 0, 3000, "\u8eca\u4e21"), TextCell(4000, 0, 3000, "b"),
                    TextCell(0, 1100, 3000, "e\u0301e"), TextCell(4000, 1100, 3000, "b")}),
            "\u8eca\u4e21  b\ne\u0301e    b\n");
  // Nothing that a console would obey, nothing that is not UTF-8.
  EXPECT_EQ(AsText({TextCell(0, 0, 3000, "a\x1b[2J\tb\xff")}), "a[2J b?\n");
  EXPECT_EQ(AsText(std::vector<Cell>{}), "");
}

}  // namespace
}  // namespace print
