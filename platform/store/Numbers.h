// The keys of records as values.
#pragma once

#include <cstdint>

#include "platform/runtime/Value.h"
#include "platform/store/Schema.h"

namespace store {

/// A record's key as a parameter of a statement, whole also where another program has given it more than 32
/// bits.
rt::Value KeyValue(std::int64_t key);
/// The key that such a parameter is.
std::int64_t KeyOf(const rt::Value& value);
/// Throws 6 for a key, given by another program, that lies beyond the records that can be locked.
void CheckLockable(const TableInfo& table, std::int64_t key);

}  // namespace store
