#include "shell/SignOn.h"

#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "platform/store/Connection.h"
#include "shell/ShellState.h"

namespace dw {

namespace {

SignOnResult Refuse() {
  screen::MessageBox("Access not allowed.\nSee your System Administrator.", screen::Icon::Critical);
  return SignOnResult::Refused;
}

/// Passwords compare without regard to case; a user without a password signs on with a blank one.
bool PasswordFits(const rt::Value& stored, const std::string& typed) {
  if (stored.IsNull()) return typed.empty();
  return rt::UpperCase(stored.AsText()) == rt::UpperCase(typed);
}

SignOnResult CheckUser(const AdoConnectionPtr& connection, const std::string& userName,
                       const std::string& password) {
  // The name goes into the query as typed. If an apostrophe breaks the query, a message has said so and the
  // user tries again.
  AdoRecordsetPtr user =
      AdoOpenRecordset(connection, "SELECT * FROM [Application User List] WHERE UCASE([User Name]) = '" +
                                       rt::UpperCase(userName) + "'");
  if (!user) return SignOnResult::TryAgain;
  if (user->AtEnd()) {
    screen::MessageBox(
        "Your User Name/Password combination is incorrect.\n"
        "Please re-enter the correct combination or see your\n"
        "System Administrator for assistance.",
        screen::Icon::Critical);
    return SignOnResult::TryAgain;
  }
  if (!PasswordFits(user->Get("Password"), password)) {
    screen::MessageBox(
        "Your User Name/Password combination is not authorized.\n"
        "See your System Administrator.",
        screen::Icon::Critical);
    return SignOnResult::TryAgain;
  }
  if (!user->Get("Allow Access").AsBoolean()) return Refuse();
  CurrentUserName = user->Get("User Name").AsText();
  CurrentUserID = user->Get("ID").AsLong();
  IsAdministrator = user->Get("Administrator").AsBoolean();
  CloseObject(user);
  return SignOnResult::Passed;
}

SignOnResult CheckWorkstation(const AdoConnectionPtr& connection) {
  AdoRecordsetPtr workstation = AdoOpenRecordset(
      connection, "SELECT * FROM [Application Workstation List] WHERE UCASE([Workstation Name]) = '" +
                      rt::UpperCase(WorkstationName) + "'");
  // Another try cannot change this machine's name.
  if (!workstation) return SignOnResult::Refused;
  if (workstation->AtEnd() || !workstation->Get("Active").AsBoolean() ||
      !workstation->Get("Allow Access").AsBoolean()) {
    return Refuse();
  }
  WorkstationID = workstation->Get("ID").AsLong();
  CloseObject(workstation);
  return SignOnResult::Passed;
}

void TellFailure(const Failure& failure, const std::string& purpose) {
  if (!failure) return;
  screen::MessageBox(
      purpose + "\r\r" + failure.description + "\r\rContact your System Administrator if this continues.",
      screen::Icon::Critical);
}

/// Writes the end of the session; throws ado::Error if the row cannot be read or held.
void CloseNewestRow(const AdoConnectionPtr& connection) {
  const std::string user = std::to_string(CurrentUserID);
  // Of sessions that began in the same second, the one with the highest ID is the newest.
  AdoRecordsetPtr log = AdoOpenRecordset(
      connection,
      "SELECT * FROM [Access Log] WHERE [User ID] = " + user + " ORDER BY [Time In] DESC, [ID] DESC",
      ado::adOpenKeyset, ado::adLockPessimistic);
  if (!log) return;
  const std::string notFound = "User #" + user + " cannot be found in Application User List.";
  if (log->AtEnd()) {
    screen::MessageBox(notFound + "\rAt beginning of access log.", screen::Icon::Critical);
  } else if (log->Get("Time Out").IsNull()) {
    log->Set("Time Out", rt::Now());
    AdoUpdateRS(*log, false, false);
    // Time to read the notice.
    screen::Sleep(2000);
  } else {
    screen::MessageBox(notFound, screen::Icon::Critical);
  }
  CloseObject(log);
}

}  // namespace

SignOnResult CheckSignOn(const std::string& userName, const std::string& password) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, UsersConnect, false)) {
    screen::MessageBox("There is a problem with the registry entry for opening the connection '" +
                           UsersConnect + "'.\rApplication is being terminated.",
                       screen::Icon::Critical);
    return SignOnResult::Refused;
  }
  SignOnResult result = SignOnResult::TryAgain;
  const Failure failure = Try([&] {
    const SignOnResult user = CheckUser(connection, userName, password);
    result = user == SignOnResult::Passed ? CheckWorkstation(connection) : user;
  });
  TellFailure(failure, "Unable to check your user name and workstation.");
  CloseObject(connection);
  if (result != SignOnResult::Passed) return result;
  SignedOn = true;
  // From here on locks and rosters show the names of this session.
  store::SetIdentity(WorkstationName, CurrentUserName);
  return result;
}

std::int32_t WriteAccessLogIn() {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, UsersConnect, false)) return 0;
  std::int32_t row = 0;
  AdoRecordsetPtr log = AdoOpenRecordset(connection, "SELECT * FROM [Access Log] WHERE [ID] = -1",
                                         ado::adOpenDynamic, ado::adLockPessimistic);
  if (log) {
    const Failure failure = Try([&] {
      AdoAddRecordWithID("Access", connection, *log, "Access Log", 0);
      log->Set("User ID", CurrentUserID);
      log->Set("Computer ID", WorkstationID);
      log->Set("Time In", rt::Now());
      if (AdoUpdateRS(*log, false, false)) row = log->Get("ID").AsLong();
    });
    TellFailure(failure, "Unable to write your sign-on into the access log.");
  }
  CloseObject(log);
  CloseObject(connection);
  return row;
}

void CloseSession(std::int32_t row) {
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, UsersConnect, false)) return;
  const Failure failure = Try([&] {
    AdoRecordsetPtr log =
        AdoOpenRecordset(connection, "SELECT * FROM [Access Log] WHERE [ID] = " + std::to_string(row),
                         ado::adOpenKeyset, ado::adLockPessimistic);
    if (!log || log->AtEnd() || !log->Get("Time Out").IsNull()) return;
    log->Set("Time Out", rt::Now());
    AdoUpdateRS(*log, false, false);
    CloseObject(log);
  });
  TellFailure(failure, "Unable to write your sign-off into the access log.");
  CloseObject(connection);
}

void SignOff() {
  screen::ShowNotice("Brackenfel for Windows", "Logging Off...");
  AdoConnectionPtr connection;
  if (AdoOpenConnection(connection, UsersConnect, false)) {
    const Failure failure = Try([&] { CloseNewestRow(connection); });
    TellFailure(failure, "Unable to write your sign-off into the access log.");
    // An update that the user gave up leaves the pointer an hourglass.
    screen::SetPointer(screen::Pointer::Normal);
  }
  CloseObject(connection);
  HelpReady = false;
  screen::HideNotice();
}

}  // namespace dw
