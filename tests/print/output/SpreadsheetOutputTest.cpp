#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <map>

#include "platform/print/output/Outputs.h"
#include "print/SampleReport.h"
#include "support/TempDirectory.h"

namespace print {
namespace {

std::string OutputOf(const std::string& command) {
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  std::string output;
  std::array<char, 4096> block{};
  while (const std::size_t got = fread(block.data(), 1, block.size(), pipe)) output.append(block.data(), got);
  const int status = pclose(pipe);
  return WEXITSTATUS(status) == 127 ? "missing" : output;
}

struct SheetCell {
  std::string text;
  std::string formula;
  bool number = false;
};

struct Sheet {
  std::string xml;
  std::map<std::pair<int, char>, SheetCell> cells;  ///< by row, from 1, and column
  std::map<int, int> levels;                        ///< of the outline, by row

  std::string At(char column, int row) const {
    const auto found = cells.find({row, column});
    if (found == cells.end()) return "";
    return found->second.formula.empty() ? found->second.text
                                         : "=" + found->second.formula + " " + found->second.text;
  }
  /// What the formula adds up, sums among the rows left out.
  double Recalculated(const std::string& formula) const {
    char column = 0;
    int first = 0;
    int last = 0;
    if (std::sscanf(formula.c_str(), "SUBTOTAL(9,%c%d:%*c%d)", &column, &first, &last) == 2) last = first;
    double sum = 0;
    for (int row = first; row <= last; ++row)
      if (const auto found = cells.find({row, column});
          found != cells.end() && found->second.number && found->second.formula.empty())
        sum += std::stod(found->second.text);
    return sum;
  }
};

std::string Between(const std::string& xml, const std::string& begin, const std::string& end) {
  const std::size_t from = xml.find(begin);
  if (from == std::string::npos) return "";
  const std::size_t start = from + begin.size();
  return xml.substr(start, xml.find(end, start) - start);
}

std::string Unescaped(std::string text) {
  for (const auto& [escaped, plain] :
       {std::pair<std::string, std::string>{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}})
    for (std::size_t at = text.find(escaped); at != std::string::npos; at = text.find(escaped, at + 1))
      text.replace(at, escaped.size(), plain);
  return text;
}

class SpreadsheetOutput : public testing::Test {
 protected:
  void SetUp() override {
    if (OutputOf("unzip -v") == "missing") GTEST_SKIP() << "unzip is not installed.";
  }
  Sheet Written(const PageStore& pages) {
    EXPECT_TRUE(WriteOutput(pages, OutputFormat::Spreadsheet, path_, {}, {}));
    const std::string tested = OutputOf("unzip -t " + path_);
    EXPECT_NE(tested.find("No errors detected"), std::string::npos) << tested;
    Sheet sheet;
    sheet.xml = Part("xl/worksheets/sheet1.xml");
    for (std::size_t at = sheet.xml.find("<row "); at != std::string::npos;
         at = sheet.xml.find("<row ", at + 1)) {
      const std::size_t end = std::min(sheet.xml.find("</row>", at), sheet.xml.find("/>", at));
      const std::string row = sheet.xml.substr(at, sheet.xml.find("</row>", end) - at);
      const int number = std::stoi(Between(row, "r=\"", "\""));
      const std::string level = Between(row.substr(0, row.find('>')), "outlineLevel=\"", "\"");
      if (!level.empty()) sheet.levels[number] = std::stoi(level);
      for (std::size_t c = row.find("<c "); c != std::string::npos; c = row.find("<c ", c + 1)) {
        const std::string cell = row.substr(c, row.find("</c>", c) - c);
        SheetCell& known = sheet.cells[{number, Between(cell, "r=\"", "\"")[0]}];
        known.number = cell.find("t=\"inlineStr\"") == std::string::npos;
        known.formula = Between(cell, "<f>", "</f>");
        known.text = known.number ? Between(cell, "<v>", "</v>")
                                  : Unescaped(Between(cell.substr(cell.find("<t")), ">", "</t>"));
      }
    }
    return sheet;
  }
  std::string Part(const std::string& name) const { return OutputOf("unzip -p " + path_ + " " + name); }

