#include "tools/dwadmin/Sample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>

#include "data/Catalogue.h"
#include "platform/dao/Dao.h"
#include "support/TempDirectory.h"

namespace {

const rt::DateTime kUntil(2025, 10, 17);
constexpr int kAssets = 40;
constexpr int kYears = 2;
constexpr const char* kFiles[] = {"DW.MDB", "DW_USERS.MDB", "DW_LISTS.MDB", "DW_SANDS.MDB"};

/// One file of a sample, opened for reading.
class Data {
 public:
  explicit Data(const std::string& path)
      : workspace_(dao::DBEngine::CreateWorkspace("Test", "admin", "")),
        database_(workspace_->OpenDatabase(path, false, true)) {}
  ~Data() { workspace_->Close(); }
  Data(const Data&) = delete;
  Data& operator=(const Data&) = delete;

  std::shared_ptr<dao::Recordset> Rows(const std::string& sql) {
    return database_->OpenRecordset(sql, dao::RecordsetType::Snapshot, dao::Access::ReadOnly);
  }
  std::int32_t Count(const std::string& fromAndWhere) {
    return Rows("SELECT COUNT(*) AS [Rows] FROM " + fromAndWhere)->Get("Rows").AsLong();
  }

 private:
  std::shared_ptr<dao::Workspace> workspace_;
  std::shared_ptr<dao::Database> database_;
};

/// All rows of a sample's files, one on each line.
std::string Everything(const std::string& directory) {
  std::string text;
  for (const char* file : kFiles) {
    Data data((std::filesystem::path(directory) / file).string());
    for (const store::TableInfo& table : dw::CatalogueOf(file).tables) {
      text += "[" + table.name + "]\n";
      for (auto rows = data.Rows("SELECT * FROM [" + table.name + "]"); !rows->AtEnd(); rows->MoveNext()) {
        for (int field = 0; field < static_cast<int>(rows->Fields().size()); ++field)
          text += rows->Get(field).Shown() + (rows->Get(field).IsNull() ? "~|" : "|");
        text += "\n";
      }
    }
  }
  return text;
}

/// One sample for the tests that only read it.
class SampleTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    directory_ = new test::TempDirectory;
    dw::MakeSample(directory_->Path(), kAssets, kYears, 1, {}, kUntil);
  }
  static void TearDownTestSuite() { delete directory_; }
  Data Main() { return Data(directory_->Path("DW.MDB")); }
  static test::TempDirectory* directory_;
};
test::TempDirectory* SampleTest::directory_ = nullptr;

TEST(Sample, TheSameSeedAndDayGiveTheSameRowsWhateverTheClockSays) {
  const auto make = [](int assets, std::uint32_t seed, const rt::DateTime& now) {
    const rt::FixedClock clock(now);
    const test::TempDirectory directory;
    std::vector<int> heard;
    dw::MakeSample(
        directory.Path(), assets, 1, seed, [&](int percent) { heard.push_back(percent); }, kUntil);
    EXPECT_EQ(heard.front(), 0);
    EXPECT_EQ(heard.back(), 100);
    EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()));
    return Everything(directory.Path());
  };
  const std::string first = make(8, 7, rt::DateTime(2025, 10, 17, 9, 30));
  EXPECT_GT(first.size(), 20000U);
  EXPECT_EQ(first, make(8, 7, rt::DateTime(2031, 2, 28, 23, 59)));
  EXPECT_NE(first, make(8, 8, rt::DateTime(2025, 10, 17, 9, 30)));
}

TEST(Sample, RefusesADirectoryWithDataAndFleetsOfNothing) {
  const test::TempDirectory directory;
  dw::CreateDataFile(directory.Path(), "DW_SANDS.MDB");
  try {
    dw::MakeSample(directory.Path(), 1, 1, 1, {}, kUntil);
    FAIL() << "made beside a file that was there";
  } catch (const store::StoreError& error) {
    EXPECT_EQ(error.Number(), store::kFileExists);
  }
  EXPECT_FALSE(std::filesystem::exists(directory.Path("DW.MDB")));
  const test::TempDirectory empty;
  EXPECT_THROW(dw::MakeSample(empty.Path(), 0, 1, 1, {}, kUntil), std::invalid_argument);
  EXPECT_THROW(dw::MakeSample(empty.Path(), 1, 0, 1, {}, kUntil), std::invalid_argument);
}

