// A finished page: bands with their cells and rules, placed. Every output draws or reads these and computes
// nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/print/Units.h"
#include "platform/runtime/Value.h"

namespace print {

enum class BandKind { PageHeader, ReportHeader, GroupHeader, Detail, GroupFooter, ReportFooter, PageFooter };

/// A piece of text in its box. All boxes of a page count from the page's upper left corner.
struct Cell {
  Box box;
  Align align = Align::Left;
  TextStyle style;
  /// The text as it is drawn, wrapped. A cell with a slot has none: its text comes from PageStore::Slot.
  std::vector<std::string> lines;
  /// What the text says, with its type: a spreadsheet stores this. Null for labels and blank cells.
  rt::Value value;
  /// The name of the display format of the value ("money", "number1", "date", ...); empty for plain texts.
  std::string format;
  /// The column of the definition that the cell lies in, from 0; -1 for free text.
  int column = -1;
  /// The late value that the cell shows, from 0; -1 for none.
  int slot = -1;
  /// Whether the cell is a column's heading.
  bool heading = false;
  /// For totals: the sum of this column over the rows of the band's scope, so that a spreadsheet can write a
  /// formula.
  bool columnTotal = false;
  friend bool operator==(const Cell&, const Cell&) = default;
};

/// A straight line or a filled rectangle.
struct Rule {
  Box box;  ///< a horizontal or vertical line has its thickness as height or width
  Color color;
  friend bool operator==(const Rule&, const Rule&) = default;
};

/// What one band of the definition has put on a page. A band that was split appears on two pages.
struct PlacedBand {
  BandKind kind = BandKind::Detail;
  /// The group that a header or footer belongs to, the outermost is 0; -1 for other bands.
  int group = -1;
  /// Nesting in a subreport: 0 for the report itself.
  int subreport = 0;
  /// A group header that is repeated on a further page, or the rest of a split band: outputs that flow leave
  /// it out.
  bool continued = false;
  Box box;
  std::vector<Rule> rules;  ///< drawn below the cells, in order; shading comes first
  std::vector<Cell> cells;
  friend bool operator==(const PlacedBand&, const PlacedBand&) = default;
};

struct Page {
  int number = 1;
  Length width = 0;
  Length height = 0;
  std::vector<PlacedBand> bands;
  friend bool operator==(const Page&, const Page&) = default;
};

/// One entry of the tree of groups.
struct OutlineEntry {
  int level = 0;
  std::string title;
  int page = 1;
  Length top = 0;
};

/// A value that became known after its page was finished.
struct SlotValue {
  std::string text;
  rt::Value value;
  friend bool operator==(const SlotValue&, const SlotValue&) = default;
};

}  // namespace print
