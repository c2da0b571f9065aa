// The login to a database server: the settings for it, its rules, a test, and the connection strings that
// only logins need.
#pragma once

#include <string>

namespace dw {

struct ServerLogin {
  std::string server;
  bool trusted = false;
  std::string userId;
  std::string password;
  std::string confirmed;  ///< the password entered a second time
};

/// The login that the settings have for a code; a trusted one has no user and password.
ServerLogin ReadServerLogin(const std::string& code);
/// Keeps the login in the settings. Removes user and password of an earlier login if the connection is
/// trusted.
void SaveServerLogin(const std::string& code, const ServerLogin& login);

enum class LoginFault { None, UserId, Password };
/// Reports what is wrong with a login, if anything is. A trusted one is always good.
LoginFault CheckServerLogin(const ServerLogin& login);

/// Tests the login and shows whether it worked.
void TestServerLogin(const ServerLogin& login, const std::string& database);
/// The connection string of the test.
std::string TestConnect(const ServerLogin& login, const std::string& database);

/// The strings for the server's own driver, trusted or by login. They always name the same database.
std::string DriverConnect(const std::string& server);
std::string DriverConnect(const std::string& server, const std::string& id, const std::string& password);

}  // namespace dw
