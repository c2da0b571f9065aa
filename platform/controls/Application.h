// The desktop application. Errors that nothing else catches end here.
#pragma once

#include <QApplication>
#include <exception>
#include <functional>
#include <string>
#include <utility>

namespace ui {

/// Called with what nothing has caught: an error of the data files or the runtime, or the end of the program.
/// It must not throw.
using Uncaught = std::function<void(std::exception_ptr error)>;
/// Returns the earlier handler. Without one, an error ends the process with its text on standard error.
Uncaught InstallUncaught(Uncaught handler);
void HandleUncaught(std::exception_ptr error);
/// "Run-time error '3021':", two line breaks and the text; only the text if the error has no number.
std::string UncaughtText(std::exception_ptr error);

/// Runs the work of an event, so that no exception passes through the toolkit's own code.
template <class Work>
void Guard(Work&& work) {
  try {
    std::forward<Work>(work)();
  } catch (...) {
    HandleUncaught(std::current_exception());
  }
}

class Application : public QApplication {
 public:
  Application(int& argc, char** argv);
  bool notify(QObject* receiver, QEvent* event) override;
};

}  // namespace ui
