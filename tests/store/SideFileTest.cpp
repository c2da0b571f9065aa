#include "platform/store/SideFile.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/store/LockSpace.h"
#include "platform/store/StoreError.h"
#include "support/SecondProcess.h"
#include "support/TempDirectory.h"

namespace store {
namespace {

using Owner = std::unique_ptr<SideFile>;

std::string Text(const Holder& holder) {
  return holder.user + "@" + holder.computer + (holder.hold == Hold::Edit ? " edit" : " transaction") +
         (holder.wholeTable ? " table" : "");
}

std::string Text(const std::vector<HeldRecord>& records) {
  std::string text;
  for (const HeldRecord& record : records) {
    text +=
        std::to_string(record.table) + "/" + std::to_string(record.row) + " " + Text(record.holder) + "; ";
  }
  return text;
}

/// "yes", or who was in the way.
std::string Take(SideFile& side, Hold hold, int table, std::int64_t row) {
  Holder refused;
  return side.Take(hold, table, row, &refused) ? "yes" : Text(refused);
}

/// "slot 3", or the error's number and text.
std::string Enter(Owner* owner, const std::string& file, Share share, const std::string& computer,
                  const std::string& user) {
  try {
    *owner = SideFile::Enter(file, share, computer, user);
    return "slot " + std::to_string((*owner)->Slot());
  } catch (const StoreError& error) {
    return std::to_string(error.Number()) + " " + error.what();
  }
}

/// A user in a process of its own who does what is asked in one line and answers in one line.
class OtherUser {
 public:
  explicit OtherUser(const std::string& file)
      : process_([file](test::SecondProcess::Channel& channel) {
          Owner side;
          for (;;) channel.Say(Do(&side, file, channel.Hear()));
        }) {}

  std::string Ask(const std::string& line) {
    process_.Talk().Say(line);
    return process_.Talk().Hear();
  }
  void Kill() { process_.Kill(); }

 private:
  static std::string Do(Owner* side, const std::string& file, const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    if (verb == "leave") return side->reset(), "left";
    if (verb == "share" || verb == "exclude") {
      std::string computer;
      std::string user;
      words >> computer >> user;
      return Enter(side, file, verb == "share" ? Share::Shared : Share::Exclusive, computer, user);
    }
    if (verb == "child") {
      // What the program says shows that it runs and is no copy of this process any more.
      FILE* program = popen("echo $$; exec sleep 60", "r");
      char number[32] = "";
      if (!program || !fgets(number, sizeof number, program)) return "0";
      return std::to_string(std::atoi(number));
    }
    int table = 0;
    std::int64_t row = 0;
    words >> table >> row;
    if (verb == "edit") return Take(**side, Hold::Edit, table, row);
    if (verb == "transact") return Take(**side, Hold::Transaction, table, row);
    if (verb == "table") return Text((*side)->TakeTable(table));
    if (verb == "unedit") return (*side)->Release(Hold::Edit, table, row), "done";
    if (verb == "untransact") return (*side)->Release(Hold::Transaction, table, row), "done";
    if (verb == "untable") return (*side)->ReleaseTable(table), "done";
    return "what?";
  }

  test::SecondProcess process_;
};

/// Plain memory that this process and those forked later share.
template <typename T>
T* SharedMemory() {
  void* memory = mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return new (memory) T{};
}

class SideFileTest : public testing::Test {
 protected:
  std::string Side() const { return SideFile::PathFor(file_); }
  Owner Join(const std::string& user) { return SideFile::Enter(file_, Share::Shared, "HERE", user); }

