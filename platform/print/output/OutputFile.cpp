#include "platform/print/output/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "platform/print/PrintError.h"
#include "platform/print/TemporaryFile.h"

namespace print {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlock = std::size_t{256} * 1024;
constexpr int kLinksAtMost = 40;

/// The file that a symbolic link leads to, also if that does not exist yet.
std::string Followed(std::string path) {
  std::error_code error;
  for (int links = 0; links < kLinksAtMost && fs::is_symlink(path, error); ++links) {
    const fs::path next = fs::read_symlink(path, error);
    if (error) break;
    path = (next.is_absolute() ? next : fs::path(path).parent_path() / next).string();
  }
  return path;
}

/// The permissions of a new file.
mode_t NewMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

/// 0 or the error of the operating system.
int WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t n = write(fd, bytes.data(), bytes.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
  return 0;
}

}  // namespace

std::string ReasonOf(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return "the disk is full";
    case EACCES:
    case EPERM:
      return "permission denied";
    case EROFS:
      return "the disk can only be read";
    case ENOENT:
    case ENOTDIR:
      return "there is no such folder";
    case EISDIR:
      return "it is a folder";
    case EPIPE:
      return "the reader of the output has gone";
    case ENAMETOOLONG:
      return "the name is too long";
    default:
      return std::strerror(error);
  }
}

OutputFile::OutputFile(const std::string& path) : shown_(path == "-" ? "standard output" : "'" + path + "'") {
  mode_t mode = NewMode();
  if (path != "-") {
    target_ = Followed(path);
    struct stat state {};
    const bool exists = stat(target_.c_str(), &state) == 0;
    if (!exists && errno != ENOENT) Fail(errno);
    if (exists && S_ISDIR(state.st_mode)) Fail(EISDIR);
    // A file that its owner has protected is not replaced, although the folder would allow it.
    if (exists && access(target_.c_str(), W_OK) != 0) Fail(errno);
    replaces_ = !exists || S_ISREG(state.st_mode);
    if (exists && replaces_) mode = state.st_mode & 07777;
  }
  fs::path beside;
  if (replaces_) {
    beside = fs::path(target_).parent_path();
    if (beside.empty()) beside = ".";
  } else {
    beside = TemporaryDirectory();
  }
  temporary_ = (beside / ".dwoutXXXXXX").string();
  fd_ = mkostemp(temporary_.data(), O_CLOEXEC);
  if (fd_ < 0) Fail(errno);
  if (replaces_) fchmod(fd_, mode);
  buffer_.reserve(kBlock);
}

OutputFile::~OutputFile() {
  if (fd_ >= 0) close(fd_);
  if (!done_) unlink(temporary_.c_str());
}

void OutputFile::Fail(int error) const {
  throw PrintError(shown_ + " cannot be written: " + ReasonOf(error) + ".");
}

void OutputFile::Write(std::string_view bytes) {
  buffer_.append(bytes);
  if (buffer_.size() >= kBlock) Flush();
}

void OutputFile::Flush() {
  if (const int error = WriteAll(fd_, buffer_); error != 0) Fail(error);
  flushed_ += buffer_.size();
  buffer_.clear();
}

void OutputFile::Pour() {
  const int from = open(temporary_.c_str(), O_RDONLY | O_CLOEXEC);
  const int to = target_.empty() ? STDOUT_FILENO : open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  int error = from < 0 || to < 0 ? errno : 0;
  std::string block(kBlock, '\0');
  while (error == 0) {
    const ssize_t got = read(from, block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) error = errno;
    if (got <= 0) break;
    error = WriteAll(to, {block.data(), static_cast<std::size_t>(got)});
  }
  if (from >= 0) close(from);
  if (to >= 0 && !target_.empty()) close(to);
  if (error != 0) Fail(error);
}

void OutputFile::Commit() {
  Flush();
  if (!replaces_) {
    Pour();
    unlink(temporary_.c_str());
  } else {
    if (fsync(fd_) != 0) Fail(errno);
    const int fd = fd_;
    fd_ = -1;
    if (close(fd) != 0) Fail(errno);
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) Fail(errno);
  }
  done_ = true;
}

}  // namespace print
