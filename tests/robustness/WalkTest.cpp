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
#include "support/WalkLog.h"

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

TEST(WalkCheck, KnowsWhatIsLostFromWhatWasCutOff) {
  const test::TempDirectory directory;
  const auto check = [&](walk::End end) {
    return test::RunApart([&] {
      walk::Transaction addition;
      addition.token = walk::kTokensOfWorker;
      addition.work = walk::Work::Add;
      addition.changes = {{.kind = 'N', .row = walk::kFixedRows + 1}};
      addition.end = end;
      return walk::Check(directory.Path("DW.MDB"), {addition});
    });
  };
  ASSERT_EQ(test::RunApart([&] {
              walk::Make(directory.Path());
              return std::string();
            }),
            "");
  EXPECT_EQ(check(walk::End::Unknown), "");
  EXPECT_NE(check(walk::End::Acknowledged).find("is gone"), std::string::npos);
}

TEST(Walk, WhatSixUsersStoreInSomeSecondsIsThere) { WalkFor({.wholeTables = false}); }

TEST(Walk, AlsoWhereTransactionsHoldTables) { WalkFor({}); }

TEST(LongWalk, WhatSixteenUsersStoreIsThere) {
  const char* text = std::getenv("DROVEWRIGHT_WALK_SECONDS");
  const int seconds = text ? std::max(1, std::atoi(text)) : 60;
  WalkFor({.workers = 16, .time = std::chrono::seconds(seconds), .kills = seconds});
}

}  // namespace
