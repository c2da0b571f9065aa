// Short programs for one connection: their steps, how they are drawn at random, and how they are printed.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace model {

/// The kinds of steps. Cursors 0 to 3 are: a pessimistic table cursor on Sums, one on Lines, an optimistic
/// one on Sums, and a keyset over a part of Sums.
enum class Act {
  Begin,
  Commit,
  CommitWithGroup,
  Rollback,
  EnterGroup,
  FinishGroup,
  AbandonGroup,
  Wait,
  OtherReads,  ///< a second connection reads both tables
  Seek,        ///< by the whole key of index Key
  SeekPart,    ///< by its first field
  SetIndex,
  MoveFirst,
  MoveLast,
  MoveNext,
  MovePrevious,
  FindFirst,
  GoToLast,  ///< GoTo(LastModified())
  Read,      ///< the row at the place
  Edit,
  Add,
  Accumulate,  ///< Seek, then Edit or AddNew: what a posting does
  Delete,
  Reopen,
  UpdateMany,
  DeleteMany,
  InsertOne,
  InsertMany,
  Query,
  Total,
  Join,
  ReadAll,
  kCount,
};

inline const char* NameOf(Act act) {
  static constexpr std::array kNames = {"Begin",        "Commit",     "CommitWithGroup",
                                        "Rollback",     "EnterGroup", "FinishGroup",
                                        "AbandonGroup", "Wait",       "OtherReads",
                                        "Seek",         "SeekPart",   "SetIndex",
                                        "MoveFirst",    "MoveLast",   "MoveNext",
                                        "MovePrevious", "FindFirst",  "GoToLast",
                                        "Read",         "Edit",       "Add",
                                        "Accumulate",   "Delete",     "Reopen",
                                        "UpdateMany",   "DeleteMany", "InsertOne",
                                        "InsertMany",   "Query",      "Total",
                                        "Join",         "ReadAll"};
  static_assert(kNames.size() == static_cast<std::size_t>(Act::kCount));
  return kNames[static_cast<std::size_t>(act)];
}

/// One step. The meaning of `a`, `b`, `n` and `how` depends on the act; any values are valid. `a` from 1 is
/// the value of the field A and 0 is Null; `b` chooses the text of the field B, 0 for Null; `n` is a number;
/// `how` chooses a form of the act.
struct Step {
  Act act = Act::Read;
  int cursor = 0;
  int a = 0;
  int b = 0;
  int n = 0;
  int how = 0;
};

using Program = std::vector<Step>;

/// The text of a program as a test writes it: "{Act::Seek, 0, 1, 2, 0, 0}, …".
inline std::string Shown(const Program& program) {
  std::string text;
  for (const Step& s : program)
    text += std::string("  {Act::") + NameOf(s.act) + ", " + std::to_string(s.cursor) + ", " +
            std::to_string(s.a) + ", " + std::to_string(s.b) + ", " + std::to_string(s.n) + ", " +
            std::to_string(s.how) + "},\n";
  return text;
}

/// A program of 4 to 28 steps. Each program uses only some of the acts, so that those come together often.
/// The most frequent acts change rows, roll changes back or make others visible. Uses none of the acts in
/// `leftOut`.
inline Program Draw(unsigned seed, const std::set<Act>& leftOut = {}) {
  std::mt19937 random(seed);
  const auto dice = [&](int sides) { return static_cast<int>(random() % static_cast<unsigned>(sides)); };
  std::vector<Act> acts;
  for (int i = 0; i < static_cast<int>(Act::kCount); ++i)
    if (dice(4) == 0) acts.push_back(static_cast<Act>(i));
  for (const Act act : {Act::Begin, Act::Rollback, Act::Wait, Act::CommitWithGroup, Act::Seek, Act::Edit,
                        Act::Accumulate, Act::UpdateMany, Act::GoToLast})
    for (int times = dice(3); times > 0; --times) acts.push_back(act);
  acts.push_back(Act::Accumulate);
  const int tables = 1 + dice(4);
  const int keys = 2 + dice(3);
  Program program;
  const auto step = [&](Act act) {
    if (leftOut.contains(act)) act = Act::Read;
    program.push_back({act, dice(tables), dice(keys), dice(keys), dice(8), dice(12)});
  };
  for (int rows = dice(4); rows > 0; --rows) step(Act::InsertOne);
  if (dice(3) == 0) step(Act::EnterGroup);
  if (dice(3) == 0) step(Act::Begin);
  for (int steps = 4 + dice(24); steps > 0; --steps)
    step(acts[static_cast<std::size_t>(dice(static_cast<int>(acts.size())))]);
  if (leftOut.contains(Act::Wait))
    for (Step& s : program)
      if (s.how < 6) s.how += 6;  // the forms of an edit and of an addition that wait
  return program;
}

/// The shortest program that still fails, found by leaving out steps.
inline Program Shrink(Program program, const std::function<bool(const Program&)>& fails) {
  for (std::size_t width = std::max<std::size_t>(1, program.size() / 2);; width = (width + 1) / 2) {
    bool shorter = false;
    for (std::size_t at = 0; at < program.size();) {
      Program tried = program;
      const auto first = tried.begin() + static_cast<std::ptrdiff_t>(at);
      tried.erase(first, first + static_cast<std::ptrdiff_t>(std::min(width, program.size() - at)));
      if (fails(tried)) {
        program = std::move(tried);
        shorter = true;
      } else {
        at += width;
      }
    }
    if (width == 1 && !shorter) return program;
  }
}

}  // namespace model
