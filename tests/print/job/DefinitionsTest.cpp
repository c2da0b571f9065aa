// The reports that the program is delivered with, on a small fleet that never changes. What they print is
// compared with the files in expected/; DROVEWRIGHT_BASELINE=1 in the environment writes those anew.
#include <gtest/gtest.h>

#include <cstdlib>

#include "costing/CostCheck.h"
#include "costing/Posting.h"
#include "platform/runtime/Clock.h"
#include "platform/store/Connection.h"
#include "print/job/ReportFixture.h"
#include "support/QuietScreen.h"

namespace print::test {
namespace {

using rt::DateTime;
using ::test::Money;
using ::test::Row;

/// Two divisions, two classes, an asset without either, codes with quotes, Nulls where people leave gaps.
class Fleet : public ::test::SmallFleet {
 public:
  Fleet() {
    Run("DELETE FROM [Parameters]");
    Add("Parameters", {{"ID", 1},
                       {"Organization Name", "City of Marlow Bend"},
                       {"Address Line 1", "1200 Depot Road"},
                       {"Address Line 2", rt::Null()},
                       {"Address Line 3", "Marlow Bend"},
                       {"Contact Phone", "555-0142"}});
    Add("Divisions",
        {{"Division ID", "PARKS"}, {"Description", "Parks"}, {"Notes", "Mows and plants.\nOpen all week."}});
    Add("Divisions", {{"Division ID", "STREETS"}, {"Description", "Streets and Drainage"}});
    Add("Inventory Classes", {{"Class ID", "TRK"}, {"Description", "Trucks"}});
    Add("Inventory Classes",
        {{"Class ID", "O'DD"}, {"Description", "Class \"B\" {x} 100%"}, {"Notes", "No notes"}});
    Add("Fuel Types", {{"ID", 1}, {"Description", "Diesel"}});
    Add("Fuel Types", {{"ID", 2}, {"Description", "Unleaded"}});
    for (const char* type : {"Oil Change", "Inspection", "Tires"})
      Add("Maintenance Types", {{"Description", type}});
    AddAsset("TRK-001", 1,
             {{"Description", "Dump Truck"},
              {"Class ID", "TRK"},
              {"Division ID", "STREETS"},
              {"Model Year", "2019"},
              {"VIN/Serial Number", "1FTX-1"},
              {"Purchase Date", DateTime(2019, 5, 31)},
              {"Purchase Price", Money(98000)}});
    AddAsset("TRK-002", 2,
             {{"Description", "Pickup"},
              {"Class ID", "TRK"},
              {"Division ID", "PARKS"},
              {"Model Year", "2021"},
              {"Purchase Price", Money(-250.5)},
              {"No_Longer_In_Service", true}});
    AddAsset("MOW-1", 2, {{"Description", "Mower"}, {"Class ID", "O'DD"}, {"Division ID", "PARKS"}});
    AddAsset("LONE", rt::Null(), {{"Description", rt::Null()}});
    AddCosts();
    for (const auto& [asset, day, mileage] :
         {std::tuple("TRK-001", 2, 1000.0F), std::tuple("TRK-001", 9, 1250.5F),
          std::tuple("TRK-001", 16, 1200.0F), std::tuple("TRK-002", 5, 500.0F)})
      Add("Odometer Entries", {{"Asset ID", asset},
                               {"Date", DateTime(2026, 1, day)},
                               {"Mileage", mileage},
                               {"Notes", day == 16 ? rt::Value("Read backwards") : rt::Value()}});
    Add("Odometer Entry Work Table", {{"User Name", "TESTER"},
                                      {"Asset ID", "TRK-001"},
                                      {"Mileage", 1250.5F},
                                      {"Date", DateTime(2026, 1, 9)}});
    AddSchedules();
    const auto screen = ::test::QuietScreen::Install();
    dw::RunPosting(false, {});
    screen->TakeTexts();
  }

