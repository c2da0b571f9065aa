#include "platform/print/layout/Bands.h"

#include <algorithm>

#include "platform/print/fonts/Fonts.h"

namespace print {
namespace {

bool IsNumber(const rt::Value& value) {
  switch (value.Type()) {
    case rt::ValueType::Integer:
    case rt::ValueType::Long:
    case rt::ValueType::Single:
    case rt::ValueType::Double:
    case rt::ValueType::Currency:
      return true;
    default:
      return false;
  }
}

/// Line breaks as blanks, for a cell of one line.
std::string InOneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  return text;
}

bool FitNumber(Cell& cell, const std::string& text, Length width) {
  const Length smallest = cell.style.size * 6 / 10;
  while (TextWidth(cell.style, text) > width) {
    if (cell.style.size <= smallest) return false;
    cell.style.size -= kPoint / 4;
  }
  return true;
}

Length Bottom(const Box& box) { return box.top + box.height; }

/// A rule's part above the cut stays in `box`; the part below is returned.
std::optional<Box> CutBox(Box& box, Length cut) {
  if (Bottom(box) <= cut) return std::nullopt;
  Box below = box;
  below.top = std::max<Length>(0, box.top - cut);
  below.height = Bottom(box) - std::max(cut, box.top);
  box.height = std::max<Length>(0, cut - box.top);
  return below;
}

/// The lines of a cell below the cut; those above stay.
Cell CutCell(Cell& cell, Length cut) {
  Cell below = cell;
  if (cell.box.top >= cut || cell.lines.size() < 2) {
    below.box.top -= cut;
    cell.lines.clear();
    cell.box.height = 0;
    return below;
  }
  const Length line = cell.box.height / static_cast<Length>(cell.lines.size());
  const auto above = static_cast<std::ptrdiff_t>((cut - cell.box.top) / line);
  below.lines.erase(below.lines.begin(), below.lines.begin() + above);
  below.box.top = 0;
  below.box.height = line * static_cast<Length>(below.lines.size());
  below.value = rt::Null();
  cell.lines.resize(static_cast<std::size_t>(above));
  cell.box.height = line * static_cast<Length>(above);
  return below;
}

}  // namespace

Length CutBetweenLines(const BuiltBand& band, Length cut) {
  for (bool moved = true; moved && cut > 0;) {
    moved = false;
    for (const PlacedBand& part : band.parts)
      for (const Cell& cell : part.cells) {
        if (cell.box.top >= cut || Bottom(cell.box) <= cut) continue;
        Length between = cell.box.top;
        if (cell.lines.size() > 1) {
          const Length line = cell.box.height / static_cast<Length>(cell.lines.size());
          if (line > 0) between += (cut - cell.box.top) / line * line;
        }
        if (between < cut) {
          cut = between;
          moved = true;
        }
      }
  }
  return cut;
}

bool SetCellText(Cell& cell, const rt::Value& value, const CellLook& look) {
  cell.lines.clear();
  const std::string text = FormatValue(value, look.format);
  if (IsNumber(value)) {
    if (look.negative && value.AsDouble() < 0) cell.style.color = *look.negative;
    const bool fits = FitNumber(cell, text, look.width);
    cell.lines = {text};
    return fits;
  }
  if (look.grows || look.lines > 1) {
    cell.lines = Wrap(cell.style, text, look.width);
    const auto room = static_cast<std::size_t>(look.lines);
    if (!look.grows && cell.lines.size() > room) {
      std::string last = cell.lines[room - 1] + " " + cell.lines[room];
      cell.lines.resize(room);
      cell.lines.back() = Shorten(cell.style, InOneLine(last), look.width);
    }
    return true;
  }
  cell.lines = {Shorten(cell.style, InOneLine(text), look.width)};
  return true;
}

std::optional<BuiltBand> SplitBand(BuiltBand& band, Length available) {
  const Length cut = CutBetweenLines(band, available);
  if (cut <= 0) {
    // Not even the first line fits a whole page.
    for (PlacedBand& part : band.parts) {
      part.box.height = std::min(part.box.height, std::max<Length>(0, available - part.box.top));
      std::erase_if(part.cells, [&](const Cell& cell) { return Bottom(cell.box) > available; });
      for (Rule& rule : part.rules) CutBox(rule.box, available);
    }
    band.deferred.clear();
    band.height = available;
    return std::nullopt;
  }
  BuiltBand rest;
  rest.row = band.row;
  rest.repeated = band.repeated;
  rest.spaceAfter = band.spaceAfter;
  rest.newPageAfter = band.newPageAfter;
  rest.height = band.height - cut;
  band.spaceAfter = 0;
  band.newPageAfter = false;
  band.height = cut;
  std::vector<PlacedBand> kept;
  for (std::size_t p = 0; p < band.parts.size(); ++p) {
    PlacedBand& part = band.parts[p];
    PlacedBand below = part;
    below.rules.clear();
    below.cells.clear();
    below.continued = part.box.top < cut;
    const auto restPart = rest.parts.size();
    if (part.box.top >= cut) below.continued = part.continued;
    if (const auto box = CutBox(part.box, cut)) below.box = *box;
    for (Rule& rule : part.rules)
      if (const auto box = CutBox(rule.box, cut)) below.rules.push_back({*box, rule.color});
    std::erase_if(part.rules, [](const Rule& rule) { return rule.box.height <= 0; });
    for (std::size_t c = 0; c < part.cells.size(); ++c) {
      if (Bottom(part.cells[c].box) <= cut) continue;
      below.cells.push_back(CutCell(part.cells[c], cut));
      for (DeferredCell& cell : band.deferred) {
        if (cell.part != p || cell.cell != c) continue;
        rest.deferred.push_back(cell);
        rest.deferred.back().part = restPart;
        rest.deferred.back().cell = below.cells.size() - 1;
      }
    }
    if (!below.cells.empty() || !below.rules.empty() || p == 0) rest.parts.push_back(std::move(below));
  }
  // A deferred cell of one line is wholly above or wholly below the cut.
  std::erase_if(band.deferred, [&](const DeferredCell& cell) {
    return band.parts[cell.part].cells[cell.cell].box.height == 0;
  });
  for (std::size_t p = 0; p < band.parts.size(); ++p) {
    PlacedBand& part = band.parts[p];
    // Emptied cells stay in the list only as long as deferred cells count them.
    if (std::none_of(band.deferred.begin(), band.deferred.end(),
                     [&](const DeferredCell& cell) { return cell.part == p; }))
      std::erase_if(part.cells, [](const Cell& cell) { return cell.box.height == 0; });
  }
  return rest;
}

}  // namespace print
