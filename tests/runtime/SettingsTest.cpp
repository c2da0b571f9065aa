#include "platform/system/Settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/SecondProcess.h"
#include "support/TempDirectory.h"

namespace sys {
namespace {

class SettingsTest : public testing::Test {
 protected:
  void SetUp() override { UseSettingsFile(folder_.Path("settings.ini")); }
  void TearDown() override { UseSettingsFile({}); }

  test::TempDirectory folder_;
};

TEST_F(SettingsTest, ValuesStandUnderThreeLevels) {
  EXPECT_EQ(GetSetting("DW", "Data", "DW Data Path", "/default"), "/default");
  EXPECT_TRUE(SaveSetting("DW", "Data", "DW Data Path", "/fleet/data, \"old\"; \xc3\xa9 = 50%"));
  EXPECT_TRUE(SaveSetting("PK", "Data", "DW Data Path", "other"));
  EXPECT_TRUE(SaveSetting("DW", "PK", "DW Data Path", "third"));
  EXPECT_EQ(GetSetting("DW", "Data", "DW Data Path"), "/fleet/data, \"old\"; \xc3\xa9 = 50%");
  EXPECT_EQ(GetSetting("PK", "Data", "DW Data Path"), "other");
  EXPECT_TRUE(DeleteSetting("DW", "Data", "DW Data Path"));
  EXPECT_EQ(GetSetting("DW", "Data", "DW Data Path", "gone"), "gone");
  EXPECT_EQ(GetSetting("DW", "PK", "DW Data Path"), "third");
  EXPECT_TRUE(DeleteSetting("DW", "Data", "never there"));
}

TEST_F(SettingsTest, TextsComeBackAsTheyWere) {
  // An empty value is not a missing one; texts that look like other types, lists or paths remain texts.
  for (const char* text : {"", " ", "007", "true", "a, b", "C:\\Fleet\\Data\\", "@Invalid()", "@ByteArray(x)",
                           "#5", "\"q\"", "a;b"}) {
    ASSERT_TRUE(SaveSetting("Brackenfel Software", "Settings", "Workstation Name", text));
    EXPECT_EQ(GetSetting("Brackenfel Software", "Settings", "Workstation Name", "missing"), text);
  }
  // A slash in a name is part of the name.
  ASSERT_TRUE(SaveSetting("A", "B/C", "D", "1"));
  ASSERT_TRUE(SaveSetting("A", "B", "C/D", "2"));
  ASSERT_TRUE(SaveSetting("A", "B%2FC", "D", "3"));
  EXPECT_EQ(GetSetting("A", "B/C", "D"), "1");
  EXPECT_EQ(GetSetting("A", "B", "C/D"), "2");
}

TEST_F(SettingsTest, APathIsWhateverTheFileSystemTakes) {
  // The name of a directory may have bytes that are not UTF-8.
  for (const char* path : {"/srv/\xfcnsere Daten/", "bytes:/srv", "/srv/a%20b"}) {
    ASSERT_TRUE(SaveSetting("DW", "Data", "DW Data Path", path));
    EXPECT_EQ(GetSetting("DW", "Data", "DW Data Path"), path);
  }
  // Somebody wrote these into the file, without the quotation marks that saving puts around commas.
  for (const std::string path : {"/srv/Fleet, North, 2026", "/srv/a,b"}) {
    std::ofstream(folder_.Path("settings.ini")) << "[DW]\nData\\DW%20Data%20Path=" << path << "\n";
    EXPECT_EQ(GetSetting("DW", "Data", "DW Data Path"), path);
  }
}

TEST_F(SettingsTest, ADamagedFileIsKnownAsOne) {
  EXPECT_FALSE(SettingsDamaged());
  ASSERT_TRUE(SaveSetting("DW", "Data", "DW Data Path", "/srv"));
  EXPECT_FALSE(SettingsDamaged());
  std::ofstream(folder_.Path("settings.ini"), std::ios::app) << "\n\x01\x02 torn line\n";
  EXPECT_TRUE(SettingsDamaged());
  EXPECT_EQ(GetSetting("DW", "Data", "DW Data Path"), "/srv") << "what is whole is read";
  EXPECT_TRUE(SaveSetting("DW", "Data", "DW Data Path", "/new")) << "a saved value is not reported as lost";
  EXPECT_EQ(GetSetting("DW", "Data", "DW Data Path"), "/new");
}

TEST_F(SettingsTest, AnotherProcessReadsThemAndItsChangesAreSeen) {
  ASSERT_TRUE(SaveSetting("DW", "Control", "Initialized", "Yes"));
  test::SecondProcess other([](test::SecondProcess::Channel& channel) {
    channel.Say(GetSetting("DW", "Control", "Initialized", "No"));
    SaveSetting("DW", "Control", "From There", "1");
    channel.Say("saved");
  });
  EXPECT_EQ(other.Talk().Hear(), "Yes");
  EXPECT_EQ(other.Talk().Hear(), "saved");
  EXPECT_EQ(other.Join(), 0);
  EXPECT_EQ(GetSetting("DW", "Control", "From There", "0"), "1");
  EXPECT_EQ(GetSetting("DW", "Control", "Initialized"), "Yes");
}

TEST_F(SettingsTest, TheFileIsRedirectedByTheEnvironmentUnlessItWasSet) {
  setenv("DROVEWRIGHT_SETTINGS", folder_.Path("environment.ini").c_str(), 1);
  EXPECT_EQ(SettingsFile(), folder_.Path("settings.ini"));
  UseSettingsFile({});
  EXPECT_EQ(SettingsFile(), folder_.Path("environment.ini"));
  EXPECT_TRUE(SaveSetting("DW", "Data", "x", "1"));
  EXPECT_TRUE(std::filesystem::exists(folder_.Path("environment.ini")));
  unsetenv("DROVEWRIGHT_SETTINGS");
  EXPECT_NE(SettingsFile(), folder_.Path("environment.ini"));
}

TEST_F(SettingsTest, AFileThatCannotBeWrittenIsReported) {
  std::filesystem::create_directory(folder_.Path("taken"));
  UseSettingsFile(folder_.Path("taken"));
  EXPECT_FALSE(SaveSetting("DW", "Data", "x", "1"));
}

}  // namespace
}  // namespace sys
