// What outputs read of pages: the texts of cells, and the bands in the order of reading.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/output/Outputs.h"
#include "platform/print/pages/PageStore.h"

namespace print {

/// The texts of cells, late values included.
class PageTexts {
 public:
  explicit PageTexts(const PageStore& pages) : pages_(pages) {}
  /// The lines of the cell; those of a late value stay valid until the next call.
  const std::vector<std::string>& Lines(const Cell& cell);
  /// The text of the cell with blanks between its lines, clean (see Clean).
  std::string Joined(const Cell& cell);
  /// The value of the cell, or the late value.
  rt::Value Value(const Cell& cell);

 private:
  const PageStore& pages_;
  std::vector<std::string> late_;
};

/// UTF-8 without control characters: what is not UTF-8 becomes '?', tabs and line breaks become blanks.
std::string Clean(std::string_view text);
/// The same, but keeps '\n' (a "\r\n" becomes one).
std::string CleanLines(std::string_view text);

/// The first and the one past the last page of a range, from 0. Throws PrintError if the report has none of
/// the pages.
struct PageSpan {
  int begin = 0;
  int end = 0;
};
PageSpan SpanOf(const PageStore& pages, const PageRange& range);

/// Calls `take` with each band of the report as one long text: page headers only of the first page, no page
/// footers, no repeated or continued bands. After each page `progress` is asked, which may be empty; false if
/// it cancels.
bool ReadThrough(const PageStore& pages, const OutputProgress& progress,
                 const std::function<void(const Page& page, const PlacedBand& band)>& take);

}  // namespace print
