// Every statement that names rows by their keys, and every definition. How an engine calls a row's key, and
// how it declares a table, is known to its Statements alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Dialect.h"
#include "platform/store/RecordWrites.h"
#include "platform/store/Schema.h"

namespace store {

/// One engine's texts.
class Statements {
 public:
  virtual ~Statements() = default;

  // --- rows of a query
  /// The keys of all rows, one for each table, in the query's order; rows that this order leaves equal come
  /// by their keys, so that every reading gives the same order.
  virtual std::string KeysInOrder(const Translation& query) const = 0;
  /// The keys and columns of all rows, in the order of KeysInOrder.
  virtual std::string RowsInOrder(const Translation& query) const = 0;
  /// The same where only the query's own order counts.
  virtual std::string RowsInAnyOrder(const Translation& query) const = 0;
  enum class WhichKeys { All, One };
  /// The leading keys of all rows, ascending, each once. With `One`: the key :k0 where that row is among
  /// them.
  virtual std::string KeysWhere(const Translation& query, WhichKeys which) const = 0;
  /// The keys and columns of the row whose keys are :k0, :k1 …
  virtual std::string RowByKeys(const Translation& query) const = 0;
  /// The rows whose keys are :keys: for each row that is there its place in the list, its keys and its
  /// columns. They may come in any order.
  virtual std::string RowsByKeys(const Translation& query) const = 0;
  /// One expression of the row whose keys are :k0, :k1 …
  virtual std::string ValueByKeys(const Translation& query, const std::string& expression) const = 0;
  /// An expression that is Null where a column is, and 1 otherwise, and that does not read a large value.
  virtual std::string Presence(const std::string& column) const = 0;

  // --- rows of a table; `all` is the query of all its columns
  /// The key and the columns of up to so many rows behind the key ?1, ascending.
  virtual std::string RowsAfter(const Translation& all, std::int64_t rows) const = 0;
  /// The key and the columns of the last row before the key ?1.
  virtual std::string RowBefore(const Translation& all) const = 0;
  /// The key and the columns of the first row, in the order of the index, whose leading columns of it are ?1,
  /// ?2 … or Null; `nulls` says which of them.
  virtual std::string FirstByIndex(const Translation& all, const IndexInfo& index,
                                   const std::vector<bool>& nulls) const = 0;
  /// The keys and the columns of all rows whose first column of the index is ?1, or Null, in the order of the
  /// index, but no more than `most`.
  virtual std::string AllByLeading(const Translation& all, const IndexInfo& index, bool null,
                                   std::int64_t most) const = 0;
  /// The keys of all rows in the order of an index.
  virtual std::string KeysByIndex(const TableInfo& table, const IndexInfo& index) const = 0;
  virtual std::string Count(const TableInfo& table) const = 0;
  /// A row where the table has any.
  virtual std::string AnyRow(const TableInfo& table) const = 0;
  /// A row where the table has one of the key ?1.
  virtual std::string IsThere(const TableInfo& table) const = 0;
  /// The key and these columns of all rows behind the key ?1, ascending.
  virtual std::string Scan(const TableInfo& table, const std::vector<std::string>& columns) const = 0;

  // --- writes
  virtual RecordUpdate UpdateByKey(const TableInfo& table,
                                   const std::vector<WrittenColumn>& columns) const = 0;
  /// The key is ?1.
  virtual std::string DeleteByKey(const TableInfo& table) const = 0;
  /// A record with these columns. The last parameter is its key, Null for one that gets a key.
  virtual std::string InsertWithKey(const TableInfo& table,
                                    const std::vector<WrittenColumn>& columns) const = 0;
  /// Many records with these columns, which get keys; see Session::InsertMany.
  virtual std::string InsertMany(const TableInfo& table, const std::vector<WrittenColumn>& columns) const = 0;
  /// The rows of an INSERT … SELECT, with the numbers from parameter ?`first` on.
  virtual std::string InsertNumbered(const Translation& insert, const ColumnInfo& counter,
                                     std::size_t first) const = 0;
  /// The keys of the records that an UPDATE or DELETE touches, so many at most.
  virtual std::string KeysTouched(const Translation& write, std::int64_t rows) const = 0;
  /// A row where the record with the key :k0 is among them.
  virtual std::string IsTouched(const Translation& write) const = 0;

  // --- definitions
  virtual std::string CreateTable(const TableInfo& table) const = 0;
  virtual std::string DropTable(const TableInfo& table) const = 0;
  virtual std::string AddColumn(const TableInfo& table, const ColumnInfo& column) const = 0;
  virtual std::string DropColumn(const TableInfo& table, std::string_view column) const = 0;
  virtual std::string RenameColumn(const TableInfo& table, std::string_view column,
                                   std::string_view newName) const = 0;
  virtual std::string CreateIndex(const TableInfo& table, const IndexInfo& index) const = 0;
  virtual std::string DropIndex(const TableInfo& table, const IndexInfo& index) const = 0;
  /// A row where the planner of queries has been told what to expect of any index.
  virtual std::string AnyExpectation() const = 0;
  using WithValues = std::pair<std::string, std::vector<rt::Value>>;
  /// What tells it; see Connection::Expect. `first` where nothing has been told yet.
  virtual std::vector<WithValues> Expect(const TableInfo& table, std::string_view index,
                                         const std::vector<std::int64_t>& rows, bool first) const = 0;
};

/// The key and all columns of a table's rows, without the conditions.
std::string RowsOfTable(const Translation& query);
/// Completes RowsOfTable to the first row with these leading values of an index; the values are ?1, ?2 …
/// `nulls` says for each of them whether it is Null.
std::string FirstByIndex(const IndexInfo& index, const std::vector<bool>& nulls);
/// Completes RowsOfTable to all rows with this value in the first field of an index, in the index's order,
/// but no more than `most`. The value is ?1.
std::string AllByLeading(const IndexInfo& index, bool null, int most);

/// See RecordUpdate and RecordInsert.
std::string UpdateOne(const std::string& table, const std::vector<WrittenColumn>& columns);
std::string UpdateRange(const std::string& table, const std::vector<WrittenColumn>& columns);
std::string UpdateListed(const std::string& table, const std::vector<WrittenColumn>& columns);
std::string InsertMany(const std::string& table, const std::vector<WrittenColumn>& columns);
/// Adds one record; its values are ?1, ?2 … and the last parameter is its key, Null for the next free one.
std::string InsertOne(const std::string& table, const std::vector<WrittenColumn>& columns);

}  // namespace store
