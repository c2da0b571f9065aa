// Compares the report from one pass over each table with the report from a query for each fact.
#include "fleet/DueFacts.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "fleet/DueReport.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/Text.h"
#include "support/DueFleet.h"
#include "support/QuietScreen.h"
#include "support/ScreenScript.h"

namespace {

/// The file as another tool writes it: without checks of types and ranges.
class OtherTool {
 public:
  explicit OtherTool(const std::string& path) {
    if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) throw std::runtime_error("cannot open " + path);
    Run("PRAGMA ignore_check_constraints = ON; PRAGMA synchronous = OFF; BEGIN");
  }
  ~OtherTool() {
    Run("COMMIT");
    sqlite3_close(db_);
  }
  OtherTool(const OtherTool&) = delete;
  OtherTool& operator=(const OtherTool&) = delete;
  void Run(const std::string& sql) {
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
      throw std::runtime_error(std::string(sqlite3_errmsg(db_)) + " in " + sql);
  }

 private:
  sqlite3* db_ = nullptr;
};

using Literals = std::vector<const char*>;

/// The values of a column: proper ones of its type, and odd ones.
struct Choice {
  Literals proper;
  Literals odd;
};

const Choice kCodes{
    {"'A1'", "'a1'",  "'A2'",  "'B 1'", "'B 1 '", "' B 1'", "''",      "NULL",         "'Ä1'", "'ä1'",
     "'%'",  "'1e5'", "'007'", "'7'",   "'[x]'",  "'--x'",  "'\"q\"'", "'#1/1/2020#'", "'A'",  "'a'"},
    {"'O''BRIEN'", "'O''''X'", "'x'' OR ''a'' = ''a'", "'x'' AND nothing = ''y'", "CAST(x'410042' AS TEXT)",
     "CAST(x'410043' AS TEXT)", "x'4131'"}};
const Choice kDates{
    {"NULL", "'2026-01-31 00:00:00'", "'2026-01-31 00:00:00'", "'2026-01-31 08:30:00'",
     "'2025-12-31 23:59:59'", "'2024-02-29 00:00:00'", "'0100-01-01 00:00:00'", "'9999-12-31 23:59:59'"},
    {"'2026-01-31'", "'1/31/2026'", "'garbage'", "''", "20260131", "46053.5", "x'00'",
     "'2026-02-30 00:00:00'", "'0099-01-01 00:00:00'"}};
const Choice kMileages{{"NULL", "0", "-5", "-1e300", "100", "100", "100.5", "0.1", "1e-300", "16777217",
                        "1e300", "9e999", "'12'"},
                       {"'abc'", "''", "'12x'", "x'01'", "9007199254740993", "9223372036854775807"}};
const Choice kTypes{{"NULL", "0", "1", "1", "2", "2", "3", "-1", "77"},
                    {"'x'", "1.5", "99999999999", "x'02'"}};
const Choice kMonths{{"NULL", "0", "-1", "1", "6", "12", "24", "1000000", "2147483647", "-2147483648"},
                     {"'m'", "0.5", "2147483648", "x'03'"}};
const Choice kUsages{{"NULL", "0", "-1", "100", "16777217", "3000", "2147483647"},
                     {"'u'", "99.5", "1e300", "x'03'"}};

/// Fills the tables that the analysis reads with random rows. A choice of few values makes many ties.
class Fleet {
 public:
  Fleet(const std::string& path, unsigned seed, double oddness)
      : tool_(path), chance_(seed), oddness_(oddness) {}

