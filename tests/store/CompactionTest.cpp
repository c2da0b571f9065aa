// Compaction beside other programs, and the remains of processes that died in the middle.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "platform/store/Engine.h"
#include "platform/store/sqlite/TemporaryFile.h"
#include "store/OtherTool.h"
#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;
using test::OtherTool;
using test::SecondProcess;

class CompactionTest : public testing::Test {
 protected:
  CompactionTest() {
    test::MakeSmallFile(path_);
    test::AddAsset(test::OpenSmallFile(path_), "A");
  }
  /// Compacts; returns "done", or the error's number and text.
  std::string Compact(const std::string& path) const {
    return test::Told(
        [&] { store::Engine::Of(path).Compact(path, directory_.Path("DW00000001.TMP"))->TakePlace(); });
  }
  static std::string Codes(const std::string& path) {
    std::string codes;
    auto rows = store::Cursor::OpenQuery(test::OpenSmallFile(path), "SELECT Code FROM Assets ORDER BY Code",
                                         store::Locking::ReadOnly);
    for (; !rows->AtEnd(); rows->MoveNext()) codes += rows->Get(0).AsText();
    return codes;
  }

  test::TempDirectory directory_;
  std::string path_ = directory_.Path("DW.MDB");
};

TEST_F(CompactionTest, AnotherToolsOpenWriteIsNotLost) {
  OtherTool tool(path_);
  EXPECT_EQ(tool.Run("BEGIN IMMEDIATE; INSERT INTO Assets (Code) VALUES ('B')"), "not an error");
  EXPECT_EQ(Compact(path_).substr(0, 5), "3196 ");
  EXPECT_EQ(tool.Run("COMMIT"), "not an error");
  EXPECT_EQ(Compact(path_), "done");
  EXPECT_EQ(Codes(path_), "AB");
}

TEST_F(CompactionTest, AnotherToolWritesNeitherMeanwhileNorIntoTheOldFile) {
  OtherTool tool(path_);
  EXPECT_EQ(tool.Run("SELECT * FROM Assets"), "not an error");
  {
    const auto compaction = store::Engine::Of(path_).Compact(path_, directory_.Path("copy"));
    EXPECT_EQ(tool.Run("INSERT INTO Assets (Code) VALUES ('B')"), "database is locked");
    compaction->TakePlace();
  }
  EXPECT_EQ(tool.Run("INSERT INTO Assets (Code) VALUES ('B')"), "file is not a database");
  EXPECT_EQ(Codes(path_), "A");
}

TEST_F(CompactionTest, TheFileBehindALinkIsReplacedAndTheLinkStays) {
  fs::create_directory(directory_.Path("elsewhere"));
  const std::string link = directory_.Path("elsewhere/LINK.MDB");
  fs::create_symlink(path_, link);
  struct stat before {};
  ASSERT_EQ(stat(path_.c_str(), &before), 0);
  EXPECT_EQ(Compact(link), "done");
  EXPECT_TRUE(fs::is_symlink(link));
  struct stat after {};
  ASSERT_EQ(stat(path_.c_str(), &after), 0);
  EXPECT_NE(before.st_ino, after.st_ino);
  EXPECT_EQ(Codes(link), "A");
}

TEST_F(CompactionTest, WhatTheDeadLeftIsRemovedAndNothingElse) {
  const std::string dead = directory_.Path("DW0000000A.TMP");
  const std::string living = directory_.Path("DW0000000B.TMP");
  const std::string foreign = directory_.Path("DW0000000C.TMP");
  const std::string named = directory_.Path("DWOOPS.TMP");
  std::ofstream(foreign) << "Dear Anna";
  std::ofstream(named) << "";
  const auto half = [](const std::string& path) {
    return [path](SecondProcess::Channel& channel) {
      const store::TemporaryFile file(path);
      std::ofstream(path + "-journal") << "x";
      channel.Say("made");
      channel.Hear();
    };
  };
  SecondProcess first(half(dead));
  SecondProcess second(half(living));
  EXPECT_EQ(first.Talk().Hear(), "made");
  EXPECT_EQ(second.Talk().Hear(), "made");
  first.Kill();
  EXPECT_TRUE(fs::exists(dead));
  EXPECT_EQ(Compact(path_), "done");
  EXPECT_FALSE(fs::exists(dead));
  EXPECT_FALSE(fs::exists(dead + "-journal"));
  EXPECT_TRUE(fs::exists(living));
  second.Kill();
  store::Connection::Create(directory_.Path("NEW.MDB"));
  EXPECT_FALSE(fs::exists(living));
  EXPECT_TRUE(fs::exists(foreign));
  EXPECT_TRUE(fs::exists(named));
}

TEST_F(CompactionTest, TheEngineOfAFileDropsItWithItsJournalAndReportsWhoIsIn) {
  store::Engine& engine = store::Engine::Of(path_);
  SecondProcess other([&](SecondProcess::Channel& channel) {
    store::SetIdentity("OFFICE", "Bob");
    auto file = test::OpenSmallFile(path_);
    auto row = store::Cursor::OpenTable(file, "Assets", store::Locking::Pessimistic);
    row->Edit();
    channel.Say("holds");
    channel.Hear();
  });
  EXPECT_EQ(other.Talk().Hear(), "holds");
  const store::FileReport report = engine.Describe(path_);
  ASSERT_EQ(report.users.size(), 1U);
  EXPECT_EQ(report.users[0].user, "Bob");
  ASSERT_EQ(report.held.size(), 1U);
  EXPECT_EQ(report.held[0].table, "Assets");
  EXPECT_TRUE(engine.InUse(path_));
  EXPECT_THROW(engine.Drop(path_), store::StoreError);
  other.Kill();
  // SQLite would play a remaining journal back into the next file of this name.
  std::ofstream(path_ + "-journal") << "left";
  engine.Drop(path_);
  EXPECT_FALSE(fs::exists(path_));
  EXPECT_FALSE(fs::exists(path_ + "-journal"));
  EXPECT_FALSE(fs::exists(directory_.Path("DW.LDB")));
}

TEST_F(CompactionTest, AskingForTheEngineKeepsTheLocksOfThisProcess) {
  auto file = test::OpenSmallFile(path_);
  OtherTool tool(path_);
  file->BeginTrans();
  test::AddAsset(file, "B");
  store::Engine::Of(path_);
  EXPECT_EQ(tool.Run("INSERT INTO Assets (Code) VALUES ('C')"), "database is locked");
  file->CommitTrans();
}

}  // namespace
