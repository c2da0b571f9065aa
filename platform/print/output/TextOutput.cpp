// Pages on a grid of characters.
#include <algorithm>
#include <map>
#include <utility>

#include "platform/print/fonts/Fonts.h"
#include "platform/print/output/PageTexts.h"
#include "platform/print/output/Writers.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

/// Empty columns between two neighbors.
constexpr int kGap = 2;
/// Rules up to this thickness are lines, others are shading or bars.
constexpr Length kThickestLine = 3 * kPoint;
constexpr Length kShortestLine = 12 * kPoint;

/// Columns that a text takes on a console: two for East Asian letters, none for combining marks.
int Columns(std::string_view text) {
  int columns = 0;
  while (!text.empty()) {
    const rt::Character character = rt::FirstCharacter(text);
    const std::uint32_t code = character.code;
    const bool none = (code >= 0x300 && code <= 0x36F) || (code >= 0x200B && code <= 0x200F) ||
                      (code >= 0x202A && code <= 0x202E) || (code >= 0xFE00 && code <= 0xFE0F) ||
                      code == 0xFEFF;
    const bool wide = (code >= 0x1100 && code <= 0x115F) || (code >= 0x2E80 && code <= 0xA4CF) ||
                      (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0xF900 && code <= 0xFAFF) ||
                      (code >= 0xFE30 && code <= 0xFE6F) || (code >= 0xFF00 && code <= 0xFF60) ||
                      (code >= 0xFFE0 && code <= 0xFFE6) || (code >= 0x1F300 && code <= 0x1F64F) ||
                      (code >= 0x1F680 && code <= 0x1FAFF) || (code >= 0x20000 && code <= 0x3FFFD);
    if (!none) columns += wide ? 2 : 1;
    text.remove_prefix(character.bytes);
  }
  return columns;
}

/// A line of text or a rule, placed on the page.
struct Item {
  Length left = 0;
  Length right = 0;
  Length baseline = 0;
  Length lineHeight = 0;
  Align align = Align::Left;
  bool rule = false;
  std::string text;
  int columns = 0;
};

class Grid {
 public:
  /// The text needs `columns` between the edges; 0 for a rule, which only must know where the edges are.
  void Need(Length left, Length right, int columns) {
    int& needed = needs_[{right, left}];
    needed = std::max(needed, columns);
  }

  /// Puts every edge into the first column that leaves each text its room.
  void Settle() {
    // Edges from left to right; at one place what ends there comes before what begins there.
    std::vector<Length> lefts;
    for (const auto& [edges, columns] : needs_) lefts.push_back(edges.second);
    std::sort(lefts.begin(), lefts.end());
    lefts.erase(std::unique(lefts.begin(), lefts.end()), lefts.end());
    int column = 0;
    int lastEnd = -1;  // the column after the last text that ended
    auto left = lefts.begin();
    const auto settleLefts = [&](Length before) {
      for (; left != lefts.end() && *left < before; ++left) {
        if (lastEnd > 0) column = std::max(column, lastEnd + kGap);
        lefts_[*left] = column;
      }
    };
    for (const auto& [edges, columns] : needs_) {
      settleLefts(edges.first);
      int& end = rights_[edges.first];
      // A box that is not wider than nothing has its left edge behind the right one.
      const auto begin = lefts_.find(edges.second);
      end = std::max({end, column, (begin == lefts_.end() ? column : begin->second) + columns});
      column = end;
      if (columns > 0) lastEnd = end;
    }
    settleLefts(INT32_MAX);
  }
  int Left(Length edge) const { return lefts_.at(edge); }
  int Right(Length edge) const { return rights_.at(edge); }

 private:
  std::map<std::pair<Length, Length>, int> needs_;  ///< by right and left edge, so from left to right
  std::map<Length, int> lefts_;
  std::map<Length, int> rights_;
};

class TextPages {
 public:
  explicit TextPages(const PageStore& pages) : texts_(pages) {}

  void Measure(const Page& page) {
    for (const Item& item : ItemsOf(page)) grid_.Need(item.left, item.right, item.columns);
  }
  void Settle() { grid_.Settle(); }

