#include "platform/system/SingleInstance.h"

#include <fcntl.h>
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

/// FNV-1a: the same text gives the same number in every build, so that two versions of the program meet.
std::uint64_t Digest(std::string_view text) {
  std::uint64_t digest = 14695981039346656037U;
  for (const char c : text) digest = (digest ^ static_cast<unsigned char>(c)) * 1099511628211U;
  return digest;
}

/// The name that lock and socket go by. Copies with other settings work on other data and stay apart.
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

/// The lock file, opened; -1 where it is not ours or cannot be made. The folder may be one that others write
/// to as well.
int OpenLock(const std::string& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  struct stat facts {};
  if (file >= 0 && (fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_uid != geteuid())) {
    close(file);
    return -1;
  }
  return file;
}

/// An address that needs no file: it goes with the process.
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

/// For people who wonder whose file this is.
void WriteProcessNumber(int file) {
  const std::string number = std::to_string(getpid()) + "\n";
  if (ftruncate(file, 0) != 0) return;
  // Nothing depends on it.
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
  socklen_t length = 0;
  const sockaddr_un address = Address(Name(), length);
  const std::string token = ActivationToken();
  // The first may have taken its lock a moment ago and be about to listen.
  constexpr int kTries = 20;
  bool said = false;
  for (int i = 0; i < kTries && !said; ++i) {
    if (i > 0) std::this_thread::sleep_for(std::chrono::milliseconds(25));
    said = sendto(caller, token.data(), token.size(), 0, reinterpret_cast<const sockaddr*>(&address),
                  length) >= 0;
    // Calls that it has not yet taken: one more would say nothing new.
    said = said || errno == EAGAIN;
  }
  close(caller);
  return said;
}

SingleInstance::~SingleInstance() {
  if (socket_ >= 0) close(socket_);
  if (lock_ >= 0) close(lock_);
}

bool SingleInstance::TakeCall(std::string& token) {
  std::array<char, 512> text{};
  const ssize_t size = socket_ < 0 ? -1 : recv(socket_, text.data(), text.size(), 0);
  if (size < 0) return false;
  token.assign(text.data(), static_cast<std::size_t>(size));
  return true;
}

bool SingleInstance::IsCurrent() const { return name_ == Name(); }

}  // namespace sys
