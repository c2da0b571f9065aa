#include "platform/runtime/Value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/runtime/RuntimeError.h"

namespace rt {
namespace {

template <typename Work>
int ErrorOf(Work work) {
  try {
    work();
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return 0;
}

Value Short(int number) { return static_cast<std::int16_t>(number); }
Value Money(std::int64_t units) { return Currency::FromUnits(units); }

TEST(Value, NullIsNeitherEmptyNorZero) {
  const Value null;
  EXPECT_TRUE(null.IsNull());
  EXPECT_EQ(null, Value(Null{}));
  EXPECT_NE(null, Value(""));
  EXPECT_NE(null, Value(0));
  EXPECT_FALSE(Value("").IsNull());
  EXPECT_EQ(null.Shown(), "");
  EXPECT_EQ(ErrorOf([&] { (void)null.AsText(); }), 94);
  EXPECT_EQ(ErrorOf([&] { (void)null.AsBoolean(); }), 94);
  EXPECT_EQ(ErrorOf([&] { (void)null.AsInteger(); }), 94);
  EXPECT_EQ(ErrorOf([&] { (void)null.AsLong(); }), 94);
  EXPECT_EQ(ErrorOf([&] { (void)null.AsSingle(); }), 94);
  EXPECT_EQ(ErrorOf([&] { (void)null.AsDouble(); }), 94);
  EXPECT_EQ(ErrorOf([&] { (void)null.AsCurrency(); }), 94);
  EXPECT_EQ(ErrorOf([&] { (void)null.AsDate(); }), 94);
  EXPECT_EQ(ErrorOf([&] { (void)null.AsBinary(); }), 94);
  EXPECT_EQ(ErrorOf([] { (void)Value("").AsLong(); }), 13);
}

TEST(Value, TypesAreHeldApart) {
  EXPECT_NE(Short(1), Value(1));
  EXPECT_NE(Value("1"), Value(1));
  EXPECT_EQ(Short(1).Type(), ValueType::Integer);
  EXPECT_EQ(Value("x").Type(), ValueType::Text);
  EXPECT_EQ(Value(true).Type(), ValueType::Boolean);
  EXPECT_EQ(Value(DateTime()).Type(), ValueType::Date);
  EXPECT_EQ(Value(Binary{1, 2}).Type(), ValueType::Binary);
}

TEST(Value, WholeNumbersRoundTiesToEvenAndRefuseWhatDoesNotFit) {
  EXPECT_EQ(Value(2.5).AsLong(), 2);
  EXPECT_EQ(Value(3.5).AsLong(), 4);
  EXPECT_EQ(Value(-2.5F).AsInteger(), -2);
  EXPECT_EQ(Money(25'000).AsLong(), 2);
  EXPECT_EQ(Money(35'000).AsLong(), 4);
  EXPECT_EQ(Money(-25'001).AsLong(), -3);
  EXPECT_EQ(Value(" 1,234.5 ").AsLong(), 1234);
  EXPECT_EQ(Value(true).AsInteger(), -1);
  EXPECT_EQ(Value(32767).AsInteger(), 32767);
  EXPECT_EQ(Value(32767.49).AsInteger(), 32767);
  EXPECT_EQ(ErrorOf([] { (void)Value(32768).AsInteger(); }), 6);
  EXPECT_EQ(ErrorOf([] { (void)Value(32767.5).AsInteger(); }), 6);
  EXPECT_EQ(ErrorOf([] { (void)Value(2147483648.0).AsLong(); }), 6);
  EXPECT_EQ(ErrorOf([] { (void)Value("99999999999").AsLong(); }), 6);
  EXPECT_EQ(ErrorOf([] { (void)Value(std::nan("")).AsLong(); }), 6);
  EXPECT_EQ(ErrorOf([] { (void)Value("12abc").AsLong(); }), 13);
  EXPECT_EQ(ErrorOf([] { (void)Value(Binary{1}).AsLong(); }), 13);
}

TEST(Value, BooleansReadNumbersAndTheirOwnNames) {
  EXPECT_TRUE(Short(-1).AsBoolean());
  EXPECT_TRUE(Value(0.1F).AsBoolean());
  EXPECT_TRUE(Money(1).AsBoolean());
  EXPECT_FALSE(Value(0.0).AsBoolean());
  EXPECT_TRUE(Value("TRUE").AsBoolean());
  EXPECT_FALSE(Value("False").AsBoolean());
  EXPECT_TRUE(Value("-1").AsBoolean());
  EXPECT_FALSE(Value("0").AsBoolean());
  EXPECT_EQ(ErrorOf([] { (void)Value("yes").AsBoolean(); }), 13);
}

TEST(Value, AmountsKeepTheirTenThousandths) {
  EXPECT_EQ(Value("922337203685477.5807").AsCurrency().Units(), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(Value(12).AsCurrency().Units(), 120'000);
  EXPECT_EQ(Value(2.5F).AsCurrency().Units(), 25'000);
  EXPECT_EQ(ErrorOf([] { (void)Value("1E20").AsCurrency(); }), 6);
  EXPECT_EQ(ErrorOf([] { (void)Value("1.2.3").AsCurrency(); }), 13);
  EXPECT_EQ(ErrorOf([] { (void)Value(1e300).AsSingle(); }), 6);
}

TEST(Value, DatesAreCountedInDaysFromTheDayZero) {
  EXPECT_EQ(Value(DateTime(1900, 1, 1)).AsDouble(), 2);
  EXPECT_EQ(Value(DateTime(2026, 3, 1, 18)).AsDouble(), 46082.75);
  EXPECT_EQ(Value(DateTime(1899, 12, 29, 6)).AsDouble(), -1.25);
  for (const DateTime& date :
       {DateTime(100, 1, 1), DateTime(1799, 12, 31, 23, 59, 59), DateTime(1899, 12, 29, 6),
        DateTime(1899, 12, 30, 0, 0, 1), DateTime(9999, 12, 31, 23, 59, 59)}) {
    EXPECT_EQ(Value(Value(date).AsDouble()).AsDate(), date) << date.ToIso();
  }
  EXPECT_EQ(Value("3/1/2026 2:05 PM").AsDate(), DateTime(2026, 3, 1, 14, 5));
  EXPECT_EQ(Value("46082").AsDate(), DateTime(2026, 3, 1));
  EXPECT_EQ(ErrorOf([] { (void)Value(2958466).AsDate(); }), 6);
  EXPECT_EQ(ErrorOf([] { (void)Value("2/30/2026").AsDate(); }), 13);
}

TEST(Value, PlainTextOfEachType) {
  EXPECT_EQ(Value(true).AsText(), "True");
  EXPECT_EQ(Value(false).Shown(), "False");
  EXPECT_EQ(Short(-5).AsText(), "-5");
  EXPECT_EQ(Value(9499.9F).AsText(), "9499.9");
  EXPECT_EQ(Value(0.1).AsText(), "0.1");
  EXPECT_EQ(Money(12'500).AsText(), "1.25");
  EXPECT_EQ(Value(DateTime(2026, 3, 1, 14, 5, 9)).AsText(), "3/1/2026 2:05:09 PM");
  EXPECT_EQ(Value("007").AsText(), "007");
  EXPECT_EQ(ErrorOf([] { (void)Value(Binary{1}).AsText(); }), 13);
}

TEST(Add, GivesNullForANullAndTheWiderTypeOtherwise) {
  EXPECT_TRUE(Add(Null{}, 1).IsNull());
  EXPECT_TRUE(Subtract(Money(1), Null{}).IsNull());
  EXPECT_TRUE(Add(Null{}, "no number").IsNull());
  EXPECT_EQ(Add(Short(1), Short(2)), Short(3));
  EXPECT_EQ(Add(Short(1), true), Short(0));
  EXPECT_EQ(Add(Short(1), 2), Value(3));
  EXPECT_EQ(Add(Money(5'000), 2), Money(25'000));
  EXPECT_EQ(Subtract(Short(1), Money(5'000)), Money(5'000));
  EXPECT_EQ(Add(0.1F, 0.2F), Value(0.1F + 0.2F));
  EXPECT_EQ(Subtract(9500.0F, Short(1)), Value(9499.0F));
  EXPECT_EQ(Add(1.5F, 2), Value(3.5));
  EXPECT_EQ(Add(Money(5'000), 0.25), Value(0.75));
  EXPECT_EQ(Add("1.5", Short(1)), Value(2.5));
}

TEST(Add, RefusesOverflowAndTextsThatAreNoNumbers) {
  EXPECT_EQ(ErrorOf([] { Add(Short(32767), Short(1)); }), 6);
  EXPECT_EQ(ErrorOf([] { Subtract(-2147483647, 2); }), 6);
  EXPECT_EQ(ErrorOf([] { Add(Money(std::numeric_limits<std::int64_t>::max()), true); }), 0);
  EXPECT_EQ(ErrorOf([] { Subtract(Money(std::numeric_limits<std::int64_t>::max()), true); }), 6);
  EXPECT_EQ(ErrorOf([] { Add(3e38F, 3e38F); }), 6);
  EXPECT_EQ(ErrorOf([] { Add(1e308, 1e308); }), 6);
  EXPECT_EQ(ErrorOf([] { Add("12abc", 1); }), 13);
  EXPECT_EQ(ErrorOf([] { Add(Binary{1}, 1); }), 13);
}

TEST(Add, CountsDaysOnDates) {
  const DateTime day(2024, 2, 28, 12);
  EXPECT_EQ(Add(day, 2), Value(DateTime(2024, 3, 1, 12)));
  EXPECT_EQ(Subtract(day, 0.5), Value(DateTime(2024, 2, 28)));
  EXPECT_EQ(Subtract(DateTime(2024, 3, 1), DateTime(2024, 2, 28)), Value(2.0));
  EXPECT_EQ(ErrorOf([] { Add(DateTime(9999, 12, 31), 1); }), 6);
}

}  // namespace
}  // namespace rt
