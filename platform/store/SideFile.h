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

namespace store {

struct Conflict;

enum class Share { Shared, Exclusive };

/// Why a record is held: a window has it in edit, or a transaction that is still running has changed it.
enum class Hold { Edit, Transaction };

struct RosterEntry {
  int slot = 0;
  std::string computer;
  std::string user;
};

struct Holder {
  int slot = 0;  ///< -1, with empty names, if the holder let go before it could be identified
  std::string computer;
  std::string user;
  Hold hold = Hold::Edit;
  bool wholeTable = false;  ///< the lock covers the table's range, not this one record
  bool ownProcess = false;  ///< the holder is another open of the file in this same process
};

struct HeldRecord {
  int table = 0;
  std::int64_t row = 0;  ///< 0 if a whole table is held
  Holder holder;
};

/// What distinguishes a file from another one that gets its name.
struct FileId {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  bool operator==(const FileId&) const = default;
};
/// Nothing if no file of that name can be reached.
std::optional<FileId> IdOf(const std::string& path);

/// One open of a data file, with a slot in the roster and the records that this open holds. An object of this
/// class is one lock owner: two of them in one process conflict as two machines do. Not for use from several
/// threads.
class SideFile {
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
  ~SideFile();
  SideFile(const SideFile&) = delete;
  SideFile& operator=(const SideFile&) = delete;

  /// Makes sure that the others still meet in this side file; to be called when a write begins. If somebody
  /// has removed it, enters the new one. Throws StoreError 3044 when the data file is gone or replaced, 3197
  /// as long as records are held that others may have taken in the new side file, 3051 when others are in it
  /// whose sharing excludes this one.
  void Renew();

  int Slot() const { return slot_; }
  Share Sharing() const { return share_; }

  /// Takes the record for this owner. False when another owner holds it in either way (an Edit conflicts with
  /// an Edit and with a Transaction, and so on); `refused` then names the owner. Taking a record twice needs
  /// two Releases. In Exclusive sharing nothing can conflict and only the count is kept. Tables run from 1 to
  /// 2^20 - 1 and rows from 0 to 2^32 - 2; 3000 for others.
  bool Take(Hold hold, int table, std::int64_t row, Holder* refused);
  /// Undoes one Take; without effect on a record that is not held.
  void Release(Hold hold, int table, std::int64_t row);
  /// A Transaction hold on the whole table holds its records too, except those that others held when it was
  /// taken.
  bool Holds(Hold hold, int table, std::int64_t row) const;

  /// Who else holds the record, if anyone does.
  std::optional<Holder> WhoHolds(int table, std::int64_t row) const;

  /// Takes a Transaction hold on all of the table's records except those that others hold, and returns the
  /// rows of those (in either way of holding). While this stands, nobody else can take a record of the table.
  /// A whole-table hold of another owner is returned as an entry with row 0, and nothing is taken. Once for
  /// each table; ReleaseTable ends it and also every single Transaction hold on that table.
  std::vector<HeldRecord> TakeTable(int table);
  bool HoldsTable(int table) const;
  void ReleaseTable(int table);
  /// Ends every Transaction hold of this owner.
  void ReleaseTransaction();
  /// Turns the whole-table holds on these tables into holds of just the named records, without a gap in which
  /// another could take them. Records that were taken singly stay held, and so do other tables. Skips a named
  /// record that no whole-table hold includes.
  void Narrow(const std::map<int, std::vector<std::int64_t>>& rowsByTable);

  /// Shows the others that this owner waits for the file or for a record, or no longer does.
  void ShowWaiting(bool waiting);
  /// Whether another owner shows that it waits.
  bool OthersWait() const;
  /// Whether another owner has the file open.
  bool OthersAreIn() const;

  /// The slots that are locked by a living process, in slot order.
  std::vector<RosterEntry> Roster() const;
  /// All records of these tables that others hold.
  std::vector<HeldRecord> HeldByOthers(const std::vector<int>& tables) const;

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
