// The sign-on of a command that changes data.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace dw {

/// Ends a command that could not do its work, with the words for the user; no words if they have been shown.
class NotDone : public std::runtime_error {
 public:
  explicit NotDone(const std::string& text = {}) : std::runtime_error(text) {}
};

struct SignOnRequest {
  std::string user;
  std::string workstation;  ///< empty: the name in the settings of this machine
};

/// Signed on for as long as it lives. It asks for the password, applies the system's own rules and adds a row
/// to `Access Log`. However the command ends, that row is closed, and no other: the same user may run several
/// commands at a time.
class Session {
 public:
  /// Throws NotDone after a refusal; no row is left then.
  explicit Session(const SignOnRequest& request);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

 private:
  std::int32_t row_ = 0;  ///< ID in `Access Log`
};

/// A line from standard input: at a terminal after a prompt and without echo. Empty at the end of the input.
std::string ReadPassword();

}  // namespace dw
