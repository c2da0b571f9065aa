#include "platform/store/sqlite/SideFile.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "store/SideFileUsers.h"

namespace store {
namespace {

class SideFileTest : public SideFileUsers {};

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
  // Another owner in this process counts like one in another process.
  Owner second;
  EXPECT_EQ(Enter(&second, file_, Share::Exclusive, "HERE", "TWO").substr(0, 5), "3045 ");
  mine.reset();
  EXPECT_EQ(enter(Share::Exclusive).substr(0, 5), "3045 ");
  other.Kill();
  EXPECT_EQ(enter(Share::Exclusive), "slot 0");
  EXPECT_TRUE(mine->Take(Hold::Edit, 1, 1, nullptr));
  EXPECT_TRUE(mine->TakeTable(1).empty());
  EXPECT_TRUE(mine->Has(Hold::Transaction, 1, 2));
  mine->Narrow({{1, {5}}});
  EXPECT_FALSE(mine->Has(Hold::Transaction, 1, 2));
  EXPECT_TRUE(mine->Has(Hold::Transaction, 1, 5));
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
  // 33 bytes; the 31st and 32nd are one letter.
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
  // The next user gets the slot of the dead one, without a rest of the earlier, longer name.
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
  EXPECT_EQ(Text(owners[5]->HeldByOthers({1})),
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
        // The refusal must name who is in the way: neither a user who is just leaving, nor the slot's last
        // owner.
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
