#include "support/desktop/Watchdog.h"

#include <execinfo.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string>

namespace test {
namespace {

std::array<char, 256> running{};
unsigned limit = 0;

void Say(const char* text) {
  [[maybe_unused]] const auto written = write(STDERR_FILENO, text, std::strlen(text));
}

/// Runs on the main thread, which hangs: no other thread takes this signal.
void Bark(int) {
  Say("\nThis test has taken too long: ");
  Say(running.data());
  Say("\n");
  std::array<void*, 64> frames{};
  backtrace_symbols_fd(frames.data(), backtrace(frames.data(), static_cast<int>(frames.size())),
                       STDERR_FILENO);
  _exit(3);
}

class Watchdog : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    const std::string name = std::string(test.test_suite_name()) + "." + test.name();
    running.fill('\0');
    name.copy(running.data(), running.size() - 1);
    alarm(limit);
  }
  void OnTestEnd(const testing::TestInfo&) override { alarm(0); }
};

}  // namespace

void WatchTests(int seconds) {
  limit = static_cast<unsigned>(seconds);
  // The first call loads a library, which a call in the handler must not do.
  std::array<void*, 1> first{};
  backtrace(first.data(), 1);
  signal(SIGALRM, Bark);
  testing::UnitTest::GetInstance()->listeners().Append(new Watchdog);
}

}  // namespace test
