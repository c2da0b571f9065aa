#include "platform/store/sqlite/Rights.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sqlite3.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "platform/store/sqlite/SideFile.h"

namespace store {
namespace {

std::string UserName(uid_t id) {
  std::array<char, 4096> buffer{};
  struct passwd entry {};
  struct passwd* found = nullptr;
  getpwuid_r(id, &entry, buffer.data(), buffer.size(), &found);
  return found ? found->pw_name : std::to_string(id);
}

std::string GroupName(gid_t id) {
  std::array<char, 4096> buffer{};
  struct group entry {};
  struct group* found = nullptr;
  getgrgid_r(id, &entry, buffer.data(), buffer.size(), &found);
  return found ? found->gr_name : std::to_string(id);
}

bool MayUse(const std::string& path, int how) {
  return faccessat(AT_FDCWD, path.c_str(), how, AT_EACCESS) == 0;
}

std::string Owners(const struct stat& file) {
  return "it belongs to user '" + UserName(file.st_uid) + "' and group '" + GroupName(file.st_gid) + "'";
}

/// Empty for a file that is not there or that can be written.
std::string ClosedFile(const std::string& path, const char* what, gid_t group) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0 || MayUse(path, R_OK | W_OK)) return {};
  const std::string name = "'" + path + "'";
  return std::string(what) + " " + name + " cannot be written: " + Owners(found) +
         ". The owner or the administrator opens it with: chgrp " + GroupName(group) + " " + name +
         " && chmod g+rw " + name;
}

/// The group and the rights of a journal are those of its data file. The engine itself gives the rights, and
/// the group only when the administrator runs it.
int OpenFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  sqlite3_vfs* system = sqlite3_vfs_find(nullptr);
  const int code = system->xOpen(system, name, file, flags, outFlags);
  if (code != SQLITE_OK || !name || !(flags & SQLITE_OPEN_MAIN_JOURNAL)) return code;
  struct stat data {};
  struct stat journal {};
  if (stat(sqlite3_filename_database(name), &data) == 0 && stat(name, &journal) == 0 &&
      journal.st_uid == geteuid() && journal.st_gid != data.st_gid) {
    // Where the group is not this user's to give, whoever is refused later hears what helps.
    [[maybe_unused]] const int given = chown(name, static_cast<uid_t>(-1), data.st_gid);
  }
  return code;
}

}  // namespace

bool GiveRights(int fd, const struct stat& data) {
  struct stat own {};
  if (fstat(fd, &own) != 0) return false;
  if (own.st_uid != geteuid() && geteuid() != 0) return true;  // somebody else's, with the rights it has
  bool given = true;
  if (geteuid() == 0)
    given = fchown(fd, data.st_uid, data.st_gid) == 0;
  else if (own.st_gid != data.st_gid)
    given = fchown(fd, static_cast<uid_t>(-1), data.st_gid) == 0;
  const mode_t mode = (own.st_mode | data.st_mode) & 0666;
  if (mode != (own.st_mode & 07777)) fchmod(fd, mode);
  return given;
}

std::string WhatIsClosed(const std::string& dataFile) {
  struct stat data {};
  if (stat(dataFile.c_str(), &data) != 0) return {};
  const std::filesystem::path parent = std::filesystem::path(dataFile).parent_path();
  const std::string folder = parent.empty() ? "." : parent.string();
  struct stat place {};
  if (stat(folder.c_str(), &place) == 0 && !MayUse(folder, W_OK | X_OK))
    return "the directory '" + folder + "' cannot be written: " + Owners(place) +
           ". Everybody who works with the file needs the right to write in its directory. The owner or the "
           "administrator gives it with: chgrp " +
           GroupName(data.st_gid) + " '" + folder + "' && chmod g+rwxs '" + folder + "'";
  std::string closed = ClosedFile(SideFile::PathFor(dataFile), "its side file", data.st_gid);
  if (closed.empty()) closed = ClosedFile(dataFile + "-journal", "its journal", data.st_gid);
  return closed;
}

const char* FileLayer() {
  static sqlite3_vfs layer;
  static const sqlite3_vfs* copied = nullptr;
  // Everything else is the system's. It is looked for each time: a test may have put another in its place.
  if (const sqlite3_vfs* system = sqlite3_vfs_find(nullptr); system != copied) {
    if (copied) sqlite3_vfs_unregister(&layer);
    layer = *system;
    layer.zName = "drovewright";
    layer.pNext = nullptr;
    layer.xOpen = OpenFile;
    sqlite3_vfs_register(&layer, 0);
    copied = system;
  }
  return layer.zName;
}

}  // namespace store
