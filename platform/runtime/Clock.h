// The present time, replaceable so that a test can fix it.
#pragma once

#include <functional>

#include "platform/runtime/DateTime.h"

namespace rt {

/// The workstation's date and time, to the second.
DateTime Now();
/// Today at 0:00.
DateTime Today();
/// Replaces the clock; an empty function restores the workstation's own. Returns the earlier one.
std::function<DateTime()> SetClock(std::function<DateTime()> clock);

/// Fixes the present time as long as it lives.
class FixedClock {
 public:
  explicit FixedClock(DateTime now) : earlier_(SetClock([now] { return now; })) {}
  ~FixedClock() { SetClock(earlier_); }
  FixedClock(const FixedClock&) = delete;
  FixedClock& operator=(const FixedClock&) = delete;

 private:
  std::function<DateTime()> earlier_;
};

}  // namespace rt