  const test::TempDirectory directory_;
  const std::string path_ = directory_.Path("a.xlsx");
};

TEST_F(SpreadsheetOutput, HasNumbersDatesSumsAndLevels) {
  test::SampleReport report;
  test::FillSample(report);
  const Sheet sheet = Written(report.Finish());
  EXPECT_EQ(sheet.At('A', 1), "Equipment Costs");
  EXPECT_EQ(sheet.At('B', 2), "Notes");
  EXPECT_EQ(sheet.At('B', 3), "Trucks & <Vans>");
  EXPECT_EQ(sheet.At('A', 4), "46082");
  EXPECT_EQ(sheet.At('B', 4), "Oil \"changed\"; 5,5 l {5W-30} \\ done");
  EXPECT_EQ(sheet.At('D', 4), "1234.5");
  EXPECT_EQ(sheet.At('B', 6), "Brake \u00fc");
  // A text that looks like a formula stays a text.
  EXPECT_EQ(sheet.At('B', 7), "=HYPERLINK(\"x\")");
  EXPECT_FALSE(sheet.cells.at({7, 'B'}).number);
  EXPECT_EQ(sheet.At('D', 7), "-20");
  EXPECT_EQ(sheet.At('D', 9), "=SUBTOTAL(9,D4:D8) 1219.5");
  EXPECT_EQ(sheet.At('D', 12), "=SUBTOTAL(9,D11) 1");
  EXPECT_EQ(sheet.At('D', 13), "=SUBTOTAL(9,D3:D12) 1220.5");
  EXPECT_EQ(sheet.cells.rbegin()->first.first, 13);
  EXPECT_EQ(sheet.levels, (std::map<int, int>{{4, 1}, {5, 2}, {6, 2}, {7, 1}, {8, 1}, {11, 1}}));
  EXPECT_NE(sheet.xml.find("<pane ySplit=\"2\" topLeftCell=\"A3\""), std::string::npos);
  const std::string styles = Part("xl/styles.xml");
  EXPECT_NE(styles.find("$#,##0.00;[Red]($#,##0.00)"), std::string::npos);
  EXPECT_NE(styles.find("m/d/yyyy"), std::string::npos);
  EXPECT_NE(Part("docProps/core.xml").find("Pat O'Neil"), std::string::npos);
  EXPECT_NE(Part("xl/workbook.xml").find("Print_Titles"), std::string::npos);
}

TEST_F(SpreadsheetOutput, FormulasGiveWhatTheReportSays) {
  test::RandomPages random(71);
  test::SampleReport report;
  std::int64_t all = 0;
  int formulas = 0;
  for (int outer = 0; outer < 12; ++outer) {
    report.Group(0, "Class:", "C" + std::to_string(outer));
    std::int64_t outerSum = 0;
    for (int inner = random.Number(1, 4); inner > 0; --inner) {
      report.Group(1, "", "Asset");
      std::int64_t sum = 0;
      for (int row = random.Number(0, 5); row > 0; --row) {
        const int cents = random.Number(-500000, 500000);
        sum += cents;
        const std::string amount = rt::Currency::FromUnits(std::int64_t{cents} * 100).PlainText();
        report.Row(rt::DateTime(2026, 1, 1), "x", 1, amount, "shown");
      }
      // Sometimes a sum that leaves rows out, as an average without impossible values would.
      const std::int64_t off = random.Number(0, 9) == 0 ? 100 : 0;
      report.Total(1, rt::Currency::FromUnits((sum + off) * 100).PlainText(), "shown");
      outerSum += sum;
    }
    report.Total(0, rt::Currency::FromUnits(outerSum * 100).PlainText(), "shown");
    all += outerSum;
  }
  report.Total(-1, rt::Currency::FromUnits(all * 100).PlainText(), "shown");
  const Sheet sheet = Written(report.Finish());
  for (const auto& [place, cell] : sheet.cells) {
    if (cell.formula.empty()) continue;
    ++formulas;
    EXPECT_NEAR(sheet.Recalculated(cell.formula), std::stod(cell.text), 1e-6) << cell.formula;
  }
  EXPECT_GT(formulas, 10);
}

TEST_F(SpreadsheetOutput, SumsWithoutRowsAreNumbers) {
  test::SampleReport report;
  report.Group(0, "Class:", "Trucks");
  report.Total(0, "12.5", "$12.50");
  report.Total(-1, "12.5", "$12.50");
  const Sheet sheet = Written(report.Finish());
  EXPECT_EQ(sheet.At('D', 4), "12.5");
  EXPECT_EQ(sheet.At('D', 5), "12.5");
}

TEST_F(SpreadsheetOutput, OldDatesAndLongTextsAreTexts) {
  test::SampleReport report;
  const std::string longest(40000, 'x');
  report.Row(rt::DateTime(1899, 12, 31), longest, 1, "1", "$1.00");
  report.Row(rt::DateTime(1900, 3, 1), "\x01\xff\ufffe", NAN, "1", "$1.00");
  report.Row(rt::DateTime(2026, 1, 1, 12, 0), "a\nb", 1, "1", "$1.00");
  const Sheet sheet = Written(report.Finish());
  EXPECT_EQ(sheet.At('A', 3), "12/31/1899");
  EXPECT_EQ(sheet.At('B', 3).size(), 32767U);
  EXPECT_EQ(sheet.At('A', 4), "61");
  EXPECT_EQ(sheet.At('B', 4), "??");
  EXPECT_EQ(sheet.At('A', 5), "46023.5");
  EXPECT_EQ(sheet.At('B', 5), "a\nb");
}

TEST_F(SpreadsheetOutput, CopesWithHostilePages) {
  PageStore pages({});
  test::RandomPages random(81);
  for (int page = 0; page < 100; ++page) pages.Append(random.Next());
  pages.Finish();
  EXPECT_TRUE(WriteOutput(pages, OutputFormat::Spreadsheet, path_, {}, {}));
  const std::string tested = OutputOf("unzip -t " + path_);
  EXPECT_NE(tested.find("No errors detected"), std::string::npos) << tested;
}

}  // namespace
}  // namespace print
