// The report as a table: for the outputs that have rows and columns instead of pages.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/print/output/PageTexts.h"

namespace print {

struct TableColumn {
  std::string heading;
  Length left = 0;
  Length width = 0;
  Align align = Align::Left;
  std::string format;
};

/// The columns that a report's cells lie in, from left to right: those of its definition that are used, and
/// one for each left edge of the details' other cells. There is always one.
class TableColumns {
 public:
  /// Reads all pages once.
  explicit TableColumns(const PageStore& pages);

  const std::vector<TableColumn>& All() const { return columns_; }
  /// The place of the column that the cell begins in.
  int PlaceOf(const Cell& cell) const;
  /// The place of the last column that the cell reaches; at least PlaceOf.
  int EndOf(const Cell& cell) const;
  /// Whether the report has rows; if not, its innermost sums stand for them.
  bool HasDetails() const { return hasDetails_; }
  /// The innermost group of the report; -1 without groups.
  int InnermostGroup() const { return innermostGroup_; }

 private:
  std::vector<TableColumn> columns_;
  std::map<int, int> ofColumn_;   ///< the place by the column of the definition
  std::map<Length, int> ofFree_;  ///< the place by the left edge of free cells
  bool hasDetails_ = false;
  int innermostGroup_ = -1;
};

/// The cells of a band in rows of text, from left to right. Cells of one row have nearly one baseline.
std::vector<std::vector<const Cell*>> RowsOf(const PlacedBand& band);

}  // namespace print
