// The byte ranges of a side file that represent its users and records, as one open file description sees
// them.
//
// Below 2^40 are the share byte and one byte for each slot of the roster. Each table has the 2^40 bytes from
// its number times 2^40, each row 256 of them, and an owner locks the first slot + 1: so the length of a lock
// shows whose it is. A transaction's locks are 2^61 higher than a window's. A lock over several rows ends
// slot + 1 bytes into its last row.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/store/Holds.h"

namespace store {

/// A 256th slot would lock all bytes of a row and melt into the next row's lock.
inline constexpr int kSlotCount = 255;

/// A length of 0 reaches to the end of all offsets.
struct ByteRange {
  std::int64_t start = 0;
  std::int64_t length = 0;
};

inline constexpr ByteRange kShareByte{std::int64_t{1} << 39, 1};
inline constexpr ByteRange kTransactionBytes{std::int64_t{1} << 61, 0};
/// Read locks on it show that their owners wait for the file or for a record.
inline constexpr ByteRange kWaitingByte{kShareByte.start + 512, 1};
inline constexpr ByteRange kAllSlotBytes{kShareByte.start + 1, kSlotCount};
constexpr ByteRange SlotByte(int slot) { return {kShareByte.start + 1 + slot, 1}; }

/// Rows `first` to `last` of a table, in one of the two ways of holding.
struct RowRange {
  Hold hold = Hold::Edit;
  int table = 0;
  std::int64_t first = 0;
  std::int64_t last = 0;
};

/// A lock of another owner.
struct Conflict {
  Hold hold = Hold::Edit;
  std::int64_t first = 0;
  std::int64_t last = 0;
  int slot = -1;            ///< -1 if the lock went away before its owner could be identified
  bool wholeTable = false;  ///< a part of a lock on a whole table
};

/// How the locks of other owners are distinguished.
enum class LengthTrust {
  Automatic,  ///< by their lengths on file systems known to be local, elsewhere by questions for single bytes
  Never,      ///< by questions for single bytes everywhere
};

/// Sets and asks locks on an open file. It neither opens nor closes the file. Everything but Unlock throws
/// StoreError 3051 when the file system refuses locks as such.
class LockSpace {
 public:
  explicit LockSpace(int fd);
  /// For what is opened from now on; tests use it to take the path for network file systems on a local one.
  static void SetLengthTrust(LengthTrust trust);

  /// The slot whose lengths this owner's row locks get.
  void SetSlot(int slot) { slot_ = slot; }

  bool TryLockForReading(const ByteRange& bytes) const;
  bool TryLock(const ByteRange& bytes) const;
  bool TryLock(const RowRange& rows) const;
  /// Never fails for the caller: what cannot be unlocked is unlocked when the file closes.
  void Unlock(const ByteRange& bytes) const;
  /// Unlocks the rows that lie strictly between two rows and leaves locks on those two as they are, each
  /// ending as a single lock would. `after` may be -1 and `before` kLastRow + 1.
  void UnlockBetween(Hold hold, int table, std::int64_t after, std::int64_t before) const;

  /// Whether another owner has a lock on any of these bytes.
  bool OthersIn(const ByteRange& bytes) const;
  /// One lock of another owner in these rows, not always the first one.
  std::optional<Conflict> Find(const RowRange& rows) const;
  /// All locks of other owners in these rows, in order. If lengths cannot be trusted, finds nothing behind a
  /// lock on a whole table.
  std::vector<Conflict> FindAll(const RowRange& rows) const;

 private:
  std::optional<ByteRange> Ask(const ByteRange& bytes) const;
  std::optional<Conflict> FindByBytes(const RowRange& rows) const;

  int fd_;
  int slot_ = 0;
  bool lengthsTold_;
};

}  // namespace store
