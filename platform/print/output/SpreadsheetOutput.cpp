// The report as a workbook.
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "platform/print/output/RowTable.h"
#include "platform/print/output/WorkbookFile.h"
#include "platform/print/output/Writers.h"

namespace print {
namespace {

constexpr Length kThickestLine = 3 * kPoint;
constexpr Length kNear = 4 * kPoint;

/// What the formulas of one scope need: the report's, or that of the open group of one level.
struct Scope {
  int first = 0;  ///< its first row
  int sheet = 1;  ///< on this sheet; a sum over two sheets is a number
  struct Column {
    double sum = 0;  ///< of its rows' numbers
    bool any = false;
    bool mixed = false;  ///< there are other numbers among the rows
  };
  std::vector<Column> columns;
};

/// A value as spreadsheets count: a number, days since the end of 1899; nothing for texts.
std::optional<double> NumberOf(const rt::Value& value) {
  switch (value.Type()) {
    case rt::ValueType::Integer:
    case rt::ValueType::Long:
    case rt::ValueType::Single:
    case rt::ValueType::Double:
    case rt::ValueType::Currency: {
      const double number = value.AsDouble();
      if (!std::isfinite(number)) return std::nullopt;
      return number;
    }
    case rt::ValueType::Date: {
      const auto span = value.AsDate().Time() - rt::DateTime().Time();
      const double days = static_cast<double>(span.count()) / 86400.0;
      // Spreadsheets know no days before 1900 and count a day too many until its March.
      static constexpr double kFirstMarch1900 = 61;
      if (days < kFirstMarch1900) return std::nullopt;
      return days;
    }
    default:
      return std::nullopt;
  }
}

class SpreadsheetRows {
 public:
  SpreadsheetRows(const PageStore& pages, OutputFile& file)
      : table_(pages), texts_(pages), book_(pages.Facts(), table_.All(), file) {
    scopes_.resize(static_cast<std::size_t>(table_.InnermostGroup() + 2));
    Reset(0);
  }

  void Write(const PlacedBand& band) {
    if (band.kind == BandKind::PageHeader) return WriteTitles(band);
    const int row = book_.Row();
    for (const auto& cells : RowsOf(band)) WriteRow(band, cells, row - 1);
    if (band.subreport > 0) return;
    // A header begins its group, a footer ends it and all groups inside.
    if (band.kind == BandKind::GroupHeader || band.kind == BandKind::GroupFooter)
      Reset(static_cast<std::size_t>(band.group) + 1);
  }

  void Close() { book_.Close(); }

 private:
  void Reset(std::size_t from) {
    for (std::size_t i = from; i < scopes_.size(); ++i) {
      scopes_[i].first = book_.Row();
      scopes_[i].sheet = book_.Sheet();
      scopes_[i].columns.assign(table_.All().size(), {});
    }
  }

  /// Titles in rows of their own, then the headings, which stay in sight.
  void WriteTitles(const PlacedBand& band) {
    std::vector<const Cell*> headings;
    for (const auto& cells : RowsOf(band)) {
      std::vector<const Cell*> titles;
      for (const Cell* cell : cells) (cell->heading ? headings : titles).push_back(cell);
      int column = 0;
      for (const Cell* cell : titles) {
        const std::string text = texts_.Joined(*cell);
        if (text.empty()) continue;
        SheetLook look;
        look.style = cell->style;
        book_.Text(column++, text, look);
      }
      if (column > 0) book_.NextRow(0);
    }
    if (headings.empty()) return;
    for (const Cell* cell : headings) headings_.push_back(*cell);
    WriteHeadings();
    Reset(0);
  }

  void WriteHeadings() {
    const int row = book_.Row();
    for (const Cell& cell : headings_) {
      SheetLook look;
      look.style = cell.style;
      look.align = cell.align;
      look.wrapped = true;
      look.lineBelow = true;
      book_.Text(table_.PlaceOf(cell), texts_.Joined(cell), look);
    }
    book_.NextRow(0);
    book_.FreezeHere(row);
  }