  void Fill(int rows) {
    for (const char* table : {"Vehicles", "Maintenance Types", "Maintenance Schedule", "Odometer Entries",
                              "Maintenance Transactions", "Maintenance_Performed"})
      tool_.Run("DELETE FROM \"" + std::string(table) + "\"");
    for (int i = 0; i < rows / 2; ++i)
      tool_.Run(
          "INSERT OR IGNORE INTO \"Vehicles\" (\"Asset ID\", \"Description\", \"Purchase Date\", "
          "\"No_Longer_In_Service\") VALUES (" +
          Pick(kCodes) + ", " + (Below(4) == 0 ? "NULL" : "'Truck'") + ", " + Pick(kDates) + ", " +
          (Below(5) == 0 ? "1" : "0") + ")");
    for (int id = 0; id < 4; ++id)
      tool_.Run("INSERT INTO \"Maintenance Types\" (ID, \"Description\") VALUES (" + std::to_string(id) +
                ", " + (Below(4) == 0 ? "NULL" : "'Type'") + ")");
    for (int i = 0; i < rows; ++i)
      tool_.Run(
          "INSERT INTO \"Maintenance Schedule\" (\"Asset ID\", \"Type ID\", \"Monthly Frequently\", "
          "\"Usage Frequency\") VALUES (" +
          Pick(kCodes) + ", " + Pick(kTypes) + ", " + Pick(kMonths) + ", " + Pick(kUsages) + ")");
    for (int i = 0; i < rows; ++i)
      tool_.Run("INSERT INTO \"Odometer Entries\" (ID, \"Asset ID\", \"Date\", \"Mileage\") VALUES (" +
                Number(i) + ", " + Pick(kCodes) + ", " + Pick(kDates) + ", " + Pick(kMileages) + ")");
    for (int i = 0; i < 2 * rows; ++i)
      tool_.Run(
          "INSERT INTO \"Maintenance Transactions\" (ID, \"Asset ID\", \"Transaction Date\", "
          "\"Mileage\", \"Type_ID\") VALUES (" +
          Number(i) + ", " + Pick(kCodes) + ", " + Pick(kDates) + ", " + Pick(kMileages) + ", 0)");
    // Some refer to transactions that never were; several may refer to the same one.
    for (int i = 0; i < 2 * rows; ++i)
      // The file refuses a task without a type, so those rows are left out.
      tool_.Run(
          "INSERT OR IGNORE INTO \"Maintenance_Performed\" (\"Maintenance_Entry_ID\", "
          "\"Maintenance_Type_ID\") "
          "VALUES (" +
          (Below(20) == 0 ? Pick(kTypes) : std::to_string(Below(2 * rows + 5) * 3 - 4)) + ", " +
          Pick(kTypes) + ")");
  }

 private:
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(chance_); }
  /// Numbers with gaps, some of them below 1.
  static std::string Number(int row) { return std::to_string(row * 3 - 4); }
  std::string Pick(const Choice& choice) {
    const bool odd = std::uniform_real_distribution<double>(0, 1)(chance_) < oddness_;
    const Literals& from = odd ? choice.odd : choice.proper;
    return from[static_cast<std::size_t>(Below(static_cast<int>(from.size())))];
  }

  OtherTool tool_;
  std::mt19937 chance_;
  double oddness_;
};

/// A report with all messages of its run.
struct Outcome {
  dw::DueReportEnd end = dw::DueReportEnd::Failed;
  std::string log;
  std::string items;
  std::string boxes;
};

class DueFactsTest : public testing::Test {
 protected:
  Outcome Report(dw::DueWay way) {
    const auto screen = test::QuietScreen::Install();
    Outcome outcome;
    std::string path;
    dw::DueReportRequest request{program_.Path(), "3/29/2026", "500", {}, way};
    request.onItem = [&](const dw::DueItem& item) {
      outcome.items += item.assetID + "|" + item.type + "|" + (item.byDate ? item.nextDate.ToIso() : "") +
                       "|" + rt::PlainText(item.nextMileage) + "\n";
    };
    outcome.end = dw::MakeDueReport(request, path);
    std::ifstream file(program_.Path("Maintenance Report.Log"), std::ios::binary);
    outcome.log = std::string(std::istreambuf_iterator<char>(file), {});
    outcome.boxes = screen->TakeTexts();
    return outcome;
  }
  /// For how many of the codes the pass has the facts.
  int Known(const std::vector<std::string>& codes) {
    dw::AdoConnectionPtr connection;
    EXPECT_TRUE(dw::AdoOpenConnection(connection, dw::DataConnect, false));
    dw::DueFacts facts(connection->Store());
    int known = 0;
    for (const std::string& code : codes) known += facts.Know(code) ? 1 : 0;
    dw::CloseObject(connection);
    return known;
  }

