// The screen of the console program. It counts the failures that it shows, so that the exit code can reflect
// them.
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
  /// Ends the command (throws Interrupted) if the user has asked for it. Does not wait while a notice is
  /// shown: the notice stays on the console and can be read later.
  void Sleep(int milliseconds) override;
  void ShowNotice(const std::string& title, const std::string& text) override;
  void HideNotice() override { notice_ = false; }

  /// How many boxes reported a failure.
  int Complaints() const { return complaints_; }
  /// The text of the latest box, as the caller passed it.
  const std::string& LastText() const { return lastText_; }

 private:
  int complaints_ = 0;
  bool notice_ = false;
  std::string lastText_;
};

/// Thrown if a command stops because of SIGINT, SIGTERM or SIGHUP.
class Interrupted : public ApplicationEnd {
 public:
  const char* what() const noexcept override { return "Stopped."; }
};

/// From now on the first of those signals only asks the command to stop; a second one ends the process at
/// once.
void WatchSignals();
/// Throws Interrupted if a signal has come. Called at points where nothing is half done.
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
