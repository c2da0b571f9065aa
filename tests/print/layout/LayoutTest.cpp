#include <gtest/gtest.h>

#include "platform/print/fonts/Fonts.h"
#include "print/layout/LayoutFixture.h"

namespace print::test {
namespace {

using Texts = std::vector<std::string>;

const Length kLineOfText = LineHeight(TextStyle{});

/// So many rows of one group, numbered from 1.
std::vector<Row> Numbered(int count, const std::string& outer = "A") {
  std::vector<Row> rows;
  for (int i = 1; i <= count; ++i) rows.push_back(MakeRow(outer, "", "", i, i * 100));
  return rows;
}

/// A page whose body has room for so many lines.
void SetLines(ReportDefinition& report, int lines) {
  // The paper is fixed; the margin below takes what is too much.
  report.marginBottom = 792 * kPoint - report.marginTop - lines * kLineOfText - kLineOfText / 2;
}

TEST(Layout, GroupsOpenInwardsAndCloseOutwardsWithTheirOwnSums) {
  ReportBuilder builder;
  builder.AddGroup("T.Outer", "'H1 ' & {T.Outer}",
                   "'F1 ' & {T.Outer} & ' ' & Sum({T.Money}) & ' ' & Count({T.Number})");
  builder.AddGroup("T.Middle", "'H2 ' & {T.Middle}", "'F2 ' & {T.Middle} & ' ' & Sum({T.Money})");
  ReportBuilder::Fill(builder.report.detail, {builder.Text("'D' & {T.Number}")});
  ReportBuilder::Fill(builder.report.reportFooter, {builder.Text("'All ' & Sum({T.Money})")});
  const Result result =
      LayOutRows(builder.report, {MakeRow("A", "x", "", 1, 100), MakeRow("a", "X", "", 2, 200),
                                  MakeRow("A", "y", "", 3, 400), MakeRow("B", "y", "", 4, 800)});
  // Keys that differ in case are one group, and the same inner key in another outer group is a new one.
  EXPECT_EQ(result.Bands(), (Texts{"H1 A", "H2 x", "D1", "D2", "F2 X 3", "H2 y", "D3", "F2 y 4", "F1 A 7 3",
                                   "H1 B", "H2 y", "D4", "F2 y 8", "F1 B 8 1", "All 15"}));
  ASSERT_EQ(result.store->Outline().size(), 5U);
  EXPECT_EQ(result.store->Outline()[1].title, "x");
  EXPECT_EQ(result.store->Outline()[1].level, 1);
}

TEST(Layout, TotalsStandWhereTheirRowsAreStillToCome) {
  ReportBuilder builder;
  builder.scope.groups = {"T.Outer"};
  builder.AddGroup("T.Outer", "{T.Outer} & ' has ' & Sum({T.Money}) & ' of ' & Sum({T.Money}, report)",
                   "Text(Percent({T.Money}), 'percent1')");
  ReportBuilder::Fill(builder.report.detail,
                      {builder.Text("{T.Number} & ' ' & Text(Percent({T.Money}), 'percent1') & ' ' & "
                                    "Running({T.Money}) & '/' & Sum({T.Money})")});
  const Result result =
      LayOutRows(builder.report,
                 {MakeRow("A", "", "", 1, 100), MakeRow("A", "", "", 2, 300), MakeRow("B", "", "", 3, 400)});
  EXPECT_EQ(result.Bands(), (Texts{"A has 4 of 8", "1 25.0% 1/4", "2 75.0% 4/4", "50.0%", "B has 4 of 8",
                                   "3 100.0% 4/4", "50.0%"}));
}

TEST(Layout, TotalsSkipNullAndKeepMoneyExact) {
  ReportBuilder builder;
  ReportBuilder::Fill(
      builder.report.reportFooter,
      {builder.Text("Sum({T.Money}) & '|' & Average({T.Money}) & '|' & Count({T.Money}) & '|' & "
                    "Minimum({T.Text}) & '|' & Maximum({T.Text}) & '|' & DistinctCount({T.Text}) & '|' & "
                    "First({T.Number}) & '|' & Last({T.Number})")});
  std::vector<Row> rows{MakeRow("", "", "", 1, 10, "b"), MakeRow("", "", "", 2, 20, "A"),
                        MakeRow("", "", "", 3, 0, "a")};
  rows[2][kMoney] = rt::Null();
  EXPECT_EQ(LayOutRows(builder.report, rows).Bands(), (Texts{"0.3|0.15|2|A|b|2|1|3"}));
  // Over nothing, a sum is 0.
  rows = {rows[2]};
  EXPECT_EQ(LayOutRows(builder.report, rows).Bands(), (Texts{"0||0|a|a|1|3|3"}));
}

TEST(Layout, PagesAreKnownAtLastAndPageSumsAtEachPage) {
  ReportBuilder builder;
  SetLines(builder.report, 4);
  ReportBuilder::Fill(builder.report.pageHeader,
                      {builder.Text("'Page ' & Page & ' of ' & Pages & ', ' & PageSum({T.Money})")});
  ReportBuilder::Fill(builder.report.detail, {builder.Text("{T.Number} & ' on ' & Page")});
  ReportBuilder::Fill(builder.report.pageFooter,
                      {builder.Text("PageSum({T.Money}) & ' so far ' & Running({T.Money})")});
  const Result result = LayOutRows(builder.report, Numbered(5));
  ASSERT_EQ(result.pages.size(), 3U);
  EXPECT_EQ(result.Bands(0), (Texts{"Page 1 of 3, 3", "1 on 1", "2 on 1", "3 so far 3"}));
  EXPECT_EQ(result.Bands(1), (Texts{"Page 2 of 3, 7", "3 on 2", "4 on 2", "7 so far 10"}));
  EXPECT_EQ(result.Bands(2), (Texts{"Page 3 of 3, 5", "5 on 3", "5 so far 15"}));
}

TEST(Layout, HeadersStayWithTheirRowsAndFootersWithTheirs) {
  ReportBuilder builder;
  SetLines(builder.report, 4);
  builder.AddGroup("T.Outer", "'H ' & {T.Outer} & If(Continued, ' (continued)', '')", "'F ' & {T.Outer}")
      .repeatHeader = true;
  ReportBuilder::Fill(builder.report.detail, {builder.Text("{T.Number}")});
  // The second header would be last but one on the first page, with one row of two.
  std::vector<Row> rows = Numbered(1, "A");
  for (const Row& row : Numbered(4, "B")) rows.push_back(row);
  const Result result = LayOutRows(builder.report, rows);
  ASSERT_EQ(result.pages.size(), 3U);
  EXPECT_EQ(result.Bands(0), (Texts{"H A", "1", "F A"}));
  EXPECT_EQ(result.Bands(1), (Texts{"H B", "1", "2", "3"}));
  EXPECT_EQ(result.Bands(2), (Texts{"H B (continued)", "4", "F B"}));
  EXPECT_TRUE(result.pages[2].bands[0].continued);
}

TEST(Layout, WholeGroupsMoveAndThoseThatAreTooLongAreReleased) {
  ReportBuilder builder;
  SetLines(builder.report, 5);
  builder.AddGroup("T.Outer", "'H ' & {T.Outer}", "").keep = Keep::WholeGroup;
  ReportBuilder::Fill(builder.report.detail, {builder.Text("{T.Number}")});
  std::vector<Row> rows = Numbered(3, "A");
  for (const Row& row : Numbered(2, "B")) rows.push_back(row);
  for (const Row& row : Numbered(7, "C")) rows.push_back(row);
  const Result result = LayOutRows(builder.report, rows);
  ASSERT_EQ(result.pages.size(), 4U);
  EXPECT_EQ(result.Bands(0), (Texts{"H A", "1", "2", "3"}));
  EXPECT_EQ(result.Bands(1), (Texts{"H B", "1", "2"}));
  EXPECT_EQ(result.Bands(2), (Texts{"H C", "1", "2", "3", "4"}));
  EXPECT_EQ(result.Bands(3), (Texts{"5", "6", "7"}));
}

TEST(Layout, ANewPageAfterEachGroupLeavesNoEmptyPage) {
  ReportBuilder builder;
  builder.AddGroup("T.Outer", "", "'F1'");
  builder.AddGroup("T.Middle", "", "'F2'");
  ReportBuilder::Fill(builder.report.detail, {builder.Text("{T.Number}")});
  LayoutOptions options;
  options.newPageAfterGroup = {false, true};
  const std::vector<Row> rows{MakeRow("A", "x", "", 1), MakeRow("A", "y", "", 2), MakeRow("B", "y", "", 3)};
  Result result = LayOutRows(builder.report, rows, options);
  ASSERT_EQ(result.pages.size(), 3U);
  // The outer footer stays with the group that it closes.
  EXPECT_EQ(result.Bands(1), (Texts{"2", "F2", "F1"}));
  EXPECT_EQ(result.Bands(2), (Texts{"3", "F2", "F1"}));
  ReportBuilder::Fill(builder.report.reportFooter, {builder.Text("'All'")});
  result = LayOutRows(builder.report, rows, options);
  ASSERT_EQ(result.pages.size(), 4U);
  EXPECT_EQ(result.Bands(3), (Texts{"All"}));
  // A group without a visible footer breaks all the same.
  builder.report.groups[1].footer.present = false;
  EXPECT_EQ(LayOutRows(builder.report, rows, options).pages.size(), 4U);
}

TEST(Layout, HiddenDetailsCountInSumsAndNotInKeeping) {
  ReportBuilder builder;
  SetLines(builder.report, 3);
  builder.AddGroup("T.Outer", "'H ' & {T.Outer}", "'F ' & Sum({T.Money})");
  ReportBuilder::Fill(builder.report.detail, {builder.Text("{T.Number}")});
  ReportBuilder::Fill(builder.report.pageFooter, {builder.Text("PageSum({T.Money})")});
  LayoutOptions options;
  options.hideDetails = true;
  std::vector<Row> rows = Numbered(5, "A");
  for (const Row& row : Numbered(2, "B")) rows.push_back(row);
  const Result result = LayOutRows(builder.report, rows, options);
  ASSERT_EQ(result.pages.size(), 2U);
  EXPECT_EQ(result.Bands(0), (Texts{"H A", "F 15", "15"}));
  EXPECT_EQ(result.Bands(1), (Texts{"H B", "F 3", "3"}));
}

TEST(Layout, ALongTextIsSplitBetweenItsLinesAndLosesNone) {
  ReportBuilder builder;
  SetLines(builder.report, 6);
  builder.AddGroup("T.Outer", "'H ' & {T.Outer} & If(Continued, ' again', '')", "").repeatHeader = true;
  ItemDefinition below = builder.Text("'below'", 0, 20 * kPoint);
  ReportBuilder::Fill(builder.report.detail,
                      {builder.Cell(2, "{T.Text}", true), builder.Cell(0, "{T.Number}"), below});
  std::string text;
  for (int i = 0; i < 200; ++i) text += "word" + std::to_string(i) + " ";
  const Result result =
      LayOutRows(builder.report, {MakeRow("A", "", "", 1, 0, text), MakeRow("A", "", "", 2, 0, "end")});
  ASSERT_GT(result.pages.size(), 4U);
  std::string shown;
  int numbers = 0;
  int belows = 0;
  for (const Page& page : result.pages)
    for (const PlacedBand& band : page.bands)
      for (const Cell& cell : band.cells) {
        EXPECT_LE(cell.box.top + cell.box.height, page.height - builder.report.marginBottom);
        if (cell.column == 2) shown += result.TextOf(cell) + " ";
        numbers += cell.column == 0 ? 1 : 0;
        belows += cell.column == -1 && result.TextOf(cell) == "below" ? 1 : 0;
      }
  EXPECT_EQ(shown, text + "end ");
  EXPECT_EQ(numbers, 2);
  EXPECT_EQ(belows, 2);
  EXPECT_TRUE(result.warnings.empty());
}

TEST(Layout, WhatCannotBeSplitIsCutWithAWarning) {
  ReportBuilder builder;
  SetLines(builder.report, 6);
  builder.report.styles.push_back({"huge", TextStyle{FontFace::Sans, 500 * kPoint, {}}, Align::Left, "", {}});
  ItemDefinition huge = builder.Text("{T.Number} & ''");
  huge.style = 3;
  ReportBuilder::Fill(builder.report.detail, {huge});
  const Result result = LayOutRows(builder.report, Numbered(3));
  EXPECT_EQ(result.pages.size(), 3U);
  ASSERT_EQ(result.warnings.size(), 1U);
  EXPECT_NE(result.warnings[0].find("page 1"), std::string::npos);
}

TEST(Layout, NumbersAreNeverCutOff) {
  ReportBuilder builder;
  builder.report.columns[1].width = 40 * kPoint;
  ReportBuilder::Fill(builder.report.detail, {builder.Cell(1, "{T.Money}")});
  const Result result = LayOutRows(builder.report, {MakeRow("", "", "", 1, -1234567890)});
  const Cell& cell = result.pages[0].bands[0].cells[0];
  EXPECT_EQ(cell.lines, Texts{"($12,345,678.90)"});
  EXPECT_LE(TextWidth(cell.style, cell.lines[0]), cell.box.width);
  EXPECT_EQ(cell.style.color, (Color{160, 0, 0}));
  EXPECT_LT(cell.style.size, 9 * kPoint);
}

TEST(Layout, ReportsWithoutRows) {
  ReportBuilder builder;
  ReportBuilder::Fill(builder.report.pageHeader, {builder.Text("{T.Link} & ' page ' & Page & '/' & Pages")});
  ReportBuilder::Fill(builder.report.detail, {builder.Cell(0, "{T.Number}")});
  ReportBuilder::Fill(builder.report.reportFooter, {builder.Text("'Sum'")});
  builder.report.emptyText = "No records meet the selection.";
  ReportRows none;
  none.blank.resize(kFieldCount);
  none.blank[kLink] = "City of Anywhere";
  EXPECT_EQ(LayOutRows(builder.report, none).Bands(),
            (Texts{"City of Anywhere page 1/1", "No records meet the selection."}));
  // Lines for writing fill the page, below the rows or without any, and leave room for the footer.
  builder.report.fillBlankRows = 1;
  builder.report.detail.minimumHeight = 20 * kPoint;
  const Texts blank = LayOutRows(builder.report, none).Bands();
  const Texts filled = LayOutRows(builder.report, Numbered(3)).Bands();
  EXPECT_GT(blank.size(), 30U);
  EXPECT_EQ(blank.back(), "Sum");
  EXPECT_EQ(filled[3], "3");
  EXPECT_EQ(filled.size(), blank.size());
}

TEST(Layout, SubreportsGrowBelowTheirRows) {
  ReportBuilder inner;
  ReportBuilder::Fill(inner.report.detail, {inner.Text("'task ' & {T.Text}", 10 * kPoint, 0, true)});
  ReportBuilder::Fill(inner.report.reportFooter, {inner.Text("Count({T.Number}) & ' tasks'")});
  ReportBuilder builder;
  ItemDefinition item;
  item.kind = ItemDefinition::Kind::Subreport;
  item.subreport = "Tasks";
  item.top = 11 * kPoint;
  ReportBuilder::Fill(builder.report.detail, {builder.Text("'row ' & {T.Number}"), item});
  SubreportDefinition tasks;
  tasks.name = "Tasks";
  tasks.report = std::make_shared<ReportDefinition>(inner.report);
  tasks.innerField = kNumber;
  tasks.outerField = kNumber;
  builder.report.subreports.push_back(tasks);
  ReportRows rows;
  for (const Row& row : Numbered(3)) rows.rows.Append(row);
  ReportRows::Inner all;
  all.rows = std::make_unique<ReportRows>();
  for (const auto& [number, text] : {std::pair(1, "oil"), std::pair(1, "filter"), std::pair(3, "tires")})
    all.rows->rows.Append(MakeRow("", "", "", number, 0, text));
  all.find = [](const rt::Value& value) -> std::pair<std::int64_t, std::int64_t> {
    const int number = value.AsLong();
    return number == 1 ? std::pair{0, 2} : number == 3 ? std::pair{2, 1} : std::pair{0, 0};
  };
  rows.subreports.push_back(std::move(all));
  const Result result = LayOutRows(builder.report, rows);
  EXPECT_EQ(result.Bands(), (Texts{"row 1", "task oil", "task filter", "2 tasks", "row 2", "row 3",
                                   "task tires", "1 tasks"}));
  const auto& bands = result.pages[0].bands;
  EXPECT_EQ(bands[1].subreport, 1);
  EXPECT_EQ(bands[1].cells[0].box.top - bands[0].cells[0].box.top, 11 * kPoint);
  EXPECT_GE(bands[4].box.top, bands[3].box.top + bands[3].box.height);
}

TEST(Layout, AFigureOfASubreportStandsInTheColumnOfItsName) {
  ReportBuilder inner;
  inner.report.columns = {{"Money", 0, 90 * kPoint, "", 2}};
  ReportBuilder::Fill(inner.report.reportFooter, {inner.Cell(0, "Count({T.Number})"), inner.Text("'free'")});
  ReportBuilder builder;
  ItemDefinition item;
  item.kind = ItemDefinition::Kind::Subreport;
  item.subreport = "Tasks";
  item.left = 70 * kPoint;
  ReportBuilder::Fill(builder.report.detail, {builder.Cell(0, "{T.Number}"), item});
  SubreportDefinition tasks;
  tasks.name = "Tasks";
  tasks.report = std::make_shared<ReportDefinition>(inner.report);
  tasks.innerField = tasks.outerField = kNumber;
  builder.report.subreports.push_back(tasks);
  ReportRows rows;
  rows.rows.Append(MakeRow("", "", "", 7));
  ReportRows::Inner all;
  all.rows = std::make_unique<ReportRows>();
  for (int i = 0; i < 3; ++i) all.rows->rows.Append(MakeRow("", "", "", 7));
  all.find = [](const rt::Value&) { return std::pair<std::int64_t, std::int64_t>(0, 3); };
  rows.subreports.push_back(std::move(all));
  const Result result = LayOutRows(builder.report, rows);
  EXPECT_EQ(result.Bands(), (Texts{"7|3", "free"}));
  EXPECT_EQ(result.pages[0].bands[0].cells[1].column, 1);
  EXPECT_EQ(result.pages[0].bands[1].cells[0].column, -1);
}

TEST(Layout, AFaultyCellCostsOnlyItself) {
  ReportBuilder builder;
  ReportBuilder::Fill(builder.report.detail,
                      {builder.Text("{T.Number} & ':'"),
                       builder.Text("DateAdd('d', {T.Number}, Date(9999,12,31))", 90 * kPoint)});
  ReportBuilder::Fill(builder.report.reportFooter, {builder.Text("Sum({T.Number})")});
  const Result result = LayOutRows(builder.report, Numbered(3));
  EXPECT_EQ(result.Bands(), (Texts{"1:", "2:", "3:", "6"}));
  ASSERT_EQ(result.warnings.size(), 1U);
  EXPECT_NE(result.warnings[0].find("row 1"), std::string::npos) << result.warnings[0];
}

TEST(Layout, ACancelledRunHasWholePagesOnly) {
  ReportBuilder builder;
  SetLines(builder.report, 5);
  ReportBuilder::Fill(builder.report.pageFooter, {builder.Text("Page & ' of ' & Pages")});
  ReportBuilder::Fill(builder.report.detail, {builder.Text("{T.Number}")});
  ReportRows rows;
  for (const Row& row : Numbered(20)) rows.rows.Append(row);
  PageStore store(FactsOf(builder.report, {}));
  const std::atomic<bool> cancel = true;
  LayOut(builder.report, rows, {}, store, cancel, nullptr);
  EXPECT_TRUE(store.Finished());
  EXPECT_EQ(store.PageCount(), 0);
}

TEST(Layout, ColumnsFlowToTheChosenPaper) {
  ReportBuilder builder;
  builder.report.columns.push_back({"Last", 440 * kPoint, 100 * kPoint, "Last", 1});
  ReportBuilder::Fill(builder.report.detail, {builder.Cell(3, "{T.Money}")});
  for (const bool landscape : {false, true})
    for (const Paper paper : {Paper::Letter, Paper::A4}) {
      builder.report.landscape = landscape;
      // Sizes stand for upright paper in the one case, for lying paper in the other.
      builder.report.pageWidth = landscape ? 792 * kPoint : 612 * kPoint;
      builder.report.pageHeight = landscape ? 612 * kPoint : 792 * kPoint;
      builder.report.columns.back().left = (landscape ? 620 : 440) * kPoint;
      LayoutOptions options;
      options.paper = paper;
      const Result result = LayOutRows(builder.report, Numbered(1), options);
      const Page& page = result.pages[0];
      EXPECT_EQ(page.width > page.height, landscape);
      const Box& box = page.bands[0].cells[0].box;
      EXPECT_NEAR(box.left + box.width, page.width - 36 * kPoint, 2);
      EXPECT_EQ(result.store->Facts().columns[3].left, box.left);
    }
}

}  // namespace
}  // namespace print::test
