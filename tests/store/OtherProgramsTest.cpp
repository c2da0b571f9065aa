// What other programs, and people with a file manager, do to a file in use.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "store/OtherTool.h"
#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;
using test::AddAsset;
using test::OtherTool;
using test::SecondProcess;
using test::Told;

class OtherPrograms : public testing::Test {
 protected:
  OtherPrograms() {
    fs::create_directory(directory_.Path("data"));
    test::MakeSmallFile(path_);
    AddAsset(test::OpenSmallFile(path_), "A");
    auto lines = store::Cursor::OpenTable(test::OpenSmallFile(path_), "Lines", store::Locking::Pessimistic);
    lines->AddNew();
    lines->Set(lines->FieldIndex("Code"), "A");
    lines->Update();
  }
  /// Holds the first row of a table for an edit, and on the next word changes its code and stores it.
  std::function<void(SecondProcess::Channel&)> EditOf(const std::string& table) const {
    return [this, table](SecondProcess::Channel& channel) {
      channel.Hear();
      auto row = store::Cursor::OpenTable(test::OpenSmallFile(path_), table, store::Locking::Pessimistic);
      channel.Say(Told([&] { row->Edit(); }).substr(0, 4));
      channel.Hear();
      channel.Say(Told([&] {
                    row->Set(row->FieldIndex("Code"), "THEIRS");
                    row->Update();
                  }).substr(0, 4));
      channel.Hear();
    };
  }
  static std::string Ask(SecondProcess& process, const std::string& line) {
    process.Talk().Say(line);
    return process.Talk().Hear();
  }

  test::TempDirectory directory_;
  std::string path_ = directory_.Path("data/DW.MDB");
};

TEST_F(OtherPrograms, ADirectoryThatIsMovedAwayHasItsNumberUntilItIsBack) {
  auto file = test::OpenSmallFile(path_);
  AddAsset(file, "B");
  file->BeginTrans();
  AddAsset(file, "C");
  fs::rename(directory_.Path("data"), directory_.Path("moved"));
  const std::string words = "3044 '" + path_ + "' is no longer there: ";
  // The open transaction goes on in the file, wherever it is now.
  AddAsset(file, "D");
  EXPECT_EQ(Told([&] { file->CommitTrans(); }), "done");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Told([&] { AddAsset(file, "E"); }).substr(0, words.size()), words);
  EXPECT_EQ(Told([&] { test::OpenSmallFile(path_); }).substr(0, 5), "3044 ");
  fs::rename(directory_.Path("moved"), directory_.Path("data"));
  AddAsset(file, "F");
  EXPECT_EQ(test::Ask(file, "SELECT COUNT(*) FROM Assets"), rt::Value(5));
  EXPECT_TRUE(file->CheckIntegrity().empty());
}

TEST_F(OtherPrograms, AFileThatIsReplacedTakesNoMoreWrites) {
  fs::copy_file(path_, directory_.Path("backup"));
  auto file = test::OpenSmallFile(path_);
  AddAsset(file, "B");
  fs::rename(directory_.Path("backup"), path_);
  EXPECT_EQ(Told([&] { AddAsset(file, "C"); }).substr(0, 5), "3044 ");
}

TEST_F(OtherPrograms, AnEditWhoseSideFileWasRemovedIsNotStoredOverAnothersChange) {
  SecondProcess other(EditOf("Assets"));
  auto mine = store::Cursor::OpenTable(test::OpenSmallFile(path_), "Assets", store::Locking::Pessimistic);
  mine->Edit();
  mine->Set(mine->FieldIndex("Code"), "MINE");
  fs::remove(directory_.Path("data/DW.LDB"));
  EXPECT_EQ(Ask(other, "edit"), "done");
  EXPECT_EQ(Told([&] { mine->Update(); }).substr(0, 5), "3197 ");
  EXPECT_EQ(Ask(other, "store"), "done");
  mine->CancelUpdate();
  EXPECT_EQ(Told([&] { mine->Edit(); }), "done");
  EXPECT_EQ(mine->Get(mine->FieldIndex("Code")), rt::Value("THEIRS"));
  mine->Set(mine->FieldIndex("Code"), "MINE");
  mine->Update();
}

