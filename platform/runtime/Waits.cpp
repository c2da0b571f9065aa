#include "platform/runtime/Waits.h"

#include <deque>

namespace rt {
namespace {

/// In a deque, a listener keeps its place while it runs, even if it adds another one.
std::deque<std::function<void()>>& Listeners() {
  static std::deque<std::function<void()>> listeners;
  return listeners;
}

}  // namespace

void BeforeEveryWait(std::function<void()> listener) { Listeners().push_back(std::move(listener)); }

void AboutToWait() {
  for (std::size_t i = 0; i < Listeners().size(); ++i) Listeners()[i]();
}

}  // namespace rt
