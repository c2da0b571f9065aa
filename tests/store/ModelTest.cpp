// One connection, driven by random short programs, against a model of it in a plain database.
//
// DROVEWRIGHT_MODEL_SEED is the first seed (0 unless set) and DROVEWRIGHT_MODEL_PROGRAMS the number of
// programs (10,000). A failure prints its seed and the shortest program that still fails, in the form of the
// cases below.
//
// kLeftOut keeps acts out of the random run while a fault of theirs is known and not mended. It is empty
// otherwise.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdlib>
#include <filesystem>
#include <new>

#include "store/ModelRun.h"
#include "support/Apart.h"
#include "support/TempDirectory.h"

namespace {

using model::Act;
using model::Program;

const std::set<Act> kLeftOut = {};

/// What the processes that run programs leave for the test, even when they crash.
struct Progress {
  unsigned seed = 0;
  model::Tally tally;
};

/// Runs programs in processes of their own: a program may crash the connection.
class Programs : public testing::Test {
 protected:
  Programs() : directory_(Fast()) {
    void* page = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) throw std::runtime_error("no shared memory");
    progress_ = new (page) Progress;
    const auto make = [this] {
      model::MakeFile(empty_);
      return std::string();
    };
    EXPECT_EQ(test::RunApart(make), "");
  }
  ~Programs() override { munmap(progress_, sizeof(Progress)); }

  /// The fault that this program finds.
  std::string Fault(const Program& program) {
    return test::RunApart([&] { return RunHere(program); }, 20);
  }
  void ExpectSound(const Program& program) {
    EXPECT_EQ(Fault(program), "") << "of\n" << model::Shown(program);
  }

  /// Runs the programs of these seeds. Reports each failure in its shortest form, and stops after three.
  void RunSeeds(unsigned first, unsigned count) {
    int faults = 0;
    for (unsigned from = first; from < first + count && faults < 3; from = progress_->seed + 1) {
      const std::string fault = test::RunApart([&] {
        for (unsigned& seed = progress_->seed = from; seed < first + count; ++seed) {
          const std::string found = RunHere(model::Draw(seed, kLeftOut));
          if (!found.empty()) return found;
        }
        return std::string();
      });
      if (fault.empty()) return;
      ++faults;
      const unsigned seed = progress_->seed;
      const Program shortest = model::Shrink(model::Draw(seed, kLeftOut), [&](const Program& tried) {
        return Kind(Fault(tried)) == Kind(fault);
      });
      ADD_FAILURE() << "seed " << seed << ": " << fault << "\nin short: " << Fault(shortest) << "\n"
                    << model::Shown(shortest);
      progress_->seed = seed;
    }
  }
  const model::Tally& Tally() const { return progress_->tally; }

 private:
  /// A directory in memory if there is one: these tests do not check whether commits reach a disk.
  static std::unique_ptr<test::TempDirectory> Fast() {
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    if (access("/dev/shm", W_OK) == 0) setenv("TMPDIR", "/dev/shm", 1);
    auto directory = std::make_unique<test::TempDirectory>();
    before ? setenv("TMPDIR", kept.c_str(), 1) : unsetenv("TMPDIR");
    return directory;
  }
  std::string RunHere(const Program& program) {
    const std::string path = directory_->Path("DW" + std::to_string(progress_->tally.programs++) + ".MDB");
    std::filesystem::copy_file(empty_, path);
    std::string fault = model::Run(path, progress_->tally).Go(program);
    std::filesystem::remove(path);
    return fault;
  }
  /// A fault without its place and its numbers.
  static std::string Kind(const std::string& fault) {
    const auto place = fault.find("): ");
    const std::string kind = place == std::string::npos ? fault : fault.substr(place + 3);
    return kind.substr(0, kind.find_first_of("(0123456789["));
  }

  std::unique_ptr<test::TempDirectory> directory_;
  std::string empty_ = directory_->Path("EMPTY.MDB");
  Progress* progress_ = nullptr;
};

// --- what has been wrong once

TEST_F(Programs, AChangeThatIsRolledBackInAGroupIsForgotten) {
  // A statement, a seek, the rollback, a write elsewhere: neither the value nor the row may remain.
  ExpectSound({{Act::InsertOne, 0, 1, 1, 2},
               {Act::EnterGroup},
               {Act::Begin},
               {Act::UpdateMany, 0, 1, 0, 0, 5},
               {Act::Seek, 0, 1, 1},
               {Act::Rollback},
               {Act::InsertOne, 1, 1, 1},
               {Act::Seek, 0, 1, 1},
               {Act::Edit, 0, 0, 2, 4, 3}});
  ExpectSound({{Act::EnterGroup},
               {Act::Begin},
               {Act::InsertOne, 0, 1, 1, 2},
               {Act::Seek, 0, 1, 1},
               {Act::Rollback},
               {Act::InsertOne, 1, 1, 1},
               {Act::Seek, 0, 1, 1}});
  // Earlier commits of the group must stay visible, too.
  ExpectSound({{Act::InsertOne, 0, 1, 1, 2},
               {Act::EnterGroup},
               {Act::UpdateMany, 0, 0, 0, 0, 5},
               {Act::Begin},
               {Act::UpdateMany, 0, 0, 0, 0, 5},
               {Act::Rollback},
               {Act::Seek, 0, 1, 1, 1}});
  // A row that is kept in memory goes to the file before a statement reads it, and the rollback undoes it
  // there.
  ExpectSound({{Act::InsertOne, 2, 0, 2, 2, 2},
               {Act::EnterGroup},
               {Act::UpdateMany, 2, 2, 2, 1, 9},
               {Act::Begin},
               {Act::Accumulate, 2, 2, 1, 0, 0},
               {Act::Rollback},
               {Act::FindFirst, 0, 0, 0, 6, 7}});
}

