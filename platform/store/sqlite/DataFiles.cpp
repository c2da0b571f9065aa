#include "platform/store/sqlite/DataFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "platform/store/Connection.h"
#include "platform/store/StoreError.h"
#include "platform/store/sqlite/FileFormat.h"
#include "platform/store/sqlite/Handle.h"
#include "platform/store/sqlite/Rights.h"
#include "platform/store/sqlite/SideFile.h"
#include "platform/store/sqlite/TemporaryFile.h"

namespace store {
namespace {

namespace fs = std::filesystem;

/// Whoever is in the file with another tool is not waited for as a writer is: he may stay all day.
constexpr std::chrono::milliseconds kPatience{2000};

std::string FolderOf(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

/// Has the new name of a file written to the disk.
void FlushFolder(const std::string& folder) {
  const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  fsync(fd);
  close(fd);
}

class FileCompaction : public Compaction {
 public:
  FileCompaction(const std::string& path, const std::string& target);
  void TakePlace() override;

 private:
  void CloseToOthers();
  void WriteBack();
  void SpoilOldFile();

  std::string source_;
  std::unique_ptr<SideFile> alone_;
  std::unique_ptr<Handle> handle_;
  std::unique_ptr<TemporaryFile> copy_;
  bool sameRights_ = false;
};

FileCompaction::FileCompaction(const std::string& path, const std::string& target) {
  CheckFile(path);
  source_ = RealPath(path);
  if (access(source_.c_str(), W_OK) != 0)
    throw StoreError(kReadOnly, "Cannot update. The data base '" + source_ + "' is read-only.");
  try {
    alone_ = SideFile::Enter(source_, Share::Exclusive, IdentityComputer(), IdentityUser());
  } catch (const StoreError& error) {
    if (error.Number() != kFileInUse && error.Number() != kOpenedExclusively) throw;
    throw StoreError(kExclusiveNeeded, error.what());
  }
  TemporaryFile::RemoveLitter(FolderOf(target));
  Handle::DropParked(source_);
  CloseToOthers();
  // Some kinds of damage are copied without complaint; a file that is not sound must not replace its
  // original.
  {
    Use check(handle_->Prepare("PRAGMA quick_check(1)"));
    if (check.Step() && check.Text(0) != "ok")
      throw StoreError(kBadFormat, "Unrecognized data base format '" + source_ + "': it is damaged (" +
                                       check.Text(0) + ").");
  }
  copy_ = std::make_unique<TemporaryFile>(target);
  struct stat before {};
  struct stat after {};
  if (stat(source_.c_str(), &before) != 0) handle_->Fail(SQLITE_IOERR);
  fchmod(copy_->Descriptor(), 0);
  GiveRights(copy_->Descriptor(), before);
  sameRights_ = fstat(copy_->Descriptor(), &after) == 0 && after.st_uid == before.st_uid &&
                after.st_gid == before.st_gid && after.st_mode == before.st_mode;
  // The engine opens the copy by its name.
  if (!sameRights_) fchmod(copy_->Descriptor(), 0600);
  const std::string full = "Not enough space on the disk to compact '" + source_ + "'.";
  try {
    Use copy(handle_->Prepare("VACUUM INTO ?1"));
    copy.Bind(1, rt::Value(target));
    copy.Step();
  } catch (const StoreError& error) {
    if (error.Number() == kDiskFull) throw StoreError(kCannotCompactDiskFull, full);
    throw;
  }
  // The copy is about to take the original's place, so it must be on the disk first.
  if (fsync(copy_->Descriptor()) != 0)
    throw StoreError(kCannotCompactDiskFull, "The compacted copy of '" + source_ + "' could not be stored.");
}

// From here to the end no other program can write what the copy would lack.
void FileCompaction::CloseToOthers() {
  try {
    handle_ = Handle::Acquire(source_, false);
    handle_->SetPatience(kPatience);
    handle_->Run("PRAGMA locking_mode = EXCLUSIVE");
    handle_->Run("BEGIN EXCLUSIVE");
    handle_->Run("COMMIT");
  } catch (const StoreError& error) {
    if (error.Number() != kSessionLocked && error.Number() != kFileInUse) throw;
    throw StoreError(kExclusiveNeeded, "Could not use '" + source_ + "'; it is in use by another program.");
  }
}

void FileCompaction::TakePlace() {
  // A file of this user's would take the place of another's, who might then be kept out; so its content alone
  // is written back. The same from another disk, where a change of names cannot reach.
  if (!sameRights_) return WriteBack();
  if (std::rename(copy_->Path().c_str(), source_.c_str()) != 0) {
    if (errno == EXDEV) return WriteBack();
    throw StoreError(kCannotStart, "Could not rename '" + copy_->Path() + "' to '" + source_ +
                                       "': " + std::strerror(errno) + ".");
  }
  copy_->Keep();
  FlushFolder(FolderOf(source_));
  SpoilOldFile();
}

void FileCompaction::WriteBack() {
  sqlite3* copy = nullptr;
  int code =
      sqlite3_open_v2(copy_->Path().c_str(), &copy, SQLITE_OPEN_READONLY | SQLITE_OPEN_EXRESCODE, nullptr);
  if (code == SQLITE_OK) {
    // One transaction of the file: cut off in the middle, it is taken back at the next opening.
    if (sqlite3_backup* all = sqlite3_backup_init(handle_->Db(), "main", copy, "main")) {
      sqlite3_backup_step(all, -1);
      code = sqlite3_backup_finish(all);
    } else {
      code = sqlite3_extended_errcode(handle_->Db());
    }
  }
  sqlite3_close(copy);
  if (code == SQLITE_OK) return;
  if (DiskIsFull(handle_->Db(), code))
    throw StoreError(kCannotCompactDiskFull, "Not enough space on the disk to compact '" + source_ + "'.");
  handle_->Fail(code);
}

// Another tool may have the old file open still. What it wrote there would be lost without a word; without
// its first page the tool finds out.
void FileCompaction::SpoilOldFile() {
  if (!handle_->IsReplaced()) return;
  sqlite3_file* file = nullptr;
  sqlite3_file_control(handle_->Db(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (!file || !file->pMethods) return;
  const std::array<char, kHeaderBytes> nothing{};
  file->pMethods->xWrite(file, nothing.data(), static_cast<int>(nothing.size()), 0);
}

}  // namespace

std::shared_ptr<Compaction> CompactFile(const std::string& path, const std::string& target) {
  return std::make_shared<FileCompaction>(path, target);
}

bool FileInUse(const std::string& path) {
  const std::string real = RealPath(path);
  struct stat side {};
  if (stat(SideFile::PathFor(real).c_str(), &side) != 0) return false;
  try {
    SideFile::Enter(real, Share::Exclusive, IdentityComputer(), IdentityUser());
    return false;
  } catch (const StoreError& error) {
    return error.Number() == kFileInUse || error.Number() == kOpenedExclusively;
  }
}

void CreateFile(const std::string& path) {
  CheckName(path);
  struct stat there {};
  if (lstat(path.c_str(), &there) == 0)
    throw StoreError(kFileExists, "Data base '" + path + "' already exists.");
  const std::string folder = FolderOf(path);
  if (stat(folder.c_str(), &there) != 0 || !S_ISDIR(there.st_mode))
    throw StoreError(kPathNotFound, "'" + path + "' is not a valid path. Its directory cannot be reached.");
  TemporaryFile::RemoveLitter(folder);
  // Made under another name, so that one who dies halfway leaves nothing under this one.
  TemporaryFile half(TemporaryFile::NameIn(folder));
  sqlite3* db = nullptr;
  int code =
      sqlite3_open_v2(half.Path().c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_EXRESCODE, nullptr);
  const std::string setUp =
      "PRAGMA page_size = 4096; PRAGMA encoding = 'UTF-8'; PRAGMA journal_mode = OFF; PRAGMA "
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
  if (full) throw StoreError(kDiskFull, "Not enough space on the disk for '" + path + "'.");
  if (code != SQLITE_OK) throw StoreError(kCannotStart, "Cannot create '" + path + "': " + text + ".");
  // What another file of this name has left would be taken for this one's.
  unlink((path + "-journal").c_str());
  // Never over something that has come meanwhile. Where the disk knows no such renaming, it is asked first.
  int error =
      renameat2(AT_FDCWD, half.Path().c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0 ? 0 : errno;
  if (error == EINVAL || error == ENOSYS) {
    error = lstat(path.c_str(), &there) == 0                      ? EEXIST
            : std::rename(half.Path().c_str(), path.c_str()) == 0 ? 0
                                                                  : errno;
  }
  if (error == EEXIST) throw StoreError(kFileExists, "Data base '" + path + "' already exists.");
  if (error != 0)
    throw StoreError(kCannotStart, "Cannot create '" + path + "': " + std::strerror(error) + ".");
  half.Keep();
  FlushFolder(folder);
}

void DropFile(const std::string& path) {
  const std::string real = RealPath(path);
  std::unique_ptr<SideFile> alone;
  try {
    alone = SideFile::Enter(real, Share::Exclusive, IdentityComputer(), IdentityUser());
  } catch (const StoreError& error) {
    // Nobody else is in where the disk is too full for this user's entry alone; deleting makes room.
    if (error.Number() != kDiskFull) throw;
  }
  Handle::DropParked(real);
  if (unlink(real.c_str()) != 0) {
    const int error = errno;
    if (error == ENOENT) throw StoreError(kFileNotFound, "Could not find file '" + path + "'.");
    throw StoreError(kCannotStart, "Could not delete '" + real + "': " + std::strerror(error) + ".");
  }
  // A journal that stays behind would be applied to the next file of this name.
  unlink((real + "-journal").c_str());
}

}  // namespace store
