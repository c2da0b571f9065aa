// The report as a document that flows.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

#include "platform/print/output/RowTable.h"
#include "platform/print/output/RtfText.h"
#include "platform/print/output/Writers.h"

namespace print {
namespace {

using CellRow = std::vector<const Cell*>;

constexpr Length kThickestLine = 3 * kPoint;
constexpr Length kNear = 4 * kPoint;

bool IsLine(const Rule& rule) { return rule.box.height <= kThickestLine && rule.box.width > rule.box.height; }
bool IsNear(Length a, Length b) { return std::abs(a - b) <= kNear; }

/// The rows of a band; the headings of columns, which stand on one line at their bottoms, are one row.
std::vector<CellRow> DocumentRows(const PlacedBand& band) {
  std::vector<CellRow> rows = RowsOf(band);
  CellRow headings;
  for (CellRow& row : rows) {
    const auto plain =
        std::stable_partition(row.begin(), row.end(), [](const Cell* cell) { return cell->heading; });
    headings.insert(headings.end(), row.begin(), plain);
    row.erase(row.begin(), plain);
  }
  std::erase_if(rows, [](const CellRow& row) { return row.empty(); });
  if (headings.empty()) return rows;
  std::stable_sort(headings.begin(), headings.end(),
                   [](const Cell* a, const Cell* b) { return a->box.left < b->box.left; });
  const auto after = std::find_if(rows.begin(), rows.end(), [&](const CellRow& row) {
    return row.front()->box.top > headings.front()->box.top;
  });
  rows.insert(after, std::move(headings));
  return rows;
}

/// Where a row has lines above or below.
struct Borders {
  bool above = false;
  bool below = false;
};

class RtfDocument {
 public:
  RtfDocument(const PageStore& pages, const RtfColors& colors, OutputFile& file)
      : facts_(pages.Facts()),
        pageCount_(pages.PageCount()),
        texts_(pages),
        colors_(colors),
        file_(file),
        run_(colors) {}

  /// The head of the document with what stands at the top and the bottom of each page.
  void Begin(const Page& first) {
    const auto entry = [](const char* name, Length length) { return name + std::to_string(Twips(length)); };
    std::string head =
        "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}"
        "{\\f1\\fmodern\\fcharset0 Courier New;}}\n" +
        colors_.Table() + "\n{\\info{\\title " + RtfEscaped(Clean(facts_.title)) + "}{\\author " +
        RtfEscaped(Clean(facts_.author)) + "}}\n";
    head += entry("\\paperw", first.width) + entry("\\paperh", first.height) +
            entry("\\margl", facts_.marginLeft) + entry("\\margr", facts_.marginRight) +
            entry("\\margt", facts_.marginTop) + entry("\\margb", facts_.marginBottom) +
            entry("\\headery", facts_.marginTop) + entry("\\footery", facts_.marginBottom);
    if (first.width > first.height) head += "\\landscape";
    file_.Write(head + "\n");
    for (const auto& [kind, name] :
         {std::pair{BandKind::PageHeader, "{\\header "}, std::pair{BandKind::PageFooter, "{\\footer "}}) {
      const auto band = std::find_if(first.bands.begin(), first.bands.end(),
                                     [kind = kind](const PlacedBand& each) { return each.kind == kind; });
      if (band == first.bands.end()) continue;
      file_.Write(name);
      run_.Restart();
      WriteBand(first, *band);
      file_.Write("}\n");
      shape_.clear();
    }
    run_.Restart();
    bottom_ = -1;
  }

  void Write(const Page& page, const PlacedBand& band) {
    if (band.kind != BandKind::PageHeader) WriteBand(page, band);
  }
  void End() { file_.Write("}\n"); }

 private:
  void WriteBand(const Page& page, const PlacedBand& band) {
    const std::vector<CellRow> rows = DocumentRows(band);
    int place = 0;
    for (const CellRow& row : rows) {
      out_.clear();
      WriteRow(page, band, row, place, BordersOf(band, rows, row));
      file_.Write(out_);
      ++place;
    }
  }

  static Length BottomOf(const CellRow& row) {
    Length bottom = row.front()->box.top;
    for (const Cell* cell : row) bottom = std::max(bottom, cell->box.top + cell->box.height);
    return bottom;
  }

  /// Lines over or under the whole row; lines at single cells are found by LineAt.
  static Borders BordersOf(const PlacedBand& band, const std::vector<CellRow>& rows, const CellRow& row) {
    Borders borders;
    if (band.kind == BandKind::Detail) return borders;
    for (const Rule& rule : band.rules) {
      if (!IsLine(rule) || rule.box.width * 2 < band.box.width) continue;
      if (&row == &rows.front() && rule.box.top <= row.front()->box.top + kNear) borders.above = true;
      if (rule.box.top > row.front()->box.top + kNear && IsNear(rule.box.top, BottomOf(row)))
        borders.below = true;
    }
    return borders;
  }

