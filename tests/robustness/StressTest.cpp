// Eight users at once on one file, some of whom die in the middle of their work.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <new>
#include <set>
#include <thread>
#include <tuple>

#include "platform/store/Cursor.h"
#include "robustness/StressWorker.h"
#include "support/TempDirectory.h"

namespace {

using stress::Entry;
using stress::Event;
using stress::Log;
using test::Apart;
using test::Faults;
using test::RunApart;

constexpr int kUsers = 8;

/// A flag that all processes see.
class SharedFlag {
 public:
  SharedFlag()
      : page_(mmap(nullptr, sizeof(std::atomic<bool>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1,
                   0)) {
    if (page_ == MAP_FAILED) throw std::runtime_error("no shared memory");
    flag_ = new (page_) std::atomic<bool>(false);
  }
  ~SharedFlag() { munmap(page_, sizeof(std::atomic<bool>)); }
  SharedFlag(const SharedFlag&) = delete;
  SharedFlag& operator=(const SharedFlag&) = delete;
  std::atomic<bool>& operator*() { return *flag_; }

 private:
  void* page_;
  std::atomic<bool>* flag_;
};

/// What the logs of all users say that the file must hold.
struct Expected {
  struct Thing {
    std::int64_t owner = 0;
    std::int64_t number = 0;
    std::int64_t otherNumber = 0;  ///< the user died while it was changed to this
    bool perhaps = false;          ///< the user died while it was deleted
  };
  std::map<std::int64_t, Thing> things;
  std::set<std::pair<std::int64_t, std::int64_t>> perhapsAdded;  ///< owner and number
  /// The added row that tells whether a transaction was stored whose user died at its commit, and its group.
  std::vector<std::tuple<std::int64_t, std::int64_t, std::int64_t>> perhapsTogether;
  std::map<std::int64_t, std::int64_t> counters, groups;
  std::map<std::int64_t, std::int64_t> perhapsIncremented;
  std::map<std::int64_t, std::int64_t> perhapsChanged;
  std::set<std::int64_t> ids;
  std::map<Event, int> done;

  void Take(std::int64_t owner, const Log& log, Faults& faults) {
    const std::vector<Entry> entries = log.Read();
    for (std::size_t i = 0; i < entries.size(); i += 2) {
      if (i + 1 == entries.size()) {
        TakePending(owner, entries[i]);
      } else if (entries[i + 1].event == Event::Done) {
        ++done[entries[i].event];
        TakeDone(owner, entries[i], entries[i + 1].a, faults);
      } else {
        ++done[Event::Refused];
      }
    }
  }

  void TakeDone(std::int64_t owner, const Entry& work, std::int64_t id, Faults& faults) {
    switch (work.event) {
      case Event::Increment:
        ++counters[work.a];
        break;
      case Event::ChangeTogether:
        ++groups[work.a];
        if (work.b == 0) break;
        AddThing(owner, id, work.b, faults);
        break;
      case Event::Add:
        AddThing(owner, id, work.a, faults);
        break;
      case Event::Edit:
        things.at(work.a).number = work.b;
        break;
      case Event::Delete:
        things.erase(work.a);
        break;
      default:
        std::erase_if(things, [&](const auto& thing) {
          return thing.second.owner == owner && thing.second.number < work.a;
        });
    }
  }

  void AddThing(std::int64_t owner, std::int64_t id, std::int64_t number, Faults& faults) {
    if (!ids.insert(id).second) faults.Add("the number " + std::to_string(id) + " was given twice");
    things[id] = {owner, number};
  }

