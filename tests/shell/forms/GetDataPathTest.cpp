#include "shell/forms/GetDataPath.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QTimer>
#include <filesystem>
#include <fstream>

#include "data/Application.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "platform/system/Settings.h"
#include "shell/DataLocation.h"
#include "support/ScreenScript.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

namespace {

namespace fs = std::filesystem;
using screen::Answer;
using screen::Buttons;
using screen::Icon;
using sys::DriveKind;

class GetDataPathTest : public testing::Test {
 protected:
  GetDataPathTest() {
    sys::UseSettingsFile(directory_.Path("settings.ini"));
    Make("office", {});
    Make("office/fleet", {"dw.mdb", "Dw_Users.mdb", "dw_sands.mdb"});
    Make("system", {"bfsys.mdb"});
    dw::InstallDrives([this] { return drives_; });
    dw::InstallLocators();
    dw::InstallEndApplication([this] { ++ended_; });
  }
  ~GetDataPathTest() override {
    dw::InstallFileLocator({});
    dw::InstallServerLoginForm({});
    dw::InstallEndApplication({});
    dw::InstallDrives({});
    sys::UseSettingsFile({});
  }
  std::string Make(const std::string& name, std::initializer_list<const char*> files) {
    const std::string path = directory_.Path(name);
    fs::create_directories(path);
    for (const char* file : files) std::ofstream(path + '/' + file) << file;
    return path;
  }
  dw::GetDataPath& Open(const std::string& fileName) {
    auto& form = ui::The<dw::GetDataPath>();
    form.FileName = fileName;
    form.ShowForm();
    test::Settle();
    return form;
  }
  /// Does `work` as soon as the window is open.
  static void WhenOpen(std::function<void(dw::GetDataPath&)> work) {
    QTimer::singleShot(0, [work = std::move(work)] {
      auto* form = ui::Existing<dw::GetDataPath>();
      ASSERT_NE(form, nullptr);
      work(*form);
    });
  }
  static std::string Kept(const char* application, const char* key) {
    return sys::GetSetting(application, "Data", key, "nothing");
  }