  static bool LineAt(const PlacedBand& band, const Cell& cell, Length top) {
    return std::any_of(band.rules.begin(), band.rules.end(), [&](const Rule& rule) {
      return IsLine(rule) && rule.box.width * 2 < band.box.width && IsNear(rule.box.left, cell.box.left) &&
             IsNear(rule.box.width, cell.box.width) && IsNear(rule.box.top, top);
    });
  }

  void WriteRow(const Page& page, const PlacedBand& band, const CellRow& row, int place,
                const Borders& borders) {
    const bool inPageBand = band.kind == BandKind::PageHeader || band.kind == BandKind::PageFooter;
    std::string properties;
    if (const int space = SpaceBefore(page, band, row, place); space > 0)
      properties += "\\sb" + std::to_string(space);
    if (band.kind == BandKind::GroupHeader) properties += "\\keepn";
    // Like paragraphs in a row would share one line above all of them without the one between.
    if (borders.above) properties += "\\brdrt\\brdrs\\brdrw10\\brdrbtw\\brdrs\\brdrw10";
    if (borders.below) properties += "\\brdrb\\brdrs\\brdrw10";
    const bool lined =
        band.kind != BandKind::Detail && std::any_of(row.begin(), row.end(), [&](const Cell* cell) {
          return LineAt(band, *cell, cell->box.top) || LineAt(band, *cell, cell->box.top + cell->box.height);
        });
    const bool wrapped =
        std::any_of(row.begin(), row.end(), [&](const Cell* cell) { return texts_.Lines(*cell).size() > 1; });
    const bool alone = row.size() == 1 && row.front()->align == Align::Left;
    if ((wrapped && !alone) || lined)
      WriteTableRow(page, band, row, properties);
    else
      WriteParagraph(page, row, properties, inPageBand);
    bottom_ = BottomOf(row);
    bottomPage_ = page.number;
  }

  /// The space above a row, as it is on the page; for the first one of a page as where it was seen before.
  int SpaceBefore(const Page& page, const PlacedBand& band, const CellRow& row, int place) {
    int& known = spaces_[{static_cast<int>(band.kind) * 100 + band.group, place}];
    if (bottom_ >= 0 && bottomPage_ == page.number && band.kind != BandKind::PageFooter) {
      static constexpr int kMost = 480;
      known = std::clamp(Twips(row.front()->box.top - bottom_), 0, kMost);
      // Roundings of a hundredth would only make rows differ.
      known = known / 20 * 20;
    }
    return known;
  }

  int Position(Length x) const { return Twips(x - facts_.marginLeft); }

  void WriteParagraph(const Page& page, const CellRow& row, std::string shape, bool inPageBand) {
    std::string text;
    const Cell& first = *row.front();
    const bool alone = row.size() == 1;
    const Length right = page.width - facts_.marginRight;
    if (alone && first.align == Align::Left) {
      if (Position(first.box.left) > 0) shape += "\\li" + std::to_string(Position(first.box.left));
      if (texts_.Lines(first).size() > 1)
        shape += "\\ri" + std::to_string(std::max(0, Twips(right - first.box.left - first.box.width)));
      text = run_.Text(first.style, CellText(page, first, inPageBand));
    } else if (alone && first.align == Align::Center) {
      shape += "\\qc\\li" + std::to_string(std::max(0, Position(first.box.left))) + "\\ri" +
               std::to_string(std::max(0, Twips(right - first.box.left - first.box.width)));
      text = run_.Text(first.style, CellText(page, first, inPageBand));
    } else {
      for (const Cell* cell : row) {
        const bool atStart =
            cell == row.front() && cell->align == Align::Left && Position(cell->box.left) <= 0;
        if (!atStart) {
          shape += TabStop(*cell);
          text += "\\tab ";
        }
        const std::string shown = CellText(page, *cell, inPageBand);
        if (!shown.empty()) text += run_.Text(cell->style, shown);
      }
    }
    // Paragraphs keep the properties of the one before them.
    if (shape_ != "p" + shape) out_ += "\\pard" + shape + " ";
    shape_ = "p" + shape;
    out_ += text + "\\par\n";
  }

