// Every statement that names rows by their keys. How the engine calls a row's key is known here alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store/Dialect.h"

namespace store {

/// The keys of all rows of a query, one for each table, in the query's order; rows that this order leaves
/// equal come by their keys, so that every reading gives the same order.
std::string KeysInOrder(const Translation& query);

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

}  // namespace store
