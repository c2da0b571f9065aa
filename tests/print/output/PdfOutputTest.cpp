#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "platform/print/fonts/VisualOrder.h"
#include "platform/print/output/Outputs.h"
#include "platform/runtime/Clock.h"
#include "print/SampleReport.h"
#include "support/TempDirectory.h"

namespace print {
namespace {

/// The output of a program, errors included; "missing" if there is no such program.
std::string OutputOf(const std::string& command) {
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  std::string output;
  std::array<char, 4096> block{};
  while (const std::size_t got = fread(block.data(), 1, block.size(), pipe)) output.append(block.data(), got);
  const int status = pclose(pipe);
  return WEXITSTATUS(status) == 127 ? "missing" : output;
}

std::vector<std::string> Words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  std::sort(words.begin(), words.end());
  return words;
}

class PdfOutput : public testing::Test {
 protected:
  void SetUp() override {
    if (OutputOf("qpdf --version") == "missing" || OutputOf("pdftotext -v") == "missing")
      GTEST_SKIP() << "qpdf and poppler-utils are not installed.";
  }
  /// Writes the document and has it checked.
  std::string Written(const PageStore& pages, const PageRange& range = {}) {
    EXPECT_TRUE(WriteOutput(pages, OutputFormat::Pdf, path_, range, {}));
    const std::string checked = OutputOf("qpdf --check " + path_);
    EXPECT_NE(checked.find("No syntax or stream encoding errors found"), std::string::npos) << checked;
    return test::ReadFile(path_);
  }
  std::string Text(const std::string& options = "") const {
    return OutputOf("pdftotext -enc UTF-8 " + options + " " + path_ + " -");
  }

  const test::TempDirectory directory_;
  const std::string path_ = directory_.Path("a.pdf");
};

/// All words of the pages, in order of the alphabet.
std::vector<std::string> WordsOf(const PageStore& pages) {
  std::string text;
  for (int i = 0; i < pages.PageCount(); ++i)
    for (const PlacedBand& band : pages.Read(i).bands)
      for (const Cell& cell : band.cells) {
        if (cell.slot >= 0) text += pages.Slot(cell.slot)->text + " ";
        for (const std::string& line : cell.lines) text += line + " ";
      }
  return Words(text);
}

TEST_F(PdfOutput, HasTheWordsOfThePagesAndNoOther) {
  test::SampleReport report;
  test::FillSample(report);
  report.BreakPage();
  // Also characters that the font draws as '?', numbers above 255, all that strings must escape.
  report.Inner("(\\) \u8eca\u4e21 \U0001F69A \u0416 na\u00efve 100% \u20ac5");
  std::string many;
  for (int code = 0x100; code < 0x260; ++code) {
    many.push_back(static_cast<char>(0xC0 | (code >> 6)));
    many.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    if (code % 40 == 0) {
      report.Inner(many);
      many.clear();
    }
  }
  const PageStore& pages = report.Finish();
  Written(pages);
  std::vector<std::string> different;
  // The tool puts marks of direction around what runs from right to left.
  std::string text = Text();
  for (const std::string mark : {"\u202b", "\u202c"})
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark)) text.erase(at, 3);
  const std::vector<std::string> drawn = Words(text);
  const std::vector<std::string> wanted = WordsOf(pages);
  std::set_symmetric_difference(drawn.begin(), drawn.end(), wanted.begin(), wanted.end(),
                                std::back_inserter(different));
  EXPECT_EQ(different, std::vector<std::string>{});
  EXPECT_GT(wanted.size(), 100U);
}

TEST_F(PdfOutput, EmbedsSubsetsWithTheirCharacters) {
  test::SampleReport report;
  test::FillSample(report);
  Written(report.Finish());
  std::istringstream fonts(OutputOf("pdffonts " + path_));
  std::string line;
  std::getline(fonts, line);
  std::getline(fonts, line);
  int count = 0;
  for (; std::getline(fonts, line); ++count) {
    std::istringstream parts(line);
    std::vector<std::string> columns;
    for (std::string part; parts >> part;) columns.push_back(part);
    ASSERT_GE(columns.size(), 7U) << line;
    EXPECT_EQ(columns[0].find('+'), 6U) << line;
    const std::vector<std::string> flags(columns.begin() + 4, columns.begin() + 7);
    EXPECT_EQ(flags, (std::vector<std::string>{"yes", "yes", "yes"})) << line;
  }
  EXPECT_EQ(count, 2);
  EXPECT_LT(std::filesystem::file_size(path_), 30000U);
}

TEST_F(PdfOutput, IsTheSameFileEachTimeButForTheDate) {
  const rt::FixedClock clock(rt::DateTime(2026, 5, 4, 3, 2, 1));
  test::SampleReport report("Kosten (\u00dc) \\ \u8eca");
  test::FillSample(report);
  const PageStore& pages = report.Finish();
  const std::string first = Written(pages);
  EXPECT_EQ(Written(pages), first);
  const std::string info = OutputOf("pdfinfo " + path_);
  EXPECT_NE(info.find("Kosten (\u00dc) \\ \u8eca"), std::string::npos) << info;
  EXPECT_NE(info.find("Pat O'Neil"), std::string::npos) << info;
  EXPECT_NE(info.find("May  4 03:02:01 2026"), std::string::npos) << info;
  EXPECT_NE(info.find("612 x 792 pts (letter)"), std::string::npos) << info;
}

