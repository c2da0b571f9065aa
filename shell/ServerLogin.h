// The login to a database server: what the settings keep of it, its rules, a try, and the connection strings
// that only they need.
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

/// The login that the settings keep for a code; a trusted one has no user and password.
ServerLogin ReadServerLogin(const std::string& code);
/// Keeps it. User and password of an earlier login are removed when the connection is trusted.
void SaveServerLogin(const std::string& code, const ServerLogin& login);

enum class LoginFault { None, UserId, Password };
/// Tells what is wrong with a login, if anything is. A trusted one is always good.
LoginFault CheckServerLogin(const ServerLogin& login);

/// Tries the login and tells whether it worked.
void TestServerLogin(const ServerLogin& login, const std::string& database);
/// The string that the try opens.
std::string TestConnect(const ServerLogin& login, const std::string& database);

/// The strings for the server's own driver, trusted or by login. Their database is always the same one.
std::string DriverConnect(const std::string& server);
std::string DriverConnect(const std::string& server, const std::string& id, const std::string& password);

}  // namespace dw