  void TakePending(std::int64_t owner, const Entry& work) {
    switch (work.event) {
      case Event::Increment:
        ++perhapsIncremented[work.a];
        break;
      case Event::ChangeTogether:
        if (work.b == 0)
          ++perhapsChanged[work.a];
        else
          perhapsTogether.emplace_back(owner, work.b, work.a);
        break;
      case Event::Add:
        perhapsAdded.emplace(owner, work.a);
        break;
      case Event::Edit:
        things.at(work.a).otherNumber = work.b;
        break;
      case Event::Delete:
        things.at(work.a).perhaps = true;
        break;
      default:
        for (auto& [id, thing] : things)
          if (thing.owner == owner && thing.number < work.a) thing.perhaps = true;
    }
  }
};

std::unique_ptr<store::Cursor> Rows(const std::shared_ptr<store::Connection>& file,
                                    const std::string& table) {
  return store::Cursor::OpenQuery(file, "SELECT * FROM [" + table + "]", store::Locking::ReadOnly);
}

void CheckThings(const std::shared_ptr<store::Connection>& file, Expected& expected, Faults& faults) {
  std::set<std::int64_t> found;
  for (auto rows = Rows(file, "Things"); !rows->AtEnd(); rows->MoveNext()) {
    const std::int64_t id = rows->Get(0).AsLong();
    const std::int64_t owner = rows->Get(1).AsLong();
    const std::int64_t number = rows->Get(2).AsLong();
    const std::string what = "row " + std::to_string(id) + " of " + std::to_string(owner);
    found.insert(id);
    if (rows->Get(3).AsText() != stress::TextOf(owner, number)) faults.Add(what + ": another row's text");
    const auto thing = expected.things.find(id);
    if (thing != expected.things.end()) {
      faults.Equal(owner, thing->second.owner, what + ": owner");
      if (number != thing->second.otherNumber) faults.Equal(number, thing->second.number, what + ": number");
      continue;
    }
    std::erase_if(expected.perhapsTogether, [&](const auto& change) {
      const auto [by, added, group] = change;
      if (by != owner || added != number) return false;
      ++expected.groups[group];
      expected.perhapsAdded.emplace(owner, number);
      return true;
    });
    if (!expected.perhapsAdded.contains({owner, number})) faults.Add(what + " should not be there");
    if (!expected.ids.insert(id).second) faults.Add(what + ": its number was given twice");
  }
  for (const auto& [id, thing] : expected.things)
    if (!thing.perhaps && !found.contains(id))
      faults.Add("row " + std::to_string(id) + " of " + std::to_string(thing.owner) + " is lost");
}

void CheckBetween(std::int64_t found, std::int64_t least, std::int64_t perhaps, const std::string& what,
                  Faults& faults) {
  if (found < least || found > least + perhaps)
    faults.Add(what + " is " + std::to_string(found) + " instead of " + std::to_string(least) + " to " +
               std::to_string(least + perhaps));
}

std::string CheckFile(const std::string& path, const std::vector<Log>& logs, bool everyKind) {
  Faults faults;
  Expected expected;
  for (std::size_t i = 0; i < logs.size(); ++i) expected.Take(static_cast<std::int64_t>(i), logs[i], faults);
  const auto file = store::Connection::Open({path});
  for (const std::string& fault : file->CheckIntegrity()) faults.Add("integrity: " + fault);
  faults.Equal(file->Side().Roster().size(), std::size_t{1}, "users of the file");
  std::vector<int> numbers;
  for (const store::TableInfo& table : file->Tables()->tables) numbers.push_back(table.number);
  faults.Equal(file->Side().HeldByOthers(numbers).size(), std::size_t{0}, "records held");
  CheckThings(file, expected, faults);
  for (auto rows = Rows(file, "Counters"); !rows->AtEnd(); rows->MoveNext()) {
    const std::int64_t id = rows->Get(0).AsLong();
    CheckBetween(rows->Get(1).AsLong(), expected.counters[id], expected.perhapsIncremented[id],
                 "counter " + std::to_string(id), faults);
  }
  for (auto rows = Rows(file, "Groups"); !rows->AtEnd(); rows->MoveNext()) {
    const std::int64_t group = rows->Get(1).AsLong();
    CheckBetween(rows->Get(2).AsLong(), expected.groups[group], expected.perhapsChanged[group],
                 "group " + std::to_string(group), faults);
  }
  // A few seconds on a slow disk are too short for the rarer kinds of work.
  std::vector<Event> wanted{Event::Increment, Event::Add};
  if (everyKind)
    wanted = {Event::Increment,      Event::Add,    Event::Edit, Event::Delete, Event::DeleteBelow,
              Event::ChangeTogether, Event::Refused};
  for (const Event event : wanted)
    if (expected.done[event] == 0)
      faults.Add("no work of kind " + std::to_string(static_cast<int>(event)) + " was done");
  return faults.Text();
}

void WorkFor(std::chrono::seconds time, int kills, bool everyKind) {
  const test::TempDirectory directory;
  const std::string path = directory.Path("DW.MDB");
  ASSERT_EQ(RunApart([&] {
              stress::MakeFile(path);
              return std::string();
            }),
            "");
  SharedFlag stop;
  std::vector<Log> logs;
  logs.reserve(static_cast<std::size_t>(kUsers + kills));
  const auto begin = [&] {
    const auto owner = static_cast<std::int32_t>(logs.size());
    logs.emplace_back();
    return Apart([&, owner] { return stress::Worker(path, owner, logs.back()).Run(*stop); });
  };
  std::vector<Apart> users;
  users.reserve(static_cast<std::size_t>(kUsers + kills));
  std::vector<std::size_t> working;
  for (int i = 0; i < kUsers; ++i) {
    working.push_back(users.size());
    users.push_back(begin());
  }
  std::mt19937 random(4711);
  for (int i = 0; i < kills; ++i) {
    std::this_thread::sleep_for(std::chrono::duration_cast<std::chrono::microseconds>(time) / (kills + 1));
    const std::size_t victim = random() % kUsers;
    EXPECT_TRUE(users[working[victim]].Kill()) << "it had ended before";
    EXPECT_EQ(users[working[victim]].Result(), "");
    working[victim] = users.size();
    users.push_back(begin());
  }
  std::this_thread::sleep_for(std::chrono::duration_cast<std::chrono::microseconds>(time) / (kills + 1));
  *stop = true;
  for (const std::size_t user : working) EXPECT_EQ(users[user].Result(), "");
  EXPECT_EQ(RunApart([&] { return CheckFile(path, logs, everyKind); }), "");
}

TEST(Stress, WhatEightUsersStoreInAFewSecondsIsThere) { WorkFor(std::chrono::seconds(5), 4, false); }

TEST(LongStress, WhatEightUsersStoreIsThere) {
  const char* seconds = std::getenv("DROVEWRIGHT_STRESS_SECONDS");
  const int time = seconds ? std::max(1, std::atoi(seconds)) : 60;
  WorkFor(std::chrono::seconds(time), time, true);
}

}  // namespace
