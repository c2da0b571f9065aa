// A posting that is killed at any moment leaves whole rows, and the next run finishes its work.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include "robustness/FatalWrites.h"
#include "support/TempDirectory.h"
#include "support/WholeFleet.h"

namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;
using test::Apart;
using test::Death;
using test::FatalWrites;
using test::Faults;
using test::RunApart;

constexpr int kKills = 200;

class LongKilledPosting : public testing::Test {
 protected:
  /// Posts as another user does.
  std::string PostAll(bool clearFirst) const {
    Faults faults;
    test::Post(directory_.Path(), clearFirst, faults);
    return faults.Text();
  }
  std::string State() const {
    return std::to_string(test::WaitingRows(path_)) + " waiting, " + test::CostTotals(path_);
  }

  test::TempDirectory directory_;
  std::string path_ = directory_.Path("DW.MDB");
};

TEST_F(LongKilledPosting, LeavesWholeRowsThatAPlainRunAddsTheOthersTo) {
  ASSERT_EQ(RunApart([&] {
              test::MakeFleet(directory_.Path(), 12, 4);
              return PostAll(false);
            }),
            "");
  const std::string whole = RunApart([&] { return State(); });
  ASSERT_EQ(whole.substr(0, 10), "0 waiting,") << whole;

  // The kills are spread over the length of a run, measured on this machine.
  steady_clock::duration length{};
  for (int i = 0; i < 3; ++i) {
    const auto start = steady_clock::now();
    ASSERT_EQ(RunApart([&] { return PostAll(true); }), "");
    length = std::max(length, steady_clock::now() - start);
  }

  std::mt19937 random(20251017);
  std::vector<int> slots(kKills);
  for (int i = 0; i < kKills; ++i) slots[static_cast<std::size_t>(i)] = i;
  std::shuffle(slots.begin(), slots.end(), random);
  int hotJournals = 0;
  int partlyPosted = 0;
  for (const int slot : slots) {
    const double part = (slot + std::uniform_real_distribution<>(0, 1)(random)) / kKills;
    Apart run([&] { return PostAll(true); });
    std::this_thread::sleep_for(std::chrono::duration_cast<steady_clock::duration>(length * part));
    run.Kill();
    std::error_code none;
    const auto journal = fs::file_size(path_ + "-journal", none);
    if (!none && journal > 0) ++hotJournals;

    // The next user, even a reader, rolls back what was half written.
    const std::string faults = RunApart([&] {
      Faults found;
      found.Take(test::CheckMainFile(path_, slot % 2 == 0), "after the kill");
      found.Add(std::to_string(test::WaitingRows(path_)) + " waiting");
      return found.Text();
    });
    ASSERT_TRUE(faults.ends_with(" waiting\n") && faults.find('\n') + 1 == faults.size())
        << "killed after " << part << " of the run: " << faults;
    if (faults != "0 waiting\n") ++partlyPosted;
    ASSERT_EQ(RunApart([&] {
                Faults found;
                found.Take(PostAll(false), "plain run");
                found.Take(test::CheckMainFile(path_), "after the plain run");
                found.Equal(State(), whole, "state after the plain run");
                return found.Text();
              }),
              "")
        << "killed after " << part << " of the run";
  }
  // If all kills came too early or too late, the test would prove nothing.
  EXPECT_GT(hotJournals, kKills / 20);
  EXPECT_GT(partlyPosted, kKills / 20);
  RecordProperty("hotJournals", hotJournals);
  RecordProperty("partlyPosted", partlyPosted);
}

/// The same at chosen writes: these moments are too short to hit by time.
class KilledAtAWrite : public testing::TestWithParam<Death> {};
INSTANTIATE_TEST_SUITE_P(Deaths, KilledAtAWrite, testing::Values(Death::Killed, Death::PowerFails),
                         [](const auto& death) {
                           return death.param == Death::Killed ? "Killed" : "PowerFails";
                         });

TEST_P(KilledAtAWrite, APostingLeavesWholeRows) {
  constexpr int kDeaths = 60;
  const test::TempDirectory directory;
  const std::string path = directory.Path("DW.MDB");
  const auto post = [&](bool clearFirst) {
    Faults faults;
    test::Post(directory.Path(), clearFirst, faults);
    return faults.Text();
  };
  ASSERT_EQ(RunApart([&] {
              test::MakeFleet(directory.Path(), 5, 2);
              return post(false);
            }),
            "");
  const std::string bytes = test::BytesOf(path);
  const std::string totals = RunApart([&] { return test::CostTotals(path); });
  const long writes = std::stol(RunApart([&] {
    FatalWrites::Install(0, GetParam());
    const std::string faults = post(true);
    return faults + std::to_string(FatalWrites::Count());
  }));
  int died = 0;
  int rolledBack = 0;
  for (int death = 0; death < kDeaths; ++death) {
    // Few of the writes are syncs and truncations, but every commit depends on them. Their number depends on
    // the groups of a run, so a run may not reach the last ones.
    const bool atSync = death % 3 == 0;
    const long fatal = 1 + (atSync ? death / 3 : writes * death / kDeaths);
    test::WriteBytes(path, bytes);
    const std::string end = RunApart([&] {
      FatalWrites::Install(fatal, GetParam(),
                           atSync ? FatalWrites::Counts::SyncsAndCuts : FatalWrites::Counts::All);
      return post(true);
    });
    const std::string when = (atSync ? "sync " : "write ") + std::to_string(fatal);
    EXPECT_TRUE(end.empty() || end.starts_with("died of signal 9")) << end;
    if (!end.empty()) ++died;
    const std::string before = test::BytesOf(path);
    EXPECT_EQ(test::CheckMainFileApart(path), "") << "died at " << when;
    if (test::BytesOf(path) != before) ++rolledBack;
    EXPECT_EQ(RunApart([&] {
                Faults faults;
                faults.Take(post(false), "plain run");
                faults.Take(test::CheckMainFile(path), "after the plain run");
                faults.Equal(test::CostTotals(path), totals, "totals");
                return faults.Text();
              }),
              "")
        << "died at " << when;
  }
  EXPECT_GT(died, kDeaths / 2);
  EXPECT_GT(rolledBack, kDeaths / 10);
}

}  // namespace