  test::TempDirectory directory_;
  std::string file_ = directory_.Path("DW.MDB");
};

TEST_F(SideFileTest, ExclusiveAndSharedUsersShutEachOtherOut) {
  OtherUser other(file_);
  Owner mine;
  const auto enter = [&](Share share) { return Enter(&mine, file_, share, "HERE", "ME"); };

  EXPECT_EQ(other.Ask("exclude OFFICE ADMIN"), "slot 0");
  EXPECT_EQ(enter(Share::Shared), "3356 Could not use '" + file_ +
                                      "'; it is opened exclusively by user 'ADMIN' on machine 'OFFICE'.");
  EXPECT_EQ(enter(Share::Exclusive),
            "3045 Could not use '" + file_ + "'; it is in use by user 'ADMIN' on machine 'OFFICE'.");
  other.Ask("leave");
  EXPECT_EQ(enter(Share::Shared), "slot 0");
  EXPECT_EQ(other.Ask("exclude OFFICE ADMIN"),
            "3045 Could not use '" + file_ + "'; it is in use by user 'ME' on machine 'HERE'.");
  EXPECT_EQ(other.Ask("share OFFICE ADMIN"), "slot 1");
  // An owner within this process is as foreign as one elsewhere.
  Owner second;
  EXPECT_EQ(Enter(&second, file_, Share::Exclusive, "HERE", "TWO").substr(0, 5), "3045 ");
  mine.reset();
  EXPECT_EQ(enter(Share::Exclusive).substr(0, 5), "3045 ");
  other.Kill();
  EXPECT_EQ(enter(Share::Exclusive), "slot 0");
  EXPECT_TRUE(mine->Take(Hold::Edit, 1, 1, nullptr));
  EXPECT_TRUE(mine->TakeTable(1).empty());
  EXPECT_TRUE(mine->Holds(Hold::Transaction, 1, 2));
  mine->Narrow({{1, {5}}});
  EXPECT_FALSE(mine->Holds(Hold::Transaction, 1, 2));
  EXPECT_TRUE(mine->Holds(Hold::Transaction, 1, 5));
}

TEST_F(SideFileTest, WhatKeepsOneFromEnteringHasItsOwnNumber) {
  Owner mine;
  const auto number = [&](const std::string& file) {
    return Enter(&mine, file, Share::Shared, "HERE", "ME").substr(0, 5);
  };
  EXPECT_EQ(number(directory_.Path("missing/DW.MDB")), "3044 ");
  std::ofstream(directory_.Path("plain")) << "a file";
  EXPECT_EQ(number(directory_.Path("plain/DW.MDB")), "3044 ");
  std::filesystem::create_directory(directory_.Path("TAKEN.LDB"));
  EXPECT_EQ(number(directory_.Path("TAKEN.MDB")), "3051 ");
}

TEST_F(SideFileTest, WhoeverMayWriteTheDataFileMayWriteTheSideFile) {
  std::ofstream(file_) << "data";
  chmod(file_.c_str(), 0664);
  const mode_t before = umask(077);
  const Owner mine = Join("ME");
  umask(before);
  struct stat side {};
  ASSERT_EQ(stat(Side().c_str(), &side), 0);
  EXPECT_EQ(side.st_mode & 0777, 0664U);
}

TEST_F(SideFileTest, TheLastOneOutRemovesTheFileAndADeadOnesFileIsUsedAgain) {
  EXPECT_EQ(SideFile::PathFor("/data.d/Copy of DW.mdb"), "/data.d/Copy of DW.LDB");
  EXPECT_EQ(SideFile::PathFor("/data.d/DW"), "/data.d/DW.LDB");
  OtherUser other(file_);
  EXPECT_EQ(other.Ask("share OFFICE ADMIN"), "slot 0");
  Owner mine = Join("ME");
  EXPECT_EQ(other.Ask("leave"), "left");
  EXPECT_TRUE(std::filesystem::exists(Side()));
  mine.reset();
  EXPECT_FALSE(std::filesystem::exists(Side()));

  EXPECT_EQ(other.Ask("exclude OFFICE ADMIN"), "slot 0");
  other.Kill();
  EXPECT_TRUE(std::filesystem::exists(Side()));
  mine = Join("ME");
  EXPECT_EQ(mine->Slot(), 0);
  mine.reset();
  EXPECT_FALSE(std::filesystem::exists(Side()));
}

TEST_F(SideFileTest, TheRosterNamesTheLivingInTheirSlots) {
  OtherUser first(file_);
  OtherUser third(file_);
  EXPECT_EQ(first.Ask("share ONE ANN"), "slot 0");
  // 33 bytes, of which the 31st and 32nd are one letter.
  const Owner mine = SideFile::Enter(file_, Share::Shared, "123456789012345678901234567890\xC3\xA9Z", "");
  EXPECT_EQ(third.Ask("share THREE CY"), "slot 2");
  EXPECT_EQ(std::filesystem::file_size(Side()), 3U * 64);
  std::vector<RosterEntry> roster = mine->Roster();
  ASSERT_EQ(roster.size(), 3U);
  EXPECT_EQ(roster[0].computer + "/" + roster[0].user, "ONE/ANN");
  EXPECT_EQ(roster[1].computer, "123456789012345678901234567890");
  EXPECT_EQ(roster[1].user, "");
  EXPECT_EQ(roster[2].computer + "/" + roster[2].user, "THREE/CY");
  first.Kill();
  roster = mine->Roster();
  ASSERT_EQ(roster.size(), 2U);
  EXPECT_EQ(roster[0].slot, 1);
  EXPECT_EQ(roster[1].slot, 2);
  // The place of the dead is given to the next one, and the long name of before does not show through.
  const Owner next = SideFile::Enter(file_, Share::Shared, "X", "Y");
  EXPECT_EQ(mine->Roster().front().computer + "/" + mine->Roster().front().user, "X/Y");
}

TEST_F(SideFileTest, AFullRosterRefusesAndItsLastSlotLeavesNeighbouringRecordsAlone) {
  std::vector<Owner> owners;
  for (int slot = 0; slot < 255; ++slot) {
    owners.push_back(Join("U" + std::to_string(slot)));
    ASSERT_EQ(owners.back()->Slot(), slot);
  }
  Owner late;
  EXPECT_EQ(Enter(&late, file_, Share::Shared, "HERE", "LATE").substr(0, 5), "3045 ");
  EXPECT_EQ(owners[3]->Roster().size(), 255U);
  SideFile& last = *owners[254];
  for (const std::int64_t row : {10, 11, 12}) EXPECT_EQ(Take(last, Hold::Edit, 1, row), "yes");
  for (const std::int64_t row : {9, 13}) EXPECT_EQ(Take(*owners[100], Hold::Edit, 1, row), "yes");
  last.Release(Hold::Edit, 1, 11);
  EXPECT_EQ(Take(*owners[0], Hold::Edit, 1, 11), "yes");
  EXPECT_EQ(Text(owners[5]->HeldByOthers(1)),
            "1/9 U100@HERE edit; 1/10 U254@HERE edit; 1/11 U0@HERE edit; 1/12 U254@HERE edit; "
            "1/13 U100@HERE edit; ");
  owners[7].reset();
  EXPECT_EQ(Enter(&late, file_, Share::Shared, "HERE", "LATE"), "slot 7");
}

TEST_F(SideFileTest, AStartedProgramKeepsNoLocks) {
  OtherUser other(file_);
  other.Ask("share OFFICE ADMIN");
  other.Ask("edit 1 1");
  const pid_t child = std::stoi(other.Ask("child"));
  other.Kill();
  ASSERT_GT(child, 0);
  EXPECT_EQ(kill(child, 0), 0);
  Owner mine;
  EXPECT_EQ(Enter(&mine, file_, Share::Exclusive, "HERE", "ME"), "slot 0");
  kill(child, SIGKILL);
}

/// Record locks, told apart by their lengths and, as on network file systems, by questions for single bytes.
class RecordLockTest : public SideFileTest, public testing::WithParamInterface<LengthTrust> {
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
    EXPECT_FALSE(mine->Holds(hold, 3, 70));
    EXPECT_EQ(Take(*mine, hold, 3, 69), "yes");
    EXPECT_EQ(Take(*mine, hold, 2, 70), "yes");
  }
  EXPECT_EQ(Take(*second, Hold::Edit, 3, 69), "ME@HERE transaction");
  // A refusal leaves nothing behind that would hinder the holder.
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
  EXPECT_TRUE(mine->HoldsTable(2));
  EXPECT_TRUE(mine->Holds(Hold::Transaction, 2, 31));
  EXPECT_FALSE(mine->Holds(Hold::Transaction, 2, 30));
  for (const std::string row : {"2", "29", "31", "500", "898", "901", "4294967294"}) {
    EXPECT_EQ(other.Ask("edit 2 " + row), "ME@HERE transaction table") << row;
    EXPECT_EQ(other.Ask("transact 2 " + row), "ME@HERE transaction table") << row;
  }
  // Whoever has a record in edit can write it all the same, and tables beside this one are free.
  EXPECT_EQ(other.Ask("transact 2 1"), "yes");
  EXPECT_EQ(other.Ask("edit 1 4294967294"), "yes");
  EXPECT_EQ(other.Ask("edit 3 0"), "yes");
  EXPECT_EQ(other.Ask("table 2"), "2/0 ME@HERE transaction table; ");

