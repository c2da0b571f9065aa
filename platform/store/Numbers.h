// The numbers of records: what a table still has for new ones, and keys as values.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/store/Handle.h"
#include "platform/store/Schema.h"

namespace store {

/// How many numbers a table's counter has left for new records. Everything above the store takes a number for
/// 32 bits wide.
std::int64_t NumbersLeft(Handle& handle, const TableInfo& table);
/// Throws 6 where a table has fewer numbers left.
void CheckNumbersLeft(Handle& handle, const TableInfo& table, std::int64_t needed = 1);
/// Throws 6 where the target of an INSERT has not as many numbers left as the statement would use.
void CheckNumbersLeft(Handle& handle, const QueryPlan& insert, const std::vector<rt::Value>& parameters);

/// A record's key as a parameter of a statement, whole also where another program has given it more than 32
/// bits.
rt::Value KeyValue(std::int64_t key);
/// Throws 6 for a key, given by another program, that lies beyond the records that can be locked.
void CheckLockable(const TableInfo& table, std::int64_t key);

}  // namespace store
