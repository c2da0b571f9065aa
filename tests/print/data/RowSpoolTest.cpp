// Rows in memory and in the temporary file.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <numeric>
#include <random>
#include <thread>

#include "platform/print/PrintError.h"
#include "platform/print/data/Rows.h"
#include "platform/print/data/SortKeys.h"
#include "platform/print/formula/ValueRules.h"
#include "support/SecondProcess.h"
#include "support/TempDirectory.h"

namespace print::test {
namespace {

using rt::Value;

Row RowOf(std::int64_t place, std::size_t textSize) {
  const auto number = static_cast<std::int32_t>(place);
  return {Value(),
          place % 2 == 0,
          static_cast<std::int16_t>(place % 1000),
          number,
          static_cast<float>(place) / 4,
          static_cast<double>(place) / 8,
          rt::Currency::FromUnits(place * 10'001),
          rt::DateTime(2026, 1, 1 + static_cast<int>(place % 28)),
          std::string(static_cast<std::size_t>(place * 7919) % textSize, static_cast<char>('a' + place % 26)),
          rt::Binary(static_cast<std::size_t>(place % 5), 7)};
}

TEST(RowSpoolTest, GivesBackWhatItGotBeyondItsMemory) {
  constexpr std::int64_t kRows = 30'000;
  constexpr std::size_t kTextSize = 6'000;  // about 90 MB
  RowSpool spool;
  for (std::int64_t i = 0; i < kRows; ++i) spool.Append(RowOf(i, kTextSize));
  ASSERT_EQ(spool.Count(), kRows);
  const auto check = [&](unsigned seed) {
    Row row;
    int wrong = 0;
    for (std::int64_t i = 0; i < kRows; i += 3) {
      spool.Read(i, row);
      if (row != RowOf(i, kTextSize)) ++wrong;
    }
    std::mt19937 random(seed);
    for (int i = 0; i < 300; ++i) {
      const std::int64_t place = static_cast<std::int64_t>(random() % kRows);
      spool.Read(place, row);
      if (row != RowOf(place, kTextSize)) ++wrong;
    }
    EXPECT_EQ(wrong, 0);
  };
  std::thread other([&] { check(1); });
  check(2);
  other.join();
  Row row;
  EXPECT_THROW(spool.Read(kRows, row), PrintError);
  EXPECT_THROW(spool.Read(-1, row), PrintError);
}

TEST(RowSpoolTest, TakesAnotherOrderInMemoryAndInTheFile) {
  for (const std::int64_t rows : {1'000, 26'000}) {
    constexpr std::size_t kTextSize = 6'000;
    RowSpool spool;
    for (std::int64_t i = 0; i < rows; ++i) spool.Append(RowOf(i, kTextSize));
    std::vector<std::uint32_t> order(static_cast<std::size_t>(rows));
    std::iota(order.begin(), order.end(), 0U);
    std::shuffle(order.begin(), order.end(), std::mt19937(20261122));
    spool.Arrange(order);
    Row row;
    int wrong = 0;
    for (std::int64_t i = 0; i < rows; i += 3) {
      spool.Read(i, row);
      if (row != RowOf(order[static_cast<std::size_t>(i)], kTextSize)) ++wrong;
    }
    EXPECT_EQ(wrong, 0) << rows;
    EXPECT_EQ(spool.Count(), rows);
    EXPECT_THROW(spool.Arrange({0}), PrintError);
  }
}

// The bytes of keys compare as SortOrder does.
TEST(SortKeysTest, OrdersAsSortOrderDoes) {
  const std::vector<Value> values{Value(),
                                  false,
                                  true,
                                  std::int16_t{-3},
                                  std::int32_t{40},
                                  -0.0,
                                  2.5F,
                                  -1e300,
                                  1e300,
                                  rt::Currency::FromUnits(INT64_MAX),
                                  rt::Currency::FromUnits(INT64_MAX - 1),
                                  rt::Currency::FromUnits(-1),
                                  rt::DateTime(),
                                  rt::DateTime(1850, 1, 1),
                                  "",
                                  "a",
                                  "AB",
                                  "b",
                                  std::string("a\0b", 3),
                                  std::string("a\0", 2),
                                  "_",
                                  "\xC3\xBC",
                                  "\xFF",
                                  rt::Binary{},
                                  rt::Binary{0, 1},
                                  rt::Binary{0xFF}};
  for (const bool descending : {false, true}) {
    for (const auto& a : values) {
      for (const auto& b : values) {
        // A Boolean and a number do not meet in one column.
        if (a.Type() != b.Type() && SortOrder(a, b) != 0 &&
            (a.Type() == rt::ValueType::Boolean || b.Type() == rt::ValueType::Boolean) && !a.IsNull() &&
            !b.IsNull())
          continue;
        SortKeys keys;
        for (const auto* value : {&a, &b}) {
          keys.BeginRow();
          keys.Add(*value, descending);
          keys.Add("same", false);
        }
        const int order = descending ? -SortOrder(a, b) : SortOrder(a, b);
        EXPECT_EQ(keys.Order().empty(), order <= 0)
            << static_cast<int>(a.Type()) << " " << static_cast<int>(b.Type());
      }
    }
  }
}

TEST(RowSpoolTest, OneRowMayBeLargerThanABlock) {
  RowSpool spool;
  const Row large{std::string(3'000'000, 'x'), std::int32_t{1}};
  for (int i = 0; i < 40; ++i) {
    spool.Append(large);
    spool.Append({std::int32_t{i}});
  }
  Row row;
  spool.Read(0, row);
  EXPECT_EQ(row, large);
  spool.Read(79, row);
  EXPECT_EQ(row, (Row{std::int32_t{39}}));
}

TEST(RowSpoolTest, AFullDiskIsToldAndLeavesNothing) {
  const ::test::TempDirectory directory;
  ::test::SecondProcess process([&](::test::SecondProcess::Channel& channel) {
    setenv("TMPDIR", directory.Path().c_str(), 1);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{1'000'000, 1'000'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    try {
      RowSpool spool;
      const Row row{std::string(10'000, 'x')};
      for (int i = 0; i < 10'000; ++i) spool.Append(row);
      channel.Say("no error");
    } catch (const PrintError& error) {
      channel.Say(error.what());
    }
    channel.Hear();
  });
  EXPECT_EQ(process.Talk().Hear(),
            "The rows of the report cannot be kept in '" + directory.Path() + "': the disk is full.");
  EXPECT_TRUE(std::filesystem::is_empty(directory.Path()));
  process.Talk().Say("end");
  EXPECT_EQ(process.Join(), 0);
}

}  // namespace
}  // namespace print::test
