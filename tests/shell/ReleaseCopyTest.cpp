#include "shell/ReleaseCopy.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/system/Settings.h"
#include "shell/DataSearch.h"
#include "support/ScreenScript.h"
#include "support/SecondProcess.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;
using screen::Answer;
using screen::Buttons;
using screen::Icon;

/// Another process: reads the path of a data file, opens it and keeps it open.
void KeepOpen(test::SecondProcess::Channel& talk) {
  const auto file = test::OpenSmallFile(talk.Hear());
  talk.Say("open");
  talk.Hear();
}

class ReleaseCopyTest : public testing::Test {
 protected:
  ReleaseCopyTest() {
    sys::UseSettingsFile(directory_.Path("settings.ini"));
    fs::create_directory(drive_);
    // A system that knows only small letters may have written the disc.
    for (const char* name : {"dw initialized data files/dw.mdb", "dw initialized data files/dw_users.mdb",
                             "dw initialized data files/dw_sands.mdb", "PK Initialized Data Files/BFSYS.MDB"})
      Write(disc_ + "/Drovewright release/" + name, name);
    fs::permissions(disc_ + "/Drovewright release/dw initialized data files/dw.mdb", fs::perms::owner_read);
    dw::SystemPath = "/somewhere/";
    dw::InstallDrives([this] {
      return std::vector<sys::Drive>{{drive_, sys::DriveKind::Fixed},
                                     {directory_.Path("empty"), sys::DriveKind::RemovableDisc},
                                     {disc_, sys::DriveKind::RemovableDisc}};
    });
  }
  ~ReleaseCopyTest() override {
    dw::InstallDrives({});
    sys::UseSettingsFile({});
  }
  static void Write(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path) << text;
  }
  static std::string Read(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  bool Install() { return dw::InstallFromReleaseDisc(drive_); }
  std::string Source(const std::string& name) const {
    return disc_ + "/Drovewright release/dw initialized data files/" + name;
  }
  void ExpectReplace(const std::string& target, Answer answer) {
    user_->Expect(target + " already exists. Do you want to replace it?", Icon::Question, Buttons::YesNo,
                  answer);
  }
  void ExpectFailure(int code, Answer answer) {
    user_->Expect(
        "Copy failed with a code of " + std::to_string(code) + ". Press OK to do it the old fashioned way.",
        Icon::None, Buttons::OkCancel, answer);
  }

  test::SecondProcess other_{KeepOpen};
  test::TempDirectory directory_;
  std::string disc_ = directory_.Path("disc");
  std::string drive_ = directory_.Path("drive");
  std::string target_ = drive_ + "/Brackenfel Software/DW/";
  test::ScreenScript user_;
};

TEST_F(ReleaseCopyTest, AFirstInstallationComesFromTheDisc) {
  ASSERT_TRUE(Install());
  EXPECT_EQ(dw::DataPath, target_);
  EXPECT_EQ(dw::DataFile, target_ + "DW.MDB");
  EXPECT_EQ(Read(dw::DataFile), "dw initialized data files/dw.mdb");
  EXPECT_EQ(Read(dw::SandsFile), "dw initialized data files/dw_sands.mdb");
  EXPECT_EQ(dw::UsersConnect, dw::FileConnect(target_ + "DW_USERS.MDB"));
  EXPECT_EQ(dw::SystemPath, drive_ + "/Brackenfel Software/PK/");
  EXPECT_EQ(Read(dw::SystemFile), "PK Initialized Data Files/BFSYS.MDB");
  EXPECT_EQ(sys::GetSetting("DW", "Data", "DW Data Path"), target_);
  EXPECT_EQ(sys::GetSetting("PK", "Data", "PK Data Path"), dw::SystemPath);
  struct stat state {};
  ASSERT_EQ(stat(dw::DataFile.c_str(), &state), 0);
  EXPECT_NE(state.st_mode & S_IWUSR, 0U);
}

TEST_F(ReleaseCopyTest, AnExistingFileIsReplacedOnlyIfTheUserWants) {
  Write(target_ + "dw.mdb", "old data");
  Write(target_ + "DW_USERS.MDB", "old users");
  ExpectReplace(target_ + "dw.mdb", Answer::Yes);
  ExpectReplace(target_ + "DW_USERS.MDB", Answer::No);
  user_->Expect("Copy of " + Source("dw_users.mdb") + " to " + target_ + "DW_USERS.MDB cancelled.",
                Icon::Information);
  EXPECT_FALSE(Install());
  EXPECT_EQ(Read(target_ + "dw.mdb"), "dw initialized data files/dw.mdb");
  EXPECT_EQ(Read(target_ + "DW_USERS.MDB"), "old users");
  EXPECT_FALSE(fs::exists(target_ + "DW.MDB")) << "beside the one in small letters";
  EXPECT_FALSE(fs::exists(target_ + "DW_SANDS.MDB"));
  EXPECT_EQ(sys::GetSetting("DW", "Data", "DW Data Path"), "");
}

TEST_F(ReleaseCopyTest, AFileThatSomebodyHasOpenStaysAsItIs) {
  const std::string path = target_ + "DW.MDB";
  fs::create_directories(target_);
  test::MakeSmallFile(path);
  other_.Talk().Say(path);
  ASSERT_EQ(other_.Talk().Hear(), "open");
  const std::string before = Read(path);
  ExpectFailure(32, Answer::Ok);
  user_->Expect("The file is in use by another person and cannot be copied.", Icon::Critical);
  EXPECT_FALSE(Install());
  EXPECT_EQ(Read(path), before);
  // Remains of a crash beside the file keep nobody out.
  other_.Kill();
  ExpectReplace(path, Answer::Yes);
  EXPECT_TRUE(Install());
  EXPECT_EQ(Read(path), "dw initialized data files/dw.mdb");
}

TEST_F(ReleaseCopyTest, AFailedCopyIsOfferedAsAPlainOne) {
  // The drive has a plain file with the folder's name, so no copy can work.
  std::ofstream(drive_ + "/Brackenfel Software").close();
  ExpectFailure(3, Answer::Ok);
  user_->ExpectPart("Could not copy file.\rCould not copy '" + Source("dw.mdb"), Icon::Critical);
  EXPECT_FALSE(Install());
  fs::remove(drive_ + "/Brackenfel Software");

  // The data files are copied even if there is no system file.
  fs::remove(disc_ + "/Drovewright release/PK Initialized Data Files/BFSYS.MDB");
  ExpectFailure(2, Answer::Cancel);
  EXPECT_TRUE(Install());
  EXPECT_EQ(dw::SystemPath + dw::SystemFile, "");
  EXPECT_EQ(sys::GetSetting("PK", "Data", "PK Data Path", "nothing"), "nothing");
}

}  // namespace
