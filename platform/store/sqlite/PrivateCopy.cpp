#include "platform/store/sqlite/PrivateCopy.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace store {
namespace {

using Clock = std::chrono::steady_clock;

/// A writer waits for one such look of the copying.
constexpr std::chrono::milliseconds kLook{8};
/// Pieces that stay in the processor's cache from the reading to the comparison.
constexpr std::size_t kPiece = 128 * 1024;

/// Keeps others from committing for as long as it lives.
class Look {
 public:
  explicit Look(Handle& file) : file_(file) {
    file_.Run("BEGIN");
    try {
      // Reading makes it a look; a write that was cut off is taken back here.
      file_.Number("PRAGMA schema_version");
    } catch (...) {
      End();
      throw;
    }
  }
  ~Look() { End(); }
  Look(const Look&) = delete;
  Look& operator=(const Look&) = delete;

 private:
  void End() { sqlite3_exec(file_.Db(), "COMMIT", nullptr, nullptr, nullptr); }
  Handle& file_;
};

/// The bytes of a data file, read through the database's own descriptor: closing another would drop its
/// locks.
class Source {
 public:
  explicit Source(Handle& handle) : handle_(handle) {
    sqlite3_file_control(handle.Db(), "main", SQLITE_FCNTL_FILE_POINTER, &file_);
  }
  bool Open() const { return file_ && file_->pMethods; }
  std::int64_t Size() {
    sqlite3_int64 size = 0;
    if (const int code = file_->pMethods->xFileSize(file_, &size); code != SQLITE_OK) handle_.Fail(code);
    return size;
  }
  void Read(char* bytes, std::size_t count, std::int64_t from) {
    const int code = file_->pMethods->xRead(file_, bytes, static_cast<int>(count), from);
    if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ) handle_.Fail(code);
  }
  /// Changes with each commit, whoever makes it.
  std::array<char, 4> ChangeCounter() {
    constexpr std::int64_t kPlace = 24;
    std::array<char, 4> counter{};
    Read(counter.data(), counter.size(), kPlace);
    return counter;
  }

 private:
  Handle& handle_;
  sqlite3_file* file_ = nullptr;
};

/// The temporary file that takes the copy.
class Target {
 public:
  Target() {
    const char* chosen = std::getenv("TMPDIR");
    path_ = std::string(chosen && *chosen ? chosen : "/tmp") + "/dwcopyXXXXXX";
    fd_ = mkostemp(path_.data(), O_CLOEXEC);
  }
  ~Target() {
    if (map_ != MAP_FAILED) munmap(map_, static_cast<std::size_t>(mapped_));
    if (fd_ < 0) return;
    close(fd_);
    unlink(path_.c_str());
  }
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  const std::string& Path() const { return path_; }
  bool Open() const { return fd_ >= 0; }
  bool Write(const char* bytes, std::size_t count, std::int64_t at) const {
    while (count > 0) {
      const ssize_t wrote = pwrite(fd_, bytes, count, at);
      if (wrote < 0 && errno == EINTR) continue;
      if (wrote <= 0) return false;
      bytes += wrote;
      count -= static_cast<std::size_t>(wrote);
      at += wrote;
    }
    return true;
  }
  bool Resize(std::int64_t size) const { return ftruncate(fd_, size) == 0; }
  /// Makes the first bytes ready for Same.
  bool Map(std::int64_t size) {
    mapped_ = size;
    map_ = mmap(nullptr, static_cast<std::size_t>(size), PROT_READ, MAP_SHARED | MAP_POPULATE, fd_, 0);
    return map_ != MAP_FAILED;
  }
  bool Same(const char* bytes, std::size_t count, std::int64_t at) const {
    return at + static_cast<std::int64_t>(count) <= mapped_ &&
           std::memcmp(static_cast<const char*>(map_) + at, bytes, count) == 0;
  }

 private:
  std::string path_;
  int fd_ = -1;
  void* map_ = MAP_FAILED;
  std::int64_t mapped_ = 0;
};

class Copying {
 public:
  Copying(Handle& file, const std::function<bool()>& goOn) : file_(file), goOn_(goOn), source_(file) {}

  std::unique_ptr<Handle> Copy() {
    if (!source_.Open() || !target_.Open()) return nullptr;
    bool undisturbed = true;
    for (bool whole = false; !whole;) {
      if (goOn_ && !goOn_()) return nullptr;
      const Look look(file_);
      const auto counter = source_.ChangeCounter();
      undisturbed = undisturbed && (copied_ == 0 || counter == counter_);
      counter_ = counter;
      if (!CopyOn()) return nullptr;
      whole = copied_ >= source_.Size();
    }
    if (!undisturbed && !CatchUp()) return nullptr;
    return Handle::OpenCopy(target_.Path(), file_);
  }

 private:
  std::size_t PieceAt(std::int64_t at, std::int64_t end) {
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(end - at, kPiece));
    source_.Read(piece_.data(), count, at);
    return count;
  }

  bool CopyOn() {
    const auto over = Clock::now() + kLook;
    const std::int64_t size = source_.Size();
    do {
      if (copied_ >= size) break;
      const std::size_t count = PieceAt(copied_, size);
      if (!target_.Write(piece_.data(), count, copied_)) return false;
      copied_ += static_cast<std::int64_t>(count);
    } while (Clock::now() < over);
    return true;
  }

  bool CatchUp() {
    // All that takes memory or a disk is done before the look.
    if (!target_.Map(copied_)) return false;
    const Look look(file_);
    const std::int64_t size = source_.Size();
    for (std::int64_t at = 0; at < size;) {
      const std::size_t count = PieceAt(at, size);
      if (!target_.Same(piece_.data(), count, at) && !target_.Write(piece_.data(), count, at)) return false;
      at += static_cast<std::int64_t>(count);
    }
    return target_.Resize(size);
  }

  Handle& file_;
  const std::function<bool()>& goOn_;
  Source source_;
  Target target_;
  std::array<char, 4> counter_{};
  std::int64_t copied_ = 0;
  std::vector<char> piece_ = std::vector<char>(kPiece);
};

}  // namespace

std::unique_ptr<Handle> CopyPrivately(Handle& file, const std::function<bool()>& goOn) {
  return Copying(file, goOn).Copy();
}

}  // namespace store
