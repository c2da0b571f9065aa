#include "platform/runtime/Text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

namespace rt {
namespace {

TEST(PlainText, SinglesHaveAsManyDigitsAsTheyNeed) {
  EXPECT_EQ(PlainText(9500.0F), "9500");
  EXPECT_EQ(PlainText(0.1F), "0.1");
  EXPECT_EQ(PlainText(-0.5F), "-0.5");
  EXPECT_EQ(PlainText(9499.9F), "9499.9");
  EXPECT_EQ(PlainText(12345.67F), "12345.67");
  EXPECT_EQ(PlainText(123456.78F), "123456.8");
  EXPECT_EQ(PlainText(9999999.0F), "9999999");
  EXPECT_EQ(PlainText(1e7F), "1E+07");
  EXPECT_EQ(PlainText(16777216.0F), "1.677722E+07");
  EXPECT_EQ(PlainText(1e10F), "1E+10");
  EXPECT_EQ(PlainText(-3.4e38F), "-3.4E+38");
  EXPECT_EQ(PlainText(0.0001F), "0.0001");
  EXPECT_EQ(PlainText(0.00001F), "1E-05");
  EXPECT_EQ(PlainText(1.0F / 3.0F), "0.3333333");
  EXPECT_EQ(PlainText(0.99999994F), "0.9999999");
  EXPECT_EQ(PlainText(-0.0F), "0");
}

TEST(PlainText, DoublesHaveAtMostFifteenDigits) {
  EXPECT_EQ(PlainText(0.1 + 0.2), "0.3");
  EXPECT_EQ(PlainText(123456789012345.0), "123456789012345");
  EXPECT_EQ(PlainText(1e15), "1E+15");
  EXPECT_EQ(PlainText(-1234.5678), "-1234.5678");
  EXPECT_EQ(PlainText(2.0 / 3.0), "0.666666666666667");
  EXPECT_EQ(PlainText(1.5e-300), "1.5E-300");
  // Rounding can carry into a longer number.
  EXPECT_EQ(PlainText(0.9999999999999999), "1");
  EXPECT_EQ(PlainText(999999999999999.9), "1E+15");
  EXPECT_EQ(PlainText(100.25), "100.25");
}

TEST(PlainText, EverySingleOfSixDigitsReadsBack) {
  for (int i = 1; i < 1'000'000; i += 37) {
    const std::string whole = std::to_string(i);
    const float number = std::strtof((whole + "e-3").c_str(), nullptr);
    const auto back = ParseNumber(PlainText(number));
    ASSERT_TRUE(back.has_value()) << number;
    ASSERT_EQ(static_cast<float>(*back), number);
    ASSERT_LE(PlainText(number).size(), 8U) << number;
  }
}

TEST(ParseNumber, ReadsWhatPeopleTypeAndNothingElse) {
  EXPECT_EQ(ParseNumber("12"), 12);
  EXPECT_EQ(ParseNumber("  -12.50 "), -12.5);
  EXPECT_EQ(ParseNumber("+.5"), 0.5);
  EXPECT_EQ(ParseNumber("5."), 5);
  EXPECT_EQ(ParseNumber("$1,234,567.89"), 1234567.89);
  EXPECT_EQ(ParseNumber("($3.00)"), -3);
  EXPECT_EQ(ParseNumber("1.5e3"), 1500);
  EXPECT_EQ(ParseNumber("2E-2"), 0.02);
  EXPECT_EQ(ParseNumber("007"), 7);
  EXPECT_EQ(ParseNumber("0.30000000000000004"), 0.30000000000000004);
  EXPECT_EQ(ParseNumber("1.7976931348623157E308"), std::numeric_limits<double>::max());
  EXPECT_EQ(ParseNumber("1E-400"), 0);
  for (const char* text :
       {"",          " ",        "12abc", "1.2.3", "abc",  "-",   "$",    ".",     "1,2",
        "12,34,567", "1234,567", ",123",  "1,",    "1e",   "1e+", "- -1", "1-",    "(1",
        "1)",        "()",       "(-1)",  "1 2",   "0x10", "inf", "nan",  "1E400", "1,234.5,6"}) {
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
}

TEST(Text, LettersOfAllAlphabetsChangeCase) {
  EXPECT_EQ(UpperCase("unit-7b"), "UNIT-7B");
  EXPECT_EQ(UpperCase("\u00e9cole \u00f1 \u0436"), "\u00c9COLE \u00d1 \u0416");
  EXPECT_EQ(LowerCase("\u00c9COLE \u0416"), "\u00e9cole \u0436");
  EXPECT_EQ(LowerCase("I"), "i");
  EXPECT_EQ(UpperCase("\U00010428"), "\U00010400");
  // Bytes of another encoding stay unchanged: a lone byte, a cut sequence, an overlong one, a surrogate.
  for (const char* bytes : {"\xe9"
                            "A",
                            "A\xe2\x82", "\xc0\xaf", "\xed\xa0\x80", "\xff"}) {
    EXPECT_EQ(UpperCase(bytes), bytes);
    EXPECT_EQ(LowerCase(UpperCase(bytes)), LowerCase(bytes));
  }
}

TEST(Text, LengthTrimAndComparison) {
  EXPECT_EQ(Length(""), 0U);
  EXPECT_EQ(Length("a\u00e9\u20ac\U0001F69A"), 4U);
  EXPECT_EQ(Length("\xe9"
                   "a\xff"),
            3U);
  EXPECT_EQ(Trim("  a b  "), "a b");
  EXPECT_EQ(Trim("   "), "");
  EXPECT_EQ(Trim("\tx "), "\tx");
  EXPECT_TRUE(EqualNoCase("Truck [1]", "tRUCK [1]"));
  EXPECT_FALSE(EqualNoCase("[", "{"));
  EXPECT_FALSE(EqualNoCase("\u00e9", "\u00c9"));
  EXPECT_FALSE(EqualNoCase("a", "ab"));
  EXPECT_FALSE(EqualNoCase("ab", "a"));
  EXPECT_EQ(FoldCase("aZ[@\u00c9"), "az[@\u00c9");
}

}  // namespace
}  // namespace rt