  rt::FixedClock clock_{rt::DateTime(2026, 3, 15, 10, 30, 0)};
  test::DueFleet fleet_;
  test::TempDirectory program_;
};

TEST_F(DueFactsTest, BothWaysWriteTheSameReportOfAnyFleet) {
  int known = 0;
  int unknown = 0;
  int items = 0;
  const std::vector<std::string> codes{"A1", "A2", "B 1", "B 1 ", "", "Ä1", "007", "[x]", "a"};
  for (const double oddness : {0.0, 0.005, 0.05}) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
      std::cout << "seed " << seed << ", oddness " << oddness << '\n';
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", oddness " << oddness);
      Fleet(fleet_.Path(), seed, oddness).Fill(80);
      const Outcome queries = Report(dw::DueWay::Queries);
      const Outcome pass = Report(dw::DueWay::OnePass);
      EXPECT_EQ(pass.end, dw::DueReportEnd::Written);
      EXPECT_EQ(queries.end, dw::DueReportEnd::Written) << queries.boxes;
      EXPECT_EQ(pass.log, queries.log);
      EXPECT_EQ(pass.items, queries.items);
      EXPECT_EQ(pass.boxes, queries.boxes);
      EXPECT_TRUE(oddness > 0 || queries.boxes.empty()) << queries.boxes;
      if (HasFailure()) return;
      const int here = Known(codes);
      known += here;
      unknown += static_cast<int>(codes.size()) - here;
      items += static_cast<int>(std::count(queries.items.begin(), queries.items.end(), '\n'));
    }
  }
  // Without enough of these, the comparison would prove nothing.
  EXPECT_GT(known, 60);
  EXPECT_GT(unknown, 20);
  EXPECT_GT(items, 200);
}

TEST_F(DueFactsTest, OnlyTheAssetWithAnOddValueOrCodeIsNotKnown) {
  for (const char* code : {"V1", "V2", "O''BRIEN"}) {
    fleet_.Asset(code, "#2/1/2025#");
    fleet_.Line(code, "1", "12", "100");
  }
  // The file compares texts only up to a NUL.
  OtherTool(fleet_.Path()).Run("INSERT INTO Vehicles (\"Asset ID\") VALUES (CAST(x'410042' AS TEXT))");
  EXPECT_EQ(Known({"V1", "v2", "O'BRIEN", std::string("A\0B", 3), "NEW"}), 2);
  fleet_.Reading("V2", "#3/1/2026#", "10");
  // A day without its time reads as a date, but the file sorts it before the same day with its time.
  for (const char* date : {"soon", "2026-03-01"}) {
    OtherTool(fleet_.Path()).Run("UPDATE \"Odometer Entries\" SET \"Date\" = '" + std::string(date) + "'");
    EXPECT_EQ(Known({"V1"}), 1);
    EXPECT_EQ(Known({"V2"}), 0) << date;
  }

  // For a file with another layout, the report uses the queries.
  fleet_.Run("ALTER TABLE [Maintenance Schedule] DROP COLUMN [Usage Frequency]");
  EXPECT_EQ(Known({"V1"}), 0);
}

TEST_F(DueFactsTest, AnAssetThatGetsItsCodeAfterThePassIsNotKnown) {
  fleet_.Asset("V1", "#2/1/2025#");
  fleet_.Reading("V1", "#3/1/2026#", "10");
  dw::AdoConnectionPtr connection;
  ASSERT_TRUE(dw::AdoOpenConnection(connection, dw::DataConnect, false));
  dw::DueFacts facts(connection->Store());
  EXPECT_TRUE(facts.Know("V1"));
  EXPECT_FALSE(facts.Know("V2")) << "it may have been renamed while the tables were read";
  dw::CloseObject(connection);
}

}  // namespace
