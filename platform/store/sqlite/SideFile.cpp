// Entering and leaving a data file, and the roster of those who are in.
#include "platform/store/sqlite/SideFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <thread>

#include "platform/runtime/Letters.h"
#include "platform/store/StoreError.h"
#include "platform/store/sqlite/FileFormat.h"
#include "platform/store/sqlite/Rights.h"
#include "platform/store/sqlite/SideFileState.h"

namespace store {
namespace {

constexpr std::size_t kNameBytes = 32;
constexpr std::size_t kEntryBytes = 2 * kNameBytes;
// For a second at most, while somebody is between the share byte and the roster.
constexpr int kEntryTries = 1000;
constexpr std::chrono::milliseconds kEntryNap{1};

StoreError CannotMake(const std::string& dataFile, int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return {kPathNotFound, "Could not find the directory of '" + dataFile + "'."};
    case ENOSPC:
    case EDQUOT:
      return {kDiskFull,
              "Could not use '" + dataFile + "'; there is no space left on the disk for its side file."};
    default:
      if (const std::string closed = WhatIsClosed(dataFile); !closed.empty())
        return {kCannotStart, "Could not use '" + dataFile + "'; " + closed + "."};
      return {kCannotStart, "Could not use '" + dataFile + "'; its side file cannot be written (" +
                                std::strerror(error) + ")."};
  }
}

StoreError Refusal(const std::string& dataFile, Share wanted, const std::vector<RosterEntry>& inside) {
  const bool wantedShared = wanted == Share::Shared;
  std::string text =
      "Could not use '" + dataFile + "'; it is " + (wantedShared ? "opened exclusively by " : "in use by ");
  if (inside.empty() || inside.front().user.empty()) {
    text += "another user";
  } else {
    text += "user '" + inside.front().user + "' on machine '" + inside.front().computer + "'";
  }
  if (inside.size() > 1) text += " and " + std::to_string(inside.size() - 1) + " more";
  return {wantedShared ? kOpenedExclusively : kFileInUse, text + "."};
}

/// -1 if it cannot be opened.
int OpenSideFile(const std::string& path, const std::string& dataFile) {
  // In a directory with the sticky bit the kernel may refuse to "create" a file of another user that is there
  // already.
  int fd = open(path.c_str(), O_RDWR | O_CLOEXEC);
  if (fd < 0 && errno == ENOENT) fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0) return fd;
  // Whoever may write the data file must be able to write its side file, whatever this process's mask says.
  // If this user may not set its group, the refusal tells the others what helps.
  struct stat data {};
  if (stat(dataFile.c_str(), &data) == 0) GiveRights(fd, data);
  return fd;
}

/// As much of the name as fits, without half a character at the end.
std::string_view Fitting(std::string_view name) {
  if (name.size() < kNameBytes) return name;
  std::size_t length = kNameBytes - 1;
  while (length > 0 && rt::IsContinuation(name[length])) --length;
  return name.substr(0, length);
}

/// All opens of this process, to distinguish a hold of its own from one of another process.
std::vector<const SideFile*>& OpenHere() {
  static std::vector<const SideFile*> open;
  return open;
}

std::string NameAt(const char* bytes) { return {bytes, strnlen(bytes, kNameBytes)}; }

}  // namespace

std::string SideFile::PathFor(const std::string& dataFile) {
  return std::filesystem::path(dataFile).replace_extension(".LDB").string();
}

std::optional<FileId> IdOf(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) return std::nullopt;
  return FileId{found.st_dev, found.st_ino};
}

std::unique_ptr<SideFile> SideFile::Enter(const std::string& dataFile, Share share,
                                          const std::string& computer, const std::string& user,
                                          bool onlyReads) {
  const std::string path = std::filesystem::absolute(PathFor(dataFile)).string();
  std::vector<RosterEntry> inside;
  for (int attempt = 0; attempt < kEntryTries; ++attempt) {
    std::unique_ptr<SideFile> side(new SideFile);
    side->path_ = path;
    side->dataFile_ = dataFile;
    side->computer_ = computer;
    side->user_ = user;
    side->data_ = IdOf(dataFile);
    side->share_ = share;
    side->fd_ = OpenSideFile(path, dataFile);
    if (side->fd_ < 0) {
      const int error = errno;
      if (!onlyReads || share == Share::Exclusive || (error != EACCES && error != EROFS && error != EPERM))
        throw CannotMake(dataFile, error);
      if (!side->Watch()) throw Refusal(dataFile, share, {});
      return side;
    }
    side->state_ = std::make_unique<State>(side->fd_);
    if (!side->TryShare()) {
      inside = side->Roster();
      if (inside.empty() || (inside.front().computer + inside.front().user).empty()) {
        // The other user is either leaving, and gone in a moment, or entering, and has a name in a moment.
        std::this_thread::sleep_for(kEntryNap);
        continue;
      }
      if (!side->TryShare()) throw Refusal(dataFile, share, inside);
    }
    // The last user out may have removed the file after it was opened here; others would then meet in a new
    // one.
    if (!side->IsCurrent()) continue;
    side->TakeSlot(dataFile, computer, user);
    OpenHere().push_back(side.get());
    return side;
  }
  throw Refusal(dataFile, share, inside);
}

// A roster of its own, which nobody else sees; and a look at that of the others, if there is one. False if
// one of them has the file exclusively.
bool SideFile::Watch() {
  watch_ = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (watch_ >= 0 && !LockSpace(watch_).TryLockForReading(kShareByte)) return false;
  path_.clear();
  fd_ = memfd_create("roster", MFD_CLOEXEC);
  if (fd_ < 0) throw CannotMake(dataFile_, errno);
  state_ = std::make_unique<State>(fd_);
  TakeSlot(dataFile_, computer_, user_);
  return true;
}

