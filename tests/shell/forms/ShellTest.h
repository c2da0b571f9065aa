#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "data/Application.h"
#include "data/BrackenfelGlobals.h"
#include "platform/store/Connection.h"
#include "platform/system/Settings.h"
#include "shell/ShellState.h"
#include "shell/forms/CloseChildForm.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"
#include "support/desktop/FormDriver.h"

namespace test {

/// A data directory with users and workstations, settings of its own that name it, and the shell's ends of
/// forms installed.
class ShellTest : public testing::Test {
 protected:
  ShellTest() {
    setenv("XDG_RUNTIME_DIR", directory_.Path().c_str(), 1);
    sys::UseSettingsFile(directory_.Path("settings.ini"));
    sys::SaveSetting("DW", "Data", "DW Data Path", files_.Path({}));
    User(3, "McArthur", "'Secret'", "TRUE", "TRUE");
    User(4, "Clerk", "NULL", "TRUE", "FALSE");
    User(5, "Former", "NULL", "FALSE", "FALSE");
    Do("INSERT INTO [Application Workstation List] ([ID], [Workstation Name], [Active], [Allow Access]) "
       "VALUES (11, 'Front Desk', TRUE, TRUE)");
    dw::CurrentUserName.clear();
    dw::CurrentUserID = 0;
    dw::WorkstationName.clear();
    dw::IsAdministrator = dw::SignedOn = false;
    dw::HelpReady = dw::MenuActivated = false;
    dw::InstallFormEnds();
  }
  ~ShellTest() override {
    dw::SignedOn = false;
    dw::UnloadAllForms();
    Settle();
    ui::InstallUnloadHook({});
    dw::InstallEndApplication({});
    sys::UseSettingsFile({});
    dw::CurrentUserName.clear();
    store::SetIdentity("TEST", "admin");
  }

  void NameWorkstation(const std::string& name) {
    sys::SaveSetting("Brackenfel Software", "Settings", "Workstation Name", name);
  }
  /// Sets what the sign-on of a user sets, including the row of the session.
  void SignOn(bool administrator = true) {
    dw::CurrentUserID = administrator ? 3 : 4;
    dw::CurrentUserName = administrator ? "McArthur" : "Clerk";
    dw::IsAdministrator = administrator;
    dw::SignedOn = true;
    Do("INSERT INTO [Access Log] ([User ID], [Computer ID], [Time In]) VALUES (" +
       std::to_string(dw::CurrentUserID) + ", 11, #3/15/2026 8:00:00 AM#)");
  }
  void Do(const std::string& sql) { files_.Run(sql, "DW_USERS.MDB"); }
  std::string Ask(const std::string& sql) { return files_.Ask(sql, "DW_USERS.MDB"); }
  std::string OpenSessions() { return Ask("SELECT COUNT(*) FROM [Access Log] WHERE [Time Out] IS NULL"); }

  TempDirectory directory_;
  SmallFleet files_{"DW_USERS.MDB"};
  ScreenScript screen_;

 private:
  void User(int id, const char* name, const char* password, const char* access, const char* administrator) {
    Do("INSERT INTO [Application User List] ([ID], [User Name], [Password], [Allow Access], "
       "[Administrator]) VALUES (" +
       std::to_string(id) + ", '" + name + "', " + password + ", " + access + ", " + administrator + ")");
  }
};

}  // namespace test
