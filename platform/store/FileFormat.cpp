#include "platform/store/FileFormat.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "platform/store/Connection.h"
#include "platform/store/Handle.h"
#include "platform/store/StoreError.h"

namespace store {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Refuse(const Handle& handle, const char* reason) {
  throw StoreError(kBadFormat, "Unrecognized data base format '" + handle.Path() + "': " + reason + ".");
}

constexpr const char* kForeign = "it belongs to another program";

}  // namespace

void CheckHeader(Handle& handle) {
  // Through the database's own descriptor: opening and closing the file by other means would drop its locks.
  sqlite3_file* file = nullptr;
  sqlite3_file_control(handle.Db(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (!file || !file->pMethods) return;
  std::array<unsigned char, 100> header{};
  const int code = file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0);
  if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ) handle.Fail(code);
  if (std::memcmp(header.data(), "SQLite format 3", 16) != 0) Refuse(handle, "it is not a data file");
  std::int64_t application = 0;
  for (std::size_t i = 68; i < 72; ++i) application = application * 256 + header[i];
  if (application != kApplicationId) Refuse(handle, kForeign);
  // With a write-ahead log the opening alone would write beside the file, and setting it right into it.
  if (header[18] != 1 || header[19] != 1)
    Refuse(handle, "it is damaged (its first page names a way of writing that is not in use)");
}

void CheckFormat(Handle& handle) {
  if (handle.Number("PRAGMA application_id") != kApplicationId) Refuse(handle, kForeign);
  if (handle.Number("PRAGMA user_version") > kFormatVersion)
    throw StoreError(kBadFormat, "Unrecognized data base format '" + handle.Path() +
                                     "': it was made by a later version of this program.");
}

void CheckName(const std::string& path) {
  if (SideFile::PathFor(path) == path)
    throw StoreError(kBadFormat,
                     "Unrecognized data base format '" + path + "': the ending .LDB is that of side files.");
}

void CheckFile(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) {
    const int code = errno;
    const fs::path folder = fs::path(path).parent_path();
    std::error_code ignored;
    if (code == ENOTDIR || (code == ENOENT && !folder.empty() && !fs::is_directory(folder, ignored)))
      throw StoreError(kPathNotFound, "'" + path + "' is not a valid path. Its directory cannot be reached.");
    if (code == ENOENT) throw StoreError(kFileNotFound, "Could not find file '" + path + "'.");
    if (code == EACCES) throw StoreError(kCannotStart, "Access to '" + path + "' is not permitted.");
    throw StoreError(kPathNotFound, "'" + path + "' cannot be reached: " + std::strerror(code) + ".");
  }
  if (S_ISDIR(found.st_mode))
    throw StoreError(kCannotStart, "'" + path + "' is a directory, not a data file.");
  if (!S_ISREG(found.st_mode)) throw StoreError(kCannotStart, "'" + path + "' is not a data file.");
  CheckName(path);
  if (found.st_size == 0)
    throw StoreError(kBadFormat, "Unrecognized data base format '" + path + "': the file is empty.");
}

void Connection::Create(const std::string& path) {
  CheckName(path);
  // Made under its own name in one go, and never over something that is there.
  const int fd = open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
  if (fd < 0) {
    const int code = errno;
    if (code == EEXIST) throw StoreError(kFileExists, "Data base '" + path + "' already exists.");
    if (code == ENOENT || code == ENOTDIR)
      throw StoreError(kPathNotFound, "'" + path + "' is not a valid path. Its directory cannot be reached.");
    if (code == ENOSPC || code == EDQUOT)
      throw StoreError(kDiskFull, "Not enough space on the disk for '" + path + "'.");
    throw StoreError(kCannotStart, "Cannot create '" + path + "': " + std::strerror(code) + ".");
  }
  close(fd);
  sqlite3* db = nullptr;
  int code = sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_EXRESCODE, nullptr);
  const std::string setUp =
      "PRAGMA page_size = 4096; PRAGMA encoding = 'UTF-8'; PRAGMA journal_mode = TRUNCATE; PRAGMA "
      "synchronous = FULL;"
      "PRAGMA application_id = " +
      std::to_string(kApplicationId) + "; PRAGMA user_version = " + std::to_string(kFormatVersion) +
      ";"
      "CREATE TABLE \"MSysRelationships\" (\"Name\" TEXT(255), \"Table\" TEXT(64), \"ForeignTable\" TEXT(64),"
      " \"Attributes\" LONG, \"Position\" LONG, \"Column\" TEXT(64), \"ForeignColumn\" TEXT(64));";
  if (code == SQLITE_OK) code = sqlite3_exec(db, setUp.c_str(), nullptr, nullptr, nullptr);
  const std::string text = db ? sqlite3_errmsg(db) : "";
  const bool full = DiskIsFull(db, code);
  sqlite3_close(db);
  if (code == SQLITE_OK) return;
  unlink(path.c_str());
  if (full) throw StoreError(kDiskFull, "Not enough space on the disk for '" + path + "'.");
  throw StoreError(kCannotStart, "Cannot create '" + path + "': " + text + ".");
}

std::shared_ptr<void> CompactFile(const std::string& source, const std::string& target) {
  CheckFile(source);
  std::shared_ptr<SideFile> alone;
  try {
    alone = SideFile::Enter(source, Share::Exclusive, IdentityComputer(), IdentityUser());
  } catch (const StoreError& error) {
    if (error.Number() != kFileInUse && error.Number() != kOpenedExclusively) throw;
    throw StoreError(kExclusiveNeeded, error.what());
  }
  std::error_code ignored;
  if (fs::exists(target, ignored)) throw StoreError(kFileExists, "File '" + target + "' already exists.");
  Handle::DropParked(source);
  auto handle = Handle::Acquire(source, false);
  try {
    // Some kinds of damage are copied without complaint; a file that is not sound must not replace its
    // original.
    {
      Use check(*handle, "PRAGMA quick_check(1)");
      if (check.Step() && check.Text(0) != "ok")
        throw StoreError(kBadFormat, "Unrecognized data base format '" + source + "': it is damaged (" +
                                         check.Text(0) + ").");
    }
    Use copy(*handle, "VACUUM INTO ?1");
    copy.Bind(1, rt::Value(target));
    copy.Step();
  } catch (const StoreError& error) {
    fs::remove(target, ignored);
    fs::remove(target + "-journal", ignored);
    if (error.Number() == kDiskFull)
      throw StoreError(kCannotCompactDiskFull, "Not enough space on the disk to compact '" + source + "'.");
    throw;
  }
  // The copy is about to take the original's place, so it must be on the disk first.
  const int fd = open(target.c_str(), O_RDWR | O_CLOEXEC);
  const bool stored = fd >= 0 && fsync(fd) == 0;
  if (fd >= 0) close(fd);
  if (!stored) {
    fs::remove(target, ignored);
    throw StoreError(kCannotCompactDiskFull, "The compacted copy of '" + source + "' could not be stored.");
  }
  return alone;
}

}  // namespace store
