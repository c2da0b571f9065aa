#include "shell/DataLocation.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "data/Application.h"
#include "platform/system/Settings.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

class DataLocationTest : public testing::Test {
 protected:
  DataLocationTest() { sys::UseSettingsFile(directory_.Path("settings.ini")); }
  ~DataLocationTest() override {
    dw::InstallFileLocator({});
    dw::SetDataSourceKind("DW");
    sys::UseSettingsFile({});
  }
  static void Keep(const std::string& application, const std::string& section, const std::string& key,
                   const std::string& value) {
    sys::SaveSetting(application, section, key, value);
  }
  static std::string Kept(const std::string& application, const std::string& section,
                          const std::string& key) {
    return sys::GetSetting(application, section, key, "nothing");
  }
  /// A directory with empty files of these names.
  std::string Directory(const std::string& name, std::initializer_list<const char*> files) {
    std::string path = directory_.Path(name);
    std::filesystem::create_directories(path);
    for (const char* file : files) std::ofstream(path + '/' + file);
    return path;
  }
  static bool Locate() { return dw::LocateData(); }

  test::TempDirectory directory_;
  test::ScreenScript user_;
};

TEST_F(DataLocationTest, TheCodeDecidesTheKindOfDataSource) {
  Keep("DW", "Data", "Datasource Type", "SQL Server");
  dw::UseAccess = false;
  dw::SetDataSourceKind();
  EXPECT_TRUE(dw::UseAccess);
  EXPECT_FALSE(dw::UseSQLServer);
  EXPECT_EQ(dw::DateDelimiter + dw::DeletePrefix + dw::TrueLiteral + dw::FalseLiteral, "#DELETE * TRUEFALSE");
  dw::SetDataSourceKind("TH");
  EXPECT_FALSE(dw::UseAccess);
  EXPECT_TRUE(dw::UseSQLServer);
  EXPECT_EQ(dw::DateDelimiter + dw::DeletePrefix + dw::TrueLiteral + dw::FalseLiteral, "'DELETE 10");

  // Only one code asks the user, and only once.
  user_->Expect("Are you using an Access version of Drovewright? ", Icon::None, Buttons::YesNo, Answer::No);
  dw::SetDataSourceKind("RZ");
  dw::SetDataSourceKind("RZ");
  EXPECT_TRUE(dw::UseSQLServer);
  EXPECT_EQ(Kept("RZ", "Data", "Datasource Type"), "SQL Server");
}

TEST_F(DataLocationTest, OldPlacesOfTheSystemPathAreCleaned) {
  Keep("DW", "Data", "PK Data Path", "/srv/system/");
  Keep("DW", "PK", "PK Data Path", "/srv/oldest/");
  dw::CleanOldSettings();
  EXPECT_EQ(Kept("PK", "Data", "PK Data Path"), "/srv/system/");
  EXPECT_EQ(Kept("DW", "Data", "PK Data Path"), "nothing");
  EXPECT_EQ(Kept("DW", "PK", "PK Data Path"), "nothing");

  // Twice the same directory needs no question; of two directories, the newer one wins.
  Keep("DW", "Data", "PK Data Path", "/srv/system/");
  dw::CleanOldSettings();
  EXPECT_EQ(Kept("DW", "Data", "PK Data Path"), "nothing");
  Keep("DW", "Data", "PK Data Path", "/srv/other/");
  user_->Expect(
      "You had two different locations for BFSYS.MDB database.\r1) /srv/other/\r2) /srv/system/ (assumed "
      "correct).\rPlease correct if the was not the correct assumption under Administration|Application "
      "Setup|Options.",
      Icon::Information);
  dw::CleanOldSettings();
  EXPECT_EQ(Kept("PK", "Data", "PK Data Path"), "/srv/system/");
  EXPECT_EQ(Kept("DW", "Data", "PK Data Path"), "nothing");
}

TEST_F(DataLocationTest, FilesAreFoundWhateverTheirLetters) {
  const std::string data = Directory("data", {"dw.mdb", "Dw_Users.mdb", "DW_USERS.MDB", "dw_sands.MDB"});
  const std::string system = Directory("system", {"bfsys.mdb"});
  chmod((data + "/dw.mdb").c_str(), 0444);
  // The separator at the end of a path may be missing, or a backslash.
  Keep("DW", "Data", "DW Data Path", data);
  Keep("PK", "Data", "PK Data Path", system + '\\');
  dw::LocalDataInUse = true;
  ASSERT_TRUE(Locate());
  EXPECT_FALSE(dw::LocalDataInUse);
  EXPECT_EQ(dw::DataPath, data + '/');
  EXPECT_EQ(dw::DataFile, data + "/dw.mdb");
  EXPECT_EQ(dw::UsersFile, data + "/DW_USERS.MDB");
  EXPECT_EQ(dw::SandsFile, data + "/dw_sands.MDB");
  EXPECT_EQ(dw::ListsFile, data + "/DW_LISTS.MDB");
  EXPECT_EQ(dw::DataConnect, dw::MainFileConnect(data + "/dw.mdb"));
  EXPECT_EQ(dw::ListsConnect, dw::FileConnect(data + "/DW_LISTS.MDB"));
  EXPECT_TRUE(dw::HasSystemData);
  EXPECT_EQ(dw::SystemFile, system + "/bfsys.mdb");
  struct stat state {};
  ASSERT_EQ(stat(dw::DataFile.c_str(), &state), 0);
  EXPECT_NE(state.st_mode & S_IWUSR, 0U);
}

TEST_F(DataLocationTest, AMissingFileIsAskedForUntilItIsFound) {
  const std::string data = Directory("data", {"DW.MDB"});
  Keep("DW", "Data", "DW Data Path", directory_.Path("gone"));
  int asked = 0;
  dw::InstallFileLocator([&](const std::string& name) {
    EXPECT_EQ(name, "DW.MDB");
    if (++asked == 3) dw::TakeDirectory(data, name);
  });
  EXPECT_TRUE(Locate());
  EXPECT_EQ(asked, 3);
  EXPECT_EQ(Kept("DW", "Data", "DW Data Path"), data + '/');

  // A directory with the file's name is not the file.
  Keep("DW", "Data", "DW Data Path", Directory("wrong/dw.mdb/..", {}));
  dw::InstallFileLocator([](const std::string&) { throw dw::ApplicationEnd(); });
  EXPECT_THROW(Locate(), dw::ApplicationEnd);
}

TEST_F(DataLocationTest, AChosenDirectoryBelongsToTheFileThatWasMissing) {
  const std::string data = Directory("data", {"DW.MDB", "dw_sands.mdb"});
  const std::string system = Directory("system", {"BfSys.Mdb"});
  dw::TakeDirectory(data, "DW_SANDS.MDB");
  dw::TakeDirectory(system, "bfsys.mdb");
  EXPECT_EQ(dw::DataPath, data + '/');
  EXPECT_EQ(dw::SandsFile, data + "/dw_sands.mdb");
  EXPECT_EQ(dw::UsersFile, data + "/DW_users.mdb");
  EXPECT_EQ(dw::SystemFile, system + "/BfSys.Mdb");
  EXPECT_EQ(Kept("DW", "Data", "DW Data Path"), data + '/');
  EXPECT_EQ(Kept("PK", "Data", "PK Data Path"), system + '/');

  Keep("DW", "Data", "Server Name", "HAULER");
  dw::TakeDirectory(data, "DW.MDB");
  EXPECT_EQ(dw::DataConnect,
            "Driver={SQL Server};Integrated Security=SSPI;Server=HAULER;Database=Keelwatch;");
}

}  // namespace