void SideFile::Renew() {
  if (path_.empty()) return;
  if (data_ && IdOf(dataFile_) != data_) throw FileIsGone(dataFile_);
  if (!IsCurrent()) {
    std::unique_ptr<SideFile> fresh;
    try {
      fresh = Enter(dataFile_, share_, computer_, user_);
    } catch (const StoreError& error) {
      if (error.Number() != kFileInUse && error.Number() != kOpenedExclusively) throw;
      throw StoreError(kCannotStart,
                       "The side file of '" + dataFile_ +
                           "' was removed while people were in, and others have come since. Close "
                           "the file and open it again. (" +
                           error.what() + ")");
    }
    const bool held = state_->HoldsAny();
    State& kept = *fresh->state_;
    kept.edits = std::move(state_->edits);
    kept.transactions = std::move(state_->transactions);
    kept.tables = std::move(state_->tables);
    kept.lost = held;
    std::swap(state_, fresh->state_);
    std::swap(fd_, fresh->fd_);
    std::swap(slot_, fresh->slot_);
  }
  if (state_->lost && !state_->HoldsAny()) state_->lost = false;
  if (state_->lost)
    throw StoreError(kDataChanged,
                     "The side file of '" + dataFile_ +
                         "' was removed while you were changing records; others may have changed them "
                         "since. Cancel the change, look at the records and make it again.");
}

SideFile::~SideFile() {
  std::erase(OpenHere(), this);
  if (watch_ >= 0) close(watch_);
  if (fd_ < 0) return;
  if (state_) {
    const LockSpace& locks = state_->locks;
    // Until the next user of this slot writes its names, others would read these instead.
    if (slot_ >= 0) WriteSlot({slot_, {}, {}});
    // Unlocked although closing would do: a child that was forked may have the file open still. The share
    // byte comes last, because a newcomer that is refused takes whoever is in the roster for somebody who
    // stays.
    locks.Unlock({kShareByte.start + 1, 0});
    locks.Unlock(kShareByte);
    try {
      if (locks.TryLock(kShareByte) && IsCurrent()) unlink(path_.c_str());
    } catch (const StoreError&) {
      // The file stays and the next user uses it again.
    }
    locks.Unlock(kShareByte);
  }
  close(fd_);
}

bool SideFile::TryShare() const {
  return share_ == Share::Exclusive ? state_->locks.TryLock(kShareByte)
                                    : state_->locks.TryLockForReading(kShareByte);
}

bool SideFile::IsCurrent() const {
  struct stat open {};
  return fstat(fd_, &open) == 0 && IdOf(path_) == FileId{open.st_dev, open.st_ino};
}

void SideFile::TakeSlot(const std::string& dataFile, const std::string& computer, const std::string& user) {
  int slot = 0;
  while (slot < kSlotCount && !state_->locks.TryLock(SlotByte(slot))) ++slot;
  if (slot == kSlotCount) {
    throw StoreError(kFileInUse, "Could not use '" + dataFile + "'; all " + std::to_string(kSlotCount) +
                                     " places in it are taken.");
  }
  slot_ = slot;
  state_->locks.SetSlot(slot);
  if (const int error = WriteSlot({slot, computer, user})) throw CannotMake(dataFile, error);
}

int SideFile::WriteSlot(const RosterEntry& names) const {
  std::array<char, kEntryBytes> entry{};
  std::ranges::copy(Fitting(names.computer), entry.begin());
  std::ranges::copy(Fitting(names.user), entry.begin() + kNameBytes);
  const std::size_t start = static_cast<std::size_t>(names.slot) * kEntryBytes;
  std::size_t done = 0;
  while (done < entry.size()) {
    const ssize_t written =
        pwrite(fd_, entry.data() + done, entry.size() - done, static_cast<off_t>(start + done));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return written < 0 ? errno : ENOSPC;
    done += static_cast<std::size_t>(written);
  }
  return 0;
}

RosterEntry SideFile::ReadSlot(int slot) const {
  std::array<char, kEntryBytes> entry{};
  RosterEntry read{slot, {}, {}};
  if (slot < 0) return read;
  const ssize_t got =
      pread(fd_, entry.data(), entry.size(), static_cast<off_t>(slot) * static_cast<off_t>(kEntryBytes));
  if (got <= 0) return read;
  read.computer = NameAt(entry.data());
  read.user = NameAt(entry.data() + kNameBytes);
  return read;
}

Holder SideFile::HolderOf(const Conflict& conflict) const {
  const RosterEntry entry = ReadSlot(conflict.slot);
  return {conflict.slot, entry.computer,      entry.user,
          conflict.hold, conflict.wholeTable, IsOwnSlot(conflict.slot)};
}

bool SideFile::IsOwnSlot(int slot) const {
  struct stat here {};
  if (slot < 0 || fstat(fd_, &here) != 0) return false;
  return std::ranges::any_of(OpenHere(), [&](const SideFile* other) {
    struct stat there {};
    return other->slot_ == slot && fstat(other->fd_, &there) == 0 && there.st_dev == here.st_dev &&
           there.st_ino == here.st_ino;
  });
}

std::vector<RosterEntry> SideFile::Roster() const {
  std::vector<RosterEntry> inside;
  for (int slot = 0; slot < kSlotCount; ++slot) {
    if (slot == slot_ || state_->locks.OthersIn(SlotByte(slot))) inside.push_back(ReadSlot(slot));
  }
  return inside;
}

}  // namespace store
