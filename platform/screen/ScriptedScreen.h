// A screen for tests: it answers the boxes that the test expects, in order, and reports everything else.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/screen/Screen.h"

namespace screen {

/// Expect each box with its words and its answer, in order. A box that was not expected and an answer that
/// was not used are both faults; Faults() lists them and a test asserts that there are none. An unexpected
/// box gets the safe answer (No, Cancel); after 200 of them a std::logic_error ends the test. Sleeps take no
/// time; they are counted and may run a hook, so that a test can free a lock "while" the program waits.
class ScriptedScreen : public Screen {
 public:
  /// The text, the icon and the buttons must be exactly equal.
  void Expect(std::string text, Icon icon, Buttons buttons = Buttons::Ok, Answer answer = Answer::Ok,
              std::string title = "Drovewright");
  /// The text must contain this part.
  void ExpectPart(std::string part, Icon icon, Buttons buttons = Buttons::Ok, Answer answer = Answer::Ok);
  void ExpectInput(std::string prompt, std::string answer);
  /// Runs at each sleep with its length in milliseconds, and at each box before its answer.
  std::function<void(int)> onSleep;
  std::function<void(const Box&)> onBox;
  std::function<void()> onEvents;

  /// One line for each unexpected box and each unused expectation.
  std::vector<std::string> Faults() const;
  int SleepCount() const { return sleeps_; }
  int SleptMilliseconds() const { return slept_; }
  const std::vector<Box>& Shown() const { return shown_; }
  Pointer CurrentPointer() const { return pointer_; }
  /// Each notice as its title, ": " and its text.
  const std::vector<std::string>& Notices() const { return notices_; }

  Answer ShowBox(const Box& box) override;
  std::string AskText(const std::string& prompt, const std::string& title, const std::string& text) override;
  void SetPointer(Pointer pointer) override { pointer_ = pointer; }
  void DoEvents() override;
  void Sleep(int milliseconds) override;
  void ShowNotice(const std::string& title, const std::string& text) override;
  void HideNotice() override {}

 private:
  struct Expected {
    Box box;
    bool part = false;
    bool input = false;
    Answer answer = Answer::Ok;
    std::string reply;
  };
  static bool Matches(const Expected& expected, const Box& box, bool input);
  static std::string NotShown(const Expected& expected);
  std::optional<Expected> Take(const Box& box, bool input);

  std::deque<Expected> expected_;
  std::vector<std::string> faults_;
  std::vector<Box> shown_;
  std::vector<std::string> notices_;
  Pointer pointer_ = Pointer::Normal;
  int sleeps_ = 0;
  int slept_ = 0;
};

}  // namespace screen
