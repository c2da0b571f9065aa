// How many statements the system sends to the engine for a piece of work.
#include <cstdlib>
#include <string>

#include "bench/Measure.h"
#include "bench/StatementCounter.h"
#include "costing/CostCheck.h"
#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "fleet/DueReport.h"
#include "platform/runtime/Clock.h"
#include "platform/store/Connection.h"

namespace bench {
int Statements(int assets) {
  Directory directory;
  StatementCounter counter;
  const bool texts = std::getenv("DWBENCH_TEXTS") != nullptr;
  const auto tell = [&](const std::string& what, std::int64_t count, std::int64_t parts,
                        const std::string& part) {
    Tell(what, static_cast<double>(count), "statements");
    if (parts > 0)
      Tell("  for each " + part, static_cast<double>(count) / static_cast<double>(parts), "statements");
    if (texts) counter.TellMostFrequent(12);
  };
  MakeFleet(directory.Path(), assets, 2);
  const rt::FixedClock clock(rt::DateTime(2026, 6, 30, 12, 0, 0));

  dw::PostingCounts counts;
  std::int64_t count = counter.During([&] { counts = dw::RunPosting(false, {}); });
  tell("posting of " + std::to_string(counts.posted) + " transactions", count, counts.posted, "transaction");
  count = counter.During([&] { counts = dw::RunPosting(true, {}); });
  tell("posting of them all anew", count, counts.posted, "transaction");
  std::int64_t lines = 0;
  count = counter.During([&] {
    dw::WriteDueReport(directory.Path(), "7/14/2026", "500", [&](const dw::DueItem&) { ++lines; });
  });
  tell("due report of " + std::to_string(assets) + " assets, " + std::to_string(lines) + " lines", count,
       assets, "asset");
  std::size_t differences = 0;
  count = counter.During([&] {
    const auto file = store::Connection::Open({.path = dw::DataFile, .readOnly = true});
    differences = file->CheckIntegrity().size() +
                  dw::CompareWithCatalogue(*file, dw::CatalogueOf("DW.MDB")).size() +
                  dw::CheckCosts(*file).size();
  });
  tell("check of the main file: integrity, catalogue, costs", count, 0, {});
  return differences == 0 ? 0 : 1;
}

}  // namespace bench
