// Civil dates and times to the second, their arithmetic and their texts.
#pragma once

#include <chrono>
#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace rt {

/// A date with a time of day, without a time zone, from 1/1/100 to 12/31/9999.
class DateTime {
 public:
  /// 12/30/1899 0:00, the day zero of the field's calendar.
  DateTime() = default;
  explicit DateTime(std::chrono::local_seconds t) : t_(t) {}
  /// Throws RuntimeError 5 if there is no such day or time.
  DateTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

  int Year() const;
  int Month() const;
  int Day() const;
  int Hour() const;
  int Minute() const;
  int Second() const;
  bool HasTime() const;
  /// The same day at 0:00.
  DateTime DateOnly() const;
  std::chrono::local_seconds Time() const { return t_; }

  /// "YYYY-MM-DD HH:MM:SS", the form in data files. FromIso also takes the date alone; empty for
  /// anything else.
  std::string ToIso() const;
  static std::optional<DateTime> FromIso(std::string_view text);

  friend auto operator<=>(const DateTime&, const DateTime&) = default;

 private:
  std::chrono::local_seconds t_{std::chrono::local_days{std::chrono::year{1899} / 12 / 30}};
};

/// The one short date form, M/d/yyyy: "3/1/2026".
std::string ShortDate(const DateTime& d);
/// The general form: the short date, and after it the time if there is one: "3/1/2026 2:05:09 PM". A value on
/// the day zero with a time has only the time.
std::string GeneralDate(const DateTime& d);
/// "Medium Date": dd-MMM-yy, "01-Mar-26".
std::string MediumDate(const DateTime& d);
/// "MM/dd/yyyy": "03/01/2026".
std::string PaddedDate(const DateTime& d);

/// Reads a date as people type it: M/d/yyyy, M-d-yyyy, M/d/yy (00 to 29 are 2000s, 30 to 99 are 1900s), M/d
/// (this year by the Clock), yyyy-M-d, d-MMM-yy, d MMM yyyy, MMM d, yyyy; each with an optional time
/// h:mm[:ss] [AM|PM]; or a time alone. If the first number cannot be a month and the second can, they are day
/// and month. Empty if the text is not a date.
std::optional<DateTime> ParseDate(std::string_view text);

/// "m": months, keeping the day and cutting it to the last day of a shorter month; "d": days; "yyyy": years;
/// "h", "n", "s". Throws RuntimeError 5 for an unknown interval or a date beyond the calendar.
DateTime DateAdd(std::string_view interval, int number, const DateTime& date);
/// "d": days between, times of day ignored; "w": whole weeks between; "m": month boundaries; "yyyy": year
/// boundaries. Negative when `b` is the earlier. Throws RuntimeError 5 for an unknown interval.
int DateDiff(std::string_view interval, const DateTime& a, const DateTime& b);
/// "yyyy", "m", "d", "h", "n", "s", "w" (weekday, Sunday is 1). Throws RuntimeError 5 for an unknown
/// interval.
int DatePart(std::string_view interval, const DateTime& date);

}  // namespace rt