  std::string TabStop(const Cell& cell) const {
    switch (cell.align) {
      case Align::Left:
        return "\\tx" + std::to_string(Position(cell.box.left));
      case Align::Right:
        return "\\tqr\\tx" + std::to_string(Position(cell.box.left + cell.box.width));
      case Align::Center:
        return "\\tqc\\tx" + std::to_string(Position(cell.box.left + cell.box.width / 2));
    }
    return {};
  }

  /// A row of a table: where a text has more than one line, or a line over a sum belongs to one cell.
  void WriteTableRow(const Page& page, const PlacedBand& band, const CellRow& row,
                     const std::string& properties) {
    std::string cells;
    std::string texts;
    int edge = 0;
    const auto gap = [&](int to) {
      if (to - edge < 20) return;
      cells += "\\cellx" + std::to_string(to);
      texts += "\\pard\\intbl" + properties + "\\cell ";
      edge = to;
    };
    for (const Cell* cell : row) {
      gap(Position(cell->box.left));
      const int end = std::max(edge + 20, Position(cell->box.left + cell->box.width));
      if (LineAt(band, *cell, cell->box.top)) cells += "\\clbrdrt\\brdrs\\brdrw10";
      if (LineAt(band, *cell, cell->box.top + cell->box.height)) cells += "\\clbrdrb\\brdrs\\brdrw10";
      if (cell->heading) cells += "\\clvertalb";
      cells += "\\cellx" + std::to_string(end);
      edge = end;
      texts += "\\pard\\intbl" + properties;
      if (cell->align == Align::Right) texts += "\\qr";
      if (cell->align == Align::Center) texts += "\\qc";
      const bool inPageBand = band.kind == BandKind::PageHeader || band.kind == BandKind::PageFooter;
      texts += " " + run_.Text(cell->style, CellText(page, *cell, inPageBand)) + "\\cell ";
    }
    out_ += "\\trowd\\trgaph0\\trleft0\\trkeep" + cells + "\n" + texts + "\\row\n";
    shape_.clear();
  }

  std::string CellText(const Page& page, const Cell& cell, bool inPageBand) {
    const std::vector<std::string>& lines = texts_.Lines(cell);
    // A wrapped text flows again; what the paper shortened stays short, because its place is as narrow here.
    if (lines.size() > 1 && cell.value.Type() == rt::ValueType::Text && !Shortened(lines))
      return RtfEscaped(cell.value.AsText());
    const std::string shown = RtfEscaped(texts_.Joined(cell));
    return inPageBand ? WithFields(page, cell, shown) : shown;
  }

  static bool Shortened(const std::vector<std::string>& lines) { return lines.back().ends_with("\u2026"); }

  /// Page numbers count on with the pages of the document.
  std::string WithFields(const Page& page, const Cell& cell, const std::string& text) const {
    const auto field = [](const char* name, const std::string& shown) {
      return std::string("{\\field{\\*\\fldinst ") + name + "}{\\fldrslt " + shown + "}}";
    };
    const std::string number = std::to_string(page.number);
    const std::string count = std::to_string(pageCount_);
    if (cell.slot >= 0 && text == count) return field("NUMPAGES", count);
    const std::string begin = "Page " + number;
    const std::size_t at = text.find(begin);
    if (at == std::string::npos) return text;
    std::string rest = text.substr(at + begin.size());
    if (!rest.empty() && rest.front() >= '0' && rest.front() <= '9') return text;
    if (const std::string of = " of " + count; rest.starts_with(of))
      rest = " of " + field("NUMPAGES", count) + rest.substr(of.size());
    return text.substr(0, at) + "Page " + field("PAGE", number) + rest;
  }

  const ReportFacts& facts_;
  const int pageCount_;
  PageTexts texts_;
  const RtfColors& colors_;
  OutputFile& file_;
  RtfRun run_;
  std::string out_;
  std::string shape_;  ///< the properties of the paragraph before; empty after a table row
  std::map<std::pair<int, int>, int> spaces_;
  Length bottom_ = -1;
  int bottomPage_ = 0;
};

}  // namespace

bool WriteRtf(const PageStore& pages, const OutputProgress& progress, OutputFile& file) {
  const PageSpan span = SpanOf(pages, {});
  RtfColors colors;
  const Page first = pages.Read(span.begin);
  const auto look = [&](const PlacedBand& band) {
    for (const Cell& cell : band.cells) colors.Add(cell.style.color);
  };
  for (const PlacedBand& band : first.bands) look(band);
  ReadThrough(pages, {}, [&](const Page&, const PlacedBand& band) { look(band); });
  RtfDocument document(pages, colors, file);
  document.Begin(first);
  if (!ReadThrough(pages, progress,
                   [&](const Page& page, const PlacedBand& band) { document.Write(page, band); }))
    return false;
  document.End();
  return true;
}

}  // namespace print