TEST_F(PdfOutput, TakesTheRangeWithItsPartOfTheTree) {
  test::SampleReport report;
  const std::vector<std::string> names{"One", "Two", "Three", "Four"};
  for (const std::string& name : names) {
    report.Group(0, "", name);
    report.Group(1, "", name + " inside");
    report.BreakPage();
    report.Group(1, "", name + " (later) \u00fc");
    report.BreakPage();
  }
  const PageStore& pages = report.Finish();
  Written(pages);
  const auto outline = [&] {
    const std::string json = OutputOf("qpdf --json --json-key=outlines " + path_);
    std::vector<std::string> titles;
    for (std::size_t at = json.find("\"title\": \""); at != std::string::npos;
         at = json.find("\"title\": \"", at + 1))
      titles.push_back(json.substr(at + 10, json.find('"', at + 10) - at - 10));
    std::sort(titles.begin(), titles.end());
    return titles;
  };
  EXPECT_EQ(outline().size(), 12U);
  // Pages 4 and 5: the later part of "Two" below its name, the beginning of "Three".
  const std::string part = Written(pages, {4, 5});
  EXPECT_NE(OutputOf("pdfinfo " + path_).find("Pages:           2"), std::string::npos);
  EXPECT_EQ(outline(), (std::vector<std::string>{"Three", "Three inside", "Two", "Two (later) \u00fc"}));
  const std::string text = Text();
  EXPECT_NE(text.find("Page 4 of"), std::string::npos);
  EXPECT_NE(text.find("Page 5 of"), std::string::npos);
  EXPECT_EQ(text.find("Page 6 of"), std::string::npos);
}

TEST_F(PdfOutput, PutsLateValuesAtTheRightOfTheirBoxes) {
  test::SampleReport report;
  for (int page = 2; page <= 12; ++page) report.BreakPage();
  Written(report.Finish());
  // The box ends at 576 points, 36 before the right edge.
  std::istringstream boxes(Text("-f 3 -l 3 -bbox"));
  double right = 0;
  for (std::string line; std::getline(boxes, line);)
    if (line.find(">12<") != std::string::npos) right = std::stod(line.substr(line.find("xMax=\"") + 6));
  EXPECT_NEAR(right, 576, 0.1);
}

TEST_F(PdfOutput, DrawsWhereThePagesSay) {
  test::SampleReport report;
  test::FillSample(report);
  Written(report.Finish());
  // Every word is as wide as the engine measured it.
  std::istringstream boxes(Text("-f 1 -l 1 -bbox"));
  int found = 0;
  for (std::string line; std::getline(boxes, line);) {
    if (line.find(">$1,234.50<") == std::string::npos) continue;
    ++found;
    const auto number = [&](const std::string& name) {
      return std::stod(line.substr(line.find(name + "=\"") + name.size() + 2));
    };
    EXPECT_NEAR(number("xMax"), 506, 0.02);
    EXPECT_NEAR(number("xMax") - number("xMin"), TextWidth({}, "$1,234.50") / 100.0, 0.02);
  }
  EXPECT_EQ(found, 1);
}

TEST_F(PdfOutput, CopesWithHostilePages) {
  PageStore pages({});
  test::RandomPages random(31);
  for (int page = 0; page < 150; ++page) pages.Append(random.Next());
  for (int slot = 0; slot < 3; ++slot) pages.FillSlot(pages.NewSlot(), {random.Text(), {}});
  pages.AddOutline({3, random.Text(), 5, -100});
  pages.AddOutline({1, random.Text(), 149, 0});
  pages.AddOutline({0, std::string(4000, ')'), 7000, 0});
  pages.Finish();
  Written(pages);
  EXPECT_NE(OutputOf("pdfinfo " + path_).find("Pages:           150"), std::string::npos);
}

TEST(VisualOrder, TurnsWhatIsWrittenFromRightToLeft) {
  const std::string shalom = "\u05e9\u05dc\u05d5\u05dd";
  const std::string turned = "\u05dd\u05d5\u05dc\u05e9";
  EXPECT_EQ(VisualOrder("plain \u00fc (1)"), "plain \u00fc (1)");
  EXPECT_EQ(VisualOrder(shalom), turned);
  EXPECT_EQ(VisualOrder("A " + shalom + " b"), "A " + turned + " b");
  // Numbers keep their order; brackets are mirrored; the first letter gives the direction of the line.
  EXPECT_EQ(VisualOrder(shalom + " 12.50"), "12.50 " + turned);
  EXPECT_EQ(VisualOrder(shalom + " (ab) 7"), "7 (ab) " + turned);
  EXPECT_EQ(VisualOrder("x " + shalom + " (" + shalom + ")"), "x (" + turned + ") " + turned);
  EXPECT_EQ(VisualOrder("7 " + shalom), turned + " 7");
  EXPECT_EQ(VisualOrder("a 1 " + shalom + "."), "a 1 " + turned + ".");
}

}  // namespace
}  // namespace print
