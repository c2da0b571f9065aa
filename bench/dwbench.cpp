// Measures the system on fleets that it makes itself: dwbench posting|list|due|statements|rows|reports
// [size], dwbench walk [seconds], dwbench micro [benchmark options].
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include "bench/Measure.h"

int main(int argc, char** argv) {
  const std::string what = argc > 1 ? argv[1] : "";
  const int size = argc > 2 ? std::atoi(argv[2]) : 0;
  try {
    if (what == "posting") return bench::Posting(size > 0 ? size : 100000);
    if (what == "list") return bench::Lists(size > 0 ? size : 1000000);
    if (what == "due") return bench::Due(size > 0 ? size : 10000);
    if (what == "statements") return bench::Statements(size > 0 ? size : 835);
    if (what == "rows") return bench::ReportRows(size > 0 ? size : 1000000);
    if (what == "reports") return bench::Reports(size > 0 ? size : 50000);
#ifdef DWBENCH_WALK
    if (what == "walk") return bench::Walk(size > 0 ? size : 10);
#endif
    if (what == "micro") return bench::Micro(argc - 1, argv + 1);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "dwbench: %s\n", error.what());
    return 1;
  }
  std::fprintf(
      stderr,
      "usage: dwbench posting|list|due|statements|rows|reports [size]\n       dwbench walk [seconds]\n"
      "       dwbench micro [benchmark options]\n");
  return 2;
}
