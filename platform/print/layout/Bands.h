// A band that was evaluated and measured, ready to be placed on a page.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/print/definition/ReportDefinition.h"
#include "platform/print/layout/Totals.h"
#include "platform/print/layout/Values.h"
#include "platform/print/pages/Page.h"

namespace print {

/// A formula with the places of its totals.
struct PlannedFormula {
  const Formula* formula = nullptr;
  std::vector<TotalUse> totals;
  /// Its totals of pages: accumulators at kPageLevel or kPlacedLevel, known when the page is full.
  bool ofPage = false;
};

/// How a cell's value becomes its text.
struct CellLook {
  std::string format;
  std::optional<Color> negative;
  Length width = 0;
  int lines = 1;  ///< how many lines there is room for
  bool grows = false;
};

/// A cell whose value depends on the page that it will be on.
struct DeferredCell {
  std::size_t part = 0;
  std::size_t cell = 0;
  const PlannedFormula* use = nullptr;
  BandValues values;
  CellLook look;
};

struct BuiltBand;

/// The headers that groups repeat on a further page, from the outermost inwards; null where one does not.
using RepeatedHeaders = std::vector<std::shared_ptr<const BuiltBand>>;

/// Its boxes count from the band's top, and from the page's left edge.
struct BuiltBand {
  std::vector<PlacedBand> parts;  ///< the band itself, then those of its subreports
  Length height = 0;
  Length spaceBefore = 0;
  Length spaceAfter = 0;
  bool newPageBefore = false;
  bool newPageAfter = false;
  std::vector<DeferredCell> deferred;
  std::int64_t row = -1;  ///< the row that it shows
  RowValues pageValues;   ///< of a detail: what it adds to the totals of its page
  std::optional<OutlineEntry> outline;
  /// Of the groups that go on around the band.
  std::shared_ptr<const RepeatedHeaders> repeated;

  /// Whether something would be seen.
  bool Seen() const { return height > 0; }
  Length Whole() const { return spaceBefore + height + spaceAfter; }
};

/// Sets the text of a cell: shortened to one line, wrapped if the look says so; a number that is too wide
/// gets a smaller font, so that no digit is ever cut off. Returns false if it had to be cut all the same.
bool SetCellText(Cell& cell, const rt::Value& value, const CellLook& look);

/// How much of a band could be cut off within `available` without cutting through a line of text.
Length CutBetweenLines(const BuiltBand& band, Length available);

/// Cuts a band that is higher than `available`: no line of text is cut through. What is returned goes to the
/// next page. Nothing is returned if nothing but the whole fits nowhere: then the band was clipped.
std::optional<BuiltBand> SplitBand(BuiltBand& band, Length available);

}  // namespace print
