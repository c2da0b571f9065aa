#include "platform/store/CommitGroup.h"

#include <algorithm>
#include <thread>

namespace store {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr int kMostTransactions = 50000;
constexpr milliseconds kAlone{250};
// With others in the file: four times as long as its commit takes on this disk, so that commits cost a fifth
// of the time at most.
constexpr milliseconds kShortest{10};
constexpr milliseconds kLongest{100};
constexpr microseconds kBetweenLooks{500};

constexpr microseconds kNap{250};
// Who waits tries every half millisecond. One who shows it for longer waits for something else.
constexpr int kMostNaps = 40;
// Other tools cannot show that they wait. Most of them try every few milliseconds at first and ten times a
// second later.
constexpr milliseconds kShortPause{2};
constexpr milliseconds kLongPause{25};
constexpr milliseconds kBetweenShortPauses{100};
constexpr milliseconds kBetweenLongPauses{1000};

}  // namespace

void CommitGroup::Started() {
  start_ = Clock::now();
  nextLook_ = start_ + kBetweenLooks;
  transactions_ = 0;
  alone_ = !holds_.OthersAreIn();
}

bool CommitGroup::Over() {
  if (transactions_ >= kMostTransactions) return true;
  const auto now = Clock::now();
  if (now >= nextLook_) {
    nextLook_ = now + kBetweenLooks;
    if (holds_.OthersWait()) return true;
    if (alone_) alone_ = !holds_.OthersAreIn();
  }
  return now - start_ > (alone_ ? Clock::duration(kAlone) : withCompany_);
}

void CommitGroup::Committed(Clock::duration took) {
  withCompany_ = std::clamp<Clock::duration>(4 * took, kShortest, kLongest);
}

void CommitGroup::Pause() {
  if (holds_.OthersWait()) {
    for (int naps = 0; naps < kMostNaps && (naps == 0 || holds_.OthersWait()); ++naps)
      std::this_thread::sleep_for(kNap);
    pausedAt_ = Clock::now();
    return;
  }
  const auto now = Clock::now();
  if (now - pausedLongAt_ > kBetweenLongPauses) {
    std::this_thread::sleep_for(kLongPause);
    pausedAt_ = pausedLongAt_ = Clock::now();
  } else if (now - pausedAt_ > kBetweenShortPauses) {
    std::this_thread::sleep_for(kShortPause);
    pausedAt_ = Clock::now();
  }
}

}  // namespace store
