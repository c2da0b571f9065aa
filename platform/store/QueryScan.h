// A query read once from its first row to its last, by one statement.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Connection.h"

namespace store {

class RawRow;

/// The row that the reading of a query has reached; its columns are numbered from 0.
class QueriedRow {
 public:
  QueriedRow(const RawRow& row, std::int64_t key, const std::vector<ColumnType>& types)
      : row_(row), key_(key), types_(types) {}
  /// The key of the row of the query's first table; 0 for a query without keys.
  std::int64_t Key() const { return key_; }
  /// What another program stored in the wrong form comes as it is. Of a picture there is only whether it is
  /// there: 1 or Null. Throws RuntimeError 6 for an amount beyond the range.
  rt::Value Value(int column) const;

 private:
  const RawRow& row_;
  std::int64_t key_;
  const std::vector<ColumnType>& types_;
};

/// What decides among rows that a query's own order leaves equal.
enum class Ties {
  ByKeys,  ///< ascending keys
  Any,     ///< nothing: the quickest way through the tables
};

/// Calls `look` for each row of a SELECT, in its order and, where that leaves rows equal, as `ties` says.
/// All rows are of one moment; others cannot commit until the reading ends. It ends early, and returns false,
/// if `look` returns false. `look` must not use the connection, nor write to the file by another one.
///
/// Throws StoreError as Connection::Plan does, 3065 for a statement that gives no rows, and what reading a
/// file can give.
bool ReadQuery(const std::shared_ptr<Connection>& connection, std::string_view sql, Ties ties,
               const std::function<bool(const QueriedRow&)>& look);

/// Makes the connection, which must be read-only and have no Reading, read a private copy of the file, which
/// is of one moment and keeps nobody from anything. `goOn` is asked every few milliseconds. False, with the
/// connection as it was, if it says no or if the temporary directory ($TMPDIR, otherwise /tmp) cannot take
/// the copy.
///
/// While the copy is made others can commit: each waits for a look of about 8 ms at the most. If somebody
/// did, one longer look follows, in which the file is compared with the copy.
bool ReadFromCopy(const std::shared_ptr<Connection>& connection, const std::function<bool()>& goOn);

/// Ends readings of a connection with a StoreError as soon as `over` says so, also those that have not found
/// a row yet. It is asked every few tenths of a millisecond.
class ReadingEnd {
 public:
  ReadingEnd(std::shared_ptr<Connection> connection, std::function<bool()> over);
  ~ReadingEnd();
  ReadingEnd(const ReadingEnd&) = delete;
  ReadingEnd& operator=(const ReadingEnd&) = delete;

 private:
  std::shared_ptr<Connection> connection_;
};

}  // namespace store
