#include "shell/ServerLogin.h"

#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "platform/screen/Screen.h"
#include "platform/system/Settings.h"
#include "shell/DataLocation.h"

namespace dw {

using screen::Icon;

ServerLogin ReadServerLogin(const std::string& code) {
  const auto setting = [&](const char* key) { return sys::GetSetting(code, kDataSection, key); };
  ServerLogin login;
  login.server = setting("Server Name");
  login.trusted = setting("Trusted Connection") == "Yes";
  if (login.trusted) return login;
  login.userId = setting("Server User ID");
  login.password = login.confirmed = setting("Server Password");
  return login;
}

void SaveServerLogin(const std::string& code, const ServerLogin& login) {
  KeepSetting(code, kDataSection, "Server Name", login.server);
  KeepSetting(code, kDataSection, "Trusted Connection", login.trusted ? "Yes" : "No");
  if (!login.trusted) {
    KeepSetting(code, kDataSection, "Server User ID", login.userId);
    KeepSetting(code, kDataSection, "Server Password", login.password);
    return;
  }
  for (const char* key : {"Server User ID", "Server Password"})
    if (!sys::GetSetting(code, kDataSection, key).empty()) sys::DeleteSetting(code, kDataSection, key);
}

LoginFault CheckServerLogin(const ServerLogin& login) {
  if (login.trusted) return LoginFault::None;
  if (login.userId.empty()) {
    screen::MessageBox("You cannot have a blank user name. Please try again.", Icon::Information);
    return LoginFault::UserId;
  }
  if (login.password != login.confirmed) {
    screen::MessageBox("Passwords do not match. Please try again.", Icon::Information);
    return LoginFault::Password;
  }
  return LoginFault::None;
}

void TestServerLogin(const ServerLogin& login, const std::string& database) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, TestConnect(login, database), false)) {
    screen::MessageBox("Test Failed. Verify name and password and test again.", Icon::Information);
    return;
  }
  CloseObject(connection);
  screen::MessageBox("Test Successful.", Icon::Information);
}

std::string TestConnect(const ServerLogin& login, const std::string& database) {
  const std::string text = "Provider=SQLOLEDB.1;Data Source=" + login.server +
                           ";Persist Security Info=False;Initial Catalog=" + database;
  if (login.trusted) return text + ";Integrated Security=SSPI;";
  return text + ";User ID=" + login.userId + ";Password=" + login.password + ";";
}

std::string DriverConnect(const std::string& server) {
  return "Driver={SQL Server};Integrated Security=SSPI;Server=" + server + ";Database=Keelwatch;";
}

std::string DriverConnect(const std::string& server, const std::string& id, const std::string& password) {
  return "Driver={SQL Server};Server=" + server + ";Database=Keelwatch;Uid=" + id + ";Pwd=" + password + ";";
}

}  // namespace dw
