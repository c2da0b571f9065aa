// From stored definitions to the strings of a run.
#include "reports/SelectAndSort.h"

#include <gtest/gtest.h>

#include "data/BrackenfelGlobals.h"
#include "reports/DWGlobals.h"
#include "reports/DefinitionRows.h"
#include "reports/ReportTable.h"
#include "reports/SelectionWords.h"
#include "support/OtherUser.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

constexpr const char* kFile = "DW_SANDS.MDB";

class SelectAndSort : public testing::Test {
 protected:
  SelectAndSort() {
    dw::RptQueryID = 0;
    dw::SetReportGlobals(dw::ReportOf("DW_RptInventory"));
    query_ = Definition("Trucks", true);
  }
  std::int32_t Definition(const char* name, bool kept) {
    return fleet_.Add("Select and Sort Queries",
                      {{"Description", name}, {"Primary Table", "Vehicles"}, {"Permanent", kept}}, kFile);
  }
  void Condition(const test::Row& row) {
    test::Row all{{"Query ID", query_}};
    all.insert(all.end(), row.begin(), row.end());
    fleet_.Add("Selection Criteria", all, kFile);
  }
  void Order(const test::Row& row) {
    test::Row all{{"Query ID", query_}};
    all.insert(all.end(), row.begin(), row.end());
    fleet_.Add("Sort Criteria", all, kFile);
  }
  std::string Count(const char* table) {
    return fleet_.Ask(std::string("SELECT COUNT(*) FROM [") + table + "]", kFile);
  }

  test::OtherUser other_;
  test::SmallFleet fleet_{kFile};
  test::ScreenScript screen_;
  std::int32_t query_ = 0;
};

TEST_F(SelectAndSort, LinesBecomeTheFormulaAndTheListInTheOrderOfTheirEntry) {
  Condition({{"Line Number", 2},
             {"Field Name", "Class ID"},
             {"Comparison Operator", "="},
             {"Value", "'TRK'"},
             {"Connector", "AND"},
             {"Field Function", "Ignored"}});
  Condition({{"Line Number", 1},
             {"Table Name", "Divisions"},
             {"Open Parentheses", "(("},
             {"Field Name", "Description"},
             {"Comparison Operator", ">="},
             {"Value", "'O''Neil'"},
             {"Close Parentheses", "))"}});
  Order({{"Field Name", "Class ID"}, {"Ascending or Descending", "A"}});
  Order({{"Table Name", "Divisions"}, {"Field Name", "Division ID"}, {"Ascending or Descending", "D"}});
  Order({{"Field Name", "Asset ID"}});
  EXPECT_TRUE(dw::UseDefinition(query_, "[Vehicles]"));
  EXPECT_EQ(dw::RptQueryID, query_);
  EXPECT_EQ(dw::RptSelection, "{Vehicles.Class ID} = 'TRK' AND (({Divisions.Description} >= 'O''Neil'))  ");
  EXPECT_EQ(dw::RptSort,
            "{Vehicles.Class ID} ASCENDING, {Divisions.Division ID} DESCENDING, {Vehicles.Asset ID} "
            "ASCENDING");

  const std::int32_t empty = Definition("Everything", false);
  EXPECT_TRUE(dw::UseDefinition(empty, "Vehicles"));
  EXPECT_EQ(dw::RptSelection + dw::RptSort, "");
  EXPECT_EQ(dw::DescriptionOf(empty), "Everything");
  EXPECT_EQ(dw::DescriptionOf(empty + 1), std::nullopt);
}

TEST_F(SelectAndSort, ValuesAreAskedForAtTheRun) {
  Condition({{"Field Name", "Class ID"},
             {"Comparison Operator", "="},
             {"Value", "'never'"},
             {"Get Value at Runtime", true},
             {"Runtime Value Prompt", "Which Class?"},
             {"Connector", "AND"}});
  Condition({{"Field Name", "Purchase Date"},
             {"Comparison Operator", ">"},
             {"Get Value at Runtime", true},
             {"Connector", "AND"}});
  Condition({{"Field Name", "Purchase Price"}, {"Comparison Operator", "<"}, {"Get Value at Runtime", true}});
  screen_->ExpectInput("Which Class?", "O'Neil");
  // The field is looked for where the definitions are, and is not there.
  for (const char* answer : {"1/2/1999", ""}) {
    screen_->Expect("Table 'Vehicles' not found in database.", Icon::Information);
    screen_->ExpectInput("Enter Value:", answer);
  }
  EXPECT_TRUE(dw::UseDefinition(query_, "Vehicles"));
  EXPECT_EQ(dw::RptSelection,
            "{Vehicles.Class ID} = 'O''Neil' AND {Vehicles.Purchase Date} > Date(1999,1,2) AND "
            "{Vehicles.Purchase Price} <   ");
  EXPECT_EQ(screen_->Shown().front().title, "Drovewright");
  EXPECT_EQ(screen_->Shown().back().title, "Inventory Listing Parameters");
}

