#include "platform/runtime/DateTime.h"

#include <array>

#include "platform/runtime/RuntimeError.h"

namespace rt {
namespace {

namespace chr = std::chrono;

constexpr int kInvalidCall = 5;
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr std::int64_t kSecondsOfDay = 86'400;

chr::local_days DayOf(chr::local_seconds t) { return chr::floor<chr::days>(t); }

chr::year_month_day CivilOf(chr::local_seconds t) { return chr::year_month_day{DayOf(t)}; }

std::int64_t SecondOfDay(chr::local_seconds t) { return (t - DayOf(t)).count(); }

bool IsTime(int hour, int minute, int second) {
  return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
}

/// Empty if there is no such day or time.
std::optional<chr::local_seconds> Moment(int year, int month, int day, int hour, int minute, int second) {
  if (year < kFirstYear || year > kLastYear || month < 1 || month > 12 || day < 1 || day > 31)
    return std::nullopt;
  if (!IsTime(hour, minute, second)) return std::nullopt;
  const chr::year_month_day civil{chr::year{year}, chr::month{static_cast<unsigned>(month)},
                                  chr::day{static_cast<unsigned>(day)}};
  if (!civil.ok()) return std::nullopt;
  return chr::local_days{civil} + chr::hours{hour} + chr::minutes{minute} + chr::seconds{second};
}

/// The number that `count` digits from `at` form; -1 if one of them is not a digit.
int Digits(std::string_view text, std::size_t at, std::size_t count) {
  int number = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (text[i] < '0' || text[i] > '9') return -1;
    number = number * 10 + (text[i] - '0');
  }
  return number;
}

void PutTwo(char* at, int number) {
  at[0] = static_cast<char>('0' + number / 10);
  at[1] = static_cast<char>('0' + number % 10);
}

enum class Interval { Year, Month, Day, Weekday, Hour, Minute, Second };

Interval IntervalOf(std::string_view name) {
  if (name == "yyyy") return Interval::Year;
  if (name == "m") return Interval::Month;
  if (name == "d") return Interval::Day;
  if (name == "w") return Interval::Weekday;
  if (name == "h") return Interval::Hour;
  if (name == "n") return Interval::Minute;
  if (name == "s") return Interval::Second;
  throw RuntimeError(kInvalidCall);
}

DateTime Checked(chr::local_seconds t) {
  static constexpr chr::local_seconds kFirst = chr::local_days{chr::year{kFirstYear} / 1 / 1};
  static constexpr chr::local_seconds kBeyond = chr::local_days{chr::year{kLastYear + 1} / 1 / 1};
  if (t < kFirst || t >= kBeyond) throw RuntimeError(kInvalidCall);
  return DateTime(t);
}

DateTime AddMonths(chr::local_seconds t, std::int64_t number) {
  const auto civil = CivilOf(t);
  const std::int64_t months =
      static_cast<int>(civil.year()) * std::int64_t{12} + static_cast<unsigned>(civil.month()) - 1 + number;
  const std::int64_t year = months / 12;
  if (months < 0 || year < kFirstYear || year > kLastYear) throw RuntimeError(kInvalidCall);
  const auto month = chr::year{static_cast<int>(year)} / chr::month{static_cast<unsigned>(months % 12 + 1)};
  const chr::day last = (month / chr::last).day();
  const chr::day day = civil.day() < last ? civil.day() : last;
  return DateTime(chr::local_days{month / day} + (t - DayOf(t)));
}

}  // namespace

DateTime::DateTime(int year, int month, int day, int hour, int minute, int second) {
  const auto moment = Moment(year, month, day, hour, minute, second);
  if (!moment) throw RuntimeError(kInvalidCall);
  t_ = *moment;
}

