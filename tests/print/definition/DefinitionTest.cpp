// Definition files: what is read, and what is found wrong in them.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>

#include "platform/print/definition/DefinitionReader.h"
#include "platform/print/definition/XmlTree.h"
#include "support/TempDirectory.h"

namespace print::test {
namespace {

using store::ColumnType;

store::Schema FleetSchema() {
  const auto table = [](const char* name, std::vector<store::ColumnInfo> columns) {
    store::TableInfo info;
    info.name = name;
    info.columns = std::move(columns);
    return info;
  };
  store::Schema schema;
  schema.tables = {
      table("Maintenance Transactions", {{"ID", ColumnType::Counter},
                                         {"Asset ID", ColumnType::Text, 20},
                                         {"Transaction Date", ColumnType::DateTime},
                                         {"Mileage", ColumnType::Single},
                                         {"Total Internal Cost", ColumnType::Currency},
                                         {"Total Outside Cost", ColumnType::Currency}}),
      table("Vehicles", {{"Asset ID", ColumnType::Text, 20}, {"Class ID", ColumnType::Text, 20}}),
      table("Inventory Classes", {{"Class ID", ColumnType::Text, 20}, {"Description", ColumnType::Text, 50}}),
      table("Parameters", {{"ID", ColumnType::Long}, {"Organization Name", ColumnType::Text, 50}}),
      table("Maintenance_Performed",
            {{"Maintenance_Entry_ID", ColumnType::Long}, {"Notes", ColumnType::Memo}}),
  };
  return schema;
}

std::string SampleText() {
  std::ifstream in(DROVEWRIGHT_PRINT_CASES "/costs.rpt");
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

class DefinitionTest : public ::testing::Test {
 protected:
  std::string Write(const std::string& text) {
    const std::string path = directory_.Path("test.rpt");
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  std::vector<DefinitionFault> FaultsOf(const std::string& text) {
    return CheckDefinition(Write(text), &schema_);
  }
  /// A whole report around some elements.
  static std::string Around(const std::string& inner) {
    return "<report name=\"T\"><data><table name=\"Maintenance Transactions\"/></data>\n" + inner +
           "</report>";
  }

  ::test::TempDirectory directory_;
  store::Schema schema_ = FleetSchema();
};

TEST_F(DefinitionTest, TheSampleIsReadAsItStands) {
  const auto report = ReadDefinition(DROVEWRIGHT_PRINT_CASES "/costs.rpt", &schema_);
  EXPECT_EQ(report->name, "Equipment Costs By Class");
  EXPECT_EQ(report->pageWidth, 11 * kInch);
  EXPECT_EQ(report->marginLeft, 36 * kPoint);
  ASSERT_EQ(report->tables.size(), 4U);
  EXPECT_EQ(report->tables[2].alias, "Asset Classes");
  EXPECT_EQ(report->tables[2].joins[0].otherTable, "Vehicles");
  EXPECT_EQ(report->tables[3].joins[0].constant, rt::Value(std::int32_t{1}));
  EXPECT_TRUE(report->order[0].descending);
  EXPECT_FALSE(report->rowTest.Empty());
  ASSERT_EQ(report->columns.size(), 2U);
  EXPECT_EQ(report->columns[1].left, 8 * kInch);
  EXPECT_EQ(report->columns[1].width, kInch);
  const auto& style = report->styles[static_cast<std::size_t>(report->columns[1].style)];
  EXPECT_EQ(style.format, "money");
  EXPECT_EQ(style.text.size, 750);
  EXPECT_EQ(style.negative, (Color{255, 0, 0}));

  // Its own three formulas and the eleven titles that it does not define.
  EXPECT_EQ(report->formulas.size(), 14U);
  const auto named = [&](const std::string& name) {
    return std::find_if(report->formulas.begin(), report->formulas.end(),
                        [&](const auto& f) { return f.first == name; });
  };
  EXPECT_EQ(named("Total")->second.Type(), rt::ValueType::Currency);
  EXPECT_NE(named("RptAux7"), report->formulas.end());

  ASSERT_EQ(report->groups.size(), 1U);
  const auto& group = report->groups[0];
  EXPECT_EQ(group.keyText, "Vehicles.Class ID");
  EXPECT_EQ(group.keepRows, 3);
  EXPECT_TRUE(group.repeatHeader && group.header.newPageBefore && !group.header.newPageAfter);
  EXPECT_EQ(group.footer.items[0].value.SoleTotal(), 0);
  EXPECT_EQ(group.footer.items[0].value.Totals()[0].group, 0);
  // The table's own name and its alias are the same field.
  EXPECT_EQ(group.header.items[0].value.Fields(), group.treeTitle.Fields());

  ASSERT_EQ(report->pageHeader.items.size(), 3U);
  EXPECT_GE(report->pageHeader.items[2].top, 28 * kPoint);  // below both titles
  ASSERT_EQ(report->detail.items.size(), 4U);
  EXPECT_EQ(report->detail.shade, Shade::Alternate);
  EXPECT_EQ(report->fillBlankRows, 1);
  EXPECT_EQ(report->detail.items[0].format, "date");
  EXPECT_EQ(report->detail.items[1].format, "money4");
  EXPECT_FALSE(report->detail.items[1].visible.Empty());
  EXPECT_EQ(report->detail.items[2].kind, ItemDefinition::Kind::Bar);
  EXPECT_EQ(report->reportFooter.items[1].value.Text(), "'Sum of everything'");
  EXPECT_TRUE(report->pageFooter.items[1].value.NeedsPages());
  EXPECT_EQ(report->emptyText, "No records meet the selection.");
  ASSERT_EQ(report->subreports.size(), 1U);
  const auto& sub = report->subreports[0];
  EXPECT_EQ(sub.report->fields[static_cast<std::size_t>(sub.innerField)].column, "Maintenance_Entry_ID");
  EXPECT_EQ(report->fields[static_cast<std::size_t>(sub.outerField)].column, "ID");
}

// What a reader of the page types first.
TEST_F(DefinitionTest, TheReportOfThePageIsSound) {
  std::ifstream page(DROVEWRIGHT_PRINT_CASES "/../../../docs/reports.md");
  std::ostringstream all;
  all << page.rdbuf();
  const std::string text = all.str();
  const auto first = text.find("```xml\n") + 7;
  const std::string path = Write(text.substr(first, text.find("```", first) - first));
  EXPECT_TRUE(CheckDefinition(path).empty());
  EXPECT_EQ(ReadDefinition(path)->columns.size(), 2U);
}

TEST_F(DefinitionTest, WithoutADataFileTypesAreOpen) {
  const auto report = ReadDefinition(DROVEWRIGHT_PRINT_CASES "/costs.rpt");
  EXPECT_EQ(report->formulas[0].second.Type(), rt::ValueType::Null);
  EXPECT_EQ(report->fields[0].type, rt::ValueType::Null);
}

TEST_F(DefinitionTest, ARunSetsFormulasAndAddsFields) {
  const std::string file = DROVEWRIGHT_PRINT_CASES "/costs.rpt";
  const std::string title = "\"O\"\"Neil's 100% M\xC3\xBCller\"";
  const auto report = ReadDefinition(file, &schema_, {{"rpttitle1", title}, {"RptAux3", "'x'"}},
                                     {"{Vehicles.Asset ID}", "{[Maintenance Transactions].Mileage}"});
  for (const auto& [name, formula] : report->formulas)
    if (name == "RptTitle1") {
      EXPECT_EQ(formula.Text(), title);
    }
  EXPECT_EQ(report->fields.back().column, "Mileage");

  const auto words = [&](const FormulaTexts& texts, const std::vector<std::string>& fields) -> std::string {
    try {
      ReadDefinition(file, &schema_, texts, fields);
    } catch (const PrintError& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ(words({{"RptTitle1", "\"Bill\"s\""}}, {}),
            "Formula \"RptTitle1\", column 7: An operator, such as AND or +, is missing before \"s\".");
  EXPECT_EQ(words({{"RptTitle9", "''"}}, {}), "The report has no formula \"RptTitle9\".");
  EXPECT_EQ(words({}, {"{Vehicles.Color}"}),
            "There is no field {Vehicles.Color} in the tables of the report.");
}

TEST_F(DefinitionTest, EveryFaultIsReportedWithItsPlace) {
  const std::string text = R"(<report name="T" margins="36" paper="a5">
  <data>
    <table name="Maintenance Transactions" primary="yes"/>
    <table name="Trucks"/>
    <table name="Vehicles"><join field="Asset" to="Maintenance Transactions.Asset ID"/></table>
    <order field="{Vehicles.Nothing}"/>
  </data>
  <style name="x" size="1pt" color="red"/>
  <columns><column name="A" x="0pt" width="9in"/></columns>
  <formula name="F">1 +
     {Vehicles.Nothing} &amp; 'x'</formula>
  <detail shade="some">
    <cell column="B" value="'a' &amp; 'b' &amp; {@Nothing}"/>
    <text value="1 / &#39;x&#39;" style="y"/>
    <picture/>
    words
  </detail>
  <detail/>
  <footer/>
</report>)";
  struct Expected {
    int line;
    int column;
    const char* part;
  };
  const std::vector<Expected> expected{
      {1, 27, "\"36\" is no length"},
      {1, 31, "no attribute \"paper\""},
      {4, 5, "no table \"Trucks\""},
      {4, 5, "needs a <join>"},
      {5, 41, "no field \"Asset\""},
      {6, 19, "no field \"{Vehicles.Nothing}\""},
      {8, 25, "from 3pt to 144pt"},
      {8, 37, "no color"},
      {9, 12, "right of the margin"},
      {11, 6, "Formula \"F\": There is no field {Vehicles.Nothing}"},
      {12, 18, "\"some\" is no value of \"shade\""},
      {13, 19, "no column \"B\""},
      {13, 49, "value: There is no formula {@Nothing}"},
      {14, 20, "value: Cannot calculate"},
      {14, 42, "no style \"y\""},
      {15, 5, "no element <picture>"},
      {16, 5, "<detail> has no text"},
      {18, 3, "second <detail>"},
      {19, 3, "no element <footer>"},
  };
  const auto faults = FaultsOf(text);
  std::string all;
  for (const auto& fault : faults) all += fault.Shown() + "\n";
  for (const auto& one : expected) {
    const bool found = std::any_of(faults.begin(), faults.end(), [&](const DefinitionFault& fault) {
      return fault.place.line == one.line && fault.place.column == one.column &&
             fault.text.find(one.part) != std::string::npos;
    });
    EXPECT_TRUE(found) << one.line << ":" << one.column << " " << one.part;
  }
  EXPECT_EQ(faults.size(), expected.size()) << all;
  EXPECT_EQ(faults[0].Shown().substr(0, 28), "test.rpt, line 1, column 27:");
}

TEST_F(DefinitionTest, FormulasInACircleAreOneFault) {
  const auto faults = FaultsOf(
      Around("<formula name=\"A\">{@B} &amp; 'x'</formula>\n<formula name=\"B\">1 &amp; {@A}</formula>\n"
             "<detail><text value=\"{@A}\"/></detail>"));
  ASSERT_EQ(faults.size(), 1U);
  EXPECT_EQ(faults[0].place.line, 3);
  EXPECT_EQ(faults[0].place.column, 27);
  EXPECT_NE(faults[0].text.find("in a circle: {@A}, {@B}, {@A}."), std::string::npos) << faults[0].text;

  std::string chain;
  for (int i = 0; i < 500; ++i)
    chain += "<formula name=\"F" + std::to_string(i) + "\">{@F" + std::to_string(i + 1) + "}</formula>";
  EXPECT_FALSE(FaultsOf(Around(chain + "<formula name=\"F500\">1</formula>")).empty());
}

TEST_F(DefinitionTest, HostileFilesAreRefused) {
  const auto first = [&](const std::string& text) {
    const auto faults = FaultsOf(text);
    return faults.empty() ? std::string() : faults[0].text;
  };
  EXPECT_NE(first("<!DOCTYPE r [<!ENTITY x \"y\">]><report name=\"&x;\"/>").find("no document type"),
            std::string::npos);
  EXPECT_NE(first("<report name=\"&x;\"/>").find("not well-formed"), std::string::npos);
  EXPECT_NE(first("").find("not well-formed"), std::string::npos);
  EXPECT_NE(first("<report name=\"a\"").find("not well-formed"), std::string::npos);
  EXPECT_NE(first("<report name=\"\xFF\"/>").find("not well-formed"), std::string::npos);
  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "<a>";
  EXPECT_NE(first(deep).find("deeper than 20"), std::string::npos);
  EXPECT_NE(first("<html/>").find("begins with <report>"), std::string::npos);
  EXPECT_THROW(CheckDefinition(directory_.Path("none.rpt"), &schema_), PrintError);
  EXPECT_THROW(CheckDefinition(Write(std::string(4'000'001, ' ')), &schema_), PrintError);
}

TEST_F(DefinitionTest, PlacesCountCharactersAndEntities) {
  const XmlElement root = ReadXml("<a b='x&amp;y\n\xC3\xBC&#252;z'>t&lt;\xC3\xBC<c/>u\nv</a>");
  const SourcedText& value = root.attributes[0].value;
  EXPECT_EQ(value.text, "x&y \xC3\xBC\xC3\xBCz");
  const auto at = [](const SourcedText& text, int line, int column) {
    const Place place = text.At({line, column});
    return std::to_string(place.line) + ":" + std::to_string(place.column);
  };
  EXPECT_EQ(at(value, 1, 1), "1:7");
  EXPECT_EQ(at(value, 1, 3), "1:13");
  EXPECT_EQ(at(value, 1, 5), "2:1");
  EXPECT_EQ(at(value, 1, 6), "2:2");
  EXPECT_EQ(at(value, 1, 7), "2:8");
  EXPECT_EQ(root.text.text, "t<\xC3\xBCu\nv");
  EXPECT_EQ(at(root.text, 1, 3), "2:16");
  EXPECT_EQ(at(root.text, 2, 1), "3:1");
}

// Mutations of the sample: each is read or refused, with places inside of the file.
TEST_F(DefinitionTest, AnyFileIsReadOrRefused) {
  const std::string sample = SampleText();
  ASSERT_FALSE(sample.empty());
  std::vector<std::string> pieces;
  std::istringstream words(sample);
  for (std::string word; words >> word;) pieces.push_back(word);
  std::mt19937 random(20261122);
  const auto below = [&](std::size_t most) {
    return std::uniform_int_distribution<std::size_t>(0, most - 1)(random);
  };
  int wellFormed = 0;
  for (int round = 0; round < 800; ++round) {
    std::string text = sample;
    for (std::size_t i = 1 + below(3); i > 0; --i) {
      const std::size_t at = below(text.size());
      switch (below(5)) {
        case 0:
          text[at] = static_cast<char>(below(256));
          break;
        case 1:
          text.erase(at, below(30));
          break;
        case 2:
          text.insert(at, pieces[below(pieces.size())]);
          break;
        case 3:
          text.insert(at, text.substr(below(text.size()), below(200)));
          break;
        default: {
          // A word in the place of another keeps more files well-formed.
          const std::size_t word = text.find(pieces[below(pieces.size())]);
          if (word != std::string::npos)
            text[std::min(word + below(6), text.size() - 1)] = "aZ9{}'&=\"."[below(10)];
        }
      }
    }
    const auto faults = FaultsOf(text);
    const auto lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
    for (const auto& fault : faults) {
      EXPECT_GE(fault.text.size(), 9U);
      EXPECT_TRUE(fault.place.line >= 1 && fault.place.line <= lines && fault.place.column >= 1)
          << fault.Shown();
    }
    if (faults.empty() || faults[0].text.find("well-formed") == std::string::npos) ++wellFormed;
  }
  EXPECT_GT(wellFormed, 100);
}

}  // namespace
}  // namespace print::test
