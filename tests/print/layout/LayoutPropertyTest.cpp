// What must hold on the pages of any report: random groups, heights, keep rules and paper.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "platform/print/fonts/Fonts.h"
#include "print/layout/LayoutFixture.h"

namespace print::test {
namespace {

class Dice {
 public:
  explicit Dice(unsigned seed) : generator_(seed) {}
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(generator_); }
  bool OneIn(int chances) { return Below(chances) == 0; }

 private:
  std::mt19937 generator_;
};

struct Case {
  ReportBuilder builder;
  std::vector<Row> rows;
  LayoutOptions options;
  bool shown = true;  // details are visible
};

/// Texts from nothing to several pages.
std::string RandomText(Dice& dice) {
  static const std::vector<int> lengths{0, 1, 4, 20, 60, 900};
  const int words = lengths[static_cast<std::size_t>(dice.Below(dice.OneIn(40) ? 6 : 5))];
  std::string text;
  for (int i = 0; i < words; ++i) text += std::string(static_cast<std::size_t>(1 + dice.Below(9)), 'w') + " ";
  return text;
}

void AddGroups(Dice& dice, Case& made) {
  static const std::vector<std::string> keys{"T.Outer", "T.Middle", "T.Inner"};
  const int groups = dice.Below(4);
  for (int i = 0; i < groups; ++i) {
    const std::string name = keys[static_cast<std::size_t>(i)];
    const std::string level = std::to_string(i);
    GroupDefinition& group = made.builder.AddGroup(
        name, dice.OneIn(5) ? "" : "'H" + level + " ' & {" + name + "} & ' ' & Sum({T.Money})",
        dice.OneIn(4) ? "" : "'F" + level + " ' & Count({T.Number}) & ' ' & Sum({T.Money})");
    group.keep = static_cast<Keep>(dice.Below(3));
    group.keepRows = 1 + dice.Below(3);
    group.repeatHeader = dice.OneIn(2);
    group.header.spaceBefore = dice.Below(3) * 4 * kPoint;
    group.footer.spaceAfter = dice.Below(3) * 3 * kPoint;
    group.header.minimumHeight = dice.Below(3) * 15 * kPoint;
    made.options.newPageAfterGroup.push_back(dice.OneIn(8));
  }
}

void AddRows(Dice& dice, Case& made) {
  const int count = dice.OneIn(10) ? dice.Below(3) : dice.Below(200);
  const int spread = 1 + dice.Below(12);
  std::vector<std::vector<int>> keys;
  for (int i = 0; i < count; ++i)
    keys.push_back({dice.Below(spread), dice.Below(spread), dice.Below(spread)});
  std::sort(keys.begin(), keys.end());
  int number = 0;
  for (const std::vector<int>& key : keys) {
    ++number;
    Row row = MakeRow("o" + std::to_string(key[0]), "m" + std::to_string(key[1]),
                      "i" + std::to_string(key[2]), number, dice.Below(100000) - 30000, RandomText(dice));
    if (dice.OneIn(10)) row[kMoney] = rt::Null();
    made.rows.push_back(std::move(row));
  }
}

Case MakeCase(unsigned seed) {
  Dice dice(seed);
  Case made;
  ReportDefinition& report = made.builder.report;
  AddGroups(dice, made);
  report.landscape = dice.OneIn(2);
  made.options.paper = dice.OneIn(2) ? Paper::A4 : Paper::Letter;
  report.marginTop = report.marginLeft = (10 + dice.Below(60)) * kPoint;
  report.marginBottom = (10 + dice.Below(400)) * kPoint;
  ReportBuilder::Fill(report.detail, {made.builder.Cell(0, "{T.Number}"), made.builder.Cell(1, "{T.Money}"),
                                      made.builder.Cell(2, "{T.Text}", true)});
  report.detail.shade = Shade::Alternate;
  report.detail.spaceAfter = dice.Below(3) * kPoint;
  report.detail.minimumHeight = dice.Below(2) * 18 * kPoint;
  if (dice.OneIn(2)) {
    ItemDefinition headings;
    headings.kind = ItemDefinition::Kind::Headings;
    headings.top = 20 * kPoint;
    ReportBuilder::Fill(report.pageHeader, {made.builder.Text("'Title'"), headings});
  }
  if (dice.OneIn(2))
    ReportBuilder::Fill(report.pageFooter,
                        {made.builder.Text("'Page ' & Page & ' of ' & Pages & ' ' & PageSum({T.Money})")});
  ReportBuilder::Fill(report.reportFooter,
                      {made.builder.Text("'All ' & Count({T.Number}) & ' ' & Sum({T.Money})")});
  made.options.hideDetails = dice.OneIn(5);
  made.shown = !made.options.hideDetails;
  AddRows(dice, made);
  return made;
}

bool IsBody(const PlacedBand& band) {
  return band.kind != BandKind::PageHeader && band.kind != BandKind::PageFooter;
}

/// Everything lies within the margins, and bands lie below each other.
void CheckPlaces(const Page& page, const ReportDefinition& report) {
  Length below = report.marginTop;
  for (const PlacedBand& band : page.bands) {
    if (band.kind == BandKind::PageFooter) continue;
    EXPECT_GE(band.box.top, below) << "bands overlap";
    below = band.box.top + band.box.height;
    EXPECT_LE(below, page.height - report.marginBottom);
    for (const Cell& cell : band.cells) {
      EXPECT_GE(cell.box.top, band.box.top);
      EXPECT_LE(cell.box.top + cell.box.height, below);
      EXPECT_GE(cell.box.left, report.marginLeft);
      EXPECT_LE(cell.box.left + cell.box.width, page.width - report.marginRight + 2);
      for (const std::string& line : cell.lines) {
        EXPECT_LE(TextWidth(cell.style, line), cell.box.width) << line;
      }
    }
    for (const Rule& rule : band.rules) {
      EXPECT_GE(rule.box.top, band.box.top);
      EXPECT_LE(rule.box.top + rule.box.height, below + kPoint);
    }
  }
  for (const PlacedBand& band : page.bands) {
    if (band.kind != BandKind::PageFooter) continue;
    EXPECT_GE(band.box.top, below);
    EXPECT_LE(band.box.top + band.box.height, page.height - report.marginBottom);
  }
}

/// The last band of the body is no header that keeps with its rows.
void CheckLastBand(const Page& page, const Case& made) {
  const ReportDefinition& report = made.builder.report;
  const PlacedBand* last = nullptr;
  for (const PlacedBand& band : page.bands)
    if (IsBody(band)) last = &band;
  ASSERT_NE(last, nullptr) << "page " << page.number << " is empty";
  if (last->kind != BandKind::GroupHeader) return;
  const GroupDefinition& group = report.groups[static_cast<std::size_t>(last->group)];
  // Without details and footers, the innermost headers are the rows.
  const bool innermost = last->group + 1 == static_cast<int>(report.groups.size());
  if (innermost && !made.shown && !group.footer.present) return;
  EXPECT_EQ(group.keep, Keep::None) << "a header ends page " << page.number;
}

std::string SumOf(const std::vector<Row>& rows, std::size_t first, std::size_t last) {
  std::int64_t units = 0;
  bool any = false;
  for (std::size_t i = first; i < last; ++i) {
    if (rows[i][kMoney].IsNull()) continue;
    units += rows[i][kMoney].AsCurrency().Units();
    any = true;
  }
  return any ? rt::Currency::FromUnits(units).PlainText() : "0";
}

/// What the report says must be what the rows say, group by group, computed apart from it.
std::vector<std::string> Expected(const Case& made) {
  const ReportDefinition& report = made.builder.report;
  const std::vector<Row>& rows = made.rows;
  std::vector<std::string> texts;
  const auto same = [&](std::size_t a, std::size_t b, std::size_t level) {
    for (std::size_t i = 0; i <= level; ++i)
      if (!(rows[a][i] == rows[b][i])) return false;
    return true;
  };
  const auto end = [&](std::size_t at, std::size_t level) {
    std::size_t last = at;
    while (last < rows.size() && same(at, last, level)) ++last;
    return last;
  };
  const auto begin = [&](std::size_t at, std::size_t level) {
    std::size_t first = at;
    while (first > 0 && same(at, first - 1, level)) --first;
    return first;
  };
  for (std::size_t at = 0; at < rows.size(); ++at) {
    for (std::size_t level = 0; level < report.groups.size(); ++level)
      if (begin(at, level) == at && report.groups[level].header.present)
        texts.push_back("H" + std::to_string(level) + " " + rows[at][level].AsText() + " " +
                        SumOf(rows, at, end(at, level)));
    if (made.shown) texts.push_back("row " + rows[at][kNumber].AsText());
    for (std::size_t level = report.groups.size(); level-- > 0;) {
      if (end(at, level) != at + 1 || !report.groups[level].footer.present) continue;
      const std::size_t first = begin(at, level);
      texts.push_back("F" + std::to_string(level) + " " + std::to_string(at + 1 - first) + " " +
                      SumOf(rows, first, at + 1));
    }
  }
  if (!rows.empty())
    texts.push_back("All " + std::to_string(rows.size()) + " " + SumOf(rows, 0, rows.size()));
  return texts;
}

std::vector<std::string> Shown(const Result& result) {
  std::vector<std::string> texts;
  for (const Page& page : result.pages)
    for (const PlacedBand& band : page.bands) {
      if (!IsBody(band) || band.continued || band.cells.empty()) continue;
      texts.push_back(band.kind == BandKind::Detail ? "row " + result.TextOf(band.cells.front())
                                                    : result.TextOf(band.cells.front()));
    }
  return texts;
}

/// The words of all texts, in the order of the pages.
std::string Words(const Result& result) {
  std::string words;
  for (const Page& page : result.pages)
    for (const PlacedBand& band : page.bands)
      for (const Cell& cell : band.cells)
        if (band.kind == BandKind::Detail && cell.column == 2 && !result.TextOf(cell).empty())
          words += result.TextOf(cell) + " ";
  std::string single;
  for (const char c : words)
    if (c != ' ' || (!single.empty() && single.back() != ' ')) single += c;
  return single;
}

TEST(LayoutProperties, HoldForRandomReports) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Case made = MakeCase(seed);
    const Result result = LayOutRows(made.builder.report, made.rows, made.options);
    EXPECT_EQ(Shown(result), Expected(made));
    for (std::size_t i = 0; i < result.pages.size(); ++i) {
      EXPECT_EQ(result.pages[i].number, static_cast<int>(i) + 1);
      CheckPlaces(result.pages[i], made.builder.report);
      if (!made.rows.empty()) CheckLastBand(result.pages[i], made);
    }
    std::string texts;
    for (const Row& row : made.rows) texts += row[kText].AsText();
    if (made.shown) {
      EXPECT_EQ(Words(result), texts);
    }
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace print::test
