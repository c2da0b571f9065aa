// How many statements the system sends to the engine for a piece of work.
#include <sqlite3.h>

#include <cstdlib>
#include <map>
#include <string>

#include "bench/Measure.h"
#include "costing/CostCheck.h"
#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "fleet/DueReport.h"
#include "platform/runtime/Clock.h"
#include "platform/store/Connection.h"

namespace bench {
namespace {

/// Counts the statements of every connection that this process opens from now on, by their texts.
class StatementCounter {
 public:
  StatementCounter() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(Attach)); }
  ~StatementCounter() { sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(Attach)); }
  StatementCounter(const StatementCounter&) = delete;
  StatementCounter& operator=(const StatementCounter&) = delete;

  template <class Work>
  std::int64_t During(Work work) {
    Texts().clear();
    work();
    std::int64_t count = 0;
    for (const auto& [text, times] : Texts()) count += times;
    return count;
  }
  /// The most frequent texts of the last work.
  static void TellMostFrequent(std::size_t most) {
    std::multimap<std::int64_t, std::string, std::greater<>> byCount;
    for (const auto& [text, times] : Texts()) byCount.emplace(times, text);
    for (const auto& [times, text] : byCount) {
      if (most-- == 0) return;
      std::printf("    %9lld  %s\n", static_cast<long long>(times), text.substr(0, 100).c_str());
    }
  }

 private:
  static std::map<std::string, std::int64_t>& Texts() {
    static std::map<std::string, std::int64_t> texts;
    return texts;
  }
  static int Attach(sqlite3* db, char**, const sqlite3_api_routines*) {
    return sqlite3_trace_v2(db, SQLITE_TRACE_STMT, Count, nullptr);
  }
  static int Count(unsigned, void*, void* statement, void*) {
    if (const char* text = sqlite3_sql(static_cast<sqlite3_stmt*>(statement))) ++Texts()[text];
    return 0;
  }
};

}  // namespace

int Statements(int assets) {
  Directory directory;
  StatementCounter counter;
  const bool texts = std::getenv("DWBENCH_TEXTS") != nullptr;
  const auto tell = [&](const std::string& what, std::int64_t count, std::int64_t parts,
                        const std::string& part) {
    Tell(what, static_cast<double>(count), "statements");
    if (parts > 0)
      Tell("  for each " + part, static_cast<double>(count) / static_cast<double>(parts), "statements");
    if (texts) StatementCounter::TellMostFrequent(12);
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
