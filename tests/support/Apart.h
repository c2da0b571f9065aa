#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <type_traits>

namespace test {

/// Work in a process of its own: a crash, a hang or a kill there is something that the test can tell of, and
/// the test itself never has a data file open when it forks.
class Apart {
 public:
  /// Starts at once.
  explicit Apart(const std::function<std::string()>& work);
  ~Apart();
  Apart(Apart&& other) noexcept;
  Apart& operator=(Apart&&) = delete;

  /// Waits for the end: what the work returned, or instead "threw: …" for an exception, "died of signal …",
  /// "ended with code …", or "hangs" for one that is not done within `seconds`, which is then killed. Empty
  /// for one that Kill ended.
  std::string Result(int seconds = 120);
  /// kill -9, and waits for the death; false where the work was done already.
  bool Kill();

 private:
  pid_t pid_ = -1;
  int pipe_ = -1;
};

/// Apart(work).Result(seconds).
std::string RunApart(const std::function<std::string()>& work, int seconds = 120);

/// Faults found in another process, a line each, as its result: empty where there are none.
class Faults {
 public:
  void Add(const std::string& fault) { text_ += fault + "\n"; }
  template <class Found, class Wanted>
  void Equal(const Found& found, const Wanted& wanted, const std::string& what) {
    if (!(found == wanted)) Add(what + ": " + Shown(found) + " instead of " + Shown(wanted));
  }
  /// Adds what another found, under a heading.
  void Take(const std::string& found, const std::string& where) {
    if (!found.empty()) Add(where + ": " + found);
  }
  const std::string& Text() const { return text_; }

 private:
  static std::string Shown(const std::string& text) { return "'" + text + "'"; }
  template <class Number>
  requires std::is_arithmetic_v<Number>
  static std::string Shown(Number number) { return std::to_string(number); }
  std::string text_;
};

}  // namespace test
