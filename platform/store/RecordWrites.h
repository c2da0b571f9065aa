// The statements that change single records, whose keys are known: one by one, or many at once.
#pragma once

#include <cstddef>
#include <string>

namespace store {

/// A column and the place of its value among the values of a record.
struct WrittenColumn {
  std::string name;
  std::size_t place = 0;
};

/// What changes these columns of records; see Statements::UpdateByKey and Session::UpdateMany.
struct RecordUpdate {
  /// For one record: the new values are the parameters ?1, ?2 …, in the order of the columns, and the key is
  /// the last one.
  std::string one;
  std::string range;  ///< for many records whose keys are whole numbers without a gap
  std::string list;   ///< for many records with any keys
};

}  // namespace store
