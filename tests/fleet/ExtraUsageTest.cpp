#include "fleet/ExtraUsage.h"

#include <gtest/gtest.h>

#include "platform/runtime/Clock.h"
#include "support/DueFleet.h"
#include "support/ScreenScript.h"

namespace {

struct Mark {
  const char* date;
  const char* mileage;
};

struct UsageCase {
  const char* name;
  std::vector<Mark> readings;
  std::vector<Mark> transactions;
  const char* usage;
};

/// 400 miles in four weeks.
const std::vector<Mark> kMonth = {{"3/1/2026", "10000"}, {"2/1/2026", "9600"}};

const UsageCase kCases[] = {
    {"nothing on file", {}, {}, "0"},
    {"readings of one day, counted from day zero, 6583 weeks ago",
     {{"3/1/2026", "13166"}, {"3/1/2026", "9000"}},
     {},
     "4"},
    {"less than a week is one", {{"3/1/2026", "100"}, {"2/26/2026", "40"}}, {}, "120"},
    {"the oldest reading counts, whatever lies between",
     {{"2/15/2026", "9990"}, {"2/1/2026", "9600"}, {"3/1/2026", "10000"}},
     {},
     "200"},
    {"200.5 is nearest to 200", kMonth, {}, "200"},
    {"201.5 is nearest to 202", {{"3/1/2026", "10002"}, {"2/1/2026", "9600"}}, {}, "202"},
    {"202.5 is nearest to 202", {{"3/1/2026", "10004"}, {"2/1/2026", "9600"}}, {}, "202"},

    {"an earlier transaction moves the end", kMonth, {{"2/22/2026", "9990"}}, "260"},
    {"without a mileage it moves the day alone", kMonth, {{"2/22/2026", "NULL"}}, "267"},
    {"a later transaction does not", kMonth, {{"3/8/2026", "12000"}}, "200"},
    {"a further transaction moves the beginning later",
     kMonth,
     {{"3/8/2026", "1"}, {"2/15/2026", "9700"}},
     "300"},
    {"without a mileage the day alone", kMonth, {{"3/8/2026", "1"}, {"2/15/2026", "NULL"}}, "400"},
    {"never earlier", kMonth, {{"3/8/2026", "1"}, {"1/1/2026", "5000"}}, "200"},
    {"nor to the last day", kMonth, {{"3/8/2026", "1"}, {"3/1/2026", "9950"}}, "200"},
    {"one transaction alone says nothing", {}, {{"3/1/2026", "9000"}}, "0"},
    {"transactions alone open a span without an end",
     {},
     {{"3/1/2026", "9000"}, {"2/1/2026", "5000"}},
     "-10000"},

    {"a last reading without a mileage", {{"3/1/2026", "NULL"}, {"2/1/2026", "9600"}}, {}, "-4800"},
    {"a first reading without a mileage", {{"3/1/2026", "10000"}, {"2/1/2026", "NULL"}}, {}, "5000"},
    {"beyond all numbers", {{"3/1/2026", "3E+38"}, {"2/1/2026", "0"}}, {}, "0"},
};

class ExtraUsageTest : public testing::Test {
 protected:
  void Read(const std::string& code, const std::string& date, const std::string& mileage) {
    fleet_.Reading(code, "#" + date + "#", mileage);
  }
  void Work(const std::string& code, const std::string& date, const std::string& mileage) {
    fleet_.Transaction(++transactions_, code, "#" + date + "#", mileage);
  }

  rt::FixedClock clock_{rt::DateTime(2025, 12, 25, 10, 30)};
  test::DueFleet fleet_;
  test::ScreenScript screen_;
  int transactions_ = 0;
};

TEST_F(ExtraUsageTest, TwoWeeksAtTheRateOfWhatIsOnFile) {
  int number = 0;
  for (const UsageCase& one : kCases) {
    // An apostrophe is a character like any other.
    const std::string code = "O'" + std::to_string(++number);
    const std::string quoted = "O''" + std::to_string(number);
    for (const Mark& reading : one.readings) Read(quoted, reading.date, reading.mileage);
    for (const Mark& transaction : one.transactions) Work(quoted, transaction.date, transaction.mileage);
    EXPECT_EQ(dw::DefaultExtraUsage(code), one.usage) << one.name;
  }
  EXPECT_EQ(dw::DefaultDueBy(), "1/8/2026");
}

TEST_F(ExtraUsageTest, OnlyTheLatest25OfEachCount) {
  const auto weeksAgo = [](int weeks) {
    return rt::ShortDate(rt::DateAdd("d", -7 * weeks, rt::DateTime(2026, 3, 1)));
  };
  for (int week = 0; week < 26; ++week)
    Read("R", weeksAgo(week), week == 25 ? "0" : std::to_string(10000 - 10 * week));
  EXPECT_EQ(dw::DefaultExtraUsage("R"), "20");

  for (const Mark& reading : kMonth) Read("T", reading.date, reading.mileage);
  for (int row = 0; row < 24; ++row) Work("T", "3/1/2026", "10000");
  Work("T", "2/15/2026", "9700");
  EXPECT_EQ(dw::DefaultExtraUsage("T"), "300") << "the 25th moves the beginning";
  Work("T", "3/1/2026", "10000");
  EXPECT_EQ(dw::DefaultExtraUsage("T"), "200") << "the 26th is not checked";
}

}  // namespace
