// Totals: what a report must add up, and the sums as its rows go by.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/print/formula/Formula.h"

namespace print {

/// One total over the values that were added. Null is skipped. A sum of Currency alone is exact Currency.
class Accumulator {
 public:
  explicit Accumulator(TotalKind kind) : kind_(kind) {}
  /// Throws rt::Error for a text that is not a number in a sum, and for a sum that leaves its range.
  void Add(const rt::Value& value);
  /// 0 for a sum over nothing; Null for the other kinds.
  rt::Value Result() const;
  void Reset();

 private:
  TotalKind kind_;
  std::int64_t count_ = 0;
  rt::Value kept_;  // the sum, or the least, greatest, first or last
  std::set<std::string> distinct_;
};

/// What the rows of a total belong to: the report, a group (1 is the outermost), a page, or all rows placed
/// so far.
constexpr int kReportLevel = 0;
constexpr int kPageLevel = -1;
constexpr int kPlacedLevel = -2;

/// Where the value of a total is found.
struct TotalUse {
  int accumulator = 0;
  int divisor = -1;    ///< for a share: the sum that it is a part of
  bool ahead = false;  ///< the value over all rows of the scope, those to come included
  bool divisorAhead = false;
  bool ownRow = false;  ///< for a share: the row's own value is divided
};

/// Whether two arguments are the same: one tree, or one field.
bool SameArgument(const FormulaNode* a, const FormulaNode* b);

/// All totals of a report's bands. Formulas that ask for the same total share one accumulator.
class TotalsPlan {
 public:
  struct Entry {
    const Total* total = nullptr;
    TotalKind kind = TotalKind::Sum;
    int level = kReportLevel;
    bool ahead = false;
    int same = -1;  ///< an earlier entry with the same argument; -1 if this is the first
  };
  /// The place of the accumulator for this total at this level.
  int Require(const Total& total, TotalKind kind, int level, bool ahead);
  const std::vector<Entry>& Entries() const { return entries_; }
  /// Whether some total of this level must be known before its rows went by.
  bool NeedsAhead(int level) const;
  /// Whether some total is of the rows of a page.
  bool HasPageTotals() const;

 private:
  std::vector<Entry> entries_;
};

/// The values of a row for every accumulator: each argument is evaluated once, however many totals have it.
using RowValues = std::vector<rt::Value>;

/// The sums of one run.
class TotalsBook {
 public:
  explicit TotalsBook(const TotalsPlan& plan);
  /// Adds a row's values to the accumulators of the levels from `fromLevel` to `toLevel`. A value that a
  /// total cannot take is left out and told to `refused` with the accumulator's place.
  void Add(const RowValues& values, int fromLevel, int toLevel,
           const std::function<void(std::size_t, const rt::Error&)>& refused);
  /// Starts a level again.
  void Reset(int level);
  rt::Value Value(const TotalUse& use, const RowValues& row) const;
  /// Stores the sums of a level of another book as what is known ahead.
  void TakeAhead(const TotalsBook& scanned, int level);

 private:
  rt::Value One(int accumulator, bool ahead) const;

  const TotalsPlan& plan_;
  std::vector<Accumulator> sums_;
  std::vector<rt::Value> ahead_;
};

}  // namespace print
