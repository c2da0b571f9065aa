// The values of a column that begin, as a list shows them, with what was typed.
#pragma once

#include <bitset>
#include <chrono>
#include <string>
#include <vector>

#include "platform/store/Cursor.h"

namespace ui {

/// Texts begin without regard to case; numbers by their digits, signs of money and commas passed over; dates
/// as month, day and year; flags by "Yes" and "No".
class Beginning {
 public:
  /// Values from `low` to `high`, as SQL writes numbers and without the quotation marks of texts. An empty
  /// bound is none.
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
    /// The nearest of these days that is not before `day`, or not behind it where `backward`; an invalid date
    /// for none.
    std::chrono::year_month_day Nearest(std::chrono::year_month_day day, bool backward) const;
  };

  Beginning(const store::FieldInfo& field, const std::string& typed);

  /// Whether any value can begin so.
  bool Possible() const { return !condition_.empty(); }
  /// The condition of SQL that these values satisfy; empty where there are none.
  const std::string& Condition() const { return condition_; }
  /// Of columns of other types than dates.
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
