#include "platform/print/layout/Layout.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "platform/print/fonts/Fonts.h"
#include "platform/print/layout/Keeper.h"

namespace print {
namespace {

struct PaperSize {
  Length width = 0;
  Length height = 0;
};

PaperSize SizeOf(Paper paper, bool landscape) {
  const PaperSize upright = paper == Paper::A4 ? PaperSize{59528, 84189} : PaperSize{61200, 79200};
  return landscape ? PaperSize{upright.height, upright.width} : upright;
}

/// From widths of the definition to widths on the chosen paper.
double ScaleOf(const ReportDefinition& report, const PaperSize& size) {
  const Length shorter = std::min(report.pageWidth, report.pageHeight);
  const Length longer = std::max(report.pageWidth, report.pageHeight);
  const Length margins = report.marginLeft + report.marginRight;
  const Length made = (report.landscape ? longer : shorter) - margins;
  return made > 0 ? static_cast<double>(size.width - margins) / made : 1.0;
}

BuiltBand EmptyBand(const ReportDefinition& report, const ReportFacts& facts) {
  TextStyle style = report.styles.empty() ? TextStyle{} : report.styles.front().text;
  style.size = std::max<Length>(style.size, 11 * kPoint);
  BuiltBand band;
  PlacedBand& part = band.parts.emplace_back();
  part.kind = BandKind::ReportHeader;
  const Length width = facts.pageWidth - facts.marginLeft - facts.marginRight;
  Cell cell;
  cell.style = style;
  cell.align = Align::Center;
  cell.lines = Wrap(style, report.emptyText, width);
  const auto lines = static_cast<Length>(cell.lines.size());
  cell.box = {facts.marginLeft, 3 * LineHeight(style), width, lines * LineHeight(style)};
  band.height = cell.box.top + cell.box.height;
  part.box = {facts.marginLeft, 0, width, band.height};
  part.cells.push_back(std::move(cell));
  return band;
}

}  // namespace

ReportFacts FactsOf(const ReportDefinition& report, const LayoutOptions& options) {
  const PaperSize size = SizeOf(options.paper, report.landscape);
  const double scale = ScaleOf(report, size);
  ReportFacts facts;
  facts.title = options.title.empty() ? report.name : options.title;
  facts.author = options.user;
  facts.pageWidth = size.width;
  facts.pageHeight = size.height;
  facts.marginLeft = report.marginLeft;
  facts.marginTop = report.marginTop;
  facts.marginRight = report.marginRight;
  facts.marginBottom = report.marginBottom;
  for (const ColumnDefinition& column : report.columns) {
    ReportFacts::Column shown;
    shown.name = column.name;
    shown.heading = column.heading;
    shown.left = report.marginLeft + static_cast<Length>(std::lround(column.left * scale));
    shown.width = static_cast<Length>(std::lround(column.width * scale));
    const auto style = static_cast<std::size_t>(std::max(column.style, 0));
    if (style < report.styles.size()) {
      shown.align = report.styles[style].align;
      shown.format = report.styles[style].format;
    }
    facts.columns.push_back(std::move(shown));
  }
  return facts;
}

void LayOut(const ReportDefinition& report, const ReportRows& rows, const LayoutOptions& options,
            PageStore& pages, const std::atomic<bool>& cancel, std::vector<std::string>* warnings) {
  const ReportFacts facts = FactsOf(report, options);
  std::set<std::string> told;
  Surroundings around;
  around.options = &options;
  around.run = {report.name, options.user, options.printTime};
  around.scale = ScaleOf(report, SizeOf(options.paper, report.landscape));
  around.left = facts.marginLeft;
  around.right = facts.pageWidth - facts.marginRight;
  around.cancel = &cancel;
  around.warn = [&](const std::string& kind, const std::string& text) {
    if (warnings != nullptr && told.insert(kind).second) warnings->push_back(text);
  };
  Composer composer(report, rows, around);
  composer.Begin(composer.AllRows());
  Paginator paginator(report, facts, composer, pages, around.warn);
  Keeper keeper(report, options, paginator);
  const bool any = rows.rows.Count() > 0;

  BuiltBand header = composer.ReportHeader();
  if (header.newPageAfter) keeper.BreakNext();
  if (header.Seen()) paginator.Place(std::move(header));
  if (!composer.Run(keeper)) {
    paginator.Abandon();
    pages.Finish();
    return;
  }
  if (report.fillBlankRows != 0) {
    keeper.Flush();
    const BuiltBand footer = composer.ReportFooter();
    paginator.FillWithBlankRows(footer.Seen() ? footer.Whole() : 0);
  } else if (!any && !report.emptyText.empty()) {
    paginator.Place(EmptyBand(report, facts));
  }
  if (any || report.fillBlankRows != 0) keeper.ReportFooter(composer.ReportFooter());
  keeper.Flush();
  paginator.Finish();
  pages.Finish();
}

}  // namespace print
