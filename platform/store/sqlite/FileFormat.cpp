#include "platform/store/sqlite/FileFormat.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "platform/store/StoreError.h"
#include "platform/store/sqlite/Handle.h"
#include "platform/store/sqlite/SideFile.h"

namespace store {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void RefuseDamaged(const Handle& handle, const char* reason) {
  throw StoreError(kBadFormat,
                   "Unrecognized data base format '" + handle.Path() + "': it is damaged (" + reason + ").");
}

/// What was never a data file cannot be repaired.
StoreError NotOurs(const std::string& path, const char* reason) {
  return {kNotOurs, "Cannot open data base '" + path + "': " + reason + "."};
}

constexpr const char* kForeign = "it belongs to another program";

}  // namespace

std::int64_t ApplicationIdIn(const std::array<unsigned char, kHeaderBytes>& header) {
  std::int64_t application = 0;
  for (std::size_t i = 68; i < 72; ++i) application = application * 256 + header[i];
  return application;
}

void CheckHeader(Handle& handle) {
  // Through the database's own descriptor: opening and closing the file by other means would drop its locks.
  sqlite3_file* file = nullptr;
  sqlite3_file_control(handle.Db(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (!file || !file->pMethods) return;
  std::array<unsigned char, kHeaderBytes> header{};
  const int code = file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0);
  if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ) handle.Fail(code);
  const bool ours = ApplicationIdIn(header) == kApplicationId;
  if (std::memcmp(header.data(), "SQLite format 3", 16) != 0) {
    if (ours) RefuseDamaged(handle, "its first bytes are not those of a data file");
    throw NotOurs(handle.Path(), "it is not a data file");
  }
  if (!ours) throw NotOurs(handle.Path(), kForeign);
  constexpr unsigned char kJournal = 1;
  constexpr unsigned char kWriteAheadLog = 2;
  // With a write-ahead log, opening alone would write beside the file, and switching it back would write into
  // it.
  if (header[18] == kWriteAheadLog && header[19] == kWriteAheadLog)
    throw StoreError(kCannotStart, "Could not use '" + handle.Path() +
                                       "'; another program has switched it to a write-ahead log. Close that "
                                       "program and switch the file back: sqlite3 '" +
                                       handle.Path() + "' 'PRAGMA journal_mode = DELETE'.");
  if (header[18] != kJournal || header[19] != kJournal)
    RefuseDamaged(handle, "its first page names a way of writing that is not in use");
}

void CheckFormat(Handle& handle) {
  if (handle.Number("PRAGMA application_id") != kApplicationId) throw NotOurs(handle.Path(), kForeign);
  if (handle.Number("PRAGMA user_version") > kFormatVersion)
    throw StoreError(kLaterVersion,
                     "Cannot open data base '" + handle.Path() +
                         "': it was made by a later version of this program. Use that version on "
                         "this workstation too.");
}

void CheckName(const std::string& path) {
  if (SideFile::PathFor(path) == path) throw NotOurs(path, "the ending .LDB is that of side files");
}

std::string RealPath(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? fs::absolute(path).string() : real.string();
}

StoreError FileIsGone(const std::string& path) {
  return {kPathNotFound,
          "'" + path +
              "' is no longer there: its directory was moved, renamed or disconnected, or another "
              "file has been put in its place."};
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
  // Users who come by different names would each have a side file of their own, and hold records unseen.
  if (found.st_nlink > 1)
    throw StoreError(kCannotStart,
                     "'" + path + "' has " + std::to_string(found.st_nlink) +
                         " names on the disk (hard links). People who open it by different names "
                         "would not see each other's records: remove the other names, or make "
                         "copies of them.");
  if (found.st_size == 0) throw NotOurs(path, "the file is empty");
}

}  // namespace store
