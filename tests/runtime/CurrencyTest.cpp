#include "platform/runtime/Currency.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/runtime/RuntimeError.h"

namespace rt {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

std::int64_t UnitsOf(const char* text) {
  const auto amount = Currency::Parse(text);
  EXPECT_TRUE(amount.has_value()) << text;
  return amount.value_or(Currency::FromUnits(-999)).Units();
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

TEST(Currency, ReadsAmountsAsPeopleTypeThem) {
  EXPECT_EQ(UnitsOf("12"), 120'000);
  EXPECT_EQ(UnitsOf("-12.5"), -125'000);
  EXPECT_EQ(UnitsOf("$1,234.50"), 12'345'000);
  EXPECT_EQ(UnitsOf("($3.00)"), -30'000);
  EXPECT_EQ(UnitsOf(" -$.05 "), -500);
  EXPECT_EQ(UnitsOf("1.5E2"), 1'500'000);
  EXPECT_EQ(UnitsOf("0.00000000000000000000000000001"), 0);
  EXPECT_EQ(UnitsOf("-0"), 0);
  for (const char* text :
       {"", " ", "$", ".", "12abc", "1.2.3", "1,23", "--1", "(-1)", "(1", "1)", "$$1", "1E", "1 2"}) {
    EXPECT_FALSE(Currency::Parse(text).has_value()) << text;
  }
}

TEST(Currency, DigitsBeyondTheFourthRoundWithTiesToEven) {
  EXPECT_EQ(UnitsOf("1.00005"), 10'000);
  EXPECT_EQ(UnitsOf("1.00015"), 10'002);
  EXPECT_EQ(UnitsOf("-1.00015"), -10'002);
  EXPECT_EQ(UnitsOf("1.000050000000000000000000001"), 10'001);
  EXPECT_EQ(UnitsOf("1.00004999999999999999999"), 10'000);
  EXPECT_EQ(UnitsOf("0.00005"), 0);
  EXPECT_EQ(UnitsOf("0.00006"), 1);
  EXPECT_EQ(UnitsOf("15E-5"), 2);
}

TEST(Currency, TheRangeEndsWhereTheFieldsDoes) {
  EXPECT_EQ(UnitsOf("922337203685477.5807"), kMost);
  EXPECT_EQ(UnitsOf("-922,337,203,685,477.5808"), kLeast);
  EXPECT_EQ(UnitsOf("922337203685477.58074"), kMost);
  EXPECT_FALSE(Currency::Parse("922337203685477.5808"));
  EXPECT_FALSE(Currency::Parse("-922337203685477.5809"));
  EXPECT_FALSE(Currency::Parse("1E15"));
  EXPECT_FALSE(Currency::Parse("1E99999999999"));

  const Currency most = Currency::FromUnits(kMost);
  const Currency least = Currency::FromUnits(kLeast);
  const Currency unit = Currency::FromUnits(1);
  EXPECT_EQ(ErrorOf([&] { (void)(most + unit); }), 6);
  EXPECT_EQ(ErrorOf([&] { (void)(least - unit); }), 6);
  EXPECT_EQ(most + least, Currency::FromUnits(-1));
  EXPECT_EQ(ErrorOf([] { Currency::FromWhole(922'337'203'685'478); }), 6);
  EXPECT_EQ(Currency::FromWhole(-922'337'203'685'477).Units(), -9'223'372'036'854'770'000);
  EXPECT_EQ(ErrorOf([] { Currency::RoundedToEven(1e15); }), 6);
  EXPECT_EQ(ErrorOf([] { Currency::RoundedToEven(std::nan("")); }), 6);
  EXPECT_EQ(ErrorOf([] { Currency::RoundedToEven(std::numeric_limits<double>::infinity()); }), 6);
  EXPECT_EQ(ErrorOf([&] { Multiply(1.0000001F, most); }), 6);
  EXPECT_EQ(ErrorOf([&] { Multiply(std::numeric_limits<float>::max(), unit); }), 6);
}

TEST(Currency, FloatingAmountsRoundOnceWithTiesToEven) {
  // Powers of two are exact ties in ten-thousandths: 312.5, 937.5 and 0.5 units.
  EXPECT_EQ(Currency::RoundedToEven(0.03125).Units(), 312);
  EXPECT_EQ(Currency::RoundedToEven(0.09375).Units(), 938);
  EXPECT_EQ(Currency::RoundedToEven(-0.03125).Units(), -312);
  EXPECT_EQ(Currency::RoundedToEven(1234.5678).Units(), 12'345'678);
  EXPECT_EQ(Currency::RoundedToEven(5e-324).Units(), 0);
  EXPECT_EQ(Currency::RoundedToEven(-0.0).Units(), 0);
  // The exact value of a Single, to the last ten-thousandth.
  EXPECT_EQ(Currency::RoundedToEven(static_cast<double>(12345.67F)).Units(), 123'456'699);
}

TEST(Currency, UnitsTimesPriceIsExactBeforeItIsRounded) {
  EXPECT_EQ(Multiply(2.5F, Currency::FromUnits(13'999)).Units(), 34'998);  // 34997.5
  EXPECT_EQ(Multiply(0.5F, Currency::FromUnits(13'001)).Units(), 6'500);   // 6500.5
  EXPECT_EQ(Multiply(0.5F, Currency::FromUnits(-13'003)).Units(), -6'502);
  EXPECT_EQ(Multiply(-10.0F, Currency::FromUnits(35'990)).Units(), -359'900);
  // 0.1 as a Single is 0.100000001490116, which makes a difference from a hundred million units on.
  EXPECT_EQ(Multiply(0.1F, Currency::FromUnits(10'000'000'000)).Units(), 1'000'000'015);
  // A product with more digits than a double has.
  EXPECT_EQ(Multiply(0.5F, Currency::FromUnits(kMost)).Units(), 4'611'686'018'427'387'904);
  EXPECT_EQ(Multiply(1.0F, Currency::FromUnits(kLeast)).Units(), kLeast);
  EXPECT_EQ(Multiply(1e-45F, Currency::FromUnits(kMost)).Units(), 0);
  EXPECT_EQ(Multiply(0.0F, Currency::FromUnits(kMost)).Units(), 0);
}

TEST(Currency, TextsForPeople) {
  EXPECT_EQ(Currency::FromUnits(120'000).PlainText(), "12");
  EXPECT_EQ(Currency::FromUnits(-5'000).PlainText(), "-0.5");
  EXPECT_EQ(Currency::FromUnits(31'416).PlainText(), "3.1416");
  EXPECT_EQ(Currency::FromUnits(10).PlainText(), "0.001");
  EXPECT_EQ(Currency::FromUnits(kLeast).PlainText(), "-922337203685477.5808");
  EXPECT_EQ(Currency().PlainText(), "0");

  EXPECT_EQ(Currency::FromUnits(12'345'678'950).DisplayText(), "$1,234,567.90");
  EXPECT_EQ(Currency::FromUnits(-12'345'000).DisplayText(), "($1,234.50)");
  EXPECT_EQ(Currency::FromUnits(50).DisplayText(), "$0.01");
  EXPECT_EQ(Currency::FromUnits(-150).DisplayText(), "($0.02)");
  EXPECT_EQ(Currency::FromUnits(-49).DisplayText(), "$0.00");
  EXPECT_EQ(Currency::FromUnits(9'999'950).DisplayText(), "$1,000.00");
  EXPECT_EQ(Currency::FromUnits(kLeast).DisplayText(), "($922,337,203,685,477.58)");
}

}  // namespace
}  // namespace rt
