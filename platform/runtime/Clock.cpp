#include "platform/runtime/Clock.h"

#include <ctime>
#include <utility>

namespace rt {
namespace {

std::function<DateTime()>& Replacement() {
  static std::function<DateTime()> clock;
  return clock;
}

DateTime WorkstationTime() {
  const std::time_t now = std::time(nullptr);
  // Work that stamps thousands of rows in a second asks for the zone once.
  static std::time_t asked = -1;
  static DateTime known;
  if (now == asked) return known;
  std::tm local{};
  localtime_r(&now, &local);
  // A leap second is not a time of day.
  const int second = local.tm_sec > 59 ? 59 : local.tm_sec;
  known =
      DateTime(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, second);
  asked = now;
  return known;
}

}  // namespace

DateTime Now() { return Replacement() ? Replacement()() : WorkstationTime(); }

DateTime Today() { return Now().DateOnly(); }

std::function<DateTime()> SetClock(std::function<DateTime()> clock) {
  std::swap(clock, Replacement());
  return clock;
}

}  // namespace rt
