// The rows of one run: read in one go, spooled, read again by place.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/runtime/Value.h"

namespace print {

using Row = std::vector<rt::Value>;

/// Rows that were read from the data file and do not change any more. Up to 64 MB stay in memory, the rest
/// goes to a temporary file without a name. One thread appends, afterwards any may read.
class RowSpool {
 public:
  RowSpool();
  ~RowSpool();
  RowSpool(const RowSpool&) = delete;
  RowSpool& operator=(const RowSpool&) = delete;

  /// Throws PrintError if the temporary disk is full.
  void Append(std::span<const rt::Value> row);
  void Append(const Row& row) { Append(std::span(row)); }
  std::int64_t Count() const;
  /// Puts the rows in another order: `order` has, for each place, the row that belongs there. Only after the
  /// last row. Throws PrintError if the temporary disk is full.
  void Arrange(std::vector<std::uint32_t> order);
  /// The row with this place, from 0, into `row`, which keeps its memory. In order it costs next to nothing.
  void Read(std::int64_t place, Row& row) const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

/// All that a run needs of the data file: the rows of the report in their order (group keys first, then the
/// sort), and those of each subreport ordered by the linking field.
struct ReportRows {
  RowSpool rows;
  /// What headings and titles read where there is no row at all: the fields of the tables that are joined by
  /// a constant only, all other fields Null.
  Row blank;
  struct Inner {
    std::unique_ptr<ReportRows> rows;
    /// The places of the rows whose linking field has this value: first and count; count 0 if there are none.
    std::function<std::pair<std::int64_t, std::int64_t>(const rt::Value&)> find;
  };
  std::vector<Inner> subreports;  ///< as ReportDefinition::subreports
};

}  // namespace print
