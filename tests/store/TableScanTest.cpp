#include "platform/store/TableScan.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using store::ScannedRecord;
using test::Ask;
using test::ErrorOf;
using test::SecondProcess;

class TableScanTest : public testing::Test {
 protected:
  TableScanTest() { test::MakeSmallFile(path); }
  test::TempDirectory directory;
  std::string path = directory.Path("DW.MDB");
};

TEST_F(TableScanTest, GivesTheChosenColumnsByAscendingKey) {
  auto file = test::OpenSmallFile(path);
  for (const char* values : {"(7, 'b', 1.5, 2020)", "(-3, NULL, 2, NULL)", "(2, 'c', NULL, 7)"})
    file->Execute("INSERT INTO Assets (ID, Code, Miles, [Year]) VALUES " + std::string(values));
  std::string seen;
  const auto cell = [](const ScannedRecord& record, int column) -> std::string {
    switch (record.CellOf(column)) {
      case ScannedRecord::Cell::Null:
        return "Null";
      case ScannedRecord::Cell::Whole:
        return std::to_string(record.Whole(column));
      case ScannedRecord::Cell::Real:
        return "real";
      case ScannedRecord::Cell::Text:
        return "'" + std::string(record.Text(column)) + "'";
      case ScannedRecord::Cell::Binary:
        return "binary";
    }
    return {};
  };
  const auto look = [&](const ScannedRecord& record) {
    seen += std::to_string(record.Key()) + ":" + cell(record, 0) + "," + cell(record, 1) + "," +
            cell(record, 2) + ";";
  };
  store::ScanTable(file, "assets", {"code", "Miles", "Year"}, look);
  EXPECT_EQ(seen, "-3:Null,2,Null;2:'c',Null,7;7:'b',real,2020;");

  // A transaction sees its own writes.
  seen.clear();
  file->BeginTrans();
  file->Execute("DELETE FROM Assets WHERE ID = 2");
  store::YieldFiles();
  store::ScanTable(file, "Assets", {"Code", "Miles", "Year"}, look);
  file->RollbackTrans();
  EXPECT_EQ(seen, "-3:Null,2,Null;7:'b',real,2020;");

  EXPECT_EQ(ErrorOf([&] { store::ScanTable(file, "Nothing", {}, look); }), store::kTableNotFound);
  EXPECT_EQ(ErrorOf([&] { store::ScanTable(file, "Assets", {"Nothing"}, look); }), store::kItemNotFound);
}

TEST_F(TableScanTest, AnotherUserWritesWhileALongScanGoesOn) {
  {
    auto file = test::OpenSmallFile(path);
    file->BeginTrans();
    for (int i = 0; i < 1000; ++i) file->Execute("INSERT INTO Lines (Asset) VALUES (1)");
    file->CommitTrans();
  }
  SecondProcess other([this](SecondProcess::Channel& talk) {
    auto file = test::OpenSmallFile(path);
    talk.Say("ready");
    talk.Hear();
    file->Execute("INSERT INTO Lines (Asset) VALUES (2)");
    talk.Say("written");
  });
  EXPECT_EQ(other.Talk().Hear(), "ready");
  auto file = test::OpenSmallFile(path);
  int seen = 0;
  bool written = false;
  store::ScanTable(file, "Lines", {"Asset"}, [&](const ScannedRecord& record) {
    if (++seen == 1) other.Talk().Say("write");
    // Without a pause for the other user, the scan would end without that user's record.
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    written = record.Whole(0) == 2;
  });
  EXPECT_EQ(seen, 1001) << "each record once";
  EXPECT_TRUE(written);
  EXPECT_EQ(other.Talk().Hear(), "written");
}

}  // namespace
