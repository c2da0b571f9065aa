// A set of records with a place in it.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Connection.h"

namespace store {

/// When a record that is being changed is taken from others.
enum class Locking {
  ReadOnly,     ///< never: the cursor changes nothing
  Pessimistic,  ///< from Edit on
  Optimistic,   ///< for the moment of Update
};

struct FieldInfo {
  std::string name;
  ColumnType type = ColumnType::Text;
  int size = 0;
  std::string table;  ///< empty for a computed column
  std::string column;
};

enum class Direction { Add, Subtract };

/// A record's key, for coming back to it. Keys of deleted records lead to 3167.
using Bookmark = std::vector<std::int64_t>;

/// The keys of all rows are read once, the rows themselves in windows as they are visited. Queries that group
/// or sort out doubles have no keys: they are read whole and cannot be changed. A cursor stands before the
/// first row, on a row, or behind the last; a new one stands on the first. The order where none is asked for
/// is ascending ID.
class Cursor {
 public:
  static std::unique_ptr<Cursor> OpenQuery(std::shared_ptr<Connection> connection, std::string_view sql,
                                           Locking locking);
  /// A whole table, in the order of its primary key, and able to Seek. Rows that others add turn up when they
  /// are reached.
  static std::unique_ptr<Cursor> OpenTable(std::shared_ptr<Connection> connection, std::string_view table,
                                           Locking locking);
  virtual ~Cursor() = default;

  virtual const std::vector<FieldInfo>& Fields() const = 0;
  /// Position of a column: by its name, by "table.column", or by a bare name that only one table has; 3265 if
  /// none.
  virtual int FieldIndex(std::string_view name) const = 0;

  virtual bool AtBegin() const = 0;
  virtual bool AtEnd() const = 0;
  virtual std::int64_t Count() = 0;
  virtual void MoveFirst() = 0;
  virtual void MoveLast() = 0;
  /// 3021 when already beyond the end (or before the beginning).
  virtual void MoveNext() = 0;
  virtual void MovePrevious() = 0;
  /// Row number from 0; -1 where a table cursor would have to count.
  virtual std::int64_t Position() = 0;
  virtual void MoveTo(std::int64_t position) = 0;
  virtual Bookmark Mark() = 0;
  virtual void GoTo(const Bookmark& mark) = 0;

  /// The value in the row, or in the edit buffer while there is one. 3021 without a row, 3167 for a deleted
  /// one.
  virtual rt::Value Get(int field) = 0;
  /// 3020 without Edit or AddNew (an ADO recordset begins the edit by itself). 3163 for a text that is too
  /// long, 3421 for a value of the wrong kind, 6 for a number beyond the column's range.
  virtual void Set(int field, const rt::Value& value) = 0;

  virtual bool Editing() const = 0;
  virtual bool Adding() const = 0;
  /// Takes the record (unless optimistic) and reads it anew. 3218 held in a window, 3260 held by a
  /// transaction, 3167 gone.
  virtual void Edit() = 0;
  virtual void AddNew() = 0;
  /// Stores the edit or the new record. 3020 without one, 3186 for a record held elsewhere, 3022 for a
  /// doubled key, 3314 for a required column that is Null. The edit goes on after a failure. After AddNew the
  /// place is where it was; the new record is at LastModified.
  virtual void Update() = 0;
  virtual void CancelUpdate() = 0;
  /// 3260 for a record held elsewhere.
  virtual void Delete() = 0;
  virtual Bookmark LastModified() const = 0;
  /// Whether another open of the file in this same process holds the record at the place: a hold that no wait
  /// can end. False without a record.
  virtual bool HeldByThisProcess() const = 0;

  /// Table cursors: 3015 for no such index.
  virtual void SetIndex(std::string_view name) = 0;
  /// The first record with these leading key values; NoMatch tells. A Null finds the record with Null there.
  virtual void Seek(const std::vector<rt::Value>& key) = 0;
  virtual bool NoMatch() const = 0;
  /// Inside a group: adds values to fields of the record with this whole key, or subtracts them; Seek, Edit,
  /// Set and Update in one step. False, and nothing has happened, where it cannot be done in one step: the
  /// record is not in the group's memory, is held by another, or cannot take the sum. The single steps do it
  /// then, or say what is in the way.
  virtual bool AddAtOnce(const std::vector<rt::Value>& /*key*/, const std::vector<int>& /*fields*/,
                         std::span<const rt::Value> /*values*/, Direction /*direction*/) {
    return false;
  }
  /// The first row, or the next one behind the place, for which a condition of the dialect holds; NoMatch
  /// tells.
  virtual void FindFirst(std::string_view condition) = 0;
  virtual void FindNext(std::string_view condition) = 0;

  /// Runs the query again and stands on the first row.
  virtual void Requery() = 0;
  /// Lets go of its record and of the file; only destruction is left.
  virtual void Detach() = 0;
};

}  // namespace store
