#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/store/StoreError.h"
#include "platform/store/sqlite/LockSpace.h"
#include "platform/store/sqlite/SideFile.h"
#include "store/SideFileUsers.h"

namespace store {
namespace {

/// Record locks, distinguished by their lengths or, as on network file systems, by tests of single bytes.
class RecordLockTest : public SideFileUsers, public testing::WithParamInterface<LengthTrust> {
 protected:
  RecordLockTest() { LockSpace::SetLengthTrust(GetParam()); }
  ~RecordLockTest() override { LockSpace::SetLengthTrust(LengthTrust::Automatic); }
};

INSTANTIATE_TEST_SUITE_P(SideFile, RecordLockTest,
                         testing::Values(LengthTrust::Automatic, LengthTrust::Never),
                         [](const auto& instance) {
                           return instance.param == LengthTrust::Automatic ? "ByLength" : "ByBytes";
                         });

TEST_P(RecordLockTest, ARecordHasOneOwnerInEitherWayOfHolding) {
  OtherUser other(file_);
  other.Ask("share OFFICE ADMIN");
  const Owner mine = Join("ME");
  const Owner second = Join("TWO");
  EXPECT_EQ(other.Ask("edit 3 70"), "yes");
  for (const Hold hold : {Hold::Edit, Hold::Transaction}) {
    EXPECT_EQ(Take(*mine, hold, 3, 70), "ADMIN@OFFICE edit");
    EXPECT_FALSE(mine->Has(hold, 3, 70));
    EXPECT_EQ(Take(*mine, hold, 3, 69), "yes");
    EXPECT_EQ(Take(*mine, hold, 2, 70), "yes");
  }
  EXPECT_EQ(Take(*second, Hold::Edit, 3, 69), "ME@HERE transaction");
  // A refusal must leave no lock that would block the holder.
  EXPECT_EQ(other.Ask("transact 3 70"), "yes");
  EXPECT_EQ(other.Ask("unedit 3 70"), "done");
  ASSERT_TRUE(mine->WhoHolds(3, 70));
  EXPECT_EQ(Text(*mine->WhoHolds(3, 70)), "ADMIN@OFFICE transaction");
  EXPECT_EQ(Take(*mine, Hold::Edit, 3, 70), "ADMIN@OFFICE transaction");
  EXPECT_FALSE(mine->WhoHolds(3, 68));
  other.Kill();
  EXPECT_FALSE(mine->WhoHolds(3, 70));
  EXPECT_EQ(Take(*mine, Hold::Edit, 3, 70), "yes");
  for (const auto& [table, row] : std::vector<std::pair<int, std::int64_t>>{
           {0, 1}, {1 << 20, 1}, {1, -1}, {1, (std::int64_t{1} << 32) - 1}}) {
    EXPECT_THROW(mine->Take(Hold::Edit, table, row, nullptr), StoreError);
  }
}

TEST_P(RecordLockTest, EachTakeNeedsItsRelease) {
  const Owner mine = Join("ME");
  const Owner second = Join("TWO");
  mine->Take(Hold::Edit, 1, 5, nullptr);
  mine->Take(Hold::Edit, 1, 5, nullptr);
  mine->Take(Hold::Transaction, 1, 5, nullptr);
  mine->Release(Hold::Edit, 1, 5);
  mine->Release(Hold::Transaction, 1, 5);
  mine->Release(Hold::Transaction, 1, 5);
  EXPECT_EQ(Take(*second, Hold::Transaction, 1, 5), "ME@HERE edit");
  mine->Take(Hold::Transaction, 1, 5, nullptr);
  mine->ReleaseTransaction();
  EXPECT_EQ(Take(*second, Hold::Transaction, 1, 5), "ME@HERE edit");
  mine->Release(Hold::Edit, 1, 5);
  EXPECT_EQ(Take(*second, Hold::Transaction, 1, 5), "yes");
}

TEST_P(RecordLockTest, AWholeTableIsTakenAroundTheRecordsOfOthers) {
  OtherUser other(file_);
  OtherUser third(file_);
  other.Ask("share OFFICE ADMIN");
  third.Ask("share YARD BOB");
  const Owner mine = Join("ME");
  other.Ask("edit 2 1");
  other.Ask("transact 2 900");
  other.Ask("edit 3 50");
  third.Ask("transact 2 899");
  third.Ask("edit 2 30");
  EXPECT_EQ(Take(*mine, Hold::Transaction, 2, 31), "yes");
  EXPECT_EQ(Text(mine->TakeTable(2)),
            "2/1 ADMIN@OFFICE edit; 2/30 BOB@YARD edit; 2/899 BOB@YARD transaction; 2/900 ADMIN@OFFICE "
            "transaction; ");
  EXPECT_TRUE(mine->HasTable(2));
  EXPECT_TRUE(mine->Has(Hold::Transaction, 2, 31));
  EXPECT_FALSE(mine->Has(Hold::Transaction, 2, 30));
  for (const std::string row : {"2", "29", "31", "500", "898", "901", "4294967294"}) {
    EXPECT_EQ(other.Ask("edit 2 " + row), "ME@HERE transaction table") << row;
    EXPECT_EQ(other.Ask("transact 2 " + row), "ME@HERE transaction table") << row;
  }
  // A user who has a record in edit can still write it, and the neighboring tables are free.
  EXPECT_EQ(other.Ask("transact 2 1"), "yes");
  EXPECT_EQ(other.Ask("edit 1 4294967294"), "yes");
  EXPECT_EQ(other.Ask("edit 3 0"), "yes");
  EXPECT_EQ(other.Ask("table 2"), "2/0 ME@HERE transaction table; ");

  // Neither the release of a record in the table nor an edit of the holder's own frees the table.
  mine->Release(Hold::Transaction, 2, 31);
  EXPECT_EQ(Take(*mine, Hold::Transaction, 2, 500), "yes");
  mine->Release(Hold::Transaction, 2, 500);
  EXPECT_EQ(Take(*mine, Hold::Edit, 2, 500), "yes");
  for (const std::string row : {"31", "500"}) {
    EXPECT_EQ(other.Ask("transact 2 " + row), "ME@HERE transaction table");
  }
  // The holder can take a skipped record later, and release it without freeing the records beside it.
  third.Ask("unedit 2 30");
  EXPECT_EQ(Take(*mine, Hold::Transaction, 2, 30), "yes");
  EXPECT_EQ(third.Ask("edit 2 30"), "ME@HERE transaction");
  mine->Release(Hold::Transaction, 2, 30);
  EXPECT_EQ(third.Ask("edit 2 29"), "ME@HERE transaction table");
  EXPECT_EQ(third.Ask("edit 2 31"), "ME@HERE transaction table");
  EXPECT_EQ(third.Ask("edit 2 30"), "yes");
  mine->ReleaseTable(2);
  EXPECT_EQ(third.Ask("edit 2 31"), "yes");
  EXPECT_EQ(third.Ask("transact 2 500"), "ME@HERE edit");
  EXPECT_FALSE(mine->HasTable(2));
}

TEST_P(RecordLockTest, ATableThatAnotherHoldsIsNotTakenAndLeavesSingleHoldsAsTheyAre) {
  OtherUser other(file_);
  OtherUser third(file_);
  other.Ask("share OFFICE ADMIN");
  third.Ask("share YARD BOB");
  const Owner mine = Join("ME");
  EXPECT_EQ(Take(*mine, Hold::Transaction, 4, 10), "yes");
  EXPECT_EQ(other.Ask("table 4"), "4/10 ME@HERE transaction; ");
  EXPECT_EQ(Text(mine->TakeTable(4)), "4/0 ADMIN@OFFICE transaction table; ");
  EXPECT_FALSE(mine->HasTable(4));
  EXPECT_TRUE(mine->Has(Hold::Transaction, 4, 10));
  EXPECT_FALSE(mine->Has(Hold::Transaction, 4, 11));
  EXPECT_EQ(third.Ask("edit 4 10"), "ME@HERE transaction");
  EXPECT_EQ(Take(*mine, Hold::Edit, 4, 11), "ADMIN@OFFICE transaction table");
  other.Kill();
  EXPECT_EQ(third.Ask("edit 4 11"), "yes");
  EXPECT_EQ(Text(mine->TakeTable(4)), "4/11 BOB@YARD edit; ");
  mine->ReleaseTable(4);
  EXPECT_EQ(third.Ask("transact 4 10"), "yes");
}

TEST_P(RecordLockTest, NarrowingKeepsTheNamedRecordsAndTheSingleOnes) {
  OtherUser other(file_);
  other.Ask("share OFFICE ADMIN");
  const Owner mine = Join("ME");
  other.Ask("edit 1 8");
  EXPECT_EQ(Take(*mine, Hold::Transaction, 1, 20), "yes");
  mine->TakeTable(1);
  mine->TakeTable(2);
  mine->Narrow({{1, {7, 0, 8, 6, 7, 4294967294}}, {2, {}}, {3, {5}}});
  EXPECT_FALSE(mine->HasTable(1));
  for (const std::string row : {"0", "6", "7", "20", "4294967294"}) {
    EXPECT_TRUE(mine->Has(Hold::Transaction, 1, std::stoll(row)));
    EXPECT_EQ(other.Ask("edit 1 " + row), "ME@HERE transaction") << row;
  }
  for (const std::string row : {"1", "5", "8", "9", "19", "21", "4294967293"}) {
    EXPECT_FALSE(mine->Has(Hold::Transaction, 1, std::stoll(row)));
    EXPECT_EQ(other.Ask("transact 1 " + row), "yes") << row;
  }
  EXPECT_EQ(other.Ask("table 2"), "");
  EXPECT_EQ(other.Ask("edit 3 5"), "yes");
  mine->Release(Hold::Transaction, 1, 7);
  EXPECT_EQ(other.Ask("edit 1 7"), "yes");
  mine->ReleaseTransaction();
  EXPECT_EQ(other.Ask("edit 1 6"), "yes");
  EXPECT_EQ(other.Ask("transact 3 6"), "yes");
  const std::string held = Text(mine->HeldByOthers({1, 2, 3}));
  const std::string end =
      "2/0 ADMIN@OFFICE transaction table; 3/6 ADMIN@OFFICE transaction; 3/5 ADMIN@OFFICE edit; ";
  ASSERT_GT(held.size(), end.size());
  EXPECT_EQ(held.substr(held.size() - end.size()), end);
  EXPECT_EQ(Text(mine->HeldByOthers({1})) + end, held);
  other.Kill();
  EXPECT_EQ(Text(mine->HeldByOthers({1, 2, 3})), "");
}

/// Each process counts itself as a holder in shared memory and checks that it is alone.
TEST_P(RecordLockTest, NoTwoEverHoldTheSame) {
  struct Rows {
    std::atomic<int> holders[2];
    std::atomic<int> uses;
  };
  Rows* rows = SharedMemory<Rows>();
  constexpr int kRounds = 300;
  const auto use = [&](std::size_t row) {
    if (rows->holders[row].fetch_add(1) != 0) throw std::runtime_error("held twice");
    sched_yield();
    if (rows->holders[row].fetch_sub(1) != 1) throw std::runtime_error("held twice");
    ++rows->uses;
  };
  RunThree([&](int number) {
    const Owner side = SideFile::Enter(file_, Share::Shared, "C" + std::to_string(number), "U");
    for (int done = 0; done < kRounds;) {
      const std::int64_t row = done % 2;
      if (done % 5 == number) {
        side->TakeTable(1);
        if (side->Has(Hold::Transaction, 1, row)) use(static_cast<std::size_t>(row)), ++done;
        side->ReleaseTable(1);
      } else if (number == 0) {
        if (!side->Take(Hold::Transaction, 1, row, nullptr)) {
          usleep(20);
          continue;
        }
        use(static_cast<std::size_t>(row)), ++done;
        side->Release(Hold::Transaction, 1, row);
      } else if (side->Take(Hold::Edit, 1, row, nullptr)) {
        use(static_cast<std::size_t>(row)), ++done;
        // A user can always write a record in edit, whoever tries to hold it or the table meanwhile.
        const bool written = side->Take(Hold::Transaction, 1, row, nullptr);
        if (!written) throw std::runtime_error("an edit was not written");
        side->ReleaseTransaction();
        side->Release(Hold::Edit, 1, row);
      } else {
        usleep(20);
      }
    }
  });
  EXPECT_EQ(rows->uses, 3 * kRounds);
  EXPECT_FALSE(std::filesystem::exists(Side()));
  munmap(rows, sizeof *rows);
}

}  // namespace
}  // namespace store
