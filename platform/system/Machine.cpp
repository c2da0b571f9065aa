#include "platform/system/Machine.h"

#include <unistd.h>

#include <QProcess>
#include <QStorageInfo>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace sys {
namespace {

template <std::size_t N>
bool OneOf(const std::array<std::string_view, N>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
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
  // Packages that are mounted as images: they come from a device but hold programs only.
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
    // A single file can be a mount point too; a search has nothing to walk there.
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
  const char* viewer = std::getenv("DROVEWRIGHT_VIEWER");
  return StartProgram(viewer != nullptr && *viewer != '\0' ? viewer : "xdg-open", {path});
}

}  // namespace sys