TEST_F(SampleTest, FilesAgreeWithTheCatalogueAndEveryReferenceLeadsSomewhere) {
  for (const char* file : kFiles) {
    {
      const auto connection = store::Connection::Open({.path = directory_->Path(file)});
      EXPECT_EQ(dw::CompareWithCatalogue(*connection, dw::CatalogueOf(file)), std::vector<std::string>{});
    }
    Data data(directory_->Path(file));
    for (const store::RelationInfo& relation : dw::CatalogueOf(file).relations) {
      const std::string reference =
          "[" + relation.foreignTable + "].[" + relation.columns.front().second + "]";
      const std::string key = "[" + relation.table + "].[" + relation.columns.front().first + "]";
      // A reference of 0 means none, as a Null does.
      std::string dangling = "[" + relation.foreignTable + "] LEFT JOIN [" + relation.table + "] ON " +
                             reference + " = " + key + " WHERE " + key + " IS NULL AND " + reference +
                             " IS NOT NULL";
      if (relation.columns.front().second == "Type_ID") dangling += " AND " + reference + " <> 0";
      EXPECT_EQ(data.Count(dangling), 0) << relation.name;
    }
  }
}

TEST_F(SampleTest, TransactionsStandInTheirPeriodAndCarryThePricesInForce) {
  Data data = Main();
  struct Price {
    rt::DateTime effective;
    rt::Currency first, second;
  };
  std::map<std::int32_t, std::vector<Price>> fuelPrices;
  for (auto rows = data.Rows("SELECT * FROM [Internal Fuel Pricing Log] ORDER BY [Effective Date]");
       !rows->AtEnd(); rows->MoveNext())
    fuelPrices[rows->Get("Fuel Type").AsLong()].push_back(
        {rows->Get("Effective Date").AsDate(), rows->Get("Fuel Price").AsCurrency(), {}});
  std::vector<Price> labor;
  for (auto rows = data.Rows("SELECT * FROM [Internal Pricing Log] ORDER BY [ID]"); !rows->AtEnd();
       rows->MoveNext())
    labor.push_back({rows->Get("Effective Date").AsDate(), rows->Get("Hourly Rate").AsCurrency(),
                     rows->Get("Oil Price").AsCurrency()});
  std::map<std::pair<std::int16_t, std::int16_t>, std::pair<rt::DateTime, rt::DateTime>> periods;
  for (auto rows = data.Rows("SELECT * FROM [Fiscal Periods]"); !rows->AtEnd(); rows->MoveNext())
    periods[{rows->Get("Fiscal Year").AsInteger(), rows->Get("Period").AsInteger()}] = {
        rows->Get("Start Date").AsDate(), rows->Get("End Date").AsDate()};

  int fuelled = 0;
  int labored = 0;
  int oiled = 0;
  auto rows = data.Rows(
      "SELECT [Maintenance Transactions].*, [Fuel Type] FROM [Maintenance Transactions] INNER JOIN "
      "[Vehicles] ON "
      "[Maintenance Transactions].[Asset ID] = [Vehicles].[Asset ID]");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const rt::DateTime date = rows->Get("Transaction Date").AsDate();
    const auto period = periods.find({rows->Get("Year").AsInteger(), rows->Get("Period").AsInteger()});
    ASSERT_NE(period, periods.end());
    EXPECT_LE(period->second.first, date);
    EXPECT_GE(period->second.second, date);

    // Fuel: the latest row on or before the date. Labor and oil: the first row on or after it.
    const float fuel = rows->Get("Internal Fuel Units").AsSingle();
    if (fuel > 0) {
      const Price* inForce = nullptr;
      for (const Price& price : fuelPrices[rows->Get("Fuel Type").AsLong()])
        if (price.effective <= date) inForce = &price;
      ASSERT_TRUE(inForce);
      EXPECT_EQ(rows->Get("Internal Fuel Cost").AsCurrency(), Multiply(fuel, inForce->first));
      ++fuelled;
    } else {
      EXPECT_EQ(rows->Get("Internal Fuel Cost").AsCurrency(), rt::Currency());
    }
    const Price* agreed = nullptr;
    for (const Price& price : labor)
      if (!agreed && price.effective >= date) agreed = &price;
    ASSERT_TRUE(agreed);
    const rt::Value hours = rows->Get("Time");
    const rt::Value oil = rows->Get("Oil");
    EXPECT_EQ(rows->Get("Internal Time Cost").AsCurrency(),
              hours.IsNull() ? rt::Currency() : Multiply(hours.AsSingle(), agreed->first));
    EXPECT_EQ(rows->Get("Oil Cost").AsCurrency(),
              oil.IsNull() ? rt::Currency() : Multiply(oil.AsSingle(), agreed->second));
    labored += !hours.IsNull() && hours.AsSingle() > 0;
    oiled += !oil.IsNull() && oil.AsSingle() > 0;
    EXPECT_TRUE(rows->Get("When Posted").IsNull());
  }
  EXPECT_GT(fuelled, 200);
  EXPECT_GT(labored, 50);
  EXPECT_GT(oiled, 50);
}

