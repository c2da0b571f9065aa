// From rows to bands: evaluates the bands of a definition in the order of its rows and groups.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "platform/print/layout/Bands.h"
#include "platform/print/layout/Layout.h"
#include "platform/print/layout/RowWalk.h"

namespace print {

/// Takes the bands of a report's body in their order.
class BandSink {
 public:
  virtual ~BandSink() = default;
  /// A group begins: its header, which may be invisible.
  virtual void OpenGroup(int group, BuiltBand header) = 0;
  virtual void Detail(BuiltBand detail) = 0;
  /// A group ends: its footer, which may be invisible.
  virtual void CloseGroup(int group, BuiltBand footer) = 0;
};

/// An item with all that is known of it before the rows.
struct ItemPlan {
  const ItemDefinition* item = nullptr;
  PlannedFormula value;
  PlannedFormula visible;
  TextStyle style;
  Align align = Align::Left;
  CellLook look;
  Length left = 0;  ///< from the left edge of the page
  Length width = 0;
  int column = -1;  ///< of the report itself
  bool columnTotal = false;
  bool label = false;  ///< its text depends on nothing
  int subreport = -1;
};

struct BandPlan {
  const BandDefinition* band = nullptr;
  BandKind kind = BandKind::Detail;
  int group = -1;
  PlannedFormula showIf;
  std::vector<ItemPlan> items;  ///< from the top downwards
};

/// Where and how a report is composed.
struct Surroundings {
  const LayoutOptions* options = nullptr;
  RunFacts run;
  double scale = 1;  ///< from widths of the definition to widths on this paper
  Length left = 0;   ///< of the report's own left edge, from the page's
  Length right = 0;  ///< of the right margin, from the page's left edge
  /// Of the report around a subreport: what lies in a column of the same name belongs to it.
  const std::vector<ColumnDefinition>* outerColumns = nullptr;
  int depth = 0;  ///< 0 for the report itself, 1 for its subreports
  Warn warn;
  const std::atomic<bool>* cancel = nullptr;
};

class Composer {
 public:
  Composer(const ReportDefinition& report, const ReportRows& rows, Surroundings surroundings);
  ~Composer();
  Composer(const Composer&) = delete;
  Composer& operator=(const Composer&) = delete;

  /// Chooses the stretch of rows, and looks ahead for the totals of the report that its headers show.
  void Begin(const RowSource& source);
  /// Composes the rows. False if cancelled.
  bool Run(BandSink& sink);

  BuiltBand ReportHeader();
  BuiltBand ReportFooter();
  /// The bands of a page, with the row that stands first or last on it. `pageTotals` are the page's sums.
  BuiltBand PageHeader(std::int64_t row, int page);
  BuiltBand PageFooter(std::int64_t row, int page, const TotalsBook& pageTotals);
  /// The detail without a row, for lines to write on.
  BuiltBand BlankDetail();

  const TotalsPlan& Totals() const { return totals_; }
  /// Sets a deferred cell's text, now that its page is full. Returns false if the value waits for the number
  /// of pages; the cell is empty then.
  bool Settle(DeferredCell& deferred, Cell& cell, int page, const TotalsBook& pageTotals) const;
  /// The same now that the number of pages is known.
  void SettleLast(DeferredCell& deferred, Cell& cell, int pages) const;
  RowSource AllRows() const;
  /// Tells of a value that a total could not take.
  void Refused(std::size_t accumulator, const rt::Error& error) const;

 private:
  BandPlan PlanBand(const BandDefinition& band, BandKind kind, int group);
  ItemPlan PlanItem(const ItemDefinition& item, BandKind kind, int group);
  PlannedFormula PlanFormula(const Formula& formula, BandKind kind, int group);
  TotalUse PlanTotal(const Total& total, BandKind kind, int group);
  bool TotalsDetailColumn(const ItemDefinition& item) const;
  int ColumnOf(const ItemDefinition& item) const;

  BandValues ValuesAt(const RowWalk& walk) const;
  BandValues ValuesAtRow(std::int64_t row) const;
  RowValues Arguments(const BandValues& values, int onlyLevel) const;
  void LookAhead(std::int64_t place, int group, int begins);
  rt::Value Evaluate(const PlannedFormula& use, BandValues& values, const TotalsBook* pageTotals) const;
  rt::Value EvaluateAgain(const DeferredCell& deferred) const;
  bool Holds(const PlannedFormula& use, BandValues& values) const;
  void Tell(const Formula& formula, const BandValues& values, const rt::Error& error) const;

  BuiltBand Build(const BandPlan& plan, BandValues& values, const TotalsBook* pageTotals);
  Length AddHeadings(const ItemPlan& plan, Length top, PlacedBand& part) const;
  Length AddText(const ItemPlan& plan, Length top, BandValues& values, const TotalsBook* pageTotals,
                 BuiltBand& band);
  Length AddRules(const ItemPlan& plan, Length top, BandValues& values, PlacedBand& part);
  Length AddItem(const ItemPlan& plan, Length top, BandValues& values, const TotalsBook* pageTotals,
                 BuiltBand& band);
  Length AddSubreport(const ItemPlan& plan, Length top, const BandValues& values, BuiltBand& band);
  void AddShade(const BandPlan& plan, BuiltBand& band) const;
  BuiltBand Header(int group, const RowWalk& walk);

  const ReportDefinition& report_;
  const ReportRows& rows_;
  Surroundings around_;
  TotalsPlan totals_;
  std::vector<TextStyle> styles_;
  BandPlan reportHeader_, pageHeader_, detail_, pageFooter_, reportFooter_;
  std::vector<BandPlan> headers_, footers_;
  std::vector<PlannedFormula> treeTitles_;
  std::vector<std::unique_ptr<Composer>> subreports_;
  std::unique_ptr<TotalsBook> book_;
  RowSource source_;
  RowValues rowValues_;
  std::shared_ptr<const RepeatedHeaders> repeated_;
  int shadeCount_ = 0;
};

}  // namespace print
