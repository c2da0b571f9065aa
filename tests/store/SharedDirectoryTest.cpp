// Several people and one file: other names of the file, and other owners of the files beside it.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "platform/store/Engine.h"
#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;
using test::AddAsset;
using test::Ask;
using test::SecondProcess;
using test::Told;

std::unique_ptr<store::Cursor> EditFirst(const std::shared_ptr<store::Connection>& file) {
  auto asset = store::Cursor::OpenTable(file, "Assets", store::Locking::Pessimistic);
  asset->Edit();
  return asset;
}

class OtherNames : public testing::Test {
 protected:
  OtherNames() {
    fs::create_directories(directory_.Path("office"));
    path_ = directory_.Path("office/DW.MDB");
    test::MakeSmallFile(path_);
    AddAsset(test::OpenSmallFile(path_), "A");
  }

  test::TempDirectory directory_;
  std::string path_;
};

TEST_F(OtherNames, UsersWhoComeByOtherPathsMeetInOneFile) {
  fs::create_symlink(path_, directory_.Path("LINK.MDB"));
  fs::create_directory_symlink(directory_.Path("office"), directory_.Path("branch"));
  fs::create_symlink("LINK.MDB", directory_.Path("AGAIN.MDB"));
  SecondProcess other([&](SecondProcess::Channel& channel) {
    auto held = EditFirst(test::OpenSmallFile(path_));
    channel.Say("holds");
    channel.Hear();
  });
  EXPECT_EQ(other.Talk().Hear(), "holds");
  const fs::path before = fs::current_path();
  fs::current_path(directory_.Path("branch"));
  for (const std::string& name :
       {directory_.Path("LINK.MDB"), directory_.Path("AGAIN.MDB"), directory_.Path("branch/DW.MDB"),
        directory_.Path("office/../branch/DW.MDB"), std::string("DW.MDB"), std::string("../LINK.MDB")}) {
    EXPECT_EQ(Told([&] { EditFirst(test::OpenSmallFile(name)); }).substr(0, 5), "3218 ") << name;
    EXPECT_EQ(
        Told([&] { (void)store::Engine::Of(name).Compact(name, directory_.Path("copy")); }).substr(0, 5),
        "3196 ")
        << name;
  }
  // A path that was resolved once does not depend on the directory of the process any more.
  auto stays = test::OpenSmallFile("DW.MDB");
  fs::current_path(before);
  EXPECT_EQ(AddAsset(stays, "B"), 2);
  stays.reset();
  other.Talk().Say("leave");
  EXPECT_EQ(other.Join(), 0);
  EXPECT_FALSE(fs::exists(directory_.Path("LINK.LDB")));
  EXPECT_FALSE(fs::exists(directory_.Path("office/DW.LDB")));
}

TEST_F(OtherNames, AFileWithTwoNamesIsRefusedInWords) {
  fs::create_hard_link(path_, directory_.Path("office/SECOND.MDB"));
  for (const std::string& name : {path_, directory_.Path("office/SECOND.MDB")}) {
    const std::string told = Told([&] { test::OpenSmallFile(name); });
    EXPECT_EQ(told.substr(0, 5), "3051 ");
    EXPECT_NE(told.find("has 2 names"), std::string::npos) << told;
    EXPECT_EQ(
        Told([&] { (void)store::Engine::Of(name).Compact(name, directory_.Path("copy")); }).substr(0, 5),
        "3051 ");
  }
  fs::remove(directory_.Path("office/SECOND.MDB"));
  EXPECT_EQ(AddAsset(test::OpenSmallFile(path_), "B"), 2);
}

/// People with users and groups of their own who share the group of the office; new files do not get the
/// group of the directory.
class OfficeTest : public testing::Test {
 protected:
  static constexpr gid_t kOffice = 54321;
  static constexpr uid_t kAnn = 54001;
  static constexpr uid_t kBob = 54002;
  static constexpr uid_t kStranger = 54003;

  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "only root can play several people";
    fs::permissions(directory_.Path(), fs::perms(0755));
    fs::create_directory(folder_);
    test::MakeSmallFile(path_);
    AddAsset(test::OpenSmallFile(path_), "A");
    fs::remove(path_ + "-journal");
    ASSERT_EQ(chown(folder_.c_str(), 0, kOffice), 0);
    fs::permissions(folder_, fs::perms(0770));
    ASSERT_EQ(chown(path_.c_str(), kAnn, kOffice), 0);
    fs::permissions(path_, fs::perms(0660));
  }
  /// Makes this process another user, inside or outside the office.
  static void Become(uid_t user, bool inOffice = true) {
    const gid_t office = kOffice;
    umask(022);
    if (setgroups(inOffice ? 1 : 0, &office) != 0 || setgid(user) != 0 || setuid(user) != 0)
      throw std::runtime_error("no other user");
  }
  /// Opens the file, adds a row, and closes it; returns "done", or the error.
  std::string Visit(uid_t user) const {
    std::string told;
    SecondProcess process([&](SecondProcess::Channel& channel) {
      Become(user);
      channel.Say(Told([&] {
        auto file = test::OpenSmallFile(path_);
        AddAsset(file, "ROW " + Ask(file, "SELECT COUNT(*) FROM Assets").AsText());
      }));
    });
    told = process.Talk().Hear();
    process.Join();
    return told;
  }

  test::TempDirectory directory_;
  std::string folder_ = directory_.Path("office");
  std::string path_ = directory_.Path("office/DW.MDB");
};