TEST_F(SampleTest, HoldsTheOddAssetsThatAFleetHas) {
  Data data = Main();
  const auto parameters = data.Rows("SELECT * FROM [Parameters]");
  ASSERT_EQ(parameters->RecordCount(), 1);
  EXPECT_EQ(parameters->Get("ID").AsLong(), 1);
  EXPECT_FALSE(parameters->Get("Data Initialized").AsBoolean());
  EXPECT_TRUE(parameters->Get("Internal_Fuel_Available").AsBoolean());
  EXPECT_EQ(data.Rows("SELECT [Asset ID] FROM [Vehicles] WHERE [ID] = " +
                      parameters->Get("Deleted Inventory ID").AsText())
                ->Get("Asset ID")
                .AsText(),
            "REMOVED");

  EXPECT_EQ(data.Count("[Vehicles]"), kAssets + 1);
  EXPECT_GE(data.Count("[Vehicles] WHERE [No_Longer_In_Service] = TRUE AND [Asset ID] <> 'REMOVED'"), 1);
  EXPECT_GE(data.Count("[Vehicles] WHERE [Purchase Date] IS NULL AND [Asset ID] <> 'REMOVED'"), 1);
  const std::string bare =
      " ON [Vehicles].[Asset ID] = [Maintenance Schedule].[Asset ID] WHERE [Maintenance Schedule].[ID] IS "
      "NULL AND "
      "[No_Longer_In_Service] = FALSE";
  EXPECT_GE(data.Count("[Vehicles] LEFT JOIN [Maintenance Schedule]" + bare), 1);
  EXPECT_GE(data.Count("[Maintenance Transactions] WHERE [Oil] IS NULL AND [Time] IS NULL"), 5);
  EXPECT_GE(data.Count("[Maintenance_Performed]"), kAssets * kYears);

  // The dates fill the range from end to end, and no asset works outside its life.
  const int transactions = data.Count("[Maintenance Transactions]");
  EXPECT_GE(transactions, 25 * kAssets * kYears);
  EXPECT_LE(transactions, 40 * kAssets * kYears);
  EXPECT_EQ(
      data.Count("[Maintenance Transactions] WHERE [Transaction Date] < #10/18/2023# OR [Transaction Date] > "
                 "#10/17/2025#"),
      0);
  EXPECT_GT(data.Count("[Maintenance Transactions] WHERE [Transaction Date] >= #10/1/2025#"), 0);
  for (auto rows = data.Rows(
           "SELECT [Asset ID], COUNT(*) AS [Lines], MIN([Line Item]) AS [First], MAX([Line Item]) AS "
           "[Last] FROM [Maintenance Schedule] GROUP BY [Asset ID]");
       !rows->AtEnd(); rows->MoveNext()) {
    EXPECT_GE(rows->Get("Lines").AsLong(), 5) << rows->Get("Asset ID").AsText();
    EXPECT_LE(rows->Get("Lines").AsLong(), 9) << rows->Get("Asset ID").AsText();
    EXPECT_EQ(rows->Get("First").AsLong(), 1);
    EXPECT_EQ(rows->Get("Last").AsLong(), rows->Get("Lines").AsLong());
  }
}

TEST_F(SampleTest, MetersOnlyRunForwards) {
  Data data = Main();
  std::string asset;
  float last = 0;
  int checked = 0;
  for (auto rows =
           data.Rows("SELECT [Asset ID], [Mileage] FROM [Odometer Entries] ORDER BY [Asset ID], [Date]");
       !rows->AtEnd(); rows->MoveNext()) {
    const float mileage = rows->Get("Mileage").AsSingle();
    if (rows->Get("Asset ID").AsText() == asset) {
      EXPECT_GT(mileage, last) << asset;
      ++checked;
    }
    asset = rows->Get("Asset ID").AsText();
    last = mileage;
  }
  EXPECT_GT(checked, kAssets * kYears * 6);
}

TEST_F(SampleTest, LetsAnAdministratorInWithoutAPassword) {
  Data users(directory_->Path("DW_USERS.MDB"));
  const auto admin = users.Rows("SELECT * FROM [Application User List] WHERE UCASE([User Name]) = 'ADMIN'");
  ASSERT_FALSE(admin->AtEnd());
  EXPECT_TRUE(admin->Get("Password").IsNull());
  EXPECT_TRUE(admin->Get("Allow Access").AsBoolean());
  EXPECT_TRUE(admin->Get("Administrator").AsBoolean());
  EXPECT_EQ(users.Count("[Application User List] WHERE [Allow Access] = FALSE"), 1);
  EXPECT_EQ(users.Count("[Application Workstation List] WHERE [Active] = TRUE AND [Allow Access] = TRUE"), 2);
  EXPECT_EQ(users.Count("[Application Workstation List] WHERE [Active] = FALSE"), 1);
  EXPECT_EQ(users.Count("[Access Log] WHERE [Time Out] IS NULL AND [Terminated] = TRUE"), 1);
}

}  // namespace
