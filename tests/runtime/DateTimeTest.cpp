#include "platform/runtime/DateTime.h"

#include <gtest/gtest.h>

#include "platform/runtime/Clock.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"

namespace rt {
namespace {

std::string Read(std::string_view text) {
  const auto date = ParseDate(text);
  return date ? date->ToIso() : "no date";
}

template <typename Work>
int ErrorOf(Work work) {
  try {
    work();
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return 0;
}

TEST(DateTime, HoldsOnlyDaysAndTimesThatExist) {
  EXPECT_EQ(DateTime().ToIso(), "1899-12-30 00:00:00");
  const DateTime leap(2024, 2, 29, 23, 59, 58);
  EXPECT_EQ(leap.Year() * 10000 + leap.Month() * 100 + leap.Day(), 20240229);
  EXPECT_EQ(leap.Hour() * 10000 + leap.Minute() * 100 + leap.Second(), 235958);
  EXPECT_EQ(leap.DateOnly(), DateTime(2024, 2, 29));
  // Before 1970, too, the time of day counts forward.
  const DateTime old(1799, 12, 31, 6, 30);
  EXPECT_EQ(old.Day(), 31);
  EXPECT_EQ(old.Hour(), 6);
  EXPECT_TRUE(old.HasTime());
  EXPECT_EQ(DateTime(2000, 2, 29).Day(), 29);
  EXPECT_EQ(ErrorOf([] { DateTime(1900, 2, 29); }), 5);
  EXPECT_EQ(ErrorOf([] { DateTime(2026, 2, 29); }), 5);
  EXPECT_EQ(ErrorOf([] { DateTime(2026, 4, 31); }), 5);
  EXPECT_EQ(ErrorOf([] { DateTime(2026, 13, 1); }), 5);
  EXPECT_EQ(ErrorOf([] { DateTime(99, 12, 31); }), 5);
  EXPECT_EQ(ErrorOf([] { DateTime(10000, 1, 1); }), 5);
  EXPECT_EQ(ErrorOf([] { DateTime(2026, 1, 1, 24); }), 5);
}

TEST(DateTime, TheFormOfDataFilesGoesBothWays) {
  for (const char* text :
       {"0100-01-01 00:00:00", "1799-12-31 23:59:59", "2024-02-29 07:08:09", "9999-12-31 12:00:00"}) {
    const auto date = DateTime::FromIso(text);
    ASSERT_TRUE(date.has_value()) << text;
    EXPECT_EQ(date->ToIso(), text);
  }
  EXPECT_EQ(DateTime::FromIso("2026-03-01"), DateTime(2026, 3, 1));
  for (const char* text :
       {"", "2026-3-1", "2026-02-29", "2026-13-01", "2026-03-01T00:00:00", "2026-03-01 24:00:00",
        "2026-03-01 00:00", "2026/03/01", "+026-03-01", "2026-03-0a", "2026-03-01 00:00:00 "}) {
    EXPECT_FALSE(DateTime::FromIso(text).has_value()) << text;
  }
}

TEST(DateTime, TextsForPeople) {
  const DateTime day(2026, 3, 1);
  EXPECT_EQ(ShortDate(day), "3/1/2026");
  EXPECT_EQ(PaddedDate(day), "03/01/2026");
  EXPECT_EQ(MediumDate(day), "01-Mar-26");
  EXPECT_EQ(MediumDate(DateTime(1900, 12, 25)), "25-Dec-00");
  EXPECT_EQ(GeneralDate(day), "3/1/2026");
  EXPECT_EQ(GeneralDate(DateTime(2026, 3, 1, 14, 5, 9)), "3/1/2026 2:05:09 PM");
  EXPECT_EQ(GeneralDate(DateTime(2026, 3, 1, 0, 0, 1)), "3/1/2026 12:00:01 AM");
  EXPECT_EQ(GeneralDate(DateTime(2026, 3, 1, 12)), "3/1/2026 12:00:00 PM");
  EXPECT_EQ(GeneralDate(DateTime(1899, 12, 30, 8, 30)), "8:30:00 AM");
  EXPECT_EQ(ShortDate(DateTime(1799, 12, 31)), "12/31/1799");
}

TEST(ParseDate, ReadsTheFormsThatPeopleType) {
  const FixedClock clock(DateTime(2026, 6, 15, 9, 0, 0));
  EXPECT_EQ(Read("3/1/2026"), "2026-03-01 00:00:00");
  EXPECT_EQ(Read(" 03-01-2026 "), "2026-03-01 00:00:00");
  EXPECT_EQ(Read("12/31/1799"), "1799-12-31 00:00:00");
  EXPECT_EQ(Read("1/1/1800"), "1800-01-01 00:00:00");
  EXPECT_EQ(Read("3/1/29"), "2029-03-01 00:00:00");
  EXPECT_EQ(Read("3/1/30"), "1930-03-01 00:00:00");
  EXPECT_EQ(Read("3/1/0"), "2000-03-01 00:00:00");
  EXPECT_EQ(Read("2/29/00"), "2000-02-29 00:00:00");
  EXPECT_EQ(Read("7/4"), "2026-07-04 00:00:00");
  EXPECT_EQ(Read("2026-3-1"), "2026-03-01 00:00:00");
  EXPECT_EQ(Read("1-Mar-26"), "2026-03-01 00:00:00");
  EXPECT_EQ(Read("1 march 2026"), "2026-03-01 00:00:00");
  EXPECT_EQ(Read("SEP 9, 1999"), "1999-09-09 00:00:00");
  EXPECT_EQ(Read("May 5 10:15"), "2026-05-05 10:15:00");
  // Day and month are exchanged only if the usual order makes no sense.
  EXPECT_EQ(Read("13/2/2026"), "2026-02-13 00:00:00");
  EXPECT_EQ(Read("12/2/2026"), "2026-12-02 00:00:00");
}

TEST(ParseDate, ReadsTimesWithAndWithoutADate) {
  EXPECT_EQ(Read("3/1/2026 2:05:09 PM"), "2026-03-01 14:05:09");
  EXPECT_EQ(Read("3/1/2026  12:00 am"), "2026-03-01 00:00:00");
  EXPECT_EQ(Read("3/1/2026 12:30PM"), "2026-03-01 12:30:00");
  EXPECT_EQ(Read("23:59"), "1899-12-30 23:59:00");
  EXPECT_EQ(Read("8:30:00 AM"), "1899-12-30 08:30:00");
  for (const char* text :
       {"24:00", "13:00 PM", "0:10 AM", "10:60", "10:", "3/1/2026 10", "3/1/202610:00", "10:00 XM"}) {
    EXPECT_EQ(Read(text), "no date") << text;
  }
  // The program can read every date that it writes.
  for (const DateTime& date :
       {DateTime(2026, 3, 1, 14, 5, 9), DateTime(100, 1, 1), DateTime(9999, 12, 31, 0, 0, 1),
        DateTime(1899, 12, 30, 12, 1), DateTime(1899, 12, 30)}) {
    EXPECT_EQ(ParseDate(GeneralDate(date)), date) << date.ToIso();
  }
}

TEST(ParseDate, RefusesWhatIsNoDate) {
  const FixedClock clock(DateTime(2026, 6, 15));
  for (const char* text : {"",           " ",         "2/29/2026", "2/29",       "2/29/1900", "4/31/2026",
                           "13/13/2026", "0/1/2026",  "1/0/2026",  "1/1/99999",  "1/1/0050",  "32-Jan-26",
                           "1-Foo-26",   "Mar 2026",  "3/1-2026",  "3/1/2026 x", "12abc",     "1.2.2026",
                           "36500",      "2026-13-1", "3/1/",      "3//2026",    "March",     "//"}) {
    EXPECT_FALSE(IsDate(text)) << text;
  }
}

TEST(DateAdd, MonthsKeepTheDayOrEndWithTheMonth) {
  EXPECT_EQ(DateAdd("m", 1, DateTime(2026, 1, 31)), DateTime(2026, 2, 28));
  EXPECT_EQ(DateAdd("m", 1, DateTime(2024, 1, 31, 8, 15)), DateTime(2024, 2, 29, 8, 15));
  EXPECT_EQ(DateAdd("m", -1, DateTime(2026, 3, 31)), DateTime(2026, 2, 28));
  EXPECT_EQ(DateAdd("m", 3, DateTime(2026, 11, 30)), DateTime(2027, 2, 28));
  EXPECT_EQ(DateAdd("m", -12, DateTime(2026, 1, 15)), DateTime(2025, 1, 15));
  EXPECT_EQ(DateAdd("m", 0, DateTime(2026, 1, 31)), DateTime(2026, 1, 31));
  EXPECT_EQ(DateAdd("yyyy", 1, DateTime(2024, 2, 29)), DateTime(2025, 2, 28));
  EXPECT_EQ(DateAdd("d", 1, DateTime(2024, 2, 28)), DateTime(2024, 2, 29));
  EXPECT_EQ(DateAdd("d", -1, DateTime(1800, 1, 1)), DateTime(1799, 12, 31));
  EXPECT_EQ(DateAdd("s", -1, DateTime(1970, 1, 1)), DateTime(1969, 12, 31, 23, 59, 59));
  EXPECT_EQ(ErrorOf([] { DateAdd("d", 1, DateTime(9999, 12, 31)); }), 5);
  EXPECT_EQ(ErrorOf([] { DateAdd("s", -1, DateTime(100, 1, 1)); }), 5);
  EXPECT_EQ(ErrorOf([] { DateAdd("m", 2'147'483'647, DateTime(2026, 1, 1)); }), 5);
  EXPECT_EQ(ErrorOf([] { DateAdd("yyyy", -2'147'483'647, DateTime(2026, 1, 1)); }), 5);
  EXPECT_EQ(ErrorOf([] { DateAdd("x", 1, DateTime(2026, 1, 1)); }), 5);
}

TEST(DateDiff, CountsDaysWeeksAndBoundaries) {
  const DateTime late(2026, 3, 1, 23, 59, 59);
  const DateTime early(2026, 3, 2, 0, 0, 0);
  EXPECT_EQ(DateDiff("d", late, early), 1);
  EXPECT_EQ(DateDiff("d", early, late), -1);
  EXPECT_EQ(DateDiff("d", DateTime(1969, 12, 31, 23), DateTime(1970, 1, 1)), 1);
  EXPECT_EQ(DateDiff("d", DateTime(2024, 2, 28), DateTime(2024, 3, 1)), 2);
  EXPECT_EQ(DateDiff("w", DateTime(2026, 3, 1), DateTime(2026, 3, 14)), 1);
  EXPECT_EQ(DateDiff("w", DateTime(2026, 3, 1), DateTime(2026, 3, 15)), 2);
  EXPECT_EQ(DateDiff("w", DateTime(2026, 3, 15), DateTime(2026, 3, 2)), -1);
  EXPECT_EQ(DateDiff("w", DateTime(2026, 3, 7), DateTime(2026, 3, 1)), 0);
  EXPECT_EQ(DateDiff("m", DateTime(2025, 12, 31), DateTime(2026, 1, 1)), 1);
  EXPECT_EQ(DateDiff("m", DateTime(2026, 1, 1), DateTime(2024, 12, 31)), -13);
  EXPECT_EQ(DateDiff("yyyy", DateTime(2025, 12, 31), DateTime(2026, 1, 1)), 1);
  EXPECT_EQ(ErrorOf([&] { DateDiff("q", late, early); }), 5);
}

TEST(DatePart, SundayIsTheFirstDay) {
  EXPECT_EQ(DatePart("w", DateTime(2026, 3, 1)), 1);
  EXPECT_EQ(DatePart("w", DateTime(2026, 3, 7)), 7);
  EXPECT_EQ(DatePart("w", DateTime(1899, 12, 30)), 7);
  EXPECT_EQ(DatePart("n", DateTime(2026, 3, 1, 14, 5, 9)), 5);
  EXPECT_EQ(DatePart("m", DateTime(2026, 3, 1, 14, 5, 9)), 3);
  EXPECT_EQ(DatePart("yyyy", DateTime(1799, 12, 31)), 1799);
}

TEST(Clock, CanBeFixedAndComesBack) {
  {
    const FixedClock outer(DateTime(2026, 3, 1, 10, 0, 0));
    {
      const FixedClock inner(DateTime(2024, 2, 29, 11, 0, 0));
      EXPECT_EQ(Today(), DateTime(2024, 2, 29));
    }
    EXPECT_EQ(Now(), DateTime(2026, 3, 1, 10, 0, 0));
  }
  EXPECT_FALSE(SetClock({})) << "the workstation's own clock should be back";
}

}  // namespace
}  // namespace rt
