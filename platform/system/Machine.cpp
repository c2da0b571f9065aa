#include "platform/system/Machine.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QProcess>
#include <QStorageInfo>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <thread>
#include <utility>

namespace sys {
namespace {

template <std::size_t N>
bool OneOf(const std::array<std::string_view, N>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// The desktop's own viewer starts the program for the file and ends at once. If it finds none, it ends with
/// an error in less time than this.
constexpr std::chrono::milliseconds kViewerRefuses{1500};

/// Starts a program in a session of its own, so that it outlives this one; -1 if it cannot be started.
pid_t Spawn(std::string program, std::vector<std::string> arguments) {
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, static_cast<short>(POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK));
  std::vector<char*> words{program.data()};
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  pid_t pid = -1;
  const int failure = posix_spawnp(&pid, program.c_str(), nullptr, &attributes, words.data(), environ);
  posix_spawnattr_destroy(&attributes);
  return failure == 0 ? pid : -1;
}

/// Hands a file to a program of the desktop. False if the program cannot be started, or ends with an error
/// before kViewerRefuses has passed.
bool HandOver(const std::string& program, std::vector<std::string> arguments) {
  const pid_t pid = Spawn(program, std::move(arguments));
  if (pid < 0) return false;
  const auto end = std::chrono::steady_clock::now() + kViewerRefuses;
  while (std::chrono::steady_clock::now() < end) {
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) == pid) return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  // The program has the file now. A thread waits for its end, or the system would keep its entry as long as
  // this program runs.
  std::thread([pid] { waitpid(pid, nullptr, 0); }).detach();
  return true;
}

/// The program that the environment variable names, else the usual one.
std::string Chosen(const char* variable, const char* usual) {
  const char* chosen = std::getenv(variable);
  return chosen != nullptr && *chosen != '\0' ? chosen : usual;
}

}  // namespace

std::string ProgramDirectory() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::current_path(error).string() : program.parent_path().string();
}

std::string HostName() {
  std::array<char, 256> name{};
  return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

std::optional<DriveKind> KindOfDrive(const std::string& root, const std::string& device,
                                     const std::string& fileSystem) {
  static constexpr std::array<std::string_view, 10> kRemote{"nfs",   "nfs4", "cifs", "smb3",       "smbfs",
                                                            "ncpfs", "afs",  "9p",   "fuse.sshfs", "davfs"};
  static constexpr std::array<std::string_view, 2> kDisc{"iso9660", "udf"};
  // Packages mounted as images: they come from a device but contain programs only.
  static constexpr std::array<std::string_view, 2> kImage{"squashfs", "erofs"};

  if (OneOf(kRemote, fileSystem)) return DriveKind::Remote;
  if (OneOf(kDisc, fileSystem)) return DriveKind::RemovableDisc;
  if (root == "/") return DriveKind::Fixed;
  if (OneOf(kImage, fileSystem) || !device.starts_with("/dev/")) return std::nullopt;
  return DriveKind::Fixed;
}

std::vector<Drive> Drives() {
  std::vector<Drive> drives;
  for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
    if (!volume.isValid() || !volume.isReady()) continue;
    const std::string root = volume.rootPath().toStdString();
    const auto kind = KindOfDrive(root, volume.device().toStdString(), volume.fileSystemType().toStdString());
    // A single file can be a mount point too; it has nothing to search.
    std::error_code error;
    if (kind && std::filesystem::is_directory(root, error)) drives.push_back({root, *kind});
  }
  const auto byRoot = [](const Drive& a, const Drive& b) { return a.root < b.root; };
  const auto sameRoot = [](const Drive& a, const Drive& b) { return a.root == b.root; };
  std::sort(drives.begin(), drives.end(), byRoot);
  drives.erase(std::unique(drives.begin(), drives.end(), sameRoot), drives.end());
  return drives;
}

bool StartProgram(const std::string& program, const std::vector<std::string>& arguments) {
  if (program.empty()) return false;
  QStringList list;
  for (const std::string& argument : arguments) list << QString::fromStdString(argument);
  return QProcess::startDetached(QString::fromStdString(program), list);
}

bool StartViewer(const std::string& path) {
  return HandOver(Chosen("DROVEWRIGHT_VIEWER", "xdg-open"), {path});
}

bool StartMail(const std::string& path, const std::string& subject) {
  return HandOver(Chosen("DROVEWRIGHT_MAILER", "xdg-email"), {"--subject", subject, "--attach", path});
}

}  // namespace sys
