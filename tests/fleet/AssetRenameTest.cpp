#include "fleet/AssetRename.h"

#include <gtest/gtest.h>

#include "support/OtherUser.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

constexpr const char* kTables[] = {"Assets Annual Costs",
                                   "Assets Lifetime Costs",
                                   "Assets Period Costs",
                                   "Maintenance Schedule",
                                   "Maintenance Transactions",
                                   "Odometer Entries",
                                   "Odometer Entry Work Table",
                                   "Performed Maintenance Work Table",
                                   "Performed Scheduled Maintenance",
                                   "Vehicles"};

/// The assets V1 and V2 with a row in each table.
class AssetRenameTest : public testing::Test {
 protected:
  AssetRenameTest() {
    for (const std::string code : {"V1", "V2"}) {
      for (const std::string table : kTables) {
        const bool transaction = table == "Maintenance Transactions";
        fleet_.Run("INSERT INTO [" + table + "] ([Asset ID]" +
                   (transaction ? ", [Transaction Date], [Type_ID]" : "") + ") VALUES ('" + code + "'" +
                   (transaction ? ", #1/1/2026#, 0" : "") + ")");
      }
    }
  }
  int CountOf(const std::string& table, const std::string& code) {
    return std::stoi(fleet_.Ask("SELECT COUNT(*) FROM [" + table + "] WHERE [Asset ID] = '" + code + "'"));
  }
  void ExpectEverywhere(const std::string& code) {
    for (const char* table : kTables) EXPECT_EQ(CountOf(table, code), 1) << table << " " << code;
  }

  test::OtherUser other_;  // forked before any data file is open
  test::SmallFleet fleet_;
  test::ScreenScript screen_;
};

TEST_F(AssetRenameTest, RenamesInAllTablesWithApostrophes) {
  screen_->ExpectInput("Enter New Asset ID:", "O'Brien");
  EXPECT_EQ(dw::RenameAsset("V1"), dw::RenameResult::Renamed);
  ExpectEverywhere("O''Brien");
  EXPECT_EQ(fleet_.Ask("SELECT [Asset ID] FROM [Vehicles] WHERE [Asset ID] = 'o''brien'"), "O'Brien")
      << "as typed";
  EXPECT_EQ(dw::RenameAssetTo("O'Brien", "V'3"), dw::RenameResult::Renamed);
  ExpectEverywhere("V''3");
  ExpectEverywhere("V2");
  EXPECT_EQ(CountOf("Vehicles", "V1"), 0);
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
}

TEST_F(AssetRenameTest, AnEmptyReplyAndACodeInUseChangeNothing) {
  screen_->ExpectInput("Enter New Asset ID:", "");
  screen_->Expect("Rename cancelled. No new ID given.", screen::Icon::Information);
  EXPECT_EQ(dw::RenameAsset("V1"), dw::RenameResult::Canceled);
  for (const char* taken : {"V2", "V1", "v1"}) {
    screen_->Expect("The new Asset ID is already in use.", screen::Icon::Information);
    EXPECT_EQ(dw::RenameAssetTo("V1", taken), dw::RenameResult::InUse);
  }
  ExpectEverywhere("V1");
  ExpectEverywhere("V2");
}

TEST_F(AssetRenameTest, AFailureInTheMiddleIsTakenBackWithoutAWord) {
  EXPECT_EQ(dw::RenameAssetTo("V1", std::string(300, 'X')), dw::RenameResult::RolledBack)
      << "too long for the column";
  ExpectEverywhere("V1");

  // The last of the ten tables: the first nine are written by then.
  other_.Hold(fleet_.Path("DW.MDB"), "SELECT * FROM [Vehicles] WHERE [Asset ID] = 'V1'");
  EXPECT_EQ(dw::RenameAssetTo("V1", "V3"), dw::RenameResult::RolledBack);
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
  ExpectEverywhere("V1");
  for (const char* table : kTables) EXPECT_EQ(CountOf(table, "V3"), 0) << table;

  other_.Leave();
  EXPECT_EQ(dw::RenameAssetTo("V1", "V3"), dw::RenameResult::Renamed);
  ExpectEverywhere("V3");
}

}  // namespace
