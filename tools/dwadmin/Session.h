// The sign-on of a command that changes data.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace dw {

/// Ends a command that could not do its work, with the words for the user; none where they have been shown.
class NotDone : public std::runtime_error {
 public:
  explicit NotDone(const std::string& text = {}) : std::runtime_error(text) {}
};

struct SignOnRequest {
  std::string user;
  std::string workstation;  ///< empty: the name that the settings keep for this machine
};

/// Signed on for as long as it lives: asks for the password, lets the system's own rules decide and leaves a
/// row in `Access Log`. However the command ends, that row is closed, and no other: the same user may run
/// several commands at a time.
class Session {
 public:
  /// Throws NotDone after a refusal, and then no row is left.
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
