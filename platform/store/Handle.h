// The SQLite database underneath a connection, with its prepared statements. Nothing outside this folder sees
// it.
#pragma once

#include <sqlite3.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Cursor.h"
#include "platform/store/Dialect.h"
#include "platform/store/Schema.h"
#include "platform/store/StoreError.h"

namespace store {

/// Values of one row as the file holds them; each is decoded when it is asked for.
class RawRow {
 public:
  /// Copies `count` columns of the statement's current row, from column `first` on.
  void Read(sqlite3_stmt* statement, int first, int count);
  /// Copies one value, as the only cell.
  void Read(sqlite3_value* value);
  /// The value of a cell of a column of this type. What another program stored in the wrong form comes back
  /// as it is.
  rt::Value Decode(int cell, ColumnType type) const;
  bool Empty() const { return cells_.empty(); }
  void Clear() {
    cells_.clear();
    bytes_.clear();
  }

 private:
  struct Cell {
    int kind = SQLITE_NULL;
    std::uint32_t length = 0;
    union {
      std::int64_t whole = 0;
      double real;
      std::size_t offset;
    };
  };
  template <typename Source>
  void Take(const Source& source, Cell& cell);

  std::vector<Cell> cells_;
  std::string bytes_;
};

/// A query translated and cut into the statements that a cursor needs.
struct QueryPlan {
  Translation translation;
  std::shared_ptr<const Schema> schema;
  std::vector<FieldInfo> fields;
  const TableInfo* leading = nullptr;  ///< the first table: the one whose fields can be changed
  std::vector<int> leadingColumn;      ///< of each field: its column in `leading`, or -1
  std::vector<ColumnType> types;       ///< of the result columns
  bool keyed = false;                  ///< its rows can be found again by the keys of their tables
  std::string keys;                    ///< the keys of all rows, in order
  std::string row;                     ///< one row by its keys :k0, :k1 …
  std::string rows;                    ///< several rows by a list of keys, :keys
  std::string whole;                   ///< all rows, where they have no keys
  std::vector<std::string> apart;  ///< of each field: its value alone by the keys, where rows leave it out
};

class Handle;
class RowList;
class SideFile;

/// A statement that waits for its next use.
struct PreparedStatement {
  sqlite3_stmt* statement = nullptr;
  bool busy = false;
};

/// A prepared statement in use; resetting it at the end lets go of the file.
class Use {
 public:
  Use(Handle& handle, std::string_view sql);
  ~Use();
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

  /// Binds ?index; an index that the statement does not have is passed over.
  void Bind(int index, const rt::Value& value);
  void Bind(int index, std::int64_t value);
  void BindKey(int key, std::int64_t value);
  /// Binds :keys; see KeyList.
  void BindKeyList(std::string_view keys);
  /// Binds rows for dw_value; they must live for as long as the statement is in use.
  void BindRows(int index, RowList& rows);
  void BindAll(const std::vector<rt::Value>& values);
  /// True while there is a row. Throws StoreError.
  bool Step();
  /// Makes ready for another round with other bindings.
  void Reset() { sqlite3_reset(statement_); }
  sqlite3_stmt* Raw() const { return statement_; }
  std::int64_t Int64(int column) const { return sqlite3_column_int64(statement_, column); }
  std::string Text(int column) const;

 private:
  Handle& handle_;
  sqlite3_stmt* statement_ = nullptr;
  PreparedStatement* kept_ = nullptr;  ///< null for a copy of its own
};

/// One SQLite database. Handles outlive connections: they wait, without any lock, for the next open of the
/// same file.
class Handle {
 public:
  /// Throws StoreError as Connection::Open.
  static std::unique_ptr<Handle> Acquire(const std::string& path, bool readOnly);
  static void Park(std::unique_ptr<Handle> handle);
  /// Closes the handles that wait, so that a file can be replaced.
  static void DropParked(const std::string& path);
  ~Handle();

  /// Whether this process has the file open, by whatever path.
  static bool AnyOf(const std::string& path);
  /// Whether another file has taken this one's name, or none bears it any more.
  bool IsReplaced() const;
  sqlite3* Db() const { return db_; }
  const std::string& Path() const { return path_; }
  bool ReadOnly() const { return readOnly_; }

  void Run(std::string_view sql);
  /// The first column of the first row of a statement without parameters; 0 for none.
  std::int64_t Number(std::string_view sql);

  /// The tables as they are. Other users' changes are noticed within a fifth of a second, or at once when
  /// asked.
  const std::shared_ptr<const Schema>& Tables(bool checkNow = false);
  void ForgetTables();
  std::shared_ptr<const QueryPlan> Plan(const Normalized& statement);
  [[noreturn]] void Fail(int code, std::string_view sql = {});
  /// How long to wait for another writer before the error 3188. A commit waits for readers for a minute at
  /// least.
  void SetPatience(std::chrono::milliseconds patience) { patience_ = patience; }
  /// Where to show that this handle waits for another writer; null for nowhere.
  void SetWaitingSign(SideFile* sign) { sign_ = sign; }

 private:
  friend class Use;
  Handle();
  static std::unique_ptr<Handle> FindOrOpen(const std::string& path, bool readOnly);
  static int Nap(void* self, int tries);
  std::chrono::milliseconds patience_{15000};
  std::chrono::steady_clock::time_point waitingSince_;
  void StopWaiting();
  SideFile* sign_ = nullptr;
  bool waiting_ = false;
  std::string path_;
  bool readOnly_ = false;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  sqlite3* db_ = nullptr;
  /// Finds a text without making a string of it first.
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  std::unordered_map<std::string, PreparedStatement, TextHash, std::equal_to<>> statements_;
  std::unordered_map<std::string, std::shared_ptr<const QueryPlan>> plans_;
  std::shared_ptr<const Schema> schema_;
  std::optional<StoreError> refused_;  ///< why dw_fit has refused a value of the statement that fails
  std::int64_t schemaVersion_ = -1;
  std::chrono::steady_clock::time_point schemaChecked_;
};

/// Whether an error of the database means that the disk, or the user's share of it, is full.
bool DiskIsFull(sqlite3* db, int code);
/// Reads the tables, columns and indexes of a file.
Schema ReadSchema(Handle& handle);
std::shared_ptr<const QueryPlan> MakePlan(Translation translation, std::shared_ptr<const Schema> schema);

/// The value as a column takes it: converted to the column's type, its size and range checked. Throws
/// StoreError 3163, 3315, 3421 or 6.
rt::Value FitToColumn(const ColumnInfo& column, const rt::Value& value);
/// The text of an error about one column.
std::string InColumn(const ColumnInfo& column, const std::string& text);

}  // namespace store
