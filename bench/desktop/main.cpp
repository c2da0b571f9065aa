// Measures the desktop program on fleets that it makes itself: dwdeskbench start|list|detail|asset [size].
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "bench/desktop/Desk.h"

int main(int argc, char** argv) {
  const std::string what = argc > 1 ? argv[1] : "";
  const int size = argc > 2 ? std::atoi(argv[2]) : 0;
  // Without a desktop the windows are painted into memory.
  if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) setenv("QT_QPA_PLATFORM", "offscreen", 0);
  // Messages about what a platform without a window manager cannot do are of no interest here.
  setenv("QT_LOGGING_RULES", "default.warning=false", 0);
  try {
    if (what == "start") return bench::Start(size > 0 ? size : 10, argv);
    if (what == "started" && argc > 2) return bench::StartedProgram(argc, argv, std::atoll(argv[2]));
    if (what == "list") return bench::DeskList(argc, argv, size > 0 ? size : 1000000);
    if (what == "detail") return bench::DeskDetail(argc, argv, size > 0 ? size : 100000);
    if (what == "asset") return bench::DeskAsset(argc, argv, size > 0 ? size : 100000);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "dwdeskbench: %s\n", error.what());
    return 1;
  }
  std::fprintf(stderr,
               "usage: dwdeskbench start [rounds]\n       dwdeskbench list|detail|asset [transactions]\n");
  return 2;
}