TEST_F(SelectAndSort, TemporaryDefinitionsGoAndTheirLinesStay) {
  Condition({{"Field Name", "Class ID"}});
  dw::RemoveTemporaryDefinition(query_);
  EXPECT_EQ(Count("Select and Sort Queries"), "1");
  fleet_.Run("UPDATE [Select and Sort Queries] SET [Permanent] = FALSE", kFile);
  dw::RemoveTemporaryDefinition(query_);
  EXPECT_EQ(Count("Select and Sort Queries"), "0");
  EXPECT_EQ(Count("Selection Criteria"), "1");
  dw::RemoveTemporaryDefinition(query_);
}

TEST_F(SelectAndSort, DeletingTakesTheLinesAndSparesThemWhenOneIsHeld) {
  Condition({{"Line Number", 7}});
  Order({{"Line Number", 3}});
  fleet_.Add("Sort Criteria", {{"Query ID", query_ + 1}, {"Line Number", 9}}, kFile);
  EXPECT_EQ(dw::NextLineNumber("Selection Criteria", query_), 8);
  EXPECT_EQ(dw::NextLineNumber("Sort Criteria", query_), 4);
  EXPECT_EQ(dw::NextLineNumber("Sort Criteria", query_ + 5), 1);
  const auto sure = [this](Answer answer) {
    screen_->Expect("Are you sure you want to delete this record?", Icon::Question, Buttons::YesNo, answer);
  };
  sure(Answer::No);
  EXPECT_FALSE(dw::DeleteDefinition(query_));
  other_.Hold(fleet_.Path(kFile), "SELECT * FROM [Sort Criteria] ORDER BY [ID]");
  sure(Answer::Yes);
  screen_->ExpectPart("It has not been deleted.", Icon::Exclamation);
  EXPECT_FALSE(dw::DeleteDefinition(query_));
  EXPECT_EQ(Count("Selection Criteria") + Count("Sort Criteria") + Count("Select and Sort Queries"), "121");
  other_.Leave();
  sure(Answer::Yes);
  EXPECT_TRUE(dw::DeleteDefinition(query_));
  EXPECT_EQ(Count("Selection Criteria") + Count("Sort Criteria") + Count("Select and Sort Queries"), "010");
  sure(Answer::Yes);
  screen_->Expect("That ID is no longer on file.", Icon::Exclamation);
  EXPECT_FALSE(dw::DeleteDefinition(query_));
}

TEST_F(SelectAndSort, WordsSayWhatWillBeAsked) {
  const std::vector<dw::SelectionLine> lines{
      {.field = "Class ID", .comparison = "=", .value = "'TRK'", .connector = "AND"},
      {.table = "vehicles",
       .field = "Purchase Date",
       .comparison = ">=",
       .value = "Date(1999,1,1)",
       .connector = "OR",
       .open = "("},
      {.table = "Divisions", .field = "Notes", .comparison = "<", .value = "'M'", .close = ")"},
  };
  EXPECT_EQ(dw::SelectionInWords(lines, "Vehicles"),
            "Class ID is TRK and (Purchase Date is on or after 1/1/1999 or Notes of Divisions comes "
            "before M)");
  EXPECT_EQ(dw::SelectionInWords({}, "Vehicles"), "All records.");
  EXPECT_EQ(dw::SelectionInWords({{.field = "Price", .comparison = "<=", .value = "5"},
                                  {.field = "Year",
                                   .comparison = "=",
                                   .connector = "AND",
                                   .askAtRuntime = true,
                                   .prompt = "Which Year?"}},
                                 "Vehicles"),
            "Price is at most 5 (no connector) Year is (asked at each run: Which Year?) and (nothing)");
  EXPECT_EQ(dw::SortInWords({{"", "Class ID", false}, {"Divisions", "ID", true}}, "Vehicles"),
            "Sorted by Class ID, then by ID of Divisions (descending)");

  const auto samples = dw::WithSampleValues({{.field = "Class ID", .askAtRuntime = true},
                                             {.field = "Purchase Date", .askAtRuntime = true},
                                             {.field = "Purchase Price", .askAtRuntime = true},
                                             {.table = "No Such", .field = "X", .askAtRuntime = true},
                                             {.field = "Class ID", .value = "stored"}},
                                            "Vehicles");
  std::string values;
  for (const auto& line : samples) values += line.value + ";";
  EXPECT_EQ(values, "'A';Date(2000,1,1);0;0;stored;");
}

}  // namespace
