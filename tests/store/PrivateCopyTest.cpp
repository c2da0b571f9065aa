// Copies of a file at one moment, while others write.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <random>

#include "platform/store/QueryScan.h"
#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

using test::SecondProcess;

class PrivateCopyTest : public testing::Test {
 protected:
  PrivateCopyTest() { test::MakeSmallFile(path); }

  /// SQL of the file itself, as another program would run it.
  void Raw(const std::string& sql) const {
    sqlite3* file = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &file), SQLITE_OK);
    sqlite3_busy_timeout(file, 60'000);
    EXPECT_EQ(sqlite3_exec(file, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(file);
    sqlite3_close(file);
  }
  /// Rows of 2 KB with a cost of 100 each.
  void Fill(int rows, const std::string& prefix = "C") const {
    Raw("INSERT INTO Assets (Code, Cost, Notes) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM "
        "n "
        "WHERE i < " +
        std::to_string(rows) + ") SELECT '" + prefix + "' || i, 1000000, hex(randomblob(1000)) FROM n");
  }
  std::shared_ptr<store::Connection> OpenForReading() const {
    return store::Connection::Open({path, store::Share::Shared, true});
  }

  test::TempDirectory directory;
  std::string path = directory.Path("DATA.MDB");
};

TEST_F(PrivateCopyTest, TakesOverWhatIsWrittenBetweenItsLooks) {
  Fill(30'000);
  std::mt19937 random(7);
  for (int round = 0; round < 4; ++round) {
    auto file = OpenForReading();
    int looks = 0;
    // Each time a dollar moves between two rows, which may lie before and behind what is copied already; the
    // file grows in some rounds and loses pages in others.
    ASSERT_TRUE(store::ReadFromCopy(file, [&] {
      const auto row = [&] { return std::to_string(1 + random() % 20'000); };
      if (++looks == 2 && round == 1) Fill(2'000, "D");
      if (looks == 2 && round == 2) Raw("DELETE FROM Assets WHERE ID > 29000; VACUUM");
      if (looks < 5 && looks != 2)
        Raw("BEGIN; UPDATE Assets SET Cost = Cost - 10000 WHERE ID = " + row() +
            "; UPDATE Assets SET Cost = Cost + 10000 WHERE ID = " + row() + "; COMMIT");
      if (looks == 2 && round == 3) Raw("UPDATE Assets SET Notes = 'x' WHERE ID % 3 = 0");
      return true;
    }));
    ASSERT_GT(looks, 2);
    auto now = OpenForReading();
    const std::string count = "SELECT COUNT(*), SUM([Cost]) FROM [Assets]";
    const auto before = test::Ask(now, count);
    EXPECT_EQ(test::Ask(file, count), before);
    const std::string notes = "SELECT SUM(LEN([Notes])) FROM [Assets]";
    EXPECT_EQ(test::Ask(file, notes), test::Ask(now, notes));
    const std::string sum = "SELECT SUM([Cost]) FROM [Assets]";
    EXPECT_EQ(test::Ask(file, sum), rt::Value(rt::Currency::FromWhole(100 * before.AsLong())));
    EXPECT_TRUE(file->CheckIntegrity().empty());
    // It stays as it was.
    Raw("UPDATE Assets SET Cost = Cost + 70000 WHERE ID = 1");
    EXPECT_EQ(test::Ask(file, sum), rt::Value(rt::Currency::FromWhole(100 * before.AsLong())));
    Raw("UPDATE Assets SET Cost = Cost - 70000 WHERE ID = 1");
  }
}

TEST_F(PrivateCopyTest, IsOfOneMomentBesideOtherProcesses) {
  Fill(10'000);
  std::vector<std::unique_ptr<SecondProcess>> writers;
  for (int writer = 0; writer < 4; ++writer) {
    writers.push_back(std::make_unique<SecondProcess>([&, writer](SecondProcess::Channel& channel) {
      auto file = store::Connection::Open({path});
      channel.Say("ready");
      channel.Hear();
      std::mt19937 random(static_cast<unsigned>(writer));
      for (int i = 0; i < 150; ++i) {
        const auto row = [&] {
          return std::to_string(1 + writer * 2'500 + static_cast<int>(random() % 2'500));
        };
        file->BeginTrans();
        file->Execute("UPDATE [Assets] SET [Cost] = [Cost] - 1 WHERE [ID] = " + row());
        file->Execute("UPDATE [Assets] SET [Cost] = [Cost] + 1 WHERE [ID] = " + row());
        file->CommitTrans();
      }
      channel.Say("done");
      channel.Hear();
    }));
    ASSERT_EQ(writers.back()->Talk().Hear(), "ready");
  }
  for (auto& writer : writers) writer->Talk().Say("go");
  bool changed = false;
  rt::Value before;
  for (int i = 0; i < 15; ++i) {
    auto file = OpenForReading();
    ASSERT_TRUE(store::ReadFromCopy(file, {}));
    EXPECT_EQ(test::Ask(file, "SELECT SUM([Cost]) FROM [Assets]"),
              rt::Value(rt::Currency::FromWhole(1'000'000)));
    const auto different = test::Ask(file, "SELECT COUNT(*) FROM [Assets] WHERE [Cost] <> 100");
    changed = changed || (i > 0 && different != before);
    before = different;
  }
  EXPECT_TRUE(changed);
  for (auto& writer : writers) {
    EXPECT_EQ(writer->Talk().Hear(), "done");
    writer->Talk().Say("end");
    EXPECT_EQ(writer->Join(), 0);
  }
}

TEST_F(PrivateCopyTest, LeavesTheConnectionAsItWasWhereItCannotBeMade) {
  Fill(10);
  auto file = OpenForReading();
  const std::string sum = "SELECT SUM([Cost]) FROM [Assets]";
  EXPECT_FALSE(store::ReadFromCopy(file, [] { return false; }));
  EXPECT_EQ(test::Ask(file, sum), rt::Value(rt::Currency::FromWhole(1'000)));
  const char* chosen = std::getenv("TMPDIR");
  const std::string before = chosen ? chosen : "";
  setenv("TMPDIR", directory.Path("none").c_str(), 1);
  EXPECT_FALSE(store::ReadFromCopy(file, {}));
  EXPECT_EQ(test::Ask(file, sum), rt::Value(rt::Currency::FromWhole(1'000)));
  // Nothing is left behind, not even while the copy is in use.
  const std::string place = directory.Path("place");
  std::filesystem::create_directory(place);
  setenv("TMPDIR", place.c_str(), 1);
  EXPECT_TRUE(store::ReadFromCopy(file, {}));
  EXPECT_TRUE(std::filesystem::is_empty(place));
  EXPECT_EQ(test::Ask(file, sum), rt::Value(rt::Currency::FromWhole(1'000)));
  if (chosen)
    setenv("TMPDIR", before.c_str(), 1);
  else
    unsetenv("TMPDIR");
  // The next opening reads the file itself.
  file.reset();
  Raw("UPDATE Assets SET Cost = 0 WHERE ID = 1");
  EXPECT_EQ(test::Ask(OpenForReading(), sum), rt::Value(rt::Currency::FromWhole(900)));
}

}  // namespace