TEST_F(OfficeTest, WhoComesFirstDoesNotKeepTheOthersOut) {
  SecondProcess ann([&](SecondProcess::Channel& channel) {
    Become(kAnn);
    auto file = test::OpenSmallFile(path_);
    AddAsset(file, "FIRST");
    auto held = EditFirst(file);
    channel.Say("in");
    channel.Hear();
  });
  EXPECT_EQ(ann.Talk().Hear(), "in");
  EXPECT_EQ(Visit(kBob), "done");
  struct stat side {};
  ASSERT_EQ(stat(directory_.Path("office/DW.LDB").c_str(), &side), 0);
  EXPECT_EQ(side.st_gid, kOffice);
  ann.Kill();
  // The side file and the journal of a user who died are still there and belong to her.
  EXPECT_EQ(Visit(kBob), "done");
  EXPECT_EQ(Visit(kAnn), "done");
  struct stat journal {};
  ASSERT_EQ(stat((path_ + "-journal").c_str(), &journal), 0);
  EXPECT_EQ(journal.st_gid, kOffice);
  EXPECT_EQ(journal.st_mode & 0777, 0660U);
}

TEST_F(OfficeTest, WhatCannotBeWrittenIsNamedWithTheCure) {
  // A side file that somebody copied together with the data file.
  const std::string side = directory_.Path("office/DW.LDB");
  std::ofstream(side) << "";
  ASSERT_EQ(chown(side.c_str(), kStranger, kStranger), 0);
  fs::permissions(side, fs::perms(0600));
  std::string told = Visit(kBob);
  EXPECT_EQ(told.substr(0, 5), "3051 ") << told;
  EXPECT_NE(told.find("'" + side + "'"), std::string::npos) << told;
  EXPECT_NE(told.find("54003"), std::string::npos) << told;
  EXPECT_NE(told.find("chgrp 54321 '" + side + "'"), std::string::npos) << told;
  fs::remove(side);

  const std::string journal = path_ + "-journal";
  std::ofstream(journal) << "";
  ASSERT_EQ(chown(journal.c_str(), kStranger, kStranger), 0);
  fs::permissions(journal, fs::perms(0600));
  told = Visit(kBob);
  EXPECT_EQ(told.substr(0, 5), "3051 ") << told;
  EXPECT_NE(told.find("chgrp 54321 '" + journal + "'"), std::string::npos) << told;
  fs::remove(journal);

  fs::permissions(folder_, fs::perms(0750));
  told = Visit(kBob);
  EXPECT_EQ(told.substr(0, 5), "3051 ") << told;
  EXPECT_NE(told.find("chmod g+rwxs '" + folder_ + "'"), std::string::npos) << told;
}

TEST_F(OfficeTest, ACompactionByOneLeavesTheFileToAll) {
  struct stat before {};
  ASSERT_EQ(stat(path_.c_str(), &before), 0);
  for (const uid_t user : {kBob, kAnn}) {
    SecondProcess process([&](SecondProcess::Channel& channel) {
      Become(user);
      channel.Say(Told([&] { store::Engine::Of(path_).Compact(path_, path_ + ".copy")->TakePlace(); }));
    });
    EXPECT_EQ(process.Talk().Hear(), "done");
    EXPECT_EQ(process.Join(), 0);
    struct stat after {};
    ASSERT_EQ(stat(path_.c_str(), &after), 0);
    EXPECT_EQ(after.st_uid, kAnn);
    EXPECT_EQ(after.st_gid, kOffice);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(Visit(kBob), "done");
    EXPECT_EQ(Visit(kAnn), "done");
  }
  EXPECT_EQ(Ask(test::OpenSmallFile(path_), "SELECT COUNT(*) FROM Assets"), rt::Value(5));
}

}  // namespace