 private:
  void AddCosts() {
    Entry("TRK-001", 1, 2, 1000.0F, {{"Internal Fuel Units", 20.0F}, {"Internal Fuel Cost", Money(60)}});
    const int service = Entry("TRK-001", 1, 9, 1250.5F,
                              {{"Internal Fuel Units", 25.0F},
                               {"Internal Fuel Cost", Money(75.25)},
                               {"Oil", 2.0F},
                               {"Oil Cost", Money(9)},
                               {"Time", 1.5F},
                               {"Internal Time Cost", Money(45)},
                               {"Parts Cost", Money(12.34)},
                               {"Work Order Number", "W-17"},
                               {"Notes", "Left front tire worn"}});
    Entry("TRK-001", 2, 16, 1200.0F, {{"Outside Fuel Units", 10.0F}, {"Outside Fuel Cost", Money(33.3333)}});
    Entry("TRK-001", 2, 20, 1500.0F,
          {{"Outside Fuel Units", 12.0F},
           {"Outside Fuel Cost", Money(40)},
           {"Outside Oil Units", 1.0F},
           {"Outside Oil Cost", Money(6)},
           {"Outside Cost", Money(-20)}});
    Entry("TRK-002", 1, 5, 500.0F, {{"Outside Cost", Money(310)}, {"Work Order Number", "W-18"}});
    Entry("MOW-1", 2, 1, 0.0F, {{"Internal Fuel Units", 3.0F}, {"Internal Fuel Cost", Money(9)}});
    Entry("LONE", 2, 2, 0.0F, {{"Parts Cost", Money(1)}});
    Add("Maintenance_Performed",
        {{"Maintenance_Entry_ID", service}, {"Maintenance_Type_ID", 1}, {"Cost", Money(30)}});
    Add("Maintenance_Performed", {{"Maintenance_Entry_ID", service},
                                  {"Maintenance_Type_ID", 3},
                                  {"Cost", Money(27.34)},
                                  {"Notes", "Both in front"}});
  }
  int Entry(const std::string& asset, int period, int day, float mileage, Row more) {
    more.insert(more.end(), {{"Transaction Date", DateTime(2026, period, day)}, {"Mileage", mileage}});
    return AddTransaction(asset, std::int16_t{2026}, static_cast<std::int16_t>(period), more);
  }
  void AddSchedules() {
    const auto line = [&](const char* asset, int number, int type, int months, int usage, double cost) {
      Add("Maintenance Schedule", {{"Asset ID", asset},
                                   {"Line Item", static_cast<std::int16_t>(number)},
                                   {"Type ID", type},
                                   {"Description", "Line " + std::to_string(number)},
                                   {"Monthly Frequently", months},
                                   {"Usage Frequency", usage},
                                   {"Estimated Cost", Money(cost)}});
    };
    line("TRK-001", 1, 1, 3, 3000, 45);
    line("TRK-001", 2, 2, 7, 0, 100);
    line("TRK-002", 1, 0, 0, 5000, 20);
  }
};

class Definitions : public EngineTest {
 protected:
  static void SetUpTestSuite() {
    fleet_ = new Fleet();
    bare_ = new ::test::SmallFleet();
    bare_->Run("DELETE FROM [Parameters]");
    bare_->Add("Parameters", {{"ID", 1}, {"Organization Name", "Village of None"}});
  }
  static void TearDownTestSuite() {
    delete fleet_;
    delete bare_;
  }

  /// The report as it stands, with Summary Only and a new page after each group, and without any row.
  std::string Dump(const std::string& number) {
    const rt::FixedClock clock(DateTime(2026, 3, 1, 14, 5, 9));
    std::string text;
    for (const char* variant : {"All rows", "Summary, new pages", "No rows"}) {
      const bool none = std::string(variant) == "No rows";
      const int job = Open(Definition("dwr" + number + ".rpt"), none ? bare_->Path() : fleet_->Path());
      EXPECT_TRUE(PESetFormula(job, "RptGenedBy", "\"TESTER\""));
      if (std::string(variant) == "Summary, new pages") {
        HideDetails(job);
        BreakAfterGroups(job);
      }
      text += "######## " + std::string(variant) + "\n" + ShowText(job);
      if (!text.ends_with('\n')) text += '\n';
      PEClosePrintJob(job);
    }
    return text;
  }

  void Compare(const std::string& number) {
    const std::string file = std::string(DROVEWRIGHT_PRINT_CASES) + "/expected/dwr" + number + ".txt";
    const std::string text = Dump(number);
    if (std::getenv("DROVEWRIGHT_BASELINE") != nullptr) std::ofstream(file, std::ios::binary) << text;
    EXPECT_EQ(text, BytesOf(file)) << "If the new pages are right, run with DROVEWRIGHT_BASELINE=1.";
  }

  /// The last value in the report's footer for a column, as money.
  std::string ReportTotal(const PageStore& pages, const std::string& column) {
    int place = -1;
    for (std::size_t i = 0; i < pages.Facts().columns.size(); ++i)
      if (pages.Facts().columns[i].name == column) place = static_cast<int>(i);
    std::string total = "none";
    for (int i = 0; i < pages.PageCount(); ++i)
      for (const PlacedBand& band : pages.Read(i).bands)
        for (const Cell& cell : band.cells)
          if (band.kind == BandKind::ReportFooter && cell.column == place)
            total = cell.value.AsCurrency().PlainText();
    return total;
  }
  /// A sum over a table of the fleet, as money.
  static std::string TableSum(const std::string& sum, const std::string& table) {
    const auto amount = rt::Currency::Parse(fleet_->Ask("SELECT " + sum + " FROM [" + table + "]"));
    return amount ? amount->PlainText() : "not a number";
  }

