// Records that are written by their keys: one by one, or many by one statement.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/runtime/Value.h"

namespace store {

class Handle;
class RowList;

/// A column and the place of its value among the values of a record.
struct WrittenColumn {
  std::string name;
  std::size_t place = 0;
};

/// The statements that change these columns of single records, whose keys are known.
struct RecordUpdate {
  RecordUpdate(const std::string& table, const std::vector<WrittenColumn>& columns);

  /// For one record: the new values are the parameters ?1, ?2 …, in the order of the columns, and the key is
  /// the last one.
  std::string one;
  std::string range;  ///< for the records of a list ?1 whose keys are ?2 to ?3
  std::string list;   ///< for the records of a list ?1 whose keys are ?2, in JSON
};

/// The statement that adds records with these columns and gives each the next free key.
struct RecordInsert {
  RecordInsert(const std::string& table, const std::vector<WrittenColumn>& columns);

  std::string many;  ///< for the first ?2 records of a list ?1
};

/// Changes the records of a list, which has their keys in ascending order; the number of records changed.
std::int64_t UpdateRecords(Handle& handle, const RecordUpdate& update, RowList& rows);
/// Adds the records of a list, which has no keys. Returns the key of the first; those of the others follow in
/// order.
std::int64_t InsertRecords(Handle& handle, const RecordInsert& insert, RowList& rows);

}  // namespace store