TEST_F(Programs, ReadsAfterAWaitSeeTheTransaction) {
  ExpectSound({{Act::Begin}, {Act::Add, 1, 1, 2, 4, 0}, {Act::Wait}, {Act::GoToLast, 1, 0, 0, 1}});
  ExpectSound({{Act::Begin}, {Act::Add, 0, 1, 1, 4, 6}, {Act::Wait}, {Act::SetIndex, 0, 0, 0, 0, 1}});
  ExpectSound({{Act::Begin}, {Act::InsertOne, 0, 3, 1, 3}, {Act::Wait}, {Act::Seek, 0, 2, 1, 3}});
  // The rollback of an inner transaction also undoes the outer one until the next read.
  ExpectSound({{Act::Begin},
               {Act::Add, 1, 1, 0, 3, 0},
               {Act::Begin},
               {Act::UpdateMany, 1, 1, 1, 1, 9},
               {Act::Rollback},
               {Act::SeekPart, 1, 1, 0, 1}});
}

TEST_F(Programs, AWaitKeepsTheNumbersOfRowsThatAStatementAdded) {
  ExpectSound({{Act::Begin},
               {Act::InsertOne, 0, 1, 1, 7, 0},
               {Act::MoveFirst, 0, 0, 0, 1, 3},
               {Act::Edit, 0, 0, 3, 6, 0},
               {Act::Add, 0, 2, 1, 5, 4}});
}

TEST_F(Programs, ANullInAKeyFindsTheRowWithNull) {
  ExpectSound({{Act::InsertOne, 0, 2, 0, 1}, {Act::Seek, 0, 2, 0, 1}});
  ExpectSound({{Act::InsertOne, 0, 0, 1, 1}, {Act::SeekPart, 0, 0, 0, 1}});
}

TEST_F(Programs, ARowThatAGroupKeepsInMemoryIsARowLikeOthers) {
  ExpectSound({{Act::EnterGroup}, {Act::Accumulate, 0, 1, 1, 6}, {Act::GoToLast, 0, 0, 0, 1}});
  ExpectSound({{Act::EnterGroup}, {Act::Accumulate, 0, 1, 1, 4}, {Act::Seek, 0, 1, 1, 7}});
  ExpectSound({{Act::EnterGroup}, {Act::Accumulate, 0, 1, 0, 2}, {Act::Accumulate, 0, 1, 0, 2}});
  ExpectSound({{Act::EnterGroup},
               {Act::Accumulate, 0, 2, 1, 3},
               {Act::Accumulate, 0, 2, 1, 0},
               {Act::MovePrevious, 0, 0, 0, 3}});
  ExpectSound({{Act::EnterGroup}, {Act::Accumulate, 0, 1, 1, 4}, {Act::SetIndex, 0, 0, 0, 3, 8}});
  ExpectSound({{Act::EnterGroup},
               {Act::Seek, 0, 0, 1, 1},
               {Act::MoveLast},
               {Act::Accumulate, 0, 1, 1, 3},
               {Act::MoveLast}});
  ExpectSound({{Act::EnterGroup}, {Act::Accumulate, 0, 1, 1, 2}, {Act::InsertMany, 1, 0, 0, 0, 5}});
}

TEST_F(Programs, AddNewLeavesTheRowAtThePlace) {
  ExpectSound({{Act::InsertOne, 0, 1, 2, 2},
               {Act::EnterGroup},
               {Act::Accumulate, 0, 1, 2, 7},
               {Act::Add, 0, 2, 2, 7, 2}});
}

TEST_F(Programs, WhatAGroupCommittedOutlivesATransactionThatIsOpenAtTheClose) {
  ExpectSound(
      {{Act::InsertOne, 3, 2, 1, 1}, {Act::EnterGroup}, {Act::DeleteMany, 0, 2, 0, 2, 5}, {Act::Begin}});
}

TEST_F(Programs, FindFirstThatFindsNothingOnARowThatIsGoneTellsIt) {
  ExpectSound({{Act::InsertOne, 0, 1, 1, 4},
               {Act::Seek, 0, 1, 1, 1},
               {Act::DeleteMany, 0, 1, 0, 4, 0},
               {Act::FindFirst, 0, 1, 0, 6, 0}});
}

// --- at random

class RandomPrograms : public Programs, public testing::WithParamInterface<unsigned> {};
constexpr unsigned kParts = 10;
INSTANTIATE_TEST_SUITE_P(Part, RandomPrograms, testing::Range(0U, kParts));

unsigned FromEnvironment(const char* name, unsigned otherwise) {
  const char* text = std::getenv(name);
  return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

TEST_P(RandomPrograms, LeaveWhatAPlainDatabaseHas) {
  const unsigned count = std::max(1U, FromEnvironment("DROVEWRIGHT_MODEL_PROGRAMS", 10000) / kParts);
  RunSeeds(FromEnvironment("DROVEWRIGHT_MODEL_SEED", 0) + GetParam() * count, count);
  if (HasFailure() || count < 1000 || !kLeftOut.empty()) return;
  // If the programs never met these cases, they would prove little.
  EXPECT_GT(Tally().rowsRead, 2000);
  EXPECT_GT(Tally().doubledKeys, 50);
  EXPECT_GT(Tally().keptBack, 20);
  EXPECT_GT(Tally().abandonedWhole * 2, Tally().abandoned);
  EXPECT_GT(Tally().abandoned, 10);
}

}  // namespace
