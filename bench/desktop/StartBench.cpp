// From the start of the program to its sign-on window, and from there to the main window.
#include <sys/wait.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "bench/StatementCounter.h"
#include "bench/desktop/Desk.h"
#include "platform/controls/Form.h"
#include "platform/controls/Later.h"
#include "platform/system/Settings.h"
#include "program/SetUp.h"
#include "shell/forms/BFLogon.h"
#include "shell/forms/Startup.h"

namespace bench {
namespace {

constexpr int kAssets = 60;
constexpr int kYears = 3;
constexpr int kPatience = 60'000;  // milliseconds
constexpr const char* kStatements = "statements until the main window and its first question";

std::int64_t Now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

/// Runs the work once, after this many milliseconds, unless the object is gone by then.
void After(int pause, QObject& object, const std::function<void()>& work) {
  auto* timer = new QTimer(&object);
  timer->setSingleShot(true);
  QObject::connect(timer, &QTimer::timeout, &object, work);
  QObject::connect(timer, &QTimer::timeout, timer, &QObject::deleteLater);
  timer->start(pause);
}

/// Goes through the windows of a start like a user who clicks at once, and reports when each one was painted.
class StartSteps : public QObject {
 public:
  explicit StartSteps(std::int64_t began) : began_(began) { qApp->installEventFilter(this); }

  /// Writes the time since the last click, or since the start.
  void Tell(const char* step) const {
    std::printf("%s\t%.3f\n", step, static_cast<double>(Now() - began_) / 1e6);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Paint || !watched->isWidgetType()) return false;
    const QString window = static_cast<QWidget*>(watched)->window()->objectName();
    if (std::find(seen_.begin(), seen_.end(), window) != seen_.end()) return false;
    seen_.push_back(window);
    // Runs after the event that paints, when the window system has the pixels.
    ui::Later(*this, [this, window] { Painted(window); });
    return false;
  }

 private:
  void Painted(const QString& window) {
    if (window == "BFLogon") {
      Tell("start until the sign-on window is painted");
      auto& logon = ui::The<dw::BFLogon>();
      logon.userName.SetText("ADMIN");
      Click(logon.okButton);
    } else if (window == "Startup") {
      Tell("its OK until the \"About\" window is painted");
      Click(ui::The<dw::Startup>().okButton);
    } else if (window == "mnuDW") {
      Tell("its OK until the main window is painted");
      Answer();
    } else if (window == "MessageBox") {
      Tell("its OK until the first question is painted");
      Answer();
    }
  }

  void Click(QAbstractButton& button) {
    began_ = Now();
    button.click();
  }

  /// Answers "No" to the question over the main window, and quits.
  void Answer() {
    if (++atTheEnd_ < 2) return;
    std::printf("%s\t%lld\n", kStatements, static_cast<long long>(counter_.Count()));
    if (std::getenv("DWBENCH_TEXTS")) counter_.TellMostFrequent(60);
    After(0, *this, [] {
      if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
        box->button(QMessageBox::No)->click();
      if (ui::Form* menu = ui::FindForm("mnuDW")) After(0, *menu, [menu] { menu->Unload(); });
    });
  }

  StatementCounter counter_;
  std::int64_t began_;
  std::vector<QString> seen_;
  int atTheEnd_ = 0;
};

/// Starts this program again for one start, and returns its output.
std::string OneStart(char** argv) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  const std::string began = std::to_string(Now());
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    execl("/proc/self/exe", argv[0], "started", began.c_str(), nullptr);
    _exit(127);
  }
  close(ends[1]);
  std::string told;
  char part[4096];
  for (ssize_t count = 0; (count = read(ends[0], part, sizeof part)) > 0;)
    told.append(part, static_cast<std::size_t>(count));
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
    throw std::runtime_error("the started program has failed after:\n" + told);
  return told;
}

}  // namespace

int StartedProgram(int& argc, char** argv, std::int64_t began) {
  const double reached = static_cast<double>(Now() - began) / 1e6;
  ui::Application application(argc, argv);
  const StartSteps steps(began);
  std::printf("start until main() is reached\t%.3f\n", reached);
  steps.Tell("start until the toolkit is up");
  dw::SetUpProgram(application);
  screen::Install(std::make_shared<WithoutPauses>(screen::Install(nullptr)));
  steps.Tell("start until everything is in place");
  ui::Later(application, [] { ui::Guard(dw::ShowLogon); });
  After(kPatience, application, [] { QCoreApplication::exit(1); });
  return QApplication::exec();
}

int Start(int rounds, char** argv) {
  Directory directory;
  MakeFleet(directory.Path(), kAssets, kYears);
  const std::string settings = directory.Path("settings");
  setenv("DROVEWRIGHT_SETTINGS", settings.c_str(), 1);
  sys::SaveSetting("Brackenfel Software", "Settings", "Workstation Name", "OFFICE");
  sys::SaveSetting("DW", "Data", "DW Data Path", directory.Path());
  std::vector<std::string> order;
  std::map<std::string, double> best;
  for (int round = 0; round < rounds; ++round) {
    std::istringstream told(OneStart(argv));
    for (std::string step, time; std::getline(told, step, '\t') && std::getline(told, time);) {
      const double milliseconds = std::stod(time);
      if (!best.contains(step)) order.push_back(step);
      auto& least = best.try_emplace(step, milliseconds).first->second;
      least = std::min(least, milliseconds);
    }
  }
  for (const std::string& step : order) Tell(step, best[step], step == kStatements ? "statements" : "ms");
  constexpr std::size_t kSteps = 8;
  return order.size() == kSteps ? 0 : 1;
}

}  // namespace bench
