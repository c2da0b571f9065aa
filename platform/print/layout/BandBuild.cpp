// One band: its items evaluated, measured and put in their places.
#include <algorithm>
#include <cmath>

#include "platform/print/fonts/Fonts.h"
#include "platform/print/layout/Composer.h"

namespace print {
namespace {

constexpr Length kLine = kPoint / 2;  // the thickness of lines above and below cells
constexpr Length kBarHeight = 6 * kPoint;
constexpr Color kLineColor{120, 126, 134};
constexpr Color kShadeColor{243, 245, 248};

/// Where the definition expects an item's end, and how much lower (or higher, if it is empty) that came to
/// be.
struct Settled {
  Length bottom = 0;
  Length by = 0;
};

/// How far an item moves because of those above it: with its nearest neighbor, and never into one that grew.
Length ShiftBelow(const std::vector<Settled>& above, Length top) {
  Length nearest = -1;
  Length shift = 0;
  for (const Settled& item : above) {
    if (item.bottom > top || item.bottom < nearest) continue;
    shift = item.bottom > nearest ? item.by : std::max(shift, item.by);
    nearest = item.bottom;
  }
  for (const Settled& item : above)
    if (item.bottom <= top) shift = std::max(shift, item.bottom + item.by - top);
  return shift;
}

/// Collects a subreport's bands one below the other.
class Stack : public BandSink {
 public:
  Stack(BuiltBand& band, Length top) : band_(band), top_(top), first_(top) {}
  void OpenGroup(int, BuiltBand header) override { Add(std::move(header)); }
  void Detail(BuiltBand detail) override { Add(std::move(detail)); }
  void CloseGroup(int, BuiltBand footer) override { Add(std::move(footer)); }

  void Add(BuiltBand inner) {
    if (!inner.Seen()) return;
    if (top_ > first_) top_ += inner.spaceBefore;
    const std::size_t offset = band_.parts.size();
    for (PlacedBand& part : inner.parts) {
      part.box.top += top_;
      for (Rule& rule : part.rules) rule.box.top += top_;
      for (Cell& cell : part.cells) cell.box.top += top_;
      if (inner.deferred.empty()) TakeColumns(part);
      band_.parts.push_back(std::move(part));
    }
    for (DeferredCell& cell : inner.deferred) {
      cell.part += offset;
      band_.deferred.push_back(std::move(cell));
    }
    top_ += inner.height + inner.spaceAfter;
  }
  Length Height() const { return top_ - first_; }

 private:
  /// A figure that lies in a column of the report stands in the row itself, as outputs of tables want it.
  void TakeColumns(PlacedBand& part) {
    std::vector<Cell>& own = band_.parts.front().cells;
    for (Cell& cell : part.cells)
      if (cell.column >= 0) own.push_back(cell);
    std::erase_if(part.cells, [](const Cell& cell) { return cell.column >= 0; });
  }

