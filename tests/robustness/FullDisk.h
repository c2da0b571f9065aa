// Disks that become full when a test says so.
#pragma once

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace test {

enum class DiskKind {
  FileLimit,  ///< files of this process cannot grow beyond a limit
  SmallDisk,  ///< a disk of its own, in memory, filled up by another file
};

/// A disk under a directory, for one process, which must not be the test itself.
class Disk {
 public:
  Disk(DiskKind kind, std::string directory) : kind_(kind), directory_(std::move(directory)) {
    if (kind_ == DiskKind::FileLimit)
      signal(SIGXFSZ, SIG_IGN);
    else if (const std::string refused = Mount(directory_); !refused.empty())
      throw std::runtime_error(refused);
  }

  /// Mounts a small disk that only this process sees and that ends with it. Empty, or the reason of a
  /// failure.
  static std::string Mount(const std::string& directory) {
    const auto failed = [](const char* what) { return std::string(what) + ": " + std::strerror(errno); };
    // If the system allows it, users who are not root can mount in a user namespace of their own.
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
      return failed("no mounts of its own");
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return failed("mounts stay shared");
    if (mount("disk", directory.c_str(), "tmpfs", 0, "size=16m") != 0) return failed("no disk in memory");
    return {};
  }

  /// From now on, only `room` bytes more can be stored: on the whole disk, or after the present end of the
  /// file.
  void Fill(const std::string& path, std::int64_t room) {
    if (kind_ == DiskKind::FileLimit) {
      struct stat file {};
      if (stat(path.c_str(), &file) != 0) throw std::runtime_error("no file " + path);
      const std::int64_t limit = file.st_size + room;
      SetLimit(limit > 0 ? static_cast<rlim_t>(limit) : 0);
      return;
    }
    const int filler = open(Filler().c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    static const std::string kBlock(4096, 'x');
    off_t size = 0;
    while (write(filler, kBlock.data(), kBlock.size()) > 0) size += static_cast<off_t>(kBlock.size());
    if (ftruncate(filler, std::max<off_t>(0, size - std::max<std::int64_t>(0, room))) != 0)
      throw std::runtime_error("the filler cannot be cut");
    close(filler);
  }
  void Free() {
    if (kind_ == DiskKind::FileLimit)
      SetLimit(RLIM_INFINITY);
    else
      unlink(Filler().c_str());
  }

 private:
  static void SetLimit(rlim_t bytes) {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = std::min(bytes, limit.rlim_max);
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("no limit can be set");
  }
  std::string Filler() const { return directory_ + "/filler"; }

  DiskKind kind_;
  std::string directory_;
};

}  // namespace test
