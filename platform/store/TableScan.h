// A table read once from its first record to its last, for work that looks at every record.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store/Connection.h"
#include "platform/store/RawRow.h"

namespace store {

class Prepared;

/// The record that a scan has reached, with the columns that it was asked for, numbered from 0. What it
/// returns of a text is valid until the scan goes on.
class ScannedRecord {
 public:
  using Cell = store::Cell;
  explicit ScannedRecord(const Prepared& statement) : statement_(statement) {}
  std::int64_t Key() const;
  Cell CellOf(int column) const;
  std::int64_t Whole(int column) const;
  double Real(int column) const;
  std::string_view Text(int column) const;

 private:
  const Prepared& statement_;
};

/// Calls `look` for each record of the table, by ascending key.
///
/// It reads the named columns only, and it lets go of the file every few milliseconds so that others can
/// commit. A record that another user changes meanwhile is therefore seen once, as it was before or as it is
/// after the change; what is added or deleted meanwhile may be seen or not. `look` must not use the
/// connection.
///
/// Throws StoreError: 3078 where there is no such table, 3265 where it has no such column, and what reading a
/// file can give.
void ScanTable(const std::shared_ptr<Connection>& connection, std::string_view table,
               const std::vector<std::string>& columns,
               const std::function<void(const ScannedRecord&)>& look);

}  // namespace store
