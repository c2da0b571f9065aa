// The desktop application: what nothing else catches ends here.
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
/// Gives the earlier one. Without one, an error ends the process with its text on standard error.
Uncaught InstallUncaught(Uncaught handler);
void HandleUncaught(std::exception_ptr error);
/// "Run-time error '3021':", two line breaks and the text; the text alone where the error has no number.
std::string UncaughtText(std::exception_ptr error);

/// Runs what an event asks for, so that no exception runs through the toolkit's own code.
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
