// Who is in a data file, how it is shared, and which records are held.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace store {

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
  bool wholeTable = false;  ///< the hold is on the whole table, not on this one record
  bool ownProcess = false;  ///< the holder is another open of the file in this same process
};

struct HeldRecord {
  int table = 0;
  std::int64_t row = 0;  ///< 0 if a whole table is held
  Holder holder;
};

/// The last table and the last row that can be held; tables begin at 1 and rows at 0.
inline constexpr int kLastTable = (1 << 20) - 1;
inline constexpr std::int64_t kLastRow = (std::int64_t{1} << 32) - 2;

/// One open of a data file, with a slot in the roster and the records that this open holds: the part of an
/// engine that keeps people apart. An object of this class is one owner: two of them in one process conflict
/// as two machines do. The holds of a process that dies end with it. Not for use from several threads.
class Holds {
 public:
  virtual ~Holds() = default;

  /// Makes sure that the others still see what is held here; to be called when a write begins. Throws
  /// StoreError 3044 when the data file is gone or replaced, 3197 as long as records are held that others may
  /// have taken meanwhile, 3051 when others are in it whose sharing excludes this one.
  virtual void Renew() = 0;

  virtual int Slot() const = 0;
  virtual Share Sharing() const = 0;

  /// Takes the record for this owner. False when another owner holds it in either way (an Edit conflicts with
  /// an Edit and with a Transaction, and so on); `refused` then names the owner. Taking a record twice needs
  /// two Releases. In Exclusive sharing nothing can conflict and only the count is kept. 3000 for a table or
  /// a row that cannot be held.
  virtual bool Take(Hold hold, int table, std::int64_t row, Holder* refused) = 0;
  /// Undoes one Take; without effect on a record that is not held.
  virtual void Release(Hold hold, int table, std::int64_t row) = 0;
  /// A Transaction hold on the whole table holds its records too, except those that others held when it was
  /// taken.
  virtual bool Has(Hold hold, int table, std::int64_t row) const = 0;

  /// Who else holds the record, if anyone does.
  virtual std::optional<Holder> WhoHolds(int table, std::int64_t row) const = 0;

  /// Takes a Transaction hold on all of the table's records except those that others hold, and returns the
  /// rows of those (in either way of holding). While this stands, nobody else can take a record of the table.
  /// A whole-table hold of another owner is returned as an entry with row 0, and nothing is taken. Once for
  /// each table; ReleaseTable ends it and also every single Transaction hold on that table.
  virtual std::vector<HeldRecord> TakeTable(int table) = 0;
  virtual bool HasTable(int table) const = 0;
  virtual void ReleaseTable(int table) = 0;
  /// Ends every Transaction hold of this owner.
  virtual void ReleaseTransaction() = 0;
  /// Turns the whole-table holds on these tables into holds of just the named records, without a gap in which
  /// another could take them. Records that were taken singly stay held, and so do other tables. Skips a named
  /// record that no whole-table hold includes.
  virtual void Narrow(const std::map<int, std::vector<std::int64_t>>& rowsByTable) = 0;

  /// Shows the others that this owner waits for the file or for a record, or no longer does.
  virtual void ShowWaiting(bool waiting) = 0;
  /// Whether another owner shows that it waits.
  virtual bool OthersWait() const = 0;
  /// Whether another owner has the file open.
  virtual bool OthersAreIn() const = 0;

  /// Who is in the file and lives, this owner among them, in the order of the slots.
  virtual std::vector<RosterEntry> Roster() const = 0;
  /// All records of these tables that others hold.
  virtual std::vector<HeldRecord> HeldByOthers(const std::vector<int>& tables) const = 0;
};

}  // namespace store
