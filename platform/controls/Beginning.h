// The values of a column that begin, as a list shows them, with what was typed.
#pragma once

#include <bitset>
#include <chrono>
#include <string>
#include <vector>

#include "platform/store/Cursor.h"

namespace ui {

/// Ignores the case of texts. Compares numbers by their digits, without currency signs and commas; dates as
/// month, day and year; flags as "Yes" and "No".
class Beginning {
 public:
  /// Values from `low` to `high`, as SQL writes numbers, and texts without quotation marks. An empty bound is
  /// no bound.
  struct Span {
    std::string low;
    std::string high;
    bool withLow = true;
    bool withHigh = false;
  };
  /// Days whose month, day and year are among these.
  struct Days {
    std::bitset<13> months;
    std::bitset<32> days;
    int firstYear = 0;
    int lastYear = 9999;

    bool Hold(std::chrono::year_month_day day) const;
    /// The nearest of these days that is not before `day`, or not after it if `backward`; an invalid date if
    /// there is none.
    std::chrono::year_month_day Nearest(std::chrono::year_month_day day, bool backward) const;
  };

  Beginning(const store::FieldInfo& field, const std::string& typed);

  /// Whether any value can begin so.
  bool Possible() const { return !condition_.empty(); }
  /// The SQL condition that these values satisfy; empty if no value can.
  const std::string& Condition() const { return condition_; }
  /// For columns of all types but dates.
  const std::vector<Span>& Spans() const { return spans_; }
  const Days& Dates() const { return days_; }

 private:
  void Texts(const std::string& typed);
  void Numbers(const std::string& typed, bool single);
  void Flags(const std::string& typed);
  void TakeDays(const std::string& column, const std::string& typed);
  void Add(Span span) { spans_.push_back(std::move(span)); }
  std::string SpansCondition(const std::string& column, bool text) const;

  std::string condition_;
  std::vector<Span> spans_;
  Days days_;
};

}  // namespace ui