TEST_F(OtherPrograms, WhoTakesARecordGoesToTheSideFileWhereTheOthersAre) {
  SecondProcess other(EditOf("Assets"));
  auto mine = store::Cursor::OpenTable(test::OpenSmallFile(path_), "Assets", store::Locking::Pessimistic);
  fs::remove(directory_.Path("data/DW.LDB"));
  EXPECT_EQ(Ask(other, "edit"), "done");
  EXPECT_EQ(Told([&] { mine->Edit(); }).substr(0, 5), "3218 ");
  EXPECT_EQ(Ask(other, "store"), "done");
  EXPECT_EQ(Told([&] { mine->Edit(); }), "done");
}

TEST_F(OtherPrograms, RecordsStayHeldWhenAToolRebuildsTheFile) {
  SecondProcess other(EditOf("Lines"));
  OtherTool tool(path_);
  EXPECT_EQ(Ask(other, "edit"), "done");
  EXPECT_EQ(tool.Run("VACUUM"), "not an error");
  auto mine = store::Cursor::OpenTable(test::OpenSmallFile(path_), "Lines", store::Locking::Pessimistic);
  EXPECT_EQ(Told([&] { mine->Edit(); }).substr(0, 5), "3218 ");
  EXPECT_EQ(Ask(other, "store"), "done");
  EXPECT_EQ(Told([&] { mine->Edit(); }), "done");
}

TEST_F(OtherPrograms, AFileThatIsBusyAtTheOpeningIsInUse) {
  OtherTool tool(path_);
  EXPECT_EQ(tool.Run("BEGIN EXCLUSIVE"), "not an error");
  EXPECT_EQ(Told([&] { test::OpenSmallFile(path_); }),
            "3045 Could not use '" + path_ + "'; it is in use by another program.");
  EXPECT_EQ(tool.Run("COMMIT"), "not an error");
  EXPECT_EQ(Told([&] { test::OpenSmallFile(path_); }), "done");
}

TEST_F(OtherPrograms, ACommitWaitsForALongReader) {
  SecondProcess reader([&](SecondProcess::Channel& channel) {
    sqlite3* db = nullptr;
    sqlite3_open(path_.c_str(), &db);
    sqlite3_exec(db, "BEGIN; SELECT * FROM Assets", nullptr, nullptr, nullptr);
    channel.Say("reads");
    channel.Hear();
    usleep(700000);
  });
  EXPECT_EQ(reader.Talk().Hear(), "reads");
  auto file = test::OpenSmallFile(path_);
  file->SetPatience(100);
  reader.Talk().Say("leave");
  file->BeginTrans();
  AddAsset(file, "B");
  EXPECT_EQ(Told([&] { file->CommitTrans(); }), "done");
  EXPECT_EQ(Told([&] { AddAsset(file, "C"); }), "done");
}

TEST_F(OtherPrograms, AFileInADirectoryThatCannotBeWrittenIsRead) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can play another user";
  fs::remove(path_ + "-journal");
  fs::permissions(directory_.Path(), fs::perms(0755));
  fs::permissions(directory_.Path("data"), fs::perms(0755));
  fs::permissions(path_, fs::perms(0644));
  SecondProcess visitor([&](SecondProcess::Channel& channel) {
    if (setgid(54001) != 0 || setuid(54001) != 0) throw std::runtime_error("no other user");
    channel.Say(Told([&] {
      auto file = store::Connection::Open({.path = path_, .readOnly = true});
      if (test::Ask(file, "SELECT Code FROM Assets") != rt::Value("A")) throw store::StoreError(1, "no rows");
      if (!file->CheckIntegrity().empty()) throw store::StoreError(1, "not whole");
    }));
    channel.Say(Told([&] { AddAsset(test::OpenSmallFile(path_), "B"); }));
    channel.Hear();
    // Another user has the file open, and nobody else may read the side file.
    channel.Say(Told([&] { store::Connection::Open({.path = path_, .readOnly = true}); }));
  });
  EXPECT_EQ(visitor.Talk().Hear(), "done");
  EXPECT_EQ(visitor.Talk().Hear().substr(0, 5), "3027 ");
  EXPECT_FALSE(fs::exists(directory_.Path("data/DW.LDB")));
  auto alone = store::Connection::Open({path_, store::Share::Exclusive});
  visitor.Talk().Say("again");
  EXPECT_EQ(visitor.Talk().Hear().substr(0, 5), "3356 ");
}

}  // namespace
