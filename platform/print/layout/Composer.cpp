#include "platform/print/layout/Composer.h"

#include <limits>

namespace print {
namespace {

constexpr int kAllLevels = std::numeric_limits<int>::min();

}  // namespace

RowSource Composer::AllRows() const { return {&rows_.rows, 0, rows_.rows.Count(), &rows_.blank}; }

BandValues Composer::ValuesAt(const RowWalk& walk) const {
  BandValues values(around_.run, source_);
  values.SetRow(walk.Place(), walk.Current());
  values.SetNeighbors(walk.Previous(), walk.Following());
  values.SetGroupEdges(walk.Begins(), walk.Ends());
  return values;
}

BandValues Composer::ValuesAtRow(std::int64_t row) const {
  BandValues values(around_.run, source_);
  const int groups = static_cast<int>(report_.groups.size());
  values.SetGroupEdges(groups, groups);
  if (row < 0 || row >= source_.first + source_.count) return values;
  auto content = std::make_shared<Row>();
  source_.spool->Read(row, *content);
  values.SetRow(row, std::move(content));
  return values;
}

void Composer::Tell(const Formula& formula, const BandValues& values, const rt::Error& error) const {
  std::string text = report_.file.empty() ? report_.name : report_.file;
  if (values.RowPlace() >= 0) text += ", row " + std::to_string(values.RowNumber());
  around_.warn(formula.Text(), text + ", " + formula.Text() + ": " + error.what());
}

void Composer::Refused(std::size_t accumulator, const rt::Error& error) const {
  around_.warn("total " + std::to_string(accumulator),
               report_.name + ": a value is left out of a total: " + error.what());
}

RowValues Composer::Arguments(const BandValues& values, int onlyLevel) const {
  const auto& entries = totals_.Entries();
  RowValues arguments(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (onlyLevel != kAllLevels && entries[i].level != onlyLevel) continue;
    // An entry of another level was skipped, and its value is not there.
    const int same = entries[i].same;
    if (same >= 0 &&
        (onlyLevel == kAllLevels || entries[static_cast<std::size_t>(same)].level == onlyLevel)) {
      arguments[i] = arguments[static_cast<std::size_t>(same)];
      continue;
    }
    try {
      arguments[i] = EvaluateArgument(*entries[i].total, values);
    } catch (const rt::Error& error) {
      around_.warn(
          "argument " + std::to_string(i),
          report_.name + ", row " + std::to_string(values.RowNumber()) + ", in a total: " + error.what());
    }
  }
  return arguments;
}

void Composer::LookAhead(std::int64_t place, int group, int begins) {
  const int level = group + 1;
  TotalsBook scan(totals_);
  RowWalk walk(report_, around_.run, source_, place, begins, around_.warn);
  const auto ignore = [](std::size_t, const rt::Error&) {};
  while (walk.Next()) {
    if (around_.cancel->load()) return;
    scan.Add(Arguments(ValuesAt(walk), level), level, level, ignore);
    if (walk.Ends() <= group) break;
  }
  book_->TakeAhead(scan, level);
}

rt::Value Composer::Evaluate(const PlannedFormula& use, BandValues& values,
                             const TotalsBook* pageTotals) const {
  std::vector<rt::Value> totals;
  totals.reserve(use.totals.size());
  for (const TotalUse& total : use.totals) {
    const int level = totals_.Entries()[static_cast<std::size_t>(total.accumulator)].level;
    const TotalsBook* book = level >= kReportLevel ? book_.get() : pageTotals;
    totals.push_back(book ? book->Value(total, rowValues_) : rt::Value());
  }
  values.SetTotals(std::move(totals));
  values.ForgetMissed();
  try {
    return use.formula->Evaluate(values);
  } catch (const rt::Error& error) {
    Tell(*use.formula, values, error);
    return rt::Null();
  }
}

bool Composer::Holds(const PlannedFormula& use, BandValues& values) const {
  if (use.formula == nullptr || use.formula->Empty()) return true;
  const rt::Value value = Evaluate(use, values, nullptr);
  return !value.IsNull() && value.AsBoolean();
}

rt::Value Composer::EvaluateAgain(const DeferredCell& deferred) const {
  try {
    return deferred.use->formula->Evaluate(deferred.values);
  } catch (const rt::Error& error) {
    Tell(*deferred.use->formula, deferred.values, error);
    return rt::Null();
  }
}

bool Composer::Settle(DeferredCell& deferred, Cell& cell, int page, const TotalsBook& pageTotals) const {
  deferred.values.SetPage(page);
  for (std::size_t i = 0; i < deferred.use->totals.size(); ++i) {
    const TotalUse& total = deferred.use->totals[i];
    if (totals_.Entries()[static_cast<std::size_t>(total.accumulator)].level < kReportLevel)
      deferred.values.SetTotal(i, pageTotals.Value(total, {}));
  }
  deferred.values.ForgetMissed();
  const rt::Value value = EvaluateAgain(deferred);
  if (deferred.values.MissedPageCount()) {
    if (deferred.use->formula->Fields().empty()) deferred.values.DropRow();
    return false;
  }
  cell.value = value;
  CellLook look = deferred.look;
  look.grows = false;
  SetCellText(cell, value, look);
  return true;
}

void Composer::SettleLast(DeferredCell& deferred, Cell& cell, int pages) const {
  deferred.values.SetPageCount(pages);
  cell.value = EvaluateAgain(deferred);
  CellLook look = deferred.look;
  look.grows = false;
  look.lines = 1;
  SetCellText(cell, cell.value, look);
}

void Composer::Begin(const RowSource& source) {
  source_ = source;
  shadeCount_ = 0;
  rowValues_.clear();
  const int groups = static_cast<int>(report_.groups.size());
  for (int level = kReportLevel; level <= groups; ++level) book_->Reset(level);
  if (totals_.NeedsAhead(kReportLevel)) LookAhead(source_.first, -1, 0);
}

BuiltBand Composer::Header(int group, const RowWalk& walk) {
  const auto place = static_cast<std::size_t>(group);
  BandValues values = ValuesAt(walk);
  BuiltBand header = Build(headers_[place], values, nullptr);
  auto repeated = std::make_shared<RepeatedHeaders>(repeated_->begin(), repeated_->begin() + group);
  header.row = walk.Place();
  header.repeated = std::make_shared<RepeatedHeaders>(*repeated);
  rt::Value title = Evaluate(treeTitles_[place], values, nullptr);
  if (around_.depth == 0) header.outline = OutlineEntry{group, FormatValue(title, ""), 1, 0};
  std::shared_ptr<BuiltBand> again;
  if (report_.groups[place].repeatHeader && around_.depth == 0) {
    values.SetContinued(true);
    again = std::make_shared<BuiltBand>(Build(headers_[place], values, nullptr));
    for (PlacedBand& part : again->parts) part.continued = true;
    again->row = walk.Place();
  }
  repeated->push_back(std::move(again));
  repeated_ = std::move(repeated);
  return header;
}

bool Composer::Run(BandSink& sink) {
  const int groups = static_cast<int>(report_.groups.size());
  const auto refused = [this](std::size_t place, const rt::Error& error) { Refused(place, error); };
  const bool hide = around_.depth == 0 && around_.options->hideDetails;
  RowWalk walk(report_, around_.run, source_, source_.first, 0, around_.warn);
  repeated_ = std::make_shared<RepeatedHeaders>();
  while (walk.Next()) {
    if (around_.cancel->load()) return false;
    for (int group = walk.Begins(); group < groups; ++group) {
      book_->Reset(group + 1);
      if (totals_.NeedsAhead(group + 1)) LookAhead(walk.Place(), group, walk.Begins());
    }
    for (int group = walk.Begins(); group < groups; ++group) {
      shadeCount_ = 0;
      sink.OpenGroup(group, Header(group, walk));
    }
    BandValues values = ValuesAt(walk);
    rowValues_ = Arguments(values, kAllLevels);
    book_->Add(rowValues_, kReportLevel, groups, refused);
    BuiltBand detail;
    if (!hide && report_.detail.visible) detail = Build(detail_, values, nullptr);
    detail.row = walk.Place();
    detail.repeated = repeated_;
    if (totals_.HasPageTotals()) detail.pageValues = rowValues_;
    sink.Detail(std::move(detail));
    for (int group = groups - 1; group >= walk.Ends(); --group) {
      BuiltBand footer = Build(footers_[static_cast<std::size_t>(group)], values, nullptr);
      footer.row = walk.Place();
      // The footer belongs to its group: on a page of its own the group's header stands above it again.
      footer.repeated = std::make_shared<RepeatedHeaders>(repeated_->begin(), repeated_->begin() + group + 1);
      sink.CloseGroup(group, std::move(footer));
    }
  }
  return true;
}

BuiltBand Composer::ReportHeader() {
  BandValues values = ValuesAtRow(source_.first);
  BuiltBand band = Build(reportHeader_, values, nullptr);
  band.row = source_.first;
  return band;
}

BuiltBand Composer::ReportFooter() {
  BandValues values = ValuesAtRow(source_.first + source_.count - 1);
  BuiltBand band = Build(reportFooter_, values, nullptr);
  band.row = source_.first + source_.count - 1;
  return band;
}

BuiltBand Composer::PageHeader(std::int64_t row, int page) {
  BandValues values = ValuesAtRow(row);
  values.SetPage(page);
  return Build(pageHeader_, values, nullptr);
}

BuiltBand Composer::PageFooter(std::int64_t row, int page, const TotalsBook& pageTotals) {
  BandValues values = ValuesAtRow(row);
  values.SetPage(page);
  return Build(pageFooter_, values, &pageTotals);
}

BuiltBand Composer::BlankDetail() {
  BandValues values(around_.run, source_);
  rowValues_.clear();
  Row nothing;
  values.SetRow(-1, std::make_shared<Row>(report_.fields.size()));
  BuiltBand band = Build(detail_, values, nullptr);
  band.row = source_.first + source_.count - 1;
  return band;
}

}  // namespace print
