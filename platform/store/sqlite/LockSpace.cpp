#include "platform/store/sqlite/LockSpace.h"

#include <fcntl.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>

#include "platform/store/StoreError.h"

namespace store {
namespace {

constexpr std::int64_t kTableBytes = std::int64_t{1} << 40;
constexpr std::int64_t kRowBytes = 256;

LengthTrust lengthTrust = LengthTrust::Automatic;

std::int64_t TableStart(Hold hold, int table) {
  return table * kTableBytes + (hold == Hold::Transaction ? kTransactionBytes.start : 0);
}

std::int64_t RowStart(Hold hold, int table, std::int64_t row) {
  return TableStart(hold, table) + row * kRowBytes;
}

/// The first byte of each row decides: every lock that has to do with a row covers it.
ByteRange FirstBytes(const RowRange& rows) {
  return {RowStart(rows.hold, rows.table, rows.first), (rows.last - rows.first) * kRowBytes + 1};
}

// A network file system may answer a question for locks with the question itself, so only file systems whose
// locks the kernel of this machine keeps are trusted.
bool KeepsLocksInThisKernel(int fd) {
  constexpr std::array<std::uint32_t, 15> kLocal = {
      0xEF53,      // ext2, ext3, ext4
      0x58465342,  // XFS
      0x9123683E,  // Btrfs
      0xCA451A4E,  // bcachefs
      0x2FC12FC1,  // ZFS
      0xF2F52010,  // F2FS
      0x01021994,  // tmpfs
      0x858458F6,  // ramfs
      0x794C7630,  // overlayfs
      0x3153464A,  // JFS
      0x52654973,  // ReiserFS
      0x4D44,      // FAT
      0x2011BAB0,  // exFAT
      0x5346544E,  // NTFS
      0x7366746E,  // NTFS, the newer driver
  };
  struct statfs medium {};
  if (fstatfs(fd, &medium) != 0) return false;
  return std::ranges::find(kLocal, static_cast<std::uint32_t>(medium.f_type)) != kLocal.end();
}

struct flock Describe(short type, const ByteRange& bytes) {
  struct flock lock {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = bytes.start;
  lock.l_len = bytes.length;
  return lock;
}

StoreError CannotLock() {
  return {kCannotStart, std::string("The side file cannot be locked: ") + std::strerror(errno) + "."};
}

/// True when the call succeeded, false when another owner is in the way.
bool Control(int fd, int command, struct flock* lock) {
  while (fcntl(fd, command, lock) != 0) {
    if (errno == EAGAIN || errno == EACCES) return false;
    if (errno != EINTR) throw CannotLock();
  }
  return true;
}

/// The last of the values from `yes` to below `no` for which `test` is true, if it is true for a first
/// stretch only; any such border if there are several.
template <typename Test>
std::int64_t LastWhere(std::int64_t yes, std::int64_t no, Test test) {
  while (no - yes > 1) {
    const std::int64_t middle = yes + (no - yes) / 2;
    (test(middle) ? yes : no) = middle;
  }
  return yes;
}

}  // namespace

LockSpace::LockSpace(int fd)
    : fd_(fd), lengthsTold_(lengthTrust == LengthTrust::Automatic && KeepsLocksInThisKernel(fd)) {}

void LockSpace::SetLengthTrust(LengthTrust trust) { lengthTrust = trust; }

bool LockSpace::TryLockForReading(const ByteRange& bytes) const {
  struct flock lock = Describe(F_RDLCK, bytes);
  return Control(fd_, F_OFD_SETLK, &lock);
}

bool LockSpace::TryLock(const ByteRange& bytes) const {
  struct flock lock = Describe(F_WRLCK, bytes);
  return Control(fd_, F_OFD_SETLK, &lock);
}

bool LockSpace::TryLock(const RowRange& rows) const {
  ByteRange bytes = FirstBytes(rows);
  bytes.length += slot_;
  return TryLock(bytes);
}

void LockSpace::Unlock(const ByteRange& bytes) const {
  struct flock lock = Describe(F_UNLCK, bytes);
  while (fcntl(fd_, F_OFD_SETLK, &lock) != 0 && errno == EINTR) {
  }
}

void LockSpace::UnlockBetween(Hold hold, int table, std::int64_t after, std::int64_t before) const {
  const std::int64_t start = after < 0 ? TableStart(hold, table) : RowStart(hold, table, after) + slot_ + 1;
  const std::int64_t length = RowStart(hold, table, before) - start;
  // A length of 0 would mean everything, not nothing.
  if (length > 0) Unlock({start, length});
}

std::optional<ByteRange> LockSpace::Ask(const ByteRange& bytes) const {
  struct flock lock = Describe(F_WRLCK, bytes);
  if (!Control(fd_, F_OFD_GETLK, &lock)) throw CannotLock();
  if (lock.l_type == F_UNLCK) return std::nullopt;
  return ByteRange{lock.l_start, lock.l_len};
}

bool LockSpace::OthersIn(const ByteRange& bytes) const { return Ask(bytes).has_value(); }

std::optional<Conflict> LockSpace::Find(const RowRange& rows) const {
  while (const std::optional<ByteRange> found = Ask(FirstBytes(rows))) {
    if (!lengthsTold_) {
      // If a lock went away between the questions, the next round finds those that stay.
      if (const std::optional<Conflict> told = FindByBytes(rows)) return told;
      continue;
    }
    const std::int64_t first = (found->start - TableStart(rows.hold, rows.table)) / kRowBytes;
    const std::int64_t last = first + (found->length - 1) / kRowBytes;
    const int slot = static_cast<int>((found->length - 1) % kRowBytes);
    return Conflict{rows.hold, first, last, slot, last > first};
  }
  return std::nullopt;
}

std::optional<Conflict> LockSpace::FindByBytes(const RowRange& rows) const {
  const auto othersUpTo = [&](std::int64_t row) {
    return OthersIn(FirstBytes({rows.hold, rows.table, rows.first, row}));
  };
  // A single lock never covers its row's last byte, so this byte shows that a lock goes on into the next row.
  const auto goesOn = [&](std::int64_t row) {
    return row >= 0 && OthersIn({RowStart(rows.hold, rows.table, row) + kRowBytes - 1, 1});
  };
  const std::int64_t first =
      1 + LastWhere(rows.first - 1, rows.last, [&](std::int64_t row) { return !othersUpTo(row); });
  const bool wide = goesOn(first) || goesOn(first - 1);
  // Only one owner can have locks over several rows of a table, so the end of any of them shows the owner.
  const std::int64_t end = goesOn(first) ? 1 + LastWhere(first, kLastRow + 1, goesOn) : first;
  const std::int64_t endStart = RowStart(rows.hold, rows.table, end);
  if (!OthersIn({endStart, 1})) return std::nullopt;
  const std::int64_t slot = LastWhere(0, kSlotCount, [&](std::int64_t byte) {
    return OthersIn({endStart + byte, 1});
  });
  return Conflict{rows.hold, first, wide ? std::max(rows.last, end) : first, static_cast<int>(slot), wide};
}

std::vector<Conflict> LockSpace::FindAll(const RowRange& rows) const {
  std::vector<Conflict> all;
  std::vector<RowRange> unasked{rows};
  while (!unasked.empty()) {
    RowRange next = unasked.back();
    unasked.pop_back();
    while (next.first <= next.last) {
      const std::optional<Conflict> found = Find(next);
      if (!found) break;
      all.push_back(*found);
      // The kernel lists the locks owner by owner, so another owner's may well be before the one it names.
      if (found->first > next.first) unasked.push_back({next.hold, next.table, next.first, found->first - 1});
      next.first = found->last + 1;
    }
  }
  std::ranges::sort(all, {}, &Conflict::first);
  return all;
}

}  // namespace store