  void Write(const Page& page, OutputFile& file) {
    std::vector<Item> items = ItemsOf(page);
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.baseline < b.baseline; });
    std::vector<std::vector<const Item*>> rows;
    for (const Item& item : items) {
      std::vector<const Item*>* row = rows.empty() ? nullptr : &rows.back();
      if (row == nullptr || !Joins(*row, item)) row = &rows.emplace_back();
      row->push_back(&item);
    }
    const Item* before = nullptr;
    for (std::vector<const Item*>& row : rows) {
      const Item& first = *row.front();
      if (before != nullptr && !first.rule && !before->rule &&
          (first.baseline - before->baseline) * 4 > first.lineHeight * 7)
        file.Write("\n");
      file.Write(Line(row) + "\n");
      before = &first;
    }
  }

 private:
  std::vector<Item> ItemsOf(const Page& page) {
    std::vector<Item> items;
    for (const PlacedBand& band : page.bands) {
      for (const Rule& rule : band.rules) {
        // A line below each row would only double the rows.
        if (band.kind == BandKind::Detail || rule.box.height > kThickestLine ||
            rule.box.width < kShortestLine)
          continue;
        Item item;
        item.left = rule.box.left;
        item.right = rule.box.left + rule.box.width;
        item.baseline = rule.box.top;
        item.rule = true;
        items.push_back(std::move(item));
      }
      for (const Cell& cell : band.cells) AddCell(cell, items);
    }
    return items;
  }

  void AddCell(const Cell& cell, std::vector<Item>& items) {
    Length baseline = cell.box.top + Ascent(cell.style);
    for (const std::string& line : texts_.Lines(cell)) {
      Item item;
      item.text = Clean(line);
      while (item.text.ends_with(' ')) item.text.pop_back();
      item.left = cell.box.left;
      item.right = cell.box.left + std::max(Length{1}, cell.box.width);
      item.baseline = baseline;
      item.lineHeight = LineHeight(cell.style);
      item.align = cell.align;
      item.columns = Columns(item.text);
      baseline += item.lineHeight;
      if (!item.text.empty()) items.push_back(std::move(item));
    }
  }

  /// Whether the item stands in the row: nearly at its height and beside everything in it.
  static bool Joins(const std::vector<const Item*>& row, const Item& item) {
    const Item& first = *row.front();
    if (first.rule != item.rule) return false;
    const Length tolerance = item.rule ? kPoint : std::min(first.lineHeight, item.lineHeight) * 2 / 5;
    if (item.baseline - first.baseline > tolerance) return false;
    return item.rule || std::all_of(row.begin(), row.end(), [&](const Item* other) {
             return other->right <= item.left || item.right <= other->left ||
                    other->baseline == item.baseline;
           });
  }

  std::string Line(std::vector<const Item*>& row) const {
    std::stable_sort(row.begin(), row.end(), [](const Item* a, const Item* b) { return a->left < b->left; });
    std::string line;
    int column = 0;
    for (const Item* item : row) {
      const int left = grid_.Left(item->left);
      const int right = grid_.Right(item->right);
      int start = left;
      if (item->align == Align::Right) start = right - item->columns;
      if (item->align == Align::Center) start = left + (right - left - item->columns) / 2;
      // Boxes that overlap: nothing is lost, the second text begins later.
      if (column > 0 && !item->rule) start = std::max(start, column + 1);
      start = std::max(start, column);
      const int columns = item->rule ? std::max(0, right - start) : item->columns;
      if (columns == 0) continue;
      line.append(static_cast<std::size_t>(start - column), ' ');
      if (item->rule)
        line.append(static_cast<std::size_t>(columns), '-');
      else
        line += item->text;
      column = start + columns;
    }
    return line;
  }

  PageTexts texts_;
  Grid grid_;
};

}  // namespace

bool WriteText(const PageStore& pages, const PageRange& range, const OutputProgress& progress,
               OutputFile& file) {
  const PageSpan span = SpanOf(pages, range);
  TextPages text(pages);
  for (int i = span.begin; i < span.end; ++i) text.Measure(pages.Read(i));
  text.Settle();
  for (int i = span.begin; i < span.end; ++i) {
    if (i > span.begin) file.Write("\f\n");
    text.Write(pages.Read(i), file);
    if (progress && !progress(i - span.begin + 1, span.end - span.begin)) return false;
  }
  return true;
}

}  // namespace print
