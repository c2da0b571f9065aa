// The program: puts everything in place that the forms rely on, and shows the sign-on window.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "data/Version.h"
#include "platform/controls/Application.h"
#include "platform/controls/Later.h"
#include "program/SetUp.h"
#include "shell/forms/BFLogon.h"

namespace {

constexpr int kUsage = 3;
constexpr int kNoDesktop = 1;

constexpr const char* kHelp =
    "Usage: drovewright [--help | --version]\n"
    "\n"
    "Starts Drovewright at its sign-on window. If it is running already, its window comes to the front.\n"
    "The data is looked for beside the program, or where it was found before.\n"
    "\n"
    "  DROVEWRIGHT_SETTINGS   environment: the file that keeps this user's settings\n";

bool Given(int argc, char** argv, const char* option) {
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], option) == 0) return true;
  return false;
}

bool HasValue(const char* variable) {
  const char* value = std::getenv(variable);
  return value && *value != '\0';
}

/// Without a desktop the toolkit would give up with a message for programmers.
bool DesktopIsThere(int argc, char** argv) {
  return HasValue("DISPLAY") || HasValue("WAYLAND_DISPLAY") || HasValue("QT_QPA_PLATFORM") ||
         Given(argc, argv, "-platform");
}

}  // namespace

int main(int argc, char** argv) {
  if (Given(argc, argv, "--version")) {
    std::printf("Drovewright %s\n", dw::kVersionText);
    return 0;
  }
  if (Given(argc, argv, "--help") || Given(argc, argv, "-h")) {
    std::fputs(kHelp, stdout);
    return 0;
  }
  if (!DesktopIsThere(argc, argv)) {
    std::fputs("Drovewright needs a desktop; there is none here. dwadmin works from a console.\n", stderr);
    return kNoDesktop;
  }

  ui::Application application(argc, argv);
  if (argc > 1) {
    std::fprintf(stderr, "drovewright: '%s' is not understood.\n%s", argv[1], kHelp);
    return kUsage;
  }
  QApplication::setApplicationVersion(dw::kVersionText);
  dw::SetUpProgram(application);

  ui::Later(application, [] { ui::Guard(dw::ShowLogon); });
  return QApplication::exec();
}
