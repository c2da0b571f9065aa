// What the formulas of bands see: the row, its groups, its page.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/print/data/Rows.h"
#include "platform/print/formula/Formula.h"

namespace print {

/// What stays the same for a whole run.
struct RunFacts {
  std::string reportName;
  std::string user;
  rt::DateTime printTime;
};

/// The rows that a report or subreport shows: a stretch of a spool, and what stands where there is no row.
struct RowSource {
  const RowSpool* spool = nullptr;
  std::int64_t first = 0;
  std::int64_t count = 0;
  const Row* blank = nullptr;
};

/// The values for one band. A copy keeps its row, so that a cell whose page is not known yet can be evaluated
/// later.
class BandValues : public FormulaValues {
 public:
  BandValues(const RunFacts& run, const RowSource& source) : run_(&run), source_(source) {}

  void SetRow(std::int64_t place, std::shared_ptr<const Row> row) {
    place_ = place;
    row_ = std::move(row);
  }
  /// The rows before and after it, if they are at hand; otherwise they are read when they are asked for.
  void SetNeighbors(std::shared_ptr<const Row> before, std::shared_ptr<const Row> after) {
    before_ = std::move(before);
    after_ = std::move(after);
  }
  /// The groups up to here begin (end) with this row: the outermost that does, the number of groups if none.
  void SetGroupEdges(int begins, int ends) {
    begins_ = begins;
    ends_ = ends;
  }
  void SetTotals(std::vector<rt::Value> totals) { totals_ = std::move(totals); }
  void SetTotal(std::size_t total, rt::Value value) { totals_.at(total) = std::move(value); }
  void SetPage(int page) { page_ = page; }
  void SetPageCount(int pages) { pages_ = pages; }
  void SetContinued(bool continued) { continued_ = continued; }

  /// Whether a formula asked for the page, or for the number of pages, while that was not known.
  bool MissedPage() const { return missedPage_; }
  bool MissedPageCount() const { return missedPageCount_; }
  void ForgetMissed() { missedPage_ = missedPageCount_ = false; }

  std::int64_t RowPlace() const { return place_; }
  /// Gives the row up, where no formula reads it any more.
  void DropRow() {
    row_.reset();
    before_.reset();
    after_.reset();
  }

  const rt::Value& Field(int place) const override;
  rt::Value Neighbor(int place, int distance) const override;
  rt::Value TotalOf(int total) const override;
  bool FirstInGroup(int group) const override { return begins_ <= group; }
  bool LastInGroup(int group) const override { return ends_ <= group; }
  std::int64_t RowNumber() const override { return place_ < 0 ? 0 : place_ - source_.first + 1; }
  int PageNumber() const override;
  rt::Value PageCount() const override;
  bool Continued() const override { return continued_; }
  std::string ReportName() const override { return run_->reportName; }
  std::string User() const override { return run_->user; }
  rt::DateTime PrintTime() const override { return run_->printTime; }

 private:
  const RunFacts* run_;
  RowSource source_;
  std::int64_t place_ = -1;
  std::shared_ptr<const Row> row_;
  std::shared_ptr<const Row> before_;
  std::shared_ptr<const Row> after_;
  int begins_ = 0;
  int ends_ = 0;
  std::vector<rt::Value> totals_;
  std::optional<int> page_;
  std::optional<int> pages_;
  bool continued_ = false;
  mutable bool missedPage_ = false;
  mutable bool missedPageCount_ = false;
};

}  // namespace print
