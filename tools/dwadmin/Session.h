// The sign-on of a command that changes data.
#pragma once

#include <stdexcept>
#include <string>

#include "tools/dwadmin/CommandScreen.h"

namespace dw {

/// Ends a command that could not do its work, with the words for the user; none where they have been told.
class NotDone : public std::runtime_error {
 public:
  explicit NotDone(const std::string& text = {}) : std::runtime_error(text) {}
};

struct SignOnRequest {
  std::string user;
  std::string workstation;  ///< empty: the name that the settings keep for this machine
};

/// Signed on for as long as it lives: asks for the password, lets the system's own rules decide and leaves a
/// row in `Access Log`, which is closed however the command ends.
class Session {
 public:
  /// Throws NotDone after a refusal, and then no row is left.
  Session(const SignOnRequest& request, const CommandScreen& screen);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
};

/// A line from standard input: at a terminal after a prompt and without echo. Empty at the end of the input.
std::string ReadPassword();

}  // namespace dw
