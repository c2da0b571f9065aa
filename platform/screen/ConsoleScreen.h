// The user's screen without a desktop: boxes as text, questions answered by letters.
#pragma once

#include <iosfwd>
#include <string>

#include "platform/screen/Screen.h"

namespace screen {

/// Who answers the questions of a ConsoleScreen.
enum class Answering {
  Person,      // a person at a terminal; without a terminal as SafeChoice
  SafeChoice,  // nobody: No, Cancel, no text; waits for nothing
  AssumeYes    // nobody: Yes and OK, but Cancel if the box offers Retry, or a run could go on forever
};

/// Writes boxes to standard error as "title: text", with CR, LF and CR LF as line breaks, and reads answers
/// from standard input. The end of the input counts as the safe choice, so that a run never hangs.
class ConsoleScreen : public Screen {
 public:
  explicit ConsoleScreen(Answering answering = Answering::Person);
  /// Uses the caller's streams, which must outlive the screen. Does not check for a terminal: `answering`
  /// applies as it is.
  ConsoleScreen(Answering answering, std::istream& in, std::ostream& out);

  Answer ShowBox(const Box& box) override;
  std::string AskText(const std::string& prompt, const std::string& title, const std::string& text) override;
  void SetPointer(Pointer) override {}
  void DoEvents() override {}
  void Sleep(int milliseconds) override;
  void ShowNotice(const std::string& title, const std::string& text) override;
  void HideNotice() override {}

 private:
  void Write(const std::string& title, const std::string& text);
  bool ReadLine(const std::string& prompt, std::string& line);

  Answering answering_;
  std::istream& in_;
  std::ostream& out_;
};

}  // namespace screen
