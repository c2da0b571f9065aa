#include "platform/print/output/RowTable.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "platform/print/fonts/Fonts.h"

namespace print {
namespace {

constexpr Length kTolerance = 2 * kPoint;

bool IsRow(const PlacedBand& band) { return band.kind == BandKind::Detail && band.subreport == 0; }

}  // namespace

TableColumns::TableColumns(const PageStore& pages) {
  std::set<int> used;
  std::set<int> usedByRows;
  std::map<Length, TableColumn> free;
  ReadThrough(pages, {}, [&](const Page&, const PlacedBand& band) {
    hasDetails_ = hasDetails_ || IsRow(band);
    if (band.subreport == 0) innermostGroup_ = std::max(innermostGroup_, band.group);
    for (const Cell& cell : band.cells) {
      if (cell.column >= 0) used.insert(cell.column);
      if (cell.column >= 0 && IsRow(band) && !cell.heading) usedByRows.insert(cell.column);
      if (cell.column >= 0 || !IsRow(band)) continue;
      TableColumn& column = free[cell.box.left];
      column.left = cell.box.left;
      column.width = std::max(column.width, cell.box.width);
      column.align = cell.align;
    }
  });
  struct Found {
    TableColumn column;
    int definition = -1;
  };
  std::vector<Found> found;
  const auto& known = pages.Facts().columns;
  for (const int place : used) {
    if (static_cast<std::size_t>(place) >= known.size()) continue;
    const ReportFacts::Column& column = known[static_cast<std::size_t>(place)];
    found.push_back({{Clean(column.heading), column.left, column.width, column.align, column.format}, place});
  }
  // A free cell below a heading whose column has no cells of its own is what the heading means.
  std::map<Length, int> under;
  for (const auto& [left, column] : free) {
    const auto heading = std::find_if(found.begin(), found.end(), [&, edge = left](const Found& entry) {
      return entry.definition >= 0 && !usedByRows.contains(entry.definition) &&
             std::abs(entry.column.left - edge) <= kTolerance;
    });
    if (heading == found.end())
      found.push_back({column, -1});
    else
      under[left] = heading->definition;
  }
  if (found.empty()) found.push_back({{"", 0, pages.Facts().pageWidth, Align::Left, ""}, -1});
  std::stable_sort(found.begin(), found.end(),
                   [](const Found& a, const Found& b) { return a.column.left < b.column.left; });
  for (const Found& entry : found) {
    const int place = static_cast<int>(columns_.size());
    columns_.push_back(entry.column);
    if (entry.definition >= 0)
      ofColumn_[entry.definition] = place;
    else
      ofFree_[entry.column.left] = place;
  }
  for (const auto& [left, definition] : under) ofFree_[left] = ofColumn_.at(definition);
}

int TableColumns::PlaceOf(const Cell& cell) const {
  if (const auto known = ofColumn_.find(cell.column); known != ofColumn_.end()) return known->second;
  if (const auto known = ofFree_.find(cell.box.left); known != ofFree_.end()) return known->second;
  int place = 0;
  for (std::size_t i = 1; i < columns_.size(); ++i)
    if (columns_[i].left <= cell.box.left + kTolerance) place = static_cast<int>(i);
  return place;
}

int TableColumns::EndOf(const Cell& cell) const {
  const int begin = PlaceOf(cell);
  if (ofColumn_.contains(cell.column)) return begin;
  int end = begin;
  for (std::size_t i = static_cast<std::size_t>(begin) + 1; i < columns_.size(); ++i)
    if (columns_[i].left < cell.box.left + cell.box.width - kTolerance) end = static_cast<int>(i);
  return end;
}

std::vector<std::vector<const Cell*>> RowsOf(const PlacedBand& band) {
  struct Placed {
    const Cell* cell;
    Length baseline;
  };
  std::vector<Placed> cells;
  cells.reserve(band.cells.size());
  for (const Cell& cell : band.cells) cells.push_back({&cell, cell.box.top + Ascent(cell.style)});
  std::stable_sort(cells.begin(), cells.end(),
                   [](const Placed& a, const Placed& b) { return a.baseline < b.baseline; });
  std::vector<std::vector<const Cell*>> rows;
  Length baseline = 0;
  for (const Placed& placed : cells) {
    const Length tolerance = LineHeight(placed.cell->style) * 2 / 5;
    if (rows.empty() || placed.baseline - baseline > tolerance) {
      rows.emplace_back();
      baseline = placed.baseline;
    }
    rows.back().push_back(placed.cell);
  }
  for (auto& row : rows)
    std::stable_sort(row.begin(), row.end(),
                     [](const Cell* a, const Cell* b) { return a->box.left < b->box.left; });
  return rows;
}

}  // namespace print
