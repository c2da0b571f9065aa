// The side file of a data file: who is in it, how it is shared, and which records are held.
//
// Beside DW.MDB stands DW.LDB while anyone has the data file open. It holds a roster of 255 slots of 64 bytes
// (computer name, 32 bytes, and user name, 32 bytes, each ended by NULs). Everything else in it is advisory
// byte-range locks of open file descriptions (F_OFD_SETLK), which the operating system drops when a process
// dies.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/store/Holds.h"

namespace store {

struct Conflict;

/// What distinguishes a file from another one that gets its name.
struct FileId {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  bool operator==(const FileId&) const = default;
};
/// Nothing if no file of that name can be reached.
std::optional<FileId> IdOf(const std::string& path);

class SideFile : public Holds {
 public:
  /// Joins the users of `dataFile`. Throws StoreError 3045 when `share` is Exclusive and others are in, 3356
  /// when another has it exclusively, 3044 when the directory is gone, 3051 when the side file cannot be made
  /// or written (3026 for a full disk), and 3045 when all 255 slots are taken.
  /// A reader that can neither make nor write a side file is in no roster and holds nothing; if there is a
  /// side file that it can read, it keeps out those who want the file exclusively.
  static std::unique_ptr<SideFile> Enter(const std::string& dataFile, Share share,
                                         const std::string& computer, const std::string& user,
                                         bool onlyReads = false);
  /// The side file's path: the data file's with the ending ".LDB" instead of its own.
  static std::string PathFor(const std::string& dataFile);
  /// Leaves; the last user out removes the side file.
  ~SideFile() override;
  SideFile(const SideFile&) = delete;
  SideFile& operator=(const SideFile&) = delete;

  /// Makes sure that the others still meet in this side file. If somebody has removed it, enters the new one.
  void Renew() override;
  int Slot() const override { return slot_; }
  Share Sharing() const override { return share_; }

  bool Take(Hold hold, int table, std::int64_t row, Holder* refused) override;
  void Release(Hold hold, int table, std::int64_t row) override;
  bool Has(Hold hold, int table, std::int64_t row) const override;
  std::optional<Holder> WhoHolds(int table, std::int64_t row) const override;
  std::vector<HeldRecord> TakeTable(int table) override;
  bool HasTable(int table) const override;
  void ReleaseTable(int table) override;
  void ReleaseTransaction() override;
  void Narrow(const std::map<int, std::vector<std::int64_t>>& rowsByTable) override;

  void ShowWaiting(bool waiting) override;
  bool OthersWait() const override;
  bool OthersAreIn() const override;

  /// The slots that are locked by a living process.
  std::vector<RosterEntry> Roster() const override;
  std::vector<HeldRecord> HeldByOthers(const std::vector<int>& tables) const override;

 private:
  SideFile() = default;
  bool TryShare() const;
  bool Watch();
  bool IsCurrent() const;
  void TakeSlot(const std::string& dataFile, const std::string& computer, const std::string& user);
  /// 0, or the system's error number.
  int WriteSlot(const RosterEntry& names) const;
  RosterEntry ReadSlot(int slot) const;
  Holder HolderOf(const Conflict& conflict) const;
  /// Whether another open of this data file in this process has the slot.
  bool IsOwnSlot(int slot) const;

  std::string path_;  ///< empty for a user who is in no roster
  std::string dataFile_;
  std::string computer_;
  std::string user_;
  std::optional<FileId> data_;  ///< the data file at the entry, if there was one
  int fd_ = -1;
  int watch_ = -1;  ///< the side file of the others, for a user who is in no roster
  int slot_ = -1;
  Share share_ = Share::Shared;
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace store
