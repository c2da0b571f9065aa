#include "shell/forms/ProgramEnd.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

#include "data/Application.h"
#include "data/BrackenfelGlobals.h"
#include "platform/controls/Application.h"
#include "platform/controls/Later.h"
#include "platform/runtime/Waits.h"
#include "platform/screen/Screen.h"
#include "shell/SignOn.h"
#include "shell/forms/BFLogon.h"
#include "shell/forms/CloseChildForm.h"
#include "shell/forms/SingleInstance.h"

namespace dw {
namespace {

using screen::Answer;
using screen::Buttons;

/// Asks nothing and takes the careful answer. Waits are real, because a lock may be released meanwhile. But
/// they are limited, because the program is ending: after the limit the waiting operation is ended.
class EndingScreen : public screen::Screen {
 public:
  Answer ShowBox(const screen::Box& box) override {
    switch (box.buttons) {
      case Buttons::OkCancel:
      case Buttons::RetryCancel:
        return Answer::Cancel;
      case Buttons::YesNo:
        return Answer::No;
      case Buttons::Ok:
        break;
    }
    return Answer::Ok;
  }
  std::string AskText(const std::string&, const std::string&, const std::string&) override { return {}; }
  void SetPointer(screen::Pointer) override {}
  void DoEvents() override {}
  void Sleep(int milliseconds) override {
    // Longer waits only let somebody read a notice.
    constexpr int kWaitForLock = 1000;
    if (milliseconds > kWaitForLock) return;
    const std::chrono::milliseconds wait(milliseconds);
    if (waited_ + wait > kPatience) throw ApplicationEnd();
    waited_ += wait;
    std::this_thread::sleep_for(wait);
  }
  void ShowNotice(const std::string&, const std::string&) override {}
  void HideNotice() override {}

 private:
  static constexpr std::chrono::milliseconds kPatience{5000};
  std::chrono::milliseconds waited_{};
};

bool told = false;    ///< an error has been shown, or is being shown
bool ending = false;  ///< the forms are being unloaded for good

/// The calling code may belong to windows that are gone, so this never returns.
[[noreturn]] void EndProcess(int code) {
  if (ending) _exit(code);
  ending = true;
  LeaveSingleInstance();
  try {
    screen::Install(std::make_shared<EndingScreen>());
    UnloadAllForms();
    // A form whose unload failed is not unloaded a second time, so the sign-off is done here if it is still
    // due.
    if (SignedOn) {
      SignedOn = false;
      SignOff();
    }
    // Finish what is still held for writing.
    rt::AboutToWait();
  } catch (...) {
    // The session stays open in the access log, as after a crash.
    std::fflush(nullptr);
  }
  std::fflush(nullptr);
  _exit(code);
}

template <class Error>
bool Is(std::exception_ptr error) {
  try {
    std::rethrow_exception(std::move(error));
  } catch (const Error&) {
    return true;
  } catch (...) {
    return false;
  }
}

void EndAfter(const std::exception_ptr& error) {
  // One message is enough: what fails while the program ends is a consequence of the first error.
  if (told || ending) return;
  if (Is<WindowsClosed>(error)) {
    // Whoever has found the data wants to work with it.
    if (ui::Forms().empty()) ui::Later(*qApp, [] { ui::Guard(ShowLogon); });
    return;
  }
  if (Is<ApplicationEnd>(error)) EndProcess(0);
  told = true;
  try {
    screen::SetPointer(screen::Pointer::Normal);
    screen::MessageBox(ui::UncaughtText(error), screen::Icon::Critical);
  } catch (...) {
    std::fprintf(stderr, "%s\n", ui::UncaughtText(error).c_str());
  }
  EndProcess(1);
}

std::array<int, 2> signalPipe{-1, -1};
volatile sig_atomic_t signalCount = 0;

void NoteSignal(int number) {
  signalCount = signalCount + 1;
  const char byte = 0;
  if (signalCount > 1 || write(signalPipe[1], &byte, 1) != 1) {
    signal(number, SIG_DFL);
    raise(number);
  }
}

void WatchSignals() {
  if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, qApp);
  QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] { EndProcess(told ? 1 : 0); });
  struct sigaction action {};
  action.sa_handler = NoteSignal;
  action.sa_flags = SA_RESTART;
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    struct sigaction earlier {};
    // If the program was started to outlive its terminal, it goes on doing so.
    if (sigaction(number, nullptr, &earlier) == 0 && earlier.sa_handler == SIG_IGN) continue;
    sigaction(number, &action, nullptr);
  }
}

}  // namespace

void InstallProgramEnd() {
  ui::InstallUncaught(EndAfter);
  WatchSignals();
}

}  // namespace dw
