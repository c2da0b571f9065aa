#include "shell/DataSearch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "support/ScreenScript.h"
#include "support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;
using Paths = std::vector<std::string>;
using screen::Answer;
using screen::Buttons;
using screen::Icon;

class DataSearchTest : public testing::Test {
 protected:
  ~DataSearchTest() override { dw::InstallDrives({}); }
  /// Creates a directory with these files below the drive; returns its path.
  std::string Make(const std::string& name, std::initializer_list<const char*> files = {}) {
    std::string path = name.empty() ? root_ : root_ + '/' + name;
    fs::create_directories(path);
    for (const char* file : files) std::ofstream(path + '/' + file);
    return path;
  }
  std::string MakeCopy(const std::string& name) {
    return Make(name, {"DW.MDB", "dw_users.mdb", "DW_SANDS.mdb"});
  }
  std::size_t Search() { return dw::SearchDrive(root_, search_); }
  void ExpectQuestion(const std::string& text, Answer answer) {
    user_->Expect(text, Icon::None, Buttons::YesNo, answer);
  }

  test::TempDirectory drive_;
  std::string root_ = drive_.Path("drive");
  std::string used_;
  dw::DataSearch search_{"DW", [this](const std::string& path) { used_ = path; }, {}};
  test::ScreenScript user_;
};

TEST_F(DataSearchTest, DirectoriesComeLevelByLevel) {
  for (const char* name : {"b/z", "a/deep/deeper", "a/early", ".hidden"}) Make(name, {"file"});
  fs::create_directory_symlink(root_, root_ + "/a/around");
  const Paths found = dw::ListSubdirectories(root_);
  Paths expected{root_};
  for (const char* name : {"/.hidden", "/a", "/b", "/a/deep", "/a/early", "/b/z", "/a/deep/deeper"})
    expected.push_back(root_ + name);
  EXPECT_EQ(found, expected);
}

TEST_F(DataSearchTest, WhatIsMountedFromElsewhereIsNotWalked) {
  struct stat device {};
  struct stat mounted {};
  if (stat("/dev", &device) != 0 || stat("/dev/pts", &mounted) != 0 || device.st_dev == mounted.st_dev)
    GTEST_SKIP() << "nothing is mounted at /dev/pts";
  const Paths found = dw::ListSubdirectories("/dev");
  EXPECT_EQ(found.front(), "/dev");
  EXPECT_EQ(std::count(found.begin(), found.end(), "/dev/pts"), 0);
}

TEST_F(DataSearchTest, OnlyACompleteCopyIsOffered) {
  Make("alone", {"DW.MDB"});
  Make("almost", {"DW.MDB", "DW_USERS.MDB"});
  EXPECT_EQ(Search(), 0U);
  const std::string copy = MakeCopy("deep/down");
  ExpectQuestion("Found one copy at " + copy + " on drive " + root_ + ".\r\rUse this database location?",
                 Answer::Yes);
  EXPECT_EQ(Search(), 1U);
  EXPECT_EQ(used_, copy);

  // If the root has the main file, even alone, the search leaves out all other directories.
  Make("", {"dw.mdb"});
  EXPECT_EQ(Search(), 0U);
}

TEST_F(DataSearchTest, SeveralCopiesAreAskedForInTurn) {
  const std::string deep = MakeCopy("a/old");
  const std::string first = MakeCopy("data");
  const std::string second = MakeCopy("keep");
  user_->Expect("Found 3 copies on drive " + root_ + ".\r" + first + '\r' + second + '\r' + deep,
                Icon::Information);
  ExpectQuestion("Use copy at " + first + "?", Answer::No);
  ExpectQuestion("Use copy at " + second + "?", Answer::Yes);
  EXPECT_EQ(Search(), 3U);
  EXPECT_EQ(used_, second);
}

TEST_F(DataSearchTest, DrivesAreSearchedUpToTheFirstCopy) {
  using Kind = sys::DriveKind;
  const std::string empty = Make("empty");
  const std::string disc = Make("disc");
  MakeCopy("disc/data");
  const std::string share = Make("share");
  const std::string copy = MakeCopy("share/data");
  const std::string last = MakeCopy("last");
  std::vector<sys::Drive> drives;
  dw::InstallDrives([&] { return drives; });
  drives = {{empty, Kind::Fixed}, {disc, Kind::RemovableDisc}, {share, Kind::Remote}, {last, Kind::Fixed}};
  // The search ends with the first drive that has a copy, even if the user refuses the copy.
  ExpectQuestion("Found one copy at " + copy + " on drive " + share + ".\r\rUse this database location?",
                 Answer::No);
  EXPECT_EQ(dw::SearchDrives(search_), dw::SearchEnd::Done);
  EXPECT_EQ(used_, "");

  drives.resize(2);
  std::string shown = disc;
  std::transform(shown.begin(), shown.end(), shown.begin(), [](unsigned char c) { return std::toupper(c); });
  user_->Expect("CD drive found at " + shown, Icon::None);
  EXPECT_EQ(dw::SearchDrives(search_), dw::SearchEnd::Done);
}

}  // namespace
