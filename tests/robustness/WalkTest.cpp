// Several users with random work on one data directory; some of them die in the middle of it.
//
// DROVEWRIGHT_WALK_SEED determines the work of every process (but not how they interleave);
// DROVEWRIGHT_WALK_SECONDS is the length of the long walk.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "support/Apart.h"
#include "support/TempDirectory.h"
#include "support/Walk.h"

namespace {

unsigned Seed() {
  const char* text = std::getenv("DROVEWRIGHT_WALK_SEED");
  return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : std::random_device()();
}

void WalkFor(walk::Options options) {
  const test::TempDirectory directory;
  ASSERT_EQ(test::RunApart([&] {
              walk::Make(directory.Path());
              return std::string();
            }),
            "");
  options.seed = Seed();
  const walk::Outcome outcome = walk::Go(directory.Path(), options);
  std::printf("seed %u: %lld changes, %lld refused, %lld in doubt; %s\n", options.seed,
              static_cast<long long>(outcome.changes), static_cast<long long>(outcome.refused),
              static_cast<long long>(outcome.inDoubt), outcome.kinds.c_str());
  EXPECT_EQ(outcome.faults, "") << "seed " << options.seed;
  EXPECT_GT(outcome.changes, 0);
}

TEST(Walk, WhatSixUsersStoreInSomeSecondsIsThere) { WalkFor({.wholeTables = false}); }

// A transaction loses the hold on a whole table at its first wait. Once it keeps it, this becomes the walk
// above, and the long one goes the same way.
TEST(Walk, DISABLED_AlsoWhereTransactionsHoldTables) { WalkFor({}); }

TEST(LongWalk, WhatSixteenUsersStoreIsThere) {
  const char* text = std::getenv("DROVEWRIGHT_WALK_SECONDS");
  const int seconds = text ? std::max(1, std::atoi(text)) : 60;
  WalkFor({.workers = 16, .time = std::chrono::seconds(seconds), .kills = seconds, .wholeTables = false});
}

}  // namespace
