#include "tools/dwadmin/Session.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <iostream>

#include "data/BrackenfelGlobals.h"
#include "platform/system/Settings.h"
#include "shell/SignOn.h"
#include "tools/dwadmin/Commands.h"

namespace dw {
namespace {

/// Keeps a terminal from showing what is typed, and restores it in every case.
class NoEcho {
 public:
  NoEcho() {
    if (tcgetattr(STDIN_FILENO, &earlier_) != 0) return;
    termios quiet = earlier_;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    changed_ = tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet) == 0;
  }
  ~NoEcho() {
    if (changed_) tcsetattr(STDIN_FILENO, TCSANOW, &earlier_);
  }
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;

 private:
  termios earlier_{};
  bool changed_ = false;
};

/// Blocks the signals that end a command for as long as it lives.
class HeldSignals {
 public:
  HeldSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ending, signal);
    sigprocmask(SIG_BLOCK, &ending, &earlier_);
  }
  ~HeldSignals() { sigprocmask(SIG_SETMASK, &earlier_, nullptr); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
  const sigset_t& Earlier() const { return earlier_; }

 private:
  sigset_t earlier_{};
};

/// Waits until standard input can be read. Throws Interrupted if a signal comes first, even just before the
/// wait begins.
void WaitForInput() {
  const HeldSignals held;
  int ready = 0;
  do {
    StopIfAsked();
    pollfd input{STDIN_FILENO, POLLIN, 0};
    ready = ppoll(&input, 1, nullptr, &held.Earlier());
  } while (ready < 0 && errno == EINTR);
}

/// Byte by byte, so that answers to later questions stay in the input.
std::string ReadLine() {
  std::string line;
  for (char c = 0;;) {
    WaitForInput();
    const ssize_t count = read(STDIN_FILENO, &c, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0 || c == '\n') break;
    line += c;
  }
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace

std::string ReadPassword() {
  if (isatty(STDIN_FILENO) == 0) return ReadLine();
  std::string password;
  {
    const NoEcho quiet;
    std::cerr << "Password: " << std::flush;
    password = ReadLine();
  }
  std::cerr << std::endl;
  return password;
}

Session::Session(const SignOnRequest& request) {
  WatchSignals();
  RequireFile("DW_USERS.MDB");
  WorkstationName = request.workstation.empty()
                        ? sys::GetSetting("Brackenfel Software", "Settings", "Workstation Name")
                        : request.workstation;
  if (WorkstationName.empty() && sys::SettingsDamaged())
    throw NotDone("The settings file " + sys::SettingsFile() +
                  " is damaged, and the name of this workstation cannot be read. Name a workstation with "
                  "--workstation.");
  if (WorkstationName.empty())
    throw NotDone("This machine has no workstation name yet. Name a workstation with --workstation.");
  const std::string password = ReadPassword();
  if (CheckSignOn(request.user, password) != SignOnResult::Passed) throw NotDone();
  // Nobody works without a row in the log.
  row_ = WriteAccessLogIn();
  if (row_ == 0)
    throw NotDone("The sign-on could not be written into the access log. Nothing has been done.");
}

Session::~Session() {
  try {
    CloseSession(row_);
  } catch (const std::exception&) {
    // The failure has been reported, and the command ends in its own way.
  }
}

}  // namespace dw