  BuiltBand& band_;
  Length top_;
  Length first_;
};

}  // namespace

BuiltBand Composer::Build(const BandPlan& plan, BandValues& values, const TotalsBook* pageTotals) {
  BuiltBand band;
  if (!plan.band->present || !plan.band->visible || !Holds(plan.showIf, values)) return band;
  band.spaceBefore = plan.band->spaceBefore;
  band.spaceAfter = plan.band->spaceAfter;
  band.newPageBefore = plan.band->newPageBefore;
  band.newPageAfter = plan.band->newPageAfter;
  PlacedBand& own = band.parts.emplace_back();
  own.kind = plan.kind;
  own.group = plan.group;
  own.subreport = around_.depth;
  std::vector<Settled> above;
  Length bottom = plan.band->minimumHeight;
  for (const ItemPlan& item : plan.items) {
    if (!Holds(item.visible, values)) continue;
    const Length top = item.item->top + ShiftBelow(above, item.item->top);
    const Length height = AddItem(item, top, values, pageTotals, band);
    Length expected = item.item->height.value_or(height);
    if (!item.item->height && item.item->kind == ItemDefinition::Kind::Subreport) expected = 0;
    if (!item.item->height &&
        (item.item->kind == ItemDefinition::Kind::Text || item.item->kind == ItemDefinition::Kind::Headings))
      expected = LineHeight(item.style);
    above.push_back({item.item->top + expected, top + height - (item.item->top + expected)});
    bottom = std::max(bottom, top + height);
  }
  // Where a text grew beyond the height of the band, as much space stays below it as stands above the first.
  if (plan.band->minimumHeight > 0 && bottom > plan.band->minimumHeight && !plan.items.empty())
    bottom += plan.items.front().item->top;
  band.height = bottom;
  for (PlacedBand& part : band.parts)
    for (Rule& rule : part.rules)
      if (rule.box.height < 0) rule.box.height = std::max<Length>(0, bottom - rule.box.top);
  PlacedBand& whole = band.parts.front();
  whole.box = {around_.left, 0, around_.right - around_.left, bottom};
  if (plan.kind == BandKind::Detail && band.Seen()) ++shadeCount_;
  if (band.Seen()) AddShade(plan, band);
  return band;
}

void Composer::AddShade(const BandPlan& plan, BuiltBand& band) const {
  const bool shaded =
      plan.band->shade == Shade::Always || (plan.band->shade == Shade::Alternate && shadeCount_ % 2 == 0);
  if (!shaded) return;
  PlacedBand& own = band.parts.front();
  own.rules.insert(own.rules.begin(), {own.box, kShadeColor});
}

Length Composer::AddItem(const ItemPlan& plan, Length top, BandValues& values, const TotalsBook* pageTotals,
                         BuiltBand& band) {
  switch (plan.item->kind) {
    case ItemDefinition::Kind::Text:
      return AddText(plan, top, values, pageTotals, band);
    case ItemDefinition::Kind::Headings:
      return AddHeadings(plan, top, band.parts.front());
    case ItemDefinition::Kind::Subreport:
      return AddSubreport(plan, top, values, band);
    default:
      return AddRules(plan, top, values, band.parts.front());
  }
}

Length Composer::AddText(const ItemPlan& plan, Length top, BandValues& values, const TotalsBook* pageTotals,
                         BuiltBand& band) {
  Cell cell;
  cell.align = plan.align;
  cell.style = plan.style;
  cell.format = plan.look.format;
  cell.column = plan.column;
  cell.columnTotal = plan.columnTotal && around_.depth == 0;
  const rt::Value value = Evaluate(plan.value, values, pageTotals);
  const bool waits =
      values.MissedPage() || values.MissedPageCount() || (plan.value.ofPage && pageTotals == nullptr);
  if (waits) {
    cell.lines = {""};
  } else {
    if (!plan.label) cell.value = value;
    if (!SetCellText(cell, value, plan.look))
      around_.warn("width " + plan.value.formula->Text(),
                   report_.name + ": a number is too wide for its place: " + plan.value.formula->Text());
  }
  // A smaller font keeps the line's height, and with it the baseline of its neighbors.
  const Length line = LineHeight(plan.style);
  const Length dropped = Ascent(plan.style) - Ascent(cell.style);
  const auto lines = static_cast<Length>(std::max<std::size_t>(1, cell.lines.size()));
  Length height = line * lines;
  if (plan.item->grows && cell.lines.size() == 1 && cell.lines.front().empty() && !waits) height = 0;
  cell.box = {plan.left, top + dropped, plan.width, std::max<Length>(line * lines - dropped, 0)};
  if (cell.lines.size() == 1) cell.box.height = std::min(cell.box.height, line);
  PlacedBand& own = band.parts.front();
  if (plan.item->lineAbove) own.rules.push_back({{plan.left, top, plan.width, kLine}, kLineColor});
  if (plan.item->lineBelow) own.rules.push_back({{plan.left, top + height, plan.width, kLine}, kLineColor});
  if (waits) band.deferred.push_back({0, own.cells.size(), &plan.value, values, plan.look});
  // An empty cell of a column that takes its place is a blank one in a spreadsheet.
  if (waits || (plan.item->column >= 0 && height > 0) || !cell.lines.front().empty() || cell.lines.size() > 1)
    own.cells.push_back(std::move(cell));
  return std::max(height, plan.item->height.value_or(0));
}

Length Composer::AddHeadings(const ItemPlan& plan, Length top, PlacedBand& part) const {
  const Length line = LineHeight(plan.style);
  std::vector<Cell> cells;
  std::size_t most = 1;
  for (std::size_t i = 0; i < report_.columns.size(); ++i) {
    const ColumnDefinition& column = report_.columns[i];
    if (column.heading.empty()) continue;
    Cell cell;
    cell.heading = true;
    cell.column = around_.depth == 0 ? static_cast<int>(i) : -1;
    cell.style = plan.style;
    const auto style = static_cast<std::size_t>(std::max(column.style, 0));
    cell.align = style < report_.styles.size() ? report_.styles[style].align : Align::Left;
    cell.box.left = around_.left + static_cast<Length>(std::lround(column.left * around_.scale));
    cell.box.width = around_.left +
                     static_cast<Length>(std::lround((column.left + column.width) * around_.scale)) -
                     cell.box.left;
    cell.lines = Wrap(plan.style, column.heading, cell.box.width);
    most = std::max(most, cell.lines.size());
    cells.push_back(std::move(cell));
  }
  const Length height = line * static_cast<Length>(most);
  for (Cell& cell : cells) {
    cell.box.height = line * static_cast<Length>(cell.lines.size());
    cell.box.top = top + height - cell.box.height;
    part.cells.push_back(std::move(cell));
  }
  if (plan.item->lineAbove) part.rules.push_back({{plan.left, top, plan.width, kLine}, kLineColor});
  if (plan.item->lineBelow) part.rules.push_back({{plan.left, top + height, plan.width, kLine}, kLineColor});
  return height;
}

Length Composer::AddRules(const ItemPlan& plan, Length top, BandValues& values, PlacedBand& part) {
  const ItemDefinition& item = *plan.item;
  if (item.kind == ItemDefinition::Kind::Bar) {
    const rt::Value share = Evaluate(plan.value, values, nullptr);
    const Length height = item.height.value_or(kBarHeight);
    if (share.IsNull()) return height;
    const double length = std::clamp(share.AsDouble(), 0.0, 1.0);
    const auto width = static_cast<Length>(std::lround(plan.width * length));
    if (width > 0) part.rules.push_back({{plan.left, top, width, height}, item.color});
    return height;
  }
  if (item.kind == ItemDefinition::Kind::Line) {
    if (plan.width > 0) {
      const Length thickness = item.height.value_or(kLine);
      part.rules.push_back({{plan.left, top, plan.width, thickness}, item.color});
      return thickness;
    }
    // A vertical line without a height ends with its band; a negative height marks it until that is known.
    part.rules.push_back({{plan.left, top, kLine, item.height.value_or(-1)}, item.color});
    return item.height.value_or(0);
  }
  part.rules.push_back({{plan.left, top, plan.width, item.height.value_or(-1)}, item.color});
  return item.height.value_or(0);
}

Length Composer::AddSubreport(const ItemPlan& plan, Length top, const BandValues& values, BuiltBand& band) {
  if (plan.subreport < 0) return 0;
  const auto place = static_cast<std::size_t>(plan.subreport);
  const ReportRows::Inner& inner = rows_.subreports.at(place);
  const auto [first, count] = inner.find(values.Field(report_.subreports[place].outerField));
  if (count == 0) return 0;
  Composer& composer = *subreports_[place];
  composer.Begin({&inner.rows->rows, first, count, &inner.rows->blank});
  Stack stack(band, top);
  stack.Add(composer.ReportHeader());
  composer.Run(stack);
  stack.Add(composer.ReportFooter());
  return stack.Height();
}

}  // namespace print
