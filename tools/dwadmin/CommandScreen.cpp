#include "tools/dwadmin/CommandScreen.h"

#include <unistd.h>

#include <csignal>
#include <iostream>

namespace dw {
namespace {

volatile std::sig_atomic_t stopAsked = 0;
bool lineOpen = false;

bool OnTerminal() {
  static const bool terminal = isatty(STDERR_FILENO) != 0;
  return terminal;
}

}  // namespace

screen::Answer CommandScreen::ShowBox(const screen::Box& box) {
  Progress::BreakLine();
  lastText_ = box.text;
  if (box.icon == screen::Icon::Critical || box.icon == screen::Icon::Exclamation) ++complaints_;
  return ConsoleScreen::ShowBox(box);
}

void CommandScreen::Sleep(int milliseconds) {
  if (notice_) return;
  StopIfAsked();
  ConsoleScreen::Sleep(milliseconds);
  StopIfAsked();
}

void CommandScreen::ShowNotice(const std::string& title, const std::string& text) {
  Progress::BreakLine();
  notice_ = true;
  ConsoleScreen::ShowNotice(title, text);
}

void WatchSignals() {
  struct sigaction action = {};
  action.sa_handler = [](int) { stopAsked = 1; };
  // Waiting for a password must end at once, so interrupted calls are not restarted.
  action.sa_flags = SA_RESETHAND;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
}

void StopIfAsked() {
  if (stopAsked != 0) throw Interrupted();
}

void Progress::Stage(const std::string& text) {
  BreakLine();
  stage_ = text;
  percent_ = -1;
  Write(text);
}

void Progress::Percent(int percent) {
  if (percent == percent_) return;
  // A pipe gets a line for each tenth of the work.
  const bool worthALine = OnTerminal() || percent_ < 0 || percent / 10 != percent_ / 10;
  percent_ = percent;
  if (worthALine) Write(stage_ + " " + std::to_string(percent) + "%");
}

void Progress::BreakLine() {
  if (!lineOpen) return;
  lineOpen = false;
  std::cerr << std::endl;
}

void Progress::Write(const std::string& text) {
  if (OnTerminal()) {
    std::cerr << '\r' << text << "\033[K" << std::flush;
    lineOpen = true;
  } else {
    std::cerr << text << std::endl;
  }
}

}  // namespace dw
