#include "shell/forms/GetDataPath.h"

#include <gtest/gtest.h>

#include <QTest>
#include <filesystem>
#include <fstream>

#include "data/Application.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "platform/controls/Application.h"
#include "platform/controls/Later.h"
#include "platform/system/Settings.h"
#include "shell/DataLocation.h"
#include "shell/forms/CloseChildForm.h"
#include "shell/forms/ProgramEnd.h"
#include "support/ScreenScript.h"
#include "support/SmallFile.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;
using sys::DriveKind;

/// The drives: "office" with a complete copy in "fleet", "other" without one, and a drive without a disc.
class GetDataPathTest : public testing::Test {
 protected:
  GetDataPathTest() {
    sys::UseSettingsFile(directory_.Path("settings.ini"));
    std::filesystem::create_directories(fleet_);
    std::filesystem::create_directory(directory_.Path("other"));
    for (const char* file : {"/dw.mdb", "/Dw_Users.mdb"}) std::ofstream(fleet_ + file);
    test::MakeSmallFile(fleet_ + "/dw_sands.mdb");
    sys::SaveSetting("DW", "Data", "DW Data Path", "/gone/");
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
  static dw::GetDataPath& Open() {
    auto& form = ui::The<dw::GetDataPath>();
    form.FileName = "Z:\\old\\DW.MDB";
    form.ShowForm();
    test::Settle();
    return form;
  }
  /// Runs `work` as soon as the window is open.
  static void WhenOpen(std::function<void(dw::GetDataPath&)> work) {
    ui::Later(*qApp, [work = std::move(work)] { work(ui::The<dw::GetDataPath>()); });
  }
  static bool IsOpen() { return ui::Existing<dw::GetDataPath>() != nullptr; }
  static std::string Kept() { return sys::GetSetting("DW", "Data", "DW Data Path"); }

  test::TempDirectory directory_;
  std::string office_ = directory_.Path("office");
  std::string fleet_ = office_ + "/fleet";
  std::string other_ = directory_.Path("other");
  std::vector<sys::Drive> drives_{{other_, DriveKind::Fixed},
                                  {office_, DriveKind::Remote},
                                  {directory_.Path("cd"), DriveKind::RemovableDisc}};
  int ended_ = 0;
  test::ScreenScript user_;
  test::FormsEnd end_;
};

TEST_F(GetDataPathTest, TheListsLeadToADirectoryThatHoldsTheFile) {
  auto& form = Open();
  EXPECT_EQ(form.windowTitle(), "Get DW.MDB Database Location");
  EXPECT_TRUE(form.instructions.text().startsWith("The DW.MDB file name will appear below when"));
  EXPECT_EQ(form.directories.Path(), other_);
  EXPECT_FALSE(form.okButton.isEnabled());
  form.drives.SetDrive(office_);
  form.directories.SetPath(fleet_);
  EXPECT_EQ(form.dataPath.Text(), fleet_);
  user_->ExpectPart("Device unavailable\r\r" + directory_.Path("cd"), Icon::Critical);
  form.drives.SetDrive(directory_.Path("cd"));
  EXPECT_EQ(form.drives.Drive(), office_) << "the old place stays";
  EXPECT_EQ(form.directories.Path(), fleet_);
  form.drives.SetDrive(other_);
  EXPECT_EQ(form.dataPath.Text(), "");

  // The user can type a path, too; the window accepts it only if the file is there.
  for (const std::string& typed : {other_, office_, fleet_ + '/'}) {
    EXPECT_EQ(Kept(), "/gone/");
    test::Type(form, "txtDataPath", typed);
    test::Press(form.dataPath, Qt::Key_Return);
  }
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(dw::DataFile, fleet_ + "/dw.mdb");
  EXPECT_EQ(Kept(), fleet_ + '/');
}

TEST_F(GetDataPathTest, TheSearchFillsInTheAcceptedCopy) {
  auto& form = Open();
  user_->onEvents = [&] { EXPECT_FALSE(form.cancelButton.isEnabled() || form.locateButton.isEnabled()); };
  user_->Expect("Found one copy at " + fleet_ + " on drive " + office_ + ".\r\rUse this database location?",
                Icon::None, Buttons::YesNo, Answer::Yes);
  test::Click(form, "cmdLocate");
  EXPECT_EQ(form.drives.Drive() + form.directories.Path(), office_ + fleet_);
  EXPECT_TRUE(form.okButton.hasFocus());
  EXPECT_TRUE(form.cancelButton.isEnabled());
  test::Press(form.okButton, Qt::Key_Return);
  EXPECT_EQ(Kept(), fleet_ + '/');

  // Closing the window ends a search at once.
  auto& again = Open();
  int events = 0;
  user_->onEvents = [&] {
    ++events;
    again.close();
  };
  test::Click(again, "cmdLocate");
  EXPECT_EQ(events, 1);
  EXPECT_FALSE(IsOpen());
}

TEST_F(GetDataPathTest, AFailedInstallationLeavesTheWindowOpen) {
  auto& form = Open();
  user_->Expect(
      "Insert your Drovewright release CD into your computer now.\r\rPress OK when you are ready to proceed.",
      Icon::None, Buttons::OkCancel, Answer::Ok);
  user_->Expect("Drovewright Release CD was not found. No files copied.", Icon::Critical);
  test::Click(form, "cmdCDInstall");
  EXPECT_TRUE(form.installButton.isEnabled());
  // A search without drives leaves the buttons as they are.
  drives_.clear();
  user_->Expect("No Drives were found!", Icon::Critical);
  test::Click(form, "cmdLocate");
  EXPECT_FALSE(form.cancelButton.isEnabled());
}

TEST_F(GetDataPathTest, TheWindowComesAgainUntilTheDataIsFound) {
  const auto cancel = [this](dw::GetDataPath& form) {
    user_->Expect("This must be set up before you may use the application.", Icon::Critical, Buttons::Ok,
                  Answer::Ok, "Brackenfel Software Solutions Setup");
    test::Press(form.directories, Qt::Key_Escape);
  };
  WhenOpen([&](dw::GetDataPath& form) {
    cancel(form);
    WhenOpen([&](dw::GetDataPath& second) {
      cancel(second);
      WhenOpen([&](dw::GetDataPath& third) {
        EXPECT_EQ(ended_, 2) << "every other form is closed each time";
        EXPECT_EQ(third.FileName, "DW.MDB");
        third.directories.SetPath(fleet_);
        third.okButton.click();
      });
    });
  });
  EXPECT_TRUE(dw::LocateData());
  EXPECT_EQ(dw::DataFile, fleet_ + "/dw.mdb");

  // Closing the window changes nothing either.
  sys::SaveSetting("DW", "Data", "DW Data Path", "/gone/");
  WhenOpen([&](dw::GetDataPath& form) {
    form.close();
    WhenOpen([&](dw::GetDataPath& next) {
      EXPECT_TRUE(next.isModal());
      next.directories.SetPath(fleet_);
      next.okButton.click();
    });
  });
  EXPECT_TRUE(dw::LocateData());
  EXPECT_EQ(dw::SandsFile, fleet_ + "/dw_sands.mdb");
}

TEST_F(GetDataPathTest, AFileThatVanishesLaterIsOpenedWhereItIsFound) {
  dw::SetDataPath("/gone");
  // The program shows an hourglass at this point, but the window needs the normal pointer.
  WhenOpen([&](dw::GetDataPath& form) {
    EXPECT_EQ(form.FileName, "DW_SANDS.MDB");
    EXPECT_EQ(user_->CurrentPointer(), screen::Pointer::Normal);
    form.directories.SetPath(fleet_);
    form.okButton.click();
  });
  dw::AdoConnectionPtr connection;
  EXPECT_TRUE(dw::AdoOpenConnection(connection, dw::SandsConnect, false));
  EXPECT_TRUE(dw::AdoTableExists(connection, "Assets"));
  dw::CloseObject(connection);
}

/// Opens a file in its activation, as lists and the About box do.
class NeedsFile : public ui::Form {
 public:
  NeedsFile() : Form("NeedsFile") {}
  int activations = 0;

