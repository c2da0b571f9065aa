#include "platform/system/SingleInstance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/system/Settings.h"

namespace sys {
namespace {

/// How long a start waits for an answer. A copy in the middle of a long query answers only afterwards.
constexpr std::chrono::seconds kPatience{3};
constexpr int kPollMilliseconds = 25;

/// FNV-1a: the same text has the same number in every build, so that two versions of the program find each
/// other.
std::uint64_t Digest(std::string_view text) {
  std::uint64_t digest = 14695981039346656037U;
  for (const char c : text) digest = (digest ^ static_cast<unsigned char>(c)) * 1099511628211U;
  return digest;
}

/// The name of the lock and the socket. Copies with other settings work on other data and must not meet.
std::string Name() {
  std::error_code error;
  const std::string settings = SettingsFile();
  const auto whole = std::filesystem::weakly_canonical(settings, error);
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx",
                static_cast<unsigned long long>(Digest(error ? settings : whole.string())));
  return "drovewright-" + std::to_string(geteuid()) + "-" + digits.data();
}

std::string LockPath(const std::string& name) {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  std::error_code error;
  const bool usable = runtime != nullptr && std::filesystem::is_directory(runtime, error);
  return std::string(usable ? runtime : "/tmp") + "/" + name + ".lock";
}

/// Opens the lock file; -1 if it belongs to another user or cannot be created. Others may be able to write to
/// the folder.
int OpenLock(const std::string& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  struct stat facts {};
  if (file >= 0 && (fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_uid != geteuid())) {
    close(file);
    return -1;
  }
  return file;
}

/// An address without a file: it disappears with the process.
sockaddr_un Address(const std::string& name, socklen_t& length) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::size_t size = std::min(name.size(), sizeof address.sun_path - 1);
  std::memcpy(address.sun_path + 1, name.data(), size);
  length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + size);
  return address;
}

int OpenSocket() { return socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0); }

int Listen(const std::string& name) {
  const int listener = OpenSocket();
  if (listener < 0) return -1;
  socklen_t length = 0;
  const sockaddr_un address = Address(name, length);
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), length) == 0) return listener;
  close(listener);
  return -1;
}

/// Names the owner for people who look at the file.
void WriteProcessNumber(int file) {
  const std::string number = std::to_string(getpid()) + "\n";
  if (ftruncate(file, 0) != 0) return;
  // Nothing depends on the result.
  [[maybe_unused]] const ssize_t written = pwrite(file, number.data(), number.size(), 0);
}

std::string ActivationToken() {
  for (const char* name : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
    const char* token = std::getenv(name);
    if (token != nullptr && *token != '\0') return token;
  }
  return {};
}

}  // namespace

SingleInstance::SingleInstance(std::string name, int lock, int socket)
    : name_(std::move(name)), lock_(lock), socket_(socket) {}

std::unique_ptr<SingleInstance> SingleInstance::Claim() {
  std::string name = Name();
  const int lock = OpenLock(LockPath(name));
  if (lock >= 0 && flock(lock, LOCK_EX | LOCK_NB) != 0) {
    const bool taken = errno == EWOULDBLOCK;
    close(lock);
    if (taken) return nullptr;
    return std::unique_ptr<SingleInstance>(new SingleInstance(std::move(name), -1, -1));
  }
  if (lock < 0) return std::unique_ptr<SingleInstance>(new SingleInstance(std::move(name), -1, -1));
  const int listener = Listen(name);
  WriteProcessNumber(lock);
  return std::unique_ptr<SingleInstance>(new SingleInstance(std::move(name), lock, listener));
}

bool SingleInstance::CallFirstForward() {
  const int caller = OpenSocket();
  if (caller < 0) return false;
  // An address with any name, to receive the answer.
  sockaddr_un own{};
  own.sun_family = AF_UNIX;
  bool answered = false;
  if (bind(caller, reinterpret_cast<const sockaddr*>(&own), sizeof own.sun_family) == 0) {
    socklen_t length = 0;
    const sockaddr_un address = Address(Name(), length);
    const std::string token = ActivationToken();
    const auto end = std::chrono::steady_clock::now() + kPatience;
    bool said = false;
    while (!answered && std::chrono::steady_clock::now() < end) {
      // The first copy may have taken its lock a moment ago and not be listening yet.
      if (!said)
        said = sendto(caller, token.data(), token.size(), 0, reinterpret_cast<const sockaddr*>(&address),
                      length) >= 0;
      pollfd answer{.fd = caller, .events = POLLIN, .revents = 0};
      char byte = 0;
      answered = poll(&answer, 1, kPollMilliseconds) > 0 && recv(caller, &byte, 1, 0) > 0;
      if (!said) std::this_thread::sleep_for(std::chrono::milliseconds(kPollMilliseconds));
    }
  }
  close(caller);
  return answered;
}

SingleInstance::~SingleInstance() {
  if (socket_ >= 0) close(socket_);
  if (lock_ >= 0) close(lock_);
}

bool SingleInstance::TakeCall(std::string& token) {
  std::array<char, 512> text{};
  sockaddr_un caller{};
  socklen_t length = sizeof caller;
  const ssize_t size = socket_ < 0 ? -1
                                   : recvfrom(socket_, text.data(), text.size(), 0,
                                              reinterpret_cast<sockaddr*>(&caller), &length);
  if (size < 0) return false;
  token.assign(text.data(), static_cast<std::size_t>(size));
  callers_.emplace_back(reinterpret_cast<const char*>(&caller), length);
  return true;
}

void SingleInstance::Answer() {
  for (const std::string& caller : callers_) {
    sockaddr_un address{};
    std::memcpy(&address, caller.data(), std::min(caller.size(), sizeof address));
    // Callers that have given up waiting get nothing.
    [[maybe_unused]] const ssize_t sent =
        sendto(socket_, "+", 1, MSG_NOSIGNAL, reinterpret_cast<sockaddr*>(&address),
               static_cast<socklen_t>(caller.size()));
  }
  callers_.clear();
}

bool SingleInstance::IsCurrent() const { return name_ == Name(); }

}  // namespace sys
