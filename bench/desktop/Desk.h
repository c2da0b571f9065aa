// What the measurements of the desktop program share: the program set up without a user, and the times until
// its windows are painted.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "bench/Measure.h"
#include "platform/controls/Application.h"
#include "platform/runtime/Clock.h"
#include "platform/screen/Screen.h"

class QWidget;

namespace bench {

/// The program's screen without pauses: the moment that every window waits when it closes is not work.
class WithoutPauses : public screen::Screen {
 public:
  explicit WithoutPauses(std::shared_ptr<screen::Screen> program) : program_(std::move(program)) {}
  screen::Answer ShowBox(const screen::Box& box) override { return program_->ShowBox(box); }
  std::string AskText(const std::string& prompt, const std::string& title, const std::string& text) override {
    return program_->AskText(prompt, title, text);
  }
  void SetPointer(screen::Pointer pointer) override { program_->SetPointer(pointer); }
  void DoEvents() override { program_->DoEvents(); }
  void Sleep(int) override {}
  void ShowNotice(const std::string& title, const std::string& text) override {
    program_->ShowNotice(title, text);
  }
  void HideNotice() override { program_->HideNotice(); }

 private:
  std::shared_ptr<screen::Screen> program_;
};

/// The program on a sample fleet, set up as main() does it, signed on as an administrator. A message box is
/// answered with "OK" or "No" and fails the measurement; nothing pauses.
class Desk {
 public:
  Desk(int& argc, char** argv, int assets, int years);
  ~Desk();
  Desk(const Desk&) = delete;
  Desk& operator=(const Desk&) = delete;

  /// Runs `work`, then processes events until something in the window of that name has been painted and
  /// nothing is left to do. Returns the milliseconds from the beginning of the work. Throws if a box came up
  /// or nothing was painted.
  double UntilPainted(const std::string& window, const std::function<void()>& work);
  /// Presses and releases a key in a control.
  void Press(QWidget& control, int key, const std::string& text = {});
  /// Unloads all forms and processes the remaining events.
  void CloseAll();
  void Settle();

  const std::string MainFile() const { return directory_.Path("DW.MDB"); }
  const Directory& Files() const { return directory_; }

 private:
  class Boxes;
  void CheckBoxes();

  Directory directory_;
  rt::FixedClock today_;
  ui::Application application_;
  std::shared_ptr<Boxes> boxes_;
};

/// The shortest of several rounds of a measurement.
template <class Measurement>
double Best(int rounds, Measurement measurement) {
  double best = 1e12;
  for (int round = 0; round < rounds; ++round) best = std::min(best, measurement());
  return best;
}

/// The most memory that this process has had since the last call of ForgetPeak, in MB.
double PeakMegabytes();
void ForgetPeak();
/// Returns freed memory to the system, so that resident memory is memory in use.
void TrimMemory();

// The measurements; each returns 0 if it could measure.
int Start(int rounds, char** argv);
/// The program that Start starts: it writes its steps, timed from `began` (nanoseconds of the steady clock),
/// to its output.
int StartedProgram(int& argc, char** argv, std::int64_t began);
int DeskList(int& argc, char** argv, int transactions);
int DeskDetail(int& argc, char** argv, int transactions);
int DeskAsset(int& argc, char** argv, int transactions);

}  // namespace bench