  void WriteRow(const PlacedBand& band, const std::vector<const Cell*>& cells, int lastRow) {
    int next = 0;
    bool any = false;
    std::vector<std::pair<int, const Cell*>> placed;
    for (const Cell* cell : cells) {
      const bool atRight = cell->column < 0 && cell->align == Align::Right;
      placed.emplace_back(atRight ? table_.EndOf(*cell) : table_.PlaceOf(*cell), cell);
    }
    std::stable_sort(placed.begin(), placed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [place, cell] : placed) {
      const int column = std::max(place, next);
      if (!WriteCell(band, *cell, column, lastRow)) continue;
      next = column + 1;
      any = true;
    }
    if (!any) return;
    const int sheet = book_.Sheet();
    book_.NextRow(LevelOf(band));
    if (book_.Sheet() != sheet && !headings_.empty()) WriteHeadings();
  }

  int LevelOf(const PlacedBand& band) const {
    if (band.subreport > 0) return table_.InnermostGroup() + 2;
    switch (band.kind) {
      case BandKind::Detail:
        return table_.InnermostGroup() + 1;
      case BandKind::GroupHeader:
      case BandKind::GroupFooter:
        return band.group;
      default:
        return 0;
    }
  }

  /// False if the cell is blank.
  bool WriteCell(const PlacedBand& band, const Cell& cell, int column, int lastRow) {
    const rt::Value value = texts_.Value(cell);
    // A subreport's numbers would be counted by the sums of the rows around them.
    const std::optional<double> number = band.subreport > 0 ? std::nullopt : NumberOf(value);
    SheetLook look;
    look.style = cell.style;
    look.align = cell.align;
    look.lineAbove = HasLineAbove(band, cell);
    if (number) {
      look.numbers = SpreadsheetFormat(cell.format, value);
      WriteNumber(band, cell, value, column, *number, lastRow, look);
      return true;
    }
    const bool whole = value.Type() == rt::ValueType::Text && cell.format.empty();
    std::string text = whole ? CleanLines(value.AsText()) : texts_.Joined(cell);
    while (text.ends_with(' ') || text.ends_with('\n')) text.pop_back();
    if (text.empty()) return false;
    look.wrapped = cell.lines.size() > 1;
    book_.Text(column, text, look);
    return true;
  }

  void WriteNumber(const PlacedBand& band, const Cell& cell, const rt::Value& value, int column,
                   double number, int lastRow, const SheetLook& look) {
    const auto place = static_cast<std::size_t>(column);
    const bool inTable = place < table_.All().size();
    if (band.kind == BandKind::Detail) {
      if (inTable)
        for (Scope& scope : scopes_) {
          scope.columns[place].sum += number;
          scope.columns[place].any = true;
        }
      return book_.Number(column, number, look);
    }
    const bool footer = band.kind == BandKind::GroupFooter || band.kind == BandKind::ReportFooter;
    if (footer && cell.columnTotal && inTable) {
      const Scope& scope =
          scopes_[static_cast<std::size_t>(band.kind == BandKind::ReportFooter ? 0 : band.group + 1)];
      const Scope::Column& sum = scope.columns[place];
      const double tolerance = 1e-7 * std::max(1.0, std::abs(number));
      // A formula only where it gives the same number.
      if (scope.sheet == book_.Sheet() && sum.any && !sum.mixed && scope.first <= lastRow &&
          value.Type() != rt::ValueType::Date && std::abs(sum.sum - number) <= tolerance)
        return book_.Sum(column, scope.first, lastRow, number, look);
    }
    if (inTable)
      for (Scope& scope : scopes_) scope.columns[place].mixed = true;
    book_.Number(column, number, look);
  }

  static bool HasLineAbove(const PlacedBand& band, const Cell& cell) {
    if (band.kind == BandKind::Detail) return false;
    return std::any_of(band.rules.begin(), band.rules.end(), [&](const Rule& rule) {
      return rule.box.height <= kThickestLine && rule.box.width > rule.box.height &&
             std::abs(rule.box.top - cell.box.top) <= kNear && rule.box.left <= cell.box.left + kNear &&
             rule.box.left + rule.box.width >= cell.box.left + cell.box.width - kNear;
    });
  }

  const TableColumns table_;
  PageTexts texts_;
  WorkbookFile book_;
  std::vector<Cell> headings_;
  std::vector<Scope> scopes_;  ///< the report's, then one for each level of groups
};

}  // namespace

bool WriteSpreadsheet(const PageStore& pages, const OutputProgress& progress, OutputFile& file) {
  SpreadsheetRows rows(pages, file);
  if (!ReadThrough(pages, progress, [&](const Page&, const PlacedBand& band) { rows.Write(band); }))
    return false;
  rows.Close();
  return true;
}

}  // namespace print
