// Definitions that take over what others share.
#include <gtest/gtest.h>

#include <fstream>

#include "platform/print/definition/DefinitionReader.h"
#include "support/TempDirectory.h"

namespace print::test {
namespace {

class DefinitionParts : public ::testing::Test {
 protected:
  void Write(const std::string& name, const std::string& text) {
    std::ofstream(directory_.Path(name), std::ios::binary) << text;
  }
  /// The faults of a report with these elements, one a line.
  std::string Faults(const std::string& elements) {
    Write("report.rpt",
          "<report name='R'>\n<data><table name='Vehicles'/></data>\n" + elements + "\n</report>");
    std::string all;
    for (const DefinitionFault& fault : CheckDefinition(directory_.Path("report.rpt")))
      all += fault.Shown() + "\n";
    return all;
  }
  std::shared_ptr<const ReportDefinition> Read() { return ReadDefinition(directory_.Path("report.rpt")); }

  ::test::TempDirectory directory_;
};

TEST_F(DefinitionParts, StandAsIfWrittenThere) {
  Write("house.rpt",
        "<part><data><table name='Parameters'><join field='ID' equals='1'/></table></data>"
        "<style name='big' size='20pt'/><formula name='Who'>{Parameters.Contact}</formula>"
        "<pageHeader><text value='{@Who}' style='big'/></pageHeader><empty>Nothing.</empty></part>");
  EXPECT_EQ(Faults("<use file='house.rpt'/><detail><text style='big' value='{@Who}'/></detail>"), "");
  const auto report = Read();
  ASSERT_EQ(report->tables.size(), 2U);
  EXPECT_EQ(report->tables[1].name, "Parameters");
  EXPECT_TRUE(report->pageHeader.present);
  EXPECT_EQ(report->emptyText, "Nothing.");
  EXPECT_EQ(report->styles[static_cast<std::size_t>(report->detail.items[0].style)].text.size, 20 * kPoint);
}

TEST_F(DefinitionParts, TheReportsOwnElementsWin) {
  Write("house.rpt",
        "<part><style name='big' size='20pt'/><formula name='Who'>'house'</formula>"
        "<pageHeader><text>House</text></pageHeader><empty>House</empty></part>");
  EXPECT_EQ(Faults("<use file='house.rpt'/><style name='big' size='30pt'/><formula name='Who'>'own'</formula>"
                   "<pageHeader><text>Own</text><text>Two</text></pageHeader><empty>Own</empty>"
                   "<detail><text style='big' value='{@Who}'/></detail>"),
            "");
  const auto report = Read();
  EXPECT_EQ(report->pageHeader.items.size(), 2U);
  EXPECT_EQ(report->emptyText, "Own");
  EXPECT_EQ(report->styles[static_cast<std::size_t>(report->detail.items[0].style)].text.size, 30 * kPoint);
}

TEST_F(DefinitionParts, FaultsAreFoundWhereThePartIsUsed) {
  EXPECT_NE(Faults("<use file='none.rpt'/>").find("report.rpt, line 3, column 1: The file \"none.rpt\""),
            std::string::npos);
  EXPECT_NE(Faults("<use/>").find("line 3"), std::string::npos);
  for (const char* outside : {"../house.rpt", "/etc/passwd", "a\\b.rpt"}) {
    EXPECT_NE(Faults("<use file='" + std::string(outside) + "'/>").find("lies beside"), std::string::npos)
        << outside;
  }
  Write("house.rpt", "<part>\n<style</part>");
  EXPECT_NE(Faults("<use file='house.rpt'/>").find("line 3, column 1: house.rpt, line 2"), std::string::npos)
      << Faults("<use file='house.rpt'/>");
  Write("house.rpt", "<report name='x'/>");
  EXPECT_NE(Faults("<use file='house.rpt'/>").find("instead of <part>"), std::string::npos);
  Write("house.rpt", "<part>\n\n\n<formula name='A'>1 +</formula></part>");
  EXPECT_NE(Faults("<use file='house.rpt'/>").find("report.rpt, line 3"), std::string::npos);
  // A part takes over nothing itself.
  Write("house.rpt", "<part><use file='house.rpt'/></part>");
  EXPECT_NE(Faults("<use file='house.rpt'/>").find("<use>"), std::string::npos);
}

}  // namespace
}  // namespace print::test
