// The result of a step on a data file, and the pause before the step is tried again.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "data/Application.h"
#include "platform/ado/Ado.h"
#include "platform/runtime/Error.h"
#include "platform/screen/Screen.h"
#include "platform/store/StoreError.h"

namespace dw {

/// The number and text that decide about messages and waits. Number 0 is success.
struct Failure {
  std::int32_t number = 0;
  std::string description;
  explicit operator bool() const { return number != 0; }
};

/// Runs a step and turns what it throws into a Failure. Only ApplicationEnd passes through.
template <class Step>
Failure Try(Step&& step) {
  try {
    std::forward<Step>(step)();
    return {};
  } catch (const ApplicationEnd&) {
    throw;
  } catch (const rt::Error& e) {
    return {e.Number(), e.what()};
  } catch (const std::exception& e) {
    return {store::kInternal, e.what()};
  }
}

/// The wait of an operation that another user's lock keeps out: a second for each failed try, and a box at
/// every eleventh, so that somebody finds out who holds the record. It never gives up by itself.
class LockWait {
 public:
  enum class Events { Hold, LetRun };

  /// Called after a failed try; `advice` is the text of the box.
  void Pause(const std::string& advice, Events events = Events::Hold) {
    screen::SetPointer(screen::Pointer::Hourglass);
    screen::Sleep(1000);
    if (events == Events::LetRun) screen::DoEvents();
    if (count_ == 10) {
      count_ = 0;
      screen::MessageBox(advice, screen::Icon::Information);
    } else {
      ++count_;
    }
    screen::SetPointer(screen::Pointer::Normal);
  }

 private:
  int count_ = 0;
};

}  // namespace dw
