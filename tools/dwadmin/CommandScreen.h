// The screen of the console program: it remembers what it had to tell, so that the exit code can say so.
#pragma once

#include <string>

#include "data/Application.h"
#include "platform/screen/ConsoleScreen.h"

namespace dw {

/// Boxes and questions go to standard error, as those of any console screen do.
class CommandScreen : public screen::ConsoleScreen {
 public:
  using ConsoleScreen::ConsoleScreen;

  screen::Answer ShowBox(const screen::Box& box) override;
  /// Ends the command (Interrupted) where the user has asked for it. While a notice stands no time passes: it
  /// stays on a console and needs nobody to wait until it is read.
  void Sleep(int milliseconds) override;
  void ShowNotice(const std::string& title, const std::string& text) override;
  void HideNotice() override { notice_ = false; }

  /// How many boxes told of something that failed.
  int Complaints() const { return complaints_; }
  /// The text of the latest box, as it was asked for.
  const std::string& LastText() const { return lastText_; }

 private:
  int complaints_ = 0;
  bool notice_ = false;
  std::string lastText_;
};

/// Thrown where a command stops because of SIGINT, SIGTERM or SIGHUP.
class Interrupted : public ApplicationEnd {
 public:
  const char* what() const noexcept override { return "Stopped."; }
};

/// From here on the first of those signals only asks the command to stop; a second one ends the process at
/// once.
void WatchSignals();
/// Throws Interrupted where a signal has come since. Called where nothing is half done.
void StopIfAsked();

/// How far a command has come, on standard error: one line that changes on a terminal, plain lines elsewhere.
class Progress {
 public:
  Progress() = default;
  ~Progress() { BreakLine(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Stage(const std::string& text);
  void Percent(int percent);
  /// Ends a line that would change, so that something else can be written.
  static void BreakLine();

 private:
  void Write(const std::string& text);

  std::string stage_;
  int percent_ = -1;
};

}  // namespace dw