  test::TempDirectory directory_;
  std::string office_ = directory_.Path("office");
  std::vector<sys::Drive> drives_{{office_, DriveKind::Fixed},
                                  {directory_.Path("system"), DriveKind::Remote}};
  int ended_ = 0;
  test::ScreenScript user_;
  test::FormsEnd end_;
};

TEST_F(GetDataPathTest, TheListsLeadToADirectoryThatHoldsTheFile) {
  auto& form = Open("Z:\\old\\DW.MDB");
  EXPECT_EQ(form.windowTitle(), "Get DW.MDB Database Location");
  EXPECT_EQ(form.Label1.text(),
            "The DW.MDB file name will appear below when you have selected a directory in which it exists.");
  EXPECT_EQ(form.AppID, "DW");
  EXPECT_EQ(form.Dir1.Path(), office_);
  EXPECT_EQ(form.txtDataPath.Text(), "");
  EXPECT_FALSE(form.cmdOK.isEnabled());
  form.Dir1.SetPath(office_ + "/fleet");
  EXPECT_EQ(form.File1.count(), 1);
  EXPECT_EQ(form.txtDataPath.Text(), office_ + "/fleet");
  // A drive that is not ready leaves the old place. With another one the other lists follow, and it follows
  // them.
  user_->ExpectPart("Device unavailable\r\r" + directory_.Path("cd"), Icon::Critical);
  form.Drive1.SetDrive(directory_.Path("cd"));
  EXPECT_EQ(form.Drive1.Drive(), office_);
  form.Drive1.SetDrive(directory_.Path("system"));
  EXPECT_EQ(form.Dir1.Path(), directory_.Path("system"));
  EXPECT_EQ(form.txtDataPath.Text(), "");
  form.Dir1.SetPath(office_ + "/fleet");
  EXPECT_EQ(form.Drive1.Drive(), office_);
  EXPECT_EQ(form.Dir1.Path(), office_ + "/fleet");

  test::Click(form, "cmdOK");
  EXPECT_EQ(ui::Existing<dw::GetDataPath>(), nullptr);
  EXPECT_EQ(dw::DataFile, office_ + "/fleet/dw.mdb");
  EXPECT_EQ(Kept("DW", "DW Data Path"), office_ + "/fleet/");
}

TEST_F(GetDataPathTest, ATypedPathIsTakenOnlyWhereTheFileIs) {
  auto& form = Open("DW.MDB");
  test::Type(form, "txtDataPath", directory_.Path("system"));
  test::Press(form.txtDataPath, Qt::Key_Return);
  EXPECT_EQ(form.Dir1.Path(), directory_.Path("system"));
  EXPECT_EQ(form.txtDataPath.Text(), "");
  EXPECT_EQ(Kept("DW", "DW Data Path"), "nothing");
  // Typing the directory that is shown makes no difference.
  test::Type(form, "txtDataPath", directory_.Path("system"));
  test::Press(form.txtDataPath, Qt::Key_Return);
  EXPECT_EQ(Kept("DW", "DW Data Path"), "nothing");
  test::Type(form, "txtDataPath", office_ + "/fleet/");
  test::Press(form.txtDataPath, Qt::Key_Return);
  EXPECT_EQ(Kept("DW", "DW Data Path"), office_ + "/fleet/");
  EXPECT_EQ(ui::Existing<dw::GetDataPath>(), nullptr);
}

TEST_F(GetDataPathTest, TheSearchFillsInTheAcceptedCopy) {
  drives_ = {{directory_.Path("system"), DriveKind::Fixed}, {office_, DriveKind::Remote}};
  auto& form = Open("DW.MDB");
  user_->onEvents = [&] {
    for (const auto* button : {&form.cmdOK, &form.cmdCancel, &form.cmdLocate, &form.cmdCDInstall})
      EXPECT_FALSE(button->isEnabled());
  };
  user_->Expect(
      "Found one copy at " + office_ + "/fleet on drive " + office_ + ".\r\rUse this database location?",
      Icon::None, Buttons::YesNo, Answer::Yes);
  test::Click(form, "cmdLocate");
  EXPECT_EQ(form.Drive1.Drive(), office_);
  EXPECT_EQ(form.Dir1.Path(), office_ + "/fleet");
  EXPECT_EQ(form.txtDataPath.Text(), office_ + "/fleet");
  EXPECT_TRUE(form.cmdCancel.isEnabled());
  EXPECT_TRUE(form.cmdOK.hasFocus());
  test::Press(form.cmdOK, Qt::Key_Return);
  EXPECT_EQ(Kept("DW", "DW Data Path"), office_ + "/fleet/");
}

TEST_F(GetDataPathTest, ClosingTheWindowStopsTheSearch) {
  auto& form = Open("DW.MDB");
  int events = 0;
  user_->onEvents = [&] {
    if (++events == 1) form.close();
  };
  test::Click(form, "cmdLocate");
  EXPECT_EQ(events, 1);
  EXPECT_EQ(ui::Existing<dw::GetDataPath>(), nullptr);
}

TEST_F(GetDataPathTest, AFailedInstallationLeavesTheWindowOpen) {
  auto& form = Open("DW.MDB");
  user_->Expect(
      "Insert your Drovewright release CD into your computer now.\r\rPress OK when you are ready to proceed.",
      Icon::None, Buttons::OkCancel, Answer::Ok);
  user_->Expect("Drovewright Release CD was not found. No files copied.", Icon::Critical);
  test::Click(form, "cmdCDInstall");
  EXPECT_TRUE(form.cmdCDInstall.isEnabled());
  // A search without drives leaves the buttons as they are.
  drives_.clear();
  user_->Expect("No Drives were found!", Icon::Critical);
  test::Click(form, "cmdLocate");
  EXPECT_FALSE(form.cmdCancel.isEnabled());
}

TEST_F(GetDataPathTest, AStartWithoutItsDataFindsItOrEnds) {
  sys::SaveSetting("DW", "Data", "DW Data Path", directory_.Path("gone"));
  // Closing the window changes nothing: it comes again.
  int opened = 0;
  std::function<void(dw::GetDataPath&)> work = [&](dw::GetDataPath& form) {
    EXPECT_TRUE(form.isModal());
    if (++opened < 3) {
      form.close();
      WhenOpen(work);
      return;
    }
    form.Dir1.SetPath(office_ + "/fleet");
    form.cmdOK.click();
  };
  WhenOpen(work);
  bool ok = false;
  dw::LocateData(ok);
  EXPECT_TRUE(ok);
  EXPECT_EQ(opened, 3);
  EXPECT_EQ(dw::SandsFile, office_ + "/fleet/dw_sands.mdb");

  sys::SaveSetting("DW", "Data", "DW Data Path", directory_.Path("gone"));
  user_->Expect("This must be set up before you may use the application.", Icon::Critical, Buttons::Ok,
                Answer::Ok, "Brackenfel Software Solutions Setup");
  WhenOpen([](dw::GetDataPath& form) { test::Press(form.Dir1, Qt::Key_Escape); });
  EXPECT_THROW(dw::LocateData(ok), dw::ApplicationEnd);
  EXPECT_FALSE(ok);
  EXPECT_EQ(ended_, 1);
}

TEST_F(GetDataPathTest, AFileThatVanishesLaterIsOpenedWhereItIsFound) {
  const std::string moved = Make("moved", {"DW.MDB"});
  test::MakeSmallFile(moved + "/Dw_Sands.mdb");
  dw::SetDataPath(directory_.Path("gone"));
  WhenOpen([&](dw::GetDataPath& form) {
    EXPECT_EQ(form.FileName, "DW_SANDS.MDB");
    EXPECT_EQ(user_->CurrentPointer(), screen::Pointer::Normal);
    form.Dir1.SetPath(moved);
    form.cmdOK.click();
  });
  dw::AdoConnectionPtr connection;
  EXPECT_TRUE(dw::AdoOpenConnection(connection, dw::SandsConnect, false));
  EXPECT_TRUE(dw::AdoTableExists(connection, "Assets"));
  dw::CloseObject(connection);
  EXPECT_EQ(dw::DataPath, moved + '/');
}

}  // namespace