 protected:
  void OnActivate() override {
    if (++activations > 1) return;
    dw::DaoWorkspacePtr workspace;
    dw::DaoDatabasePtr database;
    int error = 0;
    dw::DaoOpenDatabase("/gone/DW.MDB", false, "admin", "", workspace, database, error);
  }
};

TEST_F(GetDataPathTest, AWindowThatIsClosedUnderItsMissingFileGoesNoFurther) {
  bool closed = false;
  const auto earlier = ui::InstallUncaught([&](const std::exception_ptr& error) {
    try {
      std::rethrow_exception(error);
    } catch (const dw::WindowsClosed&) {
      closed = true;
    }
  });
  dw::InstallEndApplication([] {
    dw::UnloadAllForms();
    throw dw::ApplicationEnd();
  });
  dw::SetDataPath("/gone");
  user_->Expect("This must be set up before you may use the application.", Icon::Critical, Buttons::Ok,
                Answer::Ok, "Brackenfel Software Solutions Setup");
  bool asked = false;
  WhenOpen([&](dw::GetDataPath& form) {
    WhenOpen([&](dw::GetDataPath& again) {
      asked = true;
      EXPECT_EQ(ui::FindForm("NeedsFile"), nullptr);
      again.directories.SetPath(fleet_);
      again.okButton.click();
    });
    form.cancelButton.click();
  });
  auto& form = *new NeedsFile;
  form.ShowForm();
  EXPECT_TRUE(asked);
  EXPECT_TRUE(closed);
  EXPECT_EQ(form.activations, 1);
  ui::InstallUncaught(earlier);
}

}  // namespace
