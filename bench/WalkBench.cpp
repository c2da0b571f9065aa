// How much work several processes do at once on one data directory.
#include <cstdio>
#include <random>

#include "bench/Measure.h"
#include "support/Apart.h"
#include "support/Walk.h"

namespace bench {

int Walk(int seconds) {
  bool sound = true;
  for (const int workers : {1, 4, 16}) {
    Directory directory;
    test::RunApart([&] {
      walk::Make(directory.Path());
      return std::string();
    });
    const walk::Outcome outcome = walk::Go(
        directory.Path(), {.seed = 1, .workers = workers, .time = std::chrono::seconds(seconds), .kills = 0});
    Tell("random walk of " + std::to_string(workers) + " processes: acknowledged changes",
         static_cast<double>(outcome.changes) / seconds, "rows/s");
    Tell("  refused because another held a record", static_cast<double>(outcome.refused) / seconds,
         "a second");
    std::printf("  %s\n", outcome.kinds.c_str());
    if (!outcome.faults.empty()) std::printf("FAULTS: %s\n", outcome.faults.c_str());
    sound = sound && outcome.faults.empty();
  }
  return sound ? 0 : 1;
}

}  // namespace bench