int DateTime::Year() const { return static_cast<int>(CivilOf(t_).year()); }
int DateTime::Month() const { return static_cast<int>(static_cast<unsigned>(CivilOf(t_).month())); }
int DateTime::Day() const { return static_cast<int>(static_cast<unsigned>(CivilOf(t_).day())); }
int DateTime::Hour() const { return static_cast<int>(SecondOfDay(t_) / 3600); }
int DateTime::Minute() const { return static_cast<int>(SecondOfDay(t_) / 60 % 60); }
int DateTime::Second() const { return static_cast<int>(SecondOfDay(t_) % 60); }
bool DateTime::HasTime() const { return SecondOfDay(t_) != 0; }
DateTime DateTime::DateOnly() const { return DateTime(chr::local_seconds{DayOf(t_)}); }

std::string DateTime::ToIso() const {
  const auto civil = CivilOf(t_);
  const auto second = static_cast<int>(SecondOfDay(t_));
  const int year = static_cast<int>(civil.year());
  std::string text = "0000-00-00 00:00:00";
  PutTwo(&text[0], year / 100);
  PutTwo(&text[2], year % 100);
  PutTwo(&text[5], static_cast<int>(static_cast<unsigned>(civil.month())));
  PutTwo(&text[8], static_cast<int>(static_cast<unsigned>(civil.day())));
  PutTwo(&text[11], second / 3600);
  PutTwo(&text[14], second / 60 % 60);
  PutTwo(&text[17], second % 60);
  return text;
}

std::optional<DateTime> DateTime::FromIso(std::string_view text) {
  const bool timed = text.size() == 19;
  if (!timed && text.size() != 10) return std::nullopt;
  if (text[4] != '-' || text[7] != '-') return std::nullopt;
  if (timed && (text[10] != ' ' || text[13] != ':' || text[16] != ':')) return std::nullopt;
  const auto moment =
      Moment(Digits(text, 0, 4), Digits(text, 5, 2), Digits(text, 8, 2), timed ? Digits(text, 11, 2) : 0,
             timed ? Digits(text, 14, 2) : 0, timed ? Digits(text, 17, 2) : 0);
  if (!moment) return std::nullopt;
  return DateTime(*moment);
}

DateTime DateAdd(std::string_view interval, int number, const DateTime& date) {
  const std::int64_t count = number;
  switch (IntervalOf(interval)) {
    case Interval::Year:
      return AddMonths(date.Time(), count * 12);
    case Interval::Month:
      return AddMonths(date.Time(), count);
    case Interval::Day:
      return Checked(date.Time() + chr::seconds{count * kSecondsOfDay});
    case Interval::Hour:
      return Checked(date.Time() + chr::seconds{count * 3600});
    case Interval::Minute:
      return Checked(date.Time() + chr::seconds{count * 60});
    case Interval::Second:
      return Checked(date.Time() + chr::seconds{count});
    default:
      throw RuntimeError(kInvalidCall);
  }
}

int DateDiff(std::string_view interval, const DateTime& a, const DateTime& b) {
  const auto days = static_cast<int>((DayOf(b.Time()) - DayOf(a.Time())).count());
  switch (IntervalOf(interval)) {
    case Interval::Day:
      return days;
    case Interval::Weekday:
      return days / 7;
    case Interval::Month:
      return (b.Year() - a.Year()) * 12 + b.Month() - a.Month();
    case Interval::Year:
      return b.Year() - a.Year();
    default:
      throw RuntimeError(kInvalidCall);
  }
}

int DatePart(std::string_view interval, const DateTime& date) {
  switch (IntervalOf(interval)) {
    case Interval::Year:
      return date.Year();
    case Interval::Month:
      return date.Month();
    case Interval::Day:
      return date.Day();
    case Interval::Weekday:
      return static_cast<int>(chr::weekday{DayOf(date.Time())}.c_encoding()) + 1;
    case Interval::Hour:
      return date.Hour();
    case Interval::Minute:
      return date.Minute();
    case Interval::Second:
      return date.Second();
  }
  throw RuntimeError(kInvalidCall);
}

}  // namespace rt
