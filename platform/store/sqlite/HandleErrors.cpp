// The errors of SQLite in the words and numbers of the store.
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/store/StoreError.h"
#include "platform/store/sqlite/FileFormat.h"
#include "platform/store/sqlite/Handle.h"
#include "platform/store/sqlite/Rights.h"

namespace store {

bool DiskIsFull(sqlite3* db, int code) {
  if ((code & 0xff) == SQLITE_FULL) return true;
  if (!db || (code & 0xff) != SQLITE_IOERR) return false;
  const auto full = [](int error) { return error == ENOSPC || error == EDQUOT || error == EFBIG; };
  if (full(sqlite3_system_errno(db))) return true;
  if (code != SQLITE_IOERR_WRITE && code != SQLITE_IOERR_FSYNC && code != SQLITE_IOERR_TRUNCATE) return false;
  // What the database did to take back the write has hidden the reason; the files still know it.
  for (const int which : {SQLITE_FCNTL_FILE_POINTER, SQLITE_FCNTL_JOURNAL_POINTER}) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(db, "main", which, &file);
    int error = 0;
    if (file && file->pMethods &&
        file->pMethods->xFileControl(file, SQLITE_FCNTL_LAST_ERRNO, &error) == SQLITE_OK && full(error))
      return true;
  }
  return false;
}

void Handle::Fail(int code, std::string_view sql) {
  const std::string what = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(code);
  const std::string file = "'" + path_ + "'";
  const int kind = code & 0xff;
  const bool aboutTheFile = kind == SQLITE_READONLY || kind == SQLITE_CANTOPEN || kind == SQLITE_IOERR ||
                            kind == SQLITE_PERM || kind == SQLITE_NOTADB;
  if (aboutTheFile && IsReplaced()) throw FileIsGone(path_);
  if (refused_) throw *std::exchange(refused_, std::nullopt);
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw StoreError(kSessionLocked, "Could not update; " + file + " is being written by another session.");
    case SQLITE_FULL:
      throw StoreError(kDiskFull, "Not enough space on the disk for " + file + ".");
    case SQLITE_READONLY:
      if (code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY)
        throw StoreError(kReadOnly,
                         "Cannot read the data base " + file +
                             ": a write of it was cut off and can be taken back only where it can be "
                             "written. Copy it with its journal to a directory of your own.");
      throw StoreError(kReadOnly, "Cannot update. The data base " + file + " is read-only.");
    case SQLITE_PERM:
    case SQLITE_AUTH:
      throw StoreError(kCannotStart, "Access to " + file + " is not permitted.");
    case SQLITE_CANTOPEN:
      if (const std::string closed = WhatIsClosed(path_); !closed.empty())
        throw StoreError(kCannotStart, "Could not use " + file + "; " + closed + ".");
      throw StoreError(kCannotStart, "Cannot open " + file + ": " +
                                         std::strerror(db_ ? sqlite3_system_errno(db_) : ENOENT) + ".");
    case SQLITE_NOTADB:
      throw StoreError(kBadFormat, "Unrecognized data base format " + file + ": it is not a data file.");
    case SQLITE_CORRUPT:
      throw StoreError(kBadFormat,
                       "Unrecognized data base format " + file + ": it is damaged (" + what + ").");
    case SQLITE_IOERR: {
      if (DiskIsFull(db_, code))
        throw StoreError(kDiskFull, "Not enough space on the disk for " + file + ".");
      const int system = db_ ? sqlite3_system_errno(db_) : 0;
      throw StoreError(kPathNotFound,
                       "Disk or network error during access to " + file +
                           (system ? std::string(": ") + std::strerror(system) : std::string()) + ".");
    }
    case SQLITE_CONSTRAINT:
      if (code == SQLITE_CONSTRAINT_NOTNULL)
        throw StoreError(kFieldRequired, "A value is required: " + what + ".");
      if (code == SQLITE_CONSTRAINT_CHECK && what.find("length(") != std::string::npos)
        throw StoreError(kFieldTooSmall,
                         "The field is too small for the text that was to be stored in it: " + what + ".");
      if (code == SQLITE_CONSTRAINT_CHECK)
        throw StoreError(kZeroLength, "A field cannot be an empty text: " + what + ".");
      throw StoreError(
          kDuplicateKey,
          "The changes would create duplicate values in the index or primary key: " + what + ".");
    case SQLITE_TOOBIG:
      throw StoreError(kFieldTooSmall, "The value is too large to be stored.");
    case SQLITE_NOMEM:
      throw StoreError(kInternal, "Not enough memory.");
    case SQLITE_ERROR:
      if (what == "integer overflow") throw StoreError(kOverflow, "A total is beyond what a field can hold.");
      [[fallthrough]];
    default:
      throw StoreError(kInternal, "Data base error " + std::to_string(code) + ": " + what +
                                      (sql.empty() ? "" : " in: " + std::string(sql)) + ".");
  }
}

}  // namespace store
