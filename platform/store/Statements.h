// Every statement that names rows by their keys. How the engine calls a row's key is known here alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store/Dialect.h"
#include "platform/store/RecordWrites.h"
#include "platform/store/Schema.h"

namespace store {

/// The keys of all rows of a query, one for each table, in the query's order; rows that this order leaves
/// equal come by their keys, so that every reading gives the same order.
std::string KeysInOrder(const Translation& query);

/// The keys and columns of all rows, in the order of KeysInOrder.
std::string RowsInOrder(const Translation& query);

enum class WhichKeys { All, One };
/// The leading keys of all rows of a query, ascending, each once. With `One`: the key :k0 where that row is
/// among them.
std::string KeysWhere(const Translation& query, WhichKeys which = WhichKeys::All);

/// The keys and columns of the row whose keys are :k0, :k1 …
std::string RowByKeys(const Translation& query);
/// The rows whose keys are in :keys, a list of lists of keys in JSON: for each row that is there its place in
/// the list, its keys and its columns. They may come in any order.
std::string RowsByKeys(const Translation& query);
/// What :keys takes: the keys of some rows, `width` for each, one after the other.
std::string KeyList(const std::int64_t* keys, std::size_t width, std::size_t rows);
/// One expression of that row.
std::string ValueByKeys(const Translation& query, const std::string& expression);

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