  static Fleet* fleet_;
  static ::test::SmallFleet* bare_;
};

Fleet* Definitions::fleet_ = nullptr;
::test::SmallFleet* Definitions::bare_ = nullptr;

class EachDefinition : public Definitions, public testing::WithParamInterface<const char*> {};

TEST_P(EachDefinition, PrintsAsExpected) { Compare(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Reports, EachDefinition,
                         testing::Values("001", "002", "003", "004", "006", "008", "009", "010", "011", "012",
                                         "013", "014", "015", "016", "017"),
                         [](const auto& report) { return std::string("Dwr") + report.param; });

TEST_F(Definitions, SumsOfCostReportsAreThoseOfTheTables) {
  EXPECT_TRUE(dw::CheckCosts(*store::Connection::Open({fleet_->Path(), store::Share::Shared, true})).empty());
  struct Sum {
    const char* report;
    const char* column;
    const char* field;
    const char* table;
  };
  for (const Sum& sum : {Sum{"004", "Internal", "SUM([Total Internal Cost])", "Maintenance Transactions"},
                         Sum{"004", "Outside", "SUM([Total Outside Cost])", "Maintenance Transactions"},
                         Sum{"006", "Internal", "SUM([Total Internal Cost])", "Assets Period Costs"},
                         Sum{"006", "Outside", "SUM([Total Outside Cost])", "Assets Period Costs"},
                         Sum{"006", "Parts", "SUM([Internal Parts Cost])", "Assets Lifetime Costs"},
                         Sum{"010", "Internal", "SUM([Total Internal Cost])", "Assets Annual Costs"},
                         Sum{"010", "Outside", "SUM([Total Outside Cost])", "Assets Annual Costs"},
                         Sum{"012", "Internal", "SUM([Total Internal Cost])", "Assets Period Costs"},
                         Sum{"012", "Outside", "SUM([Total Outside Cost])", "Assets Period Costs"},
                         Sum{"016", "Total", "SUM([Total Outside Cost])", "Maintenance Transactions"}}) {
    const int job = Open(Definition("dwr" + std::string(sum.report) + ".rpt"), fleet_->Path());
    EXPECT_EQ(ReportTotal(Show(job), sum.column), TableSum(sum.field, sum.table))
        << sum.report << " " << sum.column;
    PEClosePrintJob(job);
  }
}

TEST_F(Definitions, FlowToA4AndNothingLeavesThePage) {
  SetPrintSettings({true, "TESTER"});
  for (const char* number : {"001", "002", "003", "004", "006", "008", "009", "010", "011", "012", "013",
                             "014", "015", "016", "017"}) {
    const int job = Open(Definition("dwr" + std::string(number) + ".rpt"), fleet_->Path());
    const PageStore& pages = Show(job);
    ASSERT_GT(pages.PageCount(), 0);
    const Page page = pages.Read(0);
    EXPECT_EQ(std::min(page.width, page.height), 59528);
    for (const PlacedBand& band : page.bands) {
      for (const Cell& cell : band.cells) {
        EXPECT_LE(cell.box.left + cell.box.width, page.width - 36 * kPoint + 2) << number;
        EXPECT_LE(cell.box.top + cell.box.height, page.height - 36 * kPoint) << number;
      }
    }
    PEClosePrintJob(job);
  }
}

TEST_F(Definitions, TakeTheFieldsOfALauncherByNameAndAlias) {
  const int job = Open(Definition("dwr006.rpt"), fleet_->Path());
  EXPECT_TRUE(
      PESetSelectionFormula(job,
                            "{Maintenance Transactions.Transaction Date} >= Date(2026,1,1) AND {Maintenance "
                            "Transactions.Transaction "
                            "Date} <= Date(2026,1,31) AND {Maintenance Transactions.Asset ID} = 'TRK-001'" +
                                std::string(1, '\0')))
      << Error(job);
  EXPECT_TRUE(PESetNthSortField(job, 0, "{Maintenance Transactions.Asset ID}" + std::string(1, '\0'), 1))
      << Error(job);
  EXPECT_TRUE(PESetNthSortField(job, 1, "{Maintenance Transactions.Transaction Date}  ", 0)) << Error(job);
  const std::string text = ShowText(job);
  EXPECT_NE(text.find("From 1/1/2026 to 1/31/2026"), std::string::npos) << text;
  EXPECT_LT(text.find("1/9/2026"), text.find("1/2/2026"));
  EXPECT_EQ(text.find("2/16/2026"), std::string::npos);
  const int classes = Open(Definition("dwr002.rpt"), fleet_->Path());
  EXPECT_TRUE(PESetNthSortField(classes, 0, "{Asset Classes.Description}", 0)) << Error(classes);
  EXPECT_TRUE(PESetNthSortField(classes, 0, "{Inventory Classes.Description}", 0)) << Error(classes);
  EXPECT_TRUE(PESetSelectionFormula(classes, "{Asset Classes.Class ID} <> ''")) << Error(classes);
  const std::string sorted = ShowText(classes);
  EXPECT_LT(sorted.find("Trucks"), sorted.find("Class \"B\""));
}

}  // namespace
}  // namespace print::test
