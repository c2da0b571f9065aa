// Dates and times as people read and type them.
#include <array>

#include "platform/runtime/Clock.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Text.h"

namespace rt {
namespace {

constexpr std::array<std::string_view, 12> kMonths{"January",   "February", "March",    "April",
                                                   "May",       "June",     "July",     "August",
                                                   "September", "October",  "November", "December"};

void Append(std::string& text, int number, std::size_t width = 1) {
  const std::string digits = std::to_string(number);
  if (digits.size() < width) text.append(width - digits.size(), '0');
  text.append(digits);
}

std::string TimeText(const DateTime& d) {
  const int hour = d.Hour();
  std::string text;
  Append(text, hour % 12 == 0 ? 12 : hour % 12);
  text.push_back(':');
  Append(text, d.Minute(), 2);
  text.push_back(':');
  Append(text, d.Second(), 2);
  return text.append(hour < 12 ? " AM" : " PM");
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

/// The month of a name in full or of its first three letters; 0 for anything else.
int MonthOf(std::string_view word) {
  for (std::size_t i = 0; i < kMonths.size(); ++i) {
    if (EqualNoCase(word, kMonths[i]) || EqualNoCase(word, kMonths[i].substr(0, 3)))
      return static_cast<int>(i) + 1;
  }
  return 0;
}

struct Number {
  int value = 0;
  int digits = 0;
};

struct Civil {
  int year = 0;
  int month = 0;
  int day = 0;
};

struct TimeOfDay {
  int hour = 0;
  int minute = 0;
  int second = 0;
};

/// One or two digits mean a year from 1930 to 2029.
int YearOf(Number n) {
  if (n.digits > 2) return n.value;
  return n.value < 30 ? 2000 + n.value : 1900 + n.value;
}

class DateReader {
 public:
  explicit DateReader(std::string_view text) : rest_(text) {}

  std::optional<DateTime> Read() {
    SkipBlanks();
    const std::string_view start = rest_;
    if (const auto time = ReadTime(); time && AtEnd()) return Join({1899, 12, 30}, *time);
    rest_ = start;
    const auto date = ReadDate();
    if (!date) return std::nullopt;
    if (AtEnd()) return Join(*date, {});
    if (!SkipBlanks()) return std::nullopt;
    const auto time = ReadTime();
    if (!time || !AtEnd()) return std::nullopt;
    return Join(*date, *time);
  }

 private:
  static std::optional<DateTime> Join(const Civil& date, const TimeOfDay& time) {
    const std::chrono::year_month_day civil{std::chrono::year{date.year},
                                            std::chrono::month{static_cast<unsigned>(date.month)},
                                            std::chrono::day{static_cast<unsigned>(date.day)}};
    if (date.year < 100 || date.year > 9999 || !civil.ok()) return std::nullopt;
    return DateTime(date.year, date.month, date.day, time.hour, time.minute, time.second);
  }

  bool SkipBlanks() {
    bool any = false;
    for (; !rest_.empty() && rest_.front() == ' '; rest_.remove_prefix(1)) any = true;
    return any;
  }

  /// Ignores blanks after the last word.
  bool AtEnd() const { return rest_.find_first_not_of(' ') == std::string_view::npos; }

  bool NextIs(char c) const { return !rest_.empty() && rest_.front() == c; }

  bool Take(char c) {
    if (!NextIs(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::optional<Number> ReadNumber(int mostDigits) {
    Number n;
    for (; !rest_.empty() && IsDigit(rest_.front()); rest_.remove_prefix(1)) {
      if (++n.digits > mostDigits) return std::nullopt;
      n.value = n.value * 10 + (rest_.front() - '0');
    }
    if (n.digits == 0) return std::nullopt;
    return n;
  }

  std::string_view ReadWord() {
    std::size_t length = 0;
    while (length < rest_.size() && IsLetter(rest_[length])) ++length;
    const std::string_view word = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return word;
  }

  std::optional<TimeOfDay> ReadTime() {
    const auto hour = ReadNumber(2);
    if (!hour || !Take(':')) return std::nullopt;
    const auto minute = ReadNumber(2);
    if (!minute) return std::nullopt;
    TimeOfDay time{hour->value, minute->value, 0};
    if (Take(':')) {
      const auto second = ReadNumber(2);
      if (!second) return std::nullopt;
      time.second = second->value;
    }
    if (time.hour > 23 || time.minute > 59 || time.second > 59) return std::nullopt;
    const std::string_view before = rest_;
    SkipBlanks();
    const std::string_view half = ReadWord();
    if (half.empty()) {
      rest_ = before;
      return time;
    }
    const bool morning = EqualNoCase(half, "AM");
    if ((!morning && !EqualNoCase(half, "PM")) || time.hour == 0 || time.hour > 12) return std::nullopt;
    time.hour = time.hour % 12 + (morning ? 0 : 12);
    return time;
  }

  std::optional<Civil> ReadDate() {
    if (!rest_.empty() && IsLetter(rest_.front())) return ReadMonthFirst();
    const auto first = ReadNumber(4);
    if (!first) return std::nullopt;
    const std::string_view behind = rest_;
    const bool separated = SkipBlanks() || Take('-');
    if (separated && !rest_.empty() && IsLetter(rest_.front())) return ReadNamedMonth(*first);
    rest_ = behind;
    return ReadNumbers(*first);
  }

  /// "MMM d, yyyy"; the year may be missing.
  std::optional<Civil> ReadMonthFirst() {
    const int month = MonthOf(ReadWord());
    if (month == 0 || (!SkipBlanks() && !Take('-'))) return std::nullopt;
    const auto day = ReadNumber(2);
    if (!day) return std::nullopt;
    return WithYear(month, day->value, true);
  }

  /// "d-MMM-yy" and "d MMM yyyy"; the year may be missing.
  std::optional<Civil> ReadNamedMonth(Number day) {
    const int month = MonthOf(ReadWord());
    if (month == 0 || day.digits > 2) return std::nullopt;
    return WithYear(month, day.value, false);
  }

  /// A number before a colon is the hour of a time: then the year is missing.
  std::optional<Civil> WithYear(int month, int day, bool comma) {
    const std::string_view behind = rest_;
    const bool separated = (comma && Take(',')) || Take('-');
    if (SkipBlanks() || separated) {
      const auto year = ReadNumber(4);
      if (year && !NextIs(':')) return Civil{YearOf(*year), month, day};
      if (separated) return std::nullopt;
    }
    rest_ = behind;
    return Civil{Today().Year(), month, day};
  }

  /// M/d/yyyy, M-d-yyyy, M/d and yyyy-M-d. Both separators mean the same, but one date uses only one of them.
  std::optional<Civil> ReadNumbers(Number first) {
    const char separator = NextIs('/') ? '/' : '-';
    if (!Take(separator)) return std::nullopt;
    const auto second = ReadNumber(2);
    if (!second) return std::nullopt;
    if (!Take(separator)) {
      if (first.digits > 2) return std::nullopt;
      return MonthAndDay(Today().Year(), first.value, second->value);
    }
    const auto third = ReadNumber(4);
    if (!third) return std::nullopt;
    if (first.digits > 2) {
      if (third->digits > 2) return std::nullopt;
      return Civil{first.value, second->value, third->value};
    }
    return MonthAndDay(YearOf(*third), first.value, second->value);
  }

  /// The month comes first, unless only the other order makes sense.
  static Civil MonthAndDay(int year, int first, int second) {
    return first > 12 && second <= 12 ? Civil{year, second, first} : Civil{year, first, second};
  }

  std::string_view rest_;
};

}  // namespace

std::string ShortDate(const DateTime& d) {
  std::string text;
  Append(text, d.Month());
  text.push_back('/');
  Append(text, d.Day());
  text.push_back('/');
  Append(text, d.Year());
  return text;
}

std::string GeneralDate(const DateTime& d) {
  if (!d.HasTime()) return ShortDate(d);
  if (d.DateOnly() == DateTime()) return TimeText(d);
  return ShortDate(d) + " " + TimeText(d);
}

std::string MediumDate(const DateTime& d) {
  std::string text;
  Append(text, d.Day(), 2);
  text.append("-").append(kMonths[static_cast<std::size_t>(d.Month()) - 1].substr(0, 3)).append("-");
  Append(text, d.Year() % 100, 2);
  return text;
}

std::string PaddedDate(const DateTime& d) {
  std::string text;
  Append(text, d.Month(), 2);
  text.push_back('/');
  Append(text, d.Day(), 2);
  text.push_back('/');
  Append(text, d.Year(), 4);
  return text;
}

std::optional<DateTime> ParseDate(std::string_view text) { return DateReader(text).Read(); }

}  // namespace rt
