#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <type_traits>

namespace test {

/// Work in a process of its own: the test survives a crash, a hang or a kill there and can report it, and it
/// never has a data file open when it forks.
class Apart {
 public:
  /// Starts the work at once.
  explicit Apart(const std::function<std::string()>& work);
  ~Apart();
  Apart(Apart&& other) noexcept;
  Apart& operator=(Apart&&) = delete;

  /// Waits for the end and returns the result of the work. Otherwise "threw: …" for an exception, "died of
  /// signal …", "ended with code …", or "hangs" if the work is not done within `seconds`; it is killed then.
  /// Empty if Kill ended the work.
  std::string Result(int seconds = 120);
  /// Sends SIGKILL and waits for the end; false if the work was done already.
  bool Kill();

 private:
  pid_t pid_ = -1;
  int pipe_ = -1;
};

/// Returns Apart(work).Result(seconds).
std::string RunApart(const std::function<std::string()>& work, int seconds = 120);

/// Faults that another process returns as its result, one on each line: empty if there are none.
class Faults {
 public:
  void Add(const std::string& fault) { text_ += fault + "\n"; }
  template <class Found, class Wanted>
  void Equal(const Found& found, const Wanted& wanted, const std::string& what) {
    if (!(found == wanted)) Add(what + ": " + Shown(found) + " instead of " + Shown(wanted));
  }
  /// Adds faults from elsewhere, under a heading.
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
