#include "platform/system/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>

namespace sys {
namespace {

namespace fs = std::filesystem;

ReplaceConfirm& Confirm() {
  static ReplaceConfirm confirm;
  return confirm;
}

std::string Named(const std::string& path) { return "'" + path + "'"; }

/// Converts an error of the operating system to a runtime number.
FileResult Failure(int error, const std::string& action) {
  const auto because = [&](int number, const std::string& reason) {
    return FileResult{number, action + ": " + reason};
  };
  switch (error) {
    case ENOENT:
      return because(53, "there is no such file or folder.");
    case ENOTDIR:
      return because(76, "a part of the path is no folder.");
    case EACCES:
    case EPERM:
      return because(70, "permission denied.");
    case EBUSY:
    case ETXTBSY:
      return because(70, "it is in use.");
    case ENOSPC:
    case EDQUOT:
      return because(61, "the disk is full.");
    case EROFS:
      return because(75, "the disk can only be read.");
    case EISDIR:
      return because(75, "it is a folder.");
    case EIO:
      return because(57, "the disk reports an error.");
    default:
      return because(75, std::generic_category().message(error) + ".");
  }
}

fs::path FolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return folder.empty() ? fs::path(".") : folder;
}

/// Closes its descriptor, so that no exit from a copy leaks it.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }
  bool Close() {
    const int number = number_;
    number_ = -1;
    return number < 0 || close(number) == 0;
  }

 private:
  int number_;
};

/// Makes the operating system write to disk what it still has in memory of a file or a folder.
void Flush(const fs::path& path) {
  const Descriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (descriptor.IsOpen()) fsync(descriptor.Number());
}

/// Copies all bytes; 0 or the operating system's error.
int Pour(int from, int to) {
  static constexpr std::size_t kBlock = 256 * 1024;
  std::string block(kBlock, '\0');
  for (;;) {
    const ssize_t got = read(from, block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0) return 0;
    ssize_t done = 0;
    while (done < got) {
      const ssize_t n = write(to, block.data() + done, static_cast<std::size_t>(got - done));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return errno;
      done += n;
    }
  }
}

/// Writes the copy beside the target first, so that half a copy never has the target's name. 0 or the error.
int CopyWhole(const std::string& from, const std::string& to) {
  const Descriptor source(open(from.c_str(), O_RDONLY | O_CLOEXEC));
  if (!source.IsOpen()) return errno;
  struct stat state {};
  if (fstat(source.Number(), &state) != 0) return errno;
  if (S_ISDIR(state.st_mode)) return EISDIR;
  const std::string half = TemporaryFileName(FolderOf(to).string(), "CPY");
  if (half.empty()) return errno != 0 ? errno : EACCES;
  Descriptor target(open(half.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, state.st_mode & 0777));
  if (!target.IsOpen()) return errno;
  int error = Pour(source.Number(), target.Number());
  if (error == 0 && fsync(target.Number()) != 0) error = errno;
  if (!target.Close() && error == 0) error = errno;
  if (error == 0 && std::rename(half.c_str(), to.c_str()) != 0) error = errno;
  if (error != 0) unlink(half.c_str());
  return error;
}

bool SameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return fs::equivalent(a, b, error) && !error;
}

int ShellCode(int error) {
  switch (error) {
    case ENOENT:
      return 2;
    case ENOTDIR:
      return 3;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return 5;
    case ENOSPC:
    case EDQUOT:
      return 112;
    default:
      return 31;
  }
}

}  // namespace

bool FileExists(const std::string& path) {
  struct stat state {};
  return stat(path.c_str(), &state) == 0 && !S_ISDIR(state.st_mode);
}

bool ClearReadOnly(const std::string& path) {
  struct stat state {};
  if (stat(path.c_str(), &state) != 0 || S_ISDIR(state.st_mode)) return false;
  if ((state.st_mode & S_IWUSR) == 0) chmod(path.c_str(), (state.st_mode & 07777) | S_IWUSR);
  return true;
}

std::string TemporaryFileName(const std::string& folder, const std::string& prefix) {
  const fs::path place = folder.empty() ? fs::path(".") : fs::path(folder);
  std::error_code error;
  if (!fs::is_directory(place, error)) {
    errno = ENOENT;
    return {};
  }
  if (access(place.c_str(), W_OK | X_OK) != 0) return {};
  std::random_device random;
  for (int attempt = 0; attempt < 1000; ++attempt) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%08X.TMP", static_cast<unsigned>(random()));
    const fs::path candidate = place / (prefix + digits);
    struct stat state {};
    if (lstat(candidate.c_str(), &state) != 0 && errno == ENOENT) return candidate.string();
  }
  return {};
}

FileResult RenameOver(const std::string& from, const std::string& to) {
  const std::string action = "Could not rename " + Named(from) + " to " + Named(to);
  // The contents of the file must be on disk before its new name is, or a power failure could leave an empty
  // file with that name.
  Flush(from);
  if (std::rename(from.c_str(), to.c_str()) != 0) {
    if (errno != EXDEV) return Failure(errno, action);
    const int error = CopyWhole(from, to);
    if (error != 0) return Failure(error, action);
    if (unlink(from.c_str()) != 0) return Failure(errno, action);
  }
  Flush(FolderOf(to));
  return {};
}

FileResult DeleteFile(const std::string& path) {
  if (unlink(path.c_str()) == 0) return {};
  return Failure(errno, "Could not delete " + Named(path));
}

FileResult CopyFile(const std::string& from, const std::string& to) {
  const std::string action = "Could not copy " + Named(from) + " to " + Named(to);
  if (SameFile(from, to)) return {75, action + ": they are the same file."};
  const int error = CopyWhole(from, to);
  return error == 0 ? FileResult{} : Failure(error, action);
}

int ShellCopy(const std::string& from, const std::string& to) {
  static constexpr int kSameFile = 113;
  if (!FileExists(from)) return 2;
  if (SameFile(from, to)) return kSameFile;
  std::error_code error;
  fs::create_directories(FolderOf(to), error);
  if (error) return error.value() == ENOENT ? 3 : ShellCode(error.value());
  if (FileExists(to) && Confirm() && !Confirm()(to)) return kShellCanceled;
  const int failure = CopyWhole(from, to);
  return failure == 0 ? kShellDone : ShellCode(failure);
}

int ShellDelete(const std::string& path) { return unlink(path.c_str()) == 0 ? kShellDone : ShellCode(errno); }

ReplaceConfirm InstallReplaceConfirm(ReplaceConfirm confirm) {
  std::swap(confirm, Confirm());
  return confirm;
}

}  // namespace sys
