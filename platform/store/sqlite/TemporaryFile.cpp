#include "platform/store/sqlite/TemporaryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <vector>

#include "platform/store/StoreError.h"
#include "platform/store/sqlite/FileFormat.h"
#include "platform/store/sqlite/LockSpace.h"

namespace store {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "DW";
constexpr std::string_view kEnding = ".TMP";
constexpr std::size_t kDigits = 8;
/// Far behind the bytes that the engine locks.
constexpr ByteRange kMakerLives{std::int64_t{1} << 62, 1};
constexpr ByteRange kAllBytes{0, 0};

bool IsTemporaryName(const std::string& name) {
  if (name.size() != kPrefix.size() + kDigits + kEnding.size() || !name.starts_with(kPrefix) ||
      !name.ends_with(kEnding))
    return false;
  return name.substr(kPrefix.size(), kDigits).find_first_not_of("0123456789ABCDEF") == std::string::npos;
}

/// Whether the beginning is that of a data file, or of one that was never finished.
bool LooksMade(int fd) {
  std::array<unsigned char, kHeaderBytes> header{};
  const ssize_t got = pread(fd, header.data(), header.size(), 0);
  if (got < 0) return false;
  if (std::all_of(header.begin(), header.end(), [](unsigned char byte) { return byte == 0; })) return true;
  return ApplicationIdIn(header) == kApplicationId;
}

bool IsNamed(int fd, const std::string& path) {
  struct stat open {};
  struct stat named {};
  return fstat(fd, &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
         open.st_ino == named.st_ino;
}

void RemoveIfDead(const std::string& path) {
  const int fd = open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
  if (fd < 0) return;
  try {
    const LockSpace locks(fd);
    // Taken first: whoever has just made the file and has no lock yet finds out that it is gone.
    if (locks.TryLock(kMakerLives) && !locks.OthersIn(kAllBytes) && LooksMade(fd) && IsNamed(fd, path)) {
      unlink(path.c_str());
      unlink((path + "-journal").c_str());
    }
  } catch (const StoreError&) {
    // Where nothing can be locked nobody can tell who lives; the file stays.
  }
  close(fd);
}

StoreError CannotMake(const std::string& path, int error) {
  if (error == EEXIST) return {kFileExists, "File '" + path + "' already exists."};
  if (error == ENOENT || error == ENOTDIR)
    return {kPathNotFound, "'" + path + "' is not a valid path. Its directory cannot be reached."};
  if (error == ENOSPC || error == EDQUOT)
    return {kDiskFull, "Not enough space on the disk for '" + path + "'."};
  return {kCannotStart, "Cannot create '" + path + "': " + std::strerror(error) + "."};
}

}  // namespace

TemporaryFile::TemporaryFile(std::string path) : path_(std::move(path)) {
  for (;;) {
    fd_ = open(path_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    if (fd_ < 0) throw CannotMake(path_, errno);
    bool locked = true;
    try {
      locked = LockSpace(fd_).TryLock(kMakerLives);
    } catch (const StoreError&) {
      // On a disk without locks the file is made all the same; its litter stays, see RemoveIfDead.
    }
    if (locked && IsNamed(fd_, path_)) return;
    close(fd_);  // taken for litter in the moment between the making and the lock
  }
}

TemporaryFile::~TemporaryFile() {
  if (!kept_) {
    unlink(path_.c_str());
    unlink((path_ + "-journal").c_str());
  }
  close(fd_);
}

void TemporaryFile::Keep() { kept_ = true; }

std::string TemporaryFile::NameIn(const std::string& folder) {
  std::random_device random;
  for (;;) {
    std::array<char, kDigits + 1> digits{};
    std::snprintf(digits.data(), digits.size(), "%08X", static_cast<unsigned>(random()));
    const fs::path path = fs::path(folder) / (std::string(kPrefix) + digits.data() + std::string(kEnding));
    std::error_code ignored;
    if (!fs::exists(fs::symlink_status(path, ignored))) return path.string();
  }
}

void TemporaryFile::RemoveLitter(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> found;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    if (IsTemporaryName(entry->path().filename().string())) found.push_back(entry->path().string());
  for (const std::string& path : found) RemoveIfDead(path);
}

}  // namespace store
