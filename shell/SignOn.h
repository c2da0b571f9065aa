// The rules of signing on and off; the form and the console call the same ones.
#pragma once

#include <cstdint>
#include <string>

namespace dw {

enum class SignOnResult {
  Passed,
  TryAgain,  ///< a wrong name or password: the form stays open
  Refused,   ///< the sign-on is over
};

/// Checks user, password and WorkstationName against the users file; each refusal has its message. Passed
/// sets CurrentUserName, CurrentUserID, IsAdministrator, WorkstationID and SignedOn, and the names that locks
/// and rosters show.
SignOnResult CheckSignOn(const std::string& userName, const std::string& password);
/// Adds the row of this session to `Access Log`. Returns the row's ID, or 0 after a message if it could not
/// be stored.
std::int32_t WriteAccessLogIn();
/// Writes `Time Out` into this row of `Access Log` if it has none yet. For sessions without windows, of which
/// one user may have several at a time.
void CloseSession(std::int32_t row);
/// Writes `Time Out` into the user's newest row of `Access Log`.
void SignOff();

}  // namespace dw
