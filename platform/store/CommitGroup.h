// How long a group of commits goes on.
#pragma once

#include <chrono>
#include <cstdint>

#include "platform/store/Holds.h"

namespace store {

/// Says when the transactions that share a commit have to go to the disk, so that commits cost little and
/// others hardly wait. Alone in the file a group goes on for a quarter of a second. With others in it a group
/// stays so short that its commit takes some milliseconds, and it ends as soon as one of them shows that it
/// waits.
class CommitGroup {
 public:
  explicit CommitGroup(const Holds& holds) : holds_(holds) {}

  bool On() const { return on_; }
  /// The caller is between two units of its work, where the group may end.
  void Enter() {
    on_ = true;
    sinceEnter_ = 0;
  }
  void Leave() { on_ = false; }
  /// The file's write transaction has begun.
  void Started();
  /// One more transaction has ended. True where the group may end behind it: callers that enter the group for
  /// each unit of their work may make two transactions of it, and those belong together.
  bool CountTransaction() {
    ++transactions_;
    return ++sinceEnter_ > 1;
  }
  /// Whether it is time for the commit. Asks for the others now and then.
  bool Over();
  /// The commit took so long.
  void Committed(std::chrono::steady_clock::duration took);
  /// Lets others get in between two groups: those who show that they wait, until they have had their turn,
  /// and now and then those who cannot show it.
  void Pause();

 private:
  using Clock = std::chrono::steady_clock;

  const Holds& holds_;
  bool on_ = false;
  bool alone_ = true;
  int transactions_ = 0;
  int sinceEnter_ = 1;
  Clock::time_point start_;
  Clock::time_point nextLook_;
  Clock::duration withCompany_ =
      std::chrono::milliseconds(10);  ///< a group's time where others are in the file
  Clock::time_point pausedAt_;
  Clock::time_point pausedLongAt_ = Clock::now();
};

}  // namespace store
