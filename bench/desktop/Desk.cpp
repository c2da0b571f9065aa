#include "bench/desktop/Desk.h"

#include <malloc.h>

#include <QEventLoop>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "data/BrackenfelGlobals.h"
#include "platform/controls/Form.h"
#include "platform/system/Settings.h"
#include "program/SetUp.h"

namespace bench {
namespace {

constexpr int kPatience = 120'000;  // milliseconds

/// Notices when something in a window is painted.
class PaintWatch : public QObject {
 public:
  explicit PaintWatch(const std::string& window) : window_(QString::fromStdString(window)) {
    qApp->installEventFilter(this);
  }
  bool Seen() const { return seen_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (!seen_ && event->type() == QEvent::Paint && watched->isWidgetType())
      seen_ = static_cast<QWidget*>(watched)->window()->objectName() == window_;
    return false;
  }

 private:
  QString window_;
  bool seen_ = false;
};

}  // namespace

/// Remembers the first box.
class Desk::Boxes : public WithoutPauses {
 public:
  using WithoutPauses::WithoutPauses;
  screen::Answer ShowBox(const screen::Box& box) override {
    if (first_.empty()) first_ = box.text;
    return box.buttons == screen::Buttons::YesNo ? screen::Answer::No : screen::Answer::Ok;
  }
  std::string AskText(const std::string& prompt, const std::string&, const std::string& text) override {
    if (first_.empty()) first_ = prompt;
    return text;
  }
  std::string TakeFirst() { return std::exchange(first_, {}); }

 private:
  std::string first_;
};

Desk::Desk(int& argc, char** argv, int assets, int years)
    : today_(rt::DateTime(2026, 6, 30, 12, 0, 0)), application_(argc, argv) {
  sys::UseSettingsFile(directory_.Path("settings"));
  MakeFleet(directory_.Path(), assets, years);
  sys::SaveSetting("DW", "Data", "DW Data Path", directory_.Path());
  dw::CurrentUserName = "ADMIN";
  dw::IsAdministrator = true;
  dw::SetUpProgram(application_);
  boxes_ = std::make_shared<Boxes>(screen::Install(nullptr));
  screen::Install(boxes_);
}

Desk::~Desk() { CloseAll(); }

double Desk::UntilPainted(const std::string& window, const std::function<void()>& work) {
  bool late = false;
  QTimer deadline;
  deadline.setSingleShot(true);
  QObject::connect(&deadline, &QTimer::timeout, [&] { late = true; });
  const double seconds = Seconds([&] {
    work();
    const PaintWatch watch(window);
    deadline.start(kPatience);
    while (!watch.Seen() && !late) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
  });
  CheckBoxes();
  if (late) throw std::runtime_error(window + " was not painted");
  return seconds * 1000;
}

void Desk::CheckBoxes() {
  const std::string box = boxes_->TakeFirst();
  if (!box.empty()) throw std::runtime_error("a message box came up: " + box);
}

void Desk::Press(QWidget& control, int key, const std::string& text) {
  for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QKeyEvent event(type, key, Qt::NoModifier, QString::fromStdString(text));
    QCoreApplication::sendEvent(&control, &event);
  }
}

void Desk::Settle() {
  for (int i = 0; i < 5; ++i) {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

void Desk::CloseAll() {
  while (!ui::Forms().empty()) ui::Forms().back()->Unload();
  Settle();
}

double PeakMegabytes() {
  std::ifstream in("/proc/self/status");
  for (std::string word; in >> word;) {
    double kilobytes = 0;
    if (word == "VmHWM:" && in >> kilobytes) return kilobytes / 1024;
  }
  return 0;
}

void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

void TrimMemory() { malloc_trim(0); }

}  // namespace bench
