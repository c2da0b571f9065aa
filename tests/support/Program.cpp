#include "support/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace test {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kLongest = std::chrono::seconds(60);

std::vector<char*> Arguments(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  return arguments;
}

std::string Content(int file) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (;;) {
    const ssize_t count = pread(file, buffer.data(), buffer.size(), static_cast<off_t>(text.size()));
    if (count <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

/// Returns the exit code, or -signal; kills a child that does not end.
int WaitForEnd(pid_t& pid) {
  if (pid <= 0) return -1;
  const auto end = Clock::now() + kLongest;
  int status = 0;
  while (waitpid(pid, &status, WNOHANG) == 0) {
    if (Clock::now() > end) kill(pid, SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  pid = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace

Program::Program(const std::vector<std::string>& command, const std::string& input)
    : out_(memfd_create("out", MFD_CLOEXEC)), error_(memfd_create("error", MFD_CLOEXEC)) {
  std::array<int, 2> in{};
  if (out_ < 0 || error_ < 0 || pipe2(in.data(), O_CLOEXEC) != 0) throw std::runtime_error("no streams");
  // The input is short enough to wait in the pipe.
  if (write(in[1], input.data(), input.size()) != static_cast<ssize_t>(input.size()))
    throw std::runtime_error("no input");
  close(in[1]);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out_, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, error_, STDERR_FILENO);
  const int failure =
      posix_spawn(&pid_, command.front().c_str(), &actions, nullptr, Arguments(command).data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(in[0]);
  if (failure != 0) throw std::runtime_error("cannot start " + command.front());
}

Program::~Program() {
  if (pid_ > 0) kill(pid_, SIGKILL);
  WaitForEnd(pid_);
  close(out_);
  close(error_);
}

bool Program::WaitForError(const std::string& part) const {
  const auto end = Clock::now() + kLongest;
  while (Content(error_).find(part) == std::string::npos) {
    if (Clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

bool Program::Running() const {
  siginfo_t ended{};
  return waitid(P_PID, static_cast<id_t>(pid_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
         ended.si_pid == 0;
}

void Program::Signal(int signal) const { kill(pid_, signal); }

Outcome Program::Join() {
  const int code = WaitForEnd(pid_);
  return {code, Content(out_), Content(error_)};
}

TerminalProgram::TerminalProgram(const std::vector<std::string>& command) {
  const std::vector<char*> arguments = Arguments(command);
  pid_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
  if (pid_ < 0) throw std::runtime_error("no terminal");
  if (pid_ == 0) {
    execv(arguments.front(), arguments.data());
    _exit(127);
  }
  fcntl(terminal_, F_SETFD, FD_CLOEXEC);
}

TerminalProgram::~TerminalProgram() {
  if (pid_ > 0) kill(pid_, SIGKILL);
  WaitForEnd(pid_);
  close(terminal_);
}

bool TerminalProgram::ReadSome(int milliseconds) {
  pollfd wait{terminal_, POLLIN, 0};
  if (poll(&wait, 1, milliseconds) <= 0) return false;
  std::array<char, 4096> buffer{};
  const ssize_t count = read(terminal_, buffer.data(), buffer.size());
  if (count <= 0) return false;
  shown_.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

bool TerminalProgram::WaitFor(const std::string& part) {
  constexpr int kLongestPause = 30000;
  while (shown_.find(part) == std::string::npos)
    if (!ReadSome(kLongestPause)) return false;
  return true;
}

bool TerminalProgram::Echoes() const {
  termios settings{};
  return tcgetattr(terminal_, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
}

void TerminalProgram::Type(const std::string& text) const {
  if (write(terminal_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    throw std::runtime_error("cannot type");
}

Outcome TerminalProgram::Join() {
  constexpr int kLongestPause = 30000;
  while (ReadSome(kLongestPause)) {
  }
  return {WaitForEnd(pid_), shown_, {}};
}

}  // namespace test
