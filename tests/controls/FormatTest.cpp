#include "platform/controls/Format.h"

#include <gtest/gtest.h>

using rt::Currency;
using ui::Format;

namespace {

const std::string kMoney = "$#,##0.00;($#,##0.00)";

TEST(Format, Money) {
  EXPECT_EQ(Format(Currency::FromWhole(1234567), kMoney), "$1,234,567.00");
  EXPECT_EQ(Format(Currency::FromUnits(-12'345'650), kMoney), "($1,234.57)");
  EXPECT_EQ(Format(Currency::FromUnits(50), kMoney), "$0.01");   // half a cent, away from zero
  EXPECT_EQ(Format(Currency::FromUnits(-49), kMoney), "$0.00");  // rounds to nothing: no parentheses
  EXPECT_EQ(Format(Currency::FromUnits(9'999'950), kMoney), "$1,000.00");
  EXPECT_EQ(Format(Currency::FromUnits(-15'000), "\"$\"#,##0.00"), "-$1.50");
  EXPECT_EQ(Format(rt::Null{}, kMoney), "");
  EXPECT_EQ(Format("1234.5", kMoney), "$1,234.50");  // as the user types it into a box
  EXPECT_EQ(Format("n/a", kMoney), "n/a");
  EXPECT_EQ(Format(Currency::FromUnits(12'500), ""), "1.25");
}

TEST(Format, DigitsAreRoundedAsDecimals) {
  EXPECT_EQ(Format(1.005, "###0.00"), "1.01");  // the binary number is a little less
  EXPECT_EQ(Format(2.675F, "###0.00"), "2.68");
  EXPECT_EQ(Format(-0.25, "###0.0"), "-0.3");
  EXPECT_EQ(Format(99.95F, "#####0.0"), "100.0");
  EXPECT_EQ(Format(1e10F, "###0.0"), "10000000000.0");
  EXPECT_EQ(Format(4e-9, "0.00"), "0.00");
  EXPECT_EQ(Format(0.1F, ""), "0.1");
  EXPECT_EQ(Format(7, "000"), "007");
  EXPECT_EQ(Format(0, "0;-0;none"), "none");
}

TEST(Format, PlacesThatMayStayEmpty) {
  EXPECT_EQ(Format(1.23456, "##.####"), "1.2346");
  EXPECT_EQ(Format(0.5, "##.####"), ".5");
  EXPECT_EQ(Format(123, "##.####"), "123.");
}

TEST(Format, DatesAndFlags) {
  const rt::DateTime noon(2026, 3, 1, 14, 5, 9);
  EXPECT_EQ(Format(noon, ""), "3/1/2026 2:05:09 PM");
  EXPECT_EQ(Format(noon.DateOnly(), ""), "3/1/2026");
  EXPECT_EQ(Format(noon, "Short Date"), "3/1/2026");
  EXPECT_EQ(Format(noon, "MM/dd/yyyy"), "03/01/2026");
  EXPECT_EQ(Format(noon, "mmm d, yy hh:mm am/pm"), "Mar 1, 26 02:05 PM");
  EXPECT_EQ(Format("2026-03-01", "MM/dd/yyyy"), "03/01/2026");
  EXPECT_EQ(Format("soon", "Short Date"), "soon");
  EXPECT_EQ(Format(true, ""), "Yes");
  EXPECT_EQ(Format(false, "True/False"), "False");
}

}  // namespace
