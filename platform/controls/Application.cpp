#include "platform/controls/Application.h"

#include <cstdio>
#include <cstdlib>

#include "platform/ado/Ado.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/store/StoreError.h"

namespace ui {
namespace {

Uncaught& Installed() {
  static Uncaught handler;
  return handler;
}

std::string Numbered(int number, const char* text) {
  return "Run-time error '" + std::to_string(number) + "':\n\n" + text;
}

}  // namespace

Uncaught InstallUncaught(Uncaught handler) { return std::exchange(Installed(), std::move(handler)); }

void HandleUncaught(std::exception_ptr error) {
  if (Installed()) {
    Installed()(error);
    return;
  }
  std::fprintf(stderr, "%s\n", UncaughtText(error).c_str());
  std::abort();
}

std::string UncaughtText(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const store::StoreError& e) {
    return Numbered(e.Number(), e.what());
  } catch (const ado::Error& e) {
    return Numbered(e.Number(), e.what());
  } catch (const rt::RuntimeError& e) {
    return Numbered(e.Number(), e.what());
  } catch (const std::exception& e) {
    return e.what();
  } catch (...) {
    return "Unknown error.";
  }
}

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName("Drovewright");
  // The open forms decide when the program is over, not the windows.
  setQuitOnLastWindowClosed(false);
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (...) {
    HandleUncaught(std::current_exception());
    return true;
  }
}

}  // namespace ui