  // Neither a release inside of it nor an edit of its own opens the table.
  mine->Release(Hold::Transaction, 2, 31);
  EXPECT_EQ(Take(*mine, Hold::Transaction, 2, 500), "yes");
  mine->Release(Hold::Transaction, 2, 500);
  EXPECT_EQ(Take(*mine, Hold::Edit, 2, 500), "yes");
  for (const std::string row : {"31", "500"}) {
    EXPECT_EQ(other.Ask("transact 2 " + row), "ME@HERE transaction table");
  }
  // A record that was left out can be taken later, and released without opening what lies beside it.
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
  EXPECT_FALSE(mine->HoldsTable(2));
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
  EXPECT_FALSE(mine->HoldsTable(4));
  EXPECT_TRUE(mine->Holds(Hold::Transaction, 4, 10));
  EXPECT_FALSE(mine->Holds(Hold::Transaction, 4, 11));
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
  mine->Narrow({{1, {7, 0, 8, 6, 7, 4294967294}}, {3, {5}}});
  EXPECT_FALSE(mine->HoldsTable(1));
  for (const std::string row : {"0", "6", "7", "20", "4294967294"}) {
    EXPECT_TRUE(mine->Holds(Hold::Transaction, 1, std::stoll(row)));
    EXPECT_EQ(other.Ask("edit 1 " + row), "ME@HERE transaction") << row;
  }
  for (const std::string row : {"1", "5", "8", "9", "19", "21", "4294967293"}) {
    EXPECT_FALSE(mine->Holds(Hold::Transaction, 1, std::stoll(row)));
    EXPECT_EQ(other.Ask("transact 1 " + row), "yes") << row;
  }
  EXPECT_EQ(other.Ask("table 2"), "");
  EXPECT_EQ(other.Ask("edit 3 5"), "yes");
  mine->Release(Hold::Transaction, 1, 7);
  EXPECT_EQ(other.Ask("edit 1 7"), "yes");
  mine->ReleaseTransaction();
  EXPECT_EQ(other.Ask("edit 1 6"), "yes");
  EXPECT_EQ(other.Ask("transact 3 6"), "yes");
  const std::string held = Text(mine->HeldByOthers(3));
  const std::string end =
      "2/0 ADMIN@OFFICE transaction table; 3/6 ADMIN@OFFICE transaction; 3/5 ADMIN@OFFICE edit; ";
  ASSERT_GT(held.size(), end.size());
  EXPECT_EQ(held.substr(held.size() - end.size()), end);
  EXPECT_EQ(Text(mine->HeldByOthers(1)) + end, held);
  other.Kill();
  EXPECT_EQ(Text(mine->HeldByOthers(3)), "");
}

/// Runs `work` in three processes at once, each with its number.
void RunThree(const std::function<void(int)>& work) {
  std::vector<std::unique_ptr<test::SecondProcess>> processes;
  for (int number = 0; number < 3; ++number) {
    processes.push_back(std::make_unique<test::SecondProcess>(
        [&work, number](test::SecondProcess::Channel&) { work(number); }));
  }
  for (auto& process : processes) EXPECT_EQ(process->Join(), 0);
}

/// Each process notes in shared memory that it holds a record and looks whether another does.
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
        if (side->Holds(Hold::Transaction, 1, row)) use(static_cast<std::size_t>(row)), ++done;
        side->ReleaseTable(1);
      } else if (number == 0) {
        if (!side->Take(Hold::Transaction, 1, row, nullptr)) {
          usleep(20);
          continue;
        }
        use(static_cast<std::size_t>(row)), ++done;
        side->Release(Hold::Transaction, 1, row);
      } else if (side->Take(Hold::Edit, 1, row, nullptr)) {
        // What a window has in edit it can also write, whoever takes the table meanwhile.
        if (!side->Take(Hold::Transaction, 1, row, nullptr))
          throw std::runtime_error("an edit was not written");
        use(static_cast<std::size_t>(row)), ++done;
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

TEST_F(SideFileTest, ComingAndGoingNeverLetsTwoInWhereOneIsAlone) {
  std::atomic<int>* inside = SharedMemory<std::atomic<int>>();
  constexpr int kRounds = 200;
  RunThree([&](int number) {
    const std::string self = "on machine 'C" + std::to_string(number) + "'";
    for (int done = 0; done < kRounds;) {
      Owner side;
      const Share share = (done + number) % 4 ? Share::Exclusive : Share::Shared;
      const std::string result = Enter(&side, file_, share, "C" + std::to_string(number), "U");
      if (!side) {
        // Whoever is refused is told by whom: not by one who is just leaving, nor by the slot's last owner.
        const bool named = result.find("user 'U' on machine 'C") != std::string::npos;
        if (!named || result.find(self) != std::string::npos) throw std::runtime_error(result);
        usleep(20);
        continue;
      }
      ++done;
      const int others = inside->fetch_add(share == Share::Shared ? 1 : 1000);
      sched_yield();
      if (share == Share::Shared ? others >= 1000 : others != 0) throw std::runtime_error("not alone");
      inside->fetch_sub(share == Share::Shared ? 1 : 1000);
    }
  });
  EXPECT_FALSE(std::filesystem::exists(Side()));
  munmap(inside, sizeof *inside);
}

TEST_F(SideFileTest, AFileThatOthersMadeInTheMeantimeIsLeftToThem) {
  Owner mine = Join("ME");
  std::filesystem::remove(Side());
  const Owner second = Join("TWO");
  mine.reset();
  EXPECT_TRUE(std::filesystem::exists(Side()));
  EXPECT_EQ(second->Roster().size(), 1U);
}

}  // namespace
}  // namespace store
