// Whole reports of the program, from the data file to a PDF file: rows, first page, all pages, output.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "bench/Measure.h"
#include "platform/print/data/ReportQuery.h"
#include "platform/print/definition/DefinitionReader.h"
#include "platform/print/layout/Layout.h"
#include "platform/print/output/Outputs.h"

namespace bench {
namespace {

void Measure(const std::string& number, const Directory& directory) {
  const std::string dataFile = directory.Path("DW.MDB");
  std::shared_ptr<const print::ReportDefinition> report;
  std::unique_ptr<print::ReportRows> rows;
  std::vector<std::string> warnings;
  const double before = ResidentMegabytes();
  double all = Seconds([&] {
    report = print::ReadDefinition(std::string(DWBENCH_DEFINITIONS) + "/dwr" + number + ".rpt", dataFile);
  });
  const double reading = Seconds([&] {
    rows = print::ReadReportRows(
        *report, {dataFile, "", {}}, [](std::int64_t) { return true; }, &warnings);
  });
  print::PageStore pages(print::FactsOf(*report, {}));
  const std::atomic<bool> cancel = false;
  double first = 0;
  std::thread watcher([&] {
    first = Seconds([&] {
      while (pages.PageCount() == 0 && !pages.Finished())
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    });
  });
  const double layout = Seconds([&] { print::LayOut(*report, *rows, {}, pages, cancel, &warnings); });
  watcher.join();
  const double pdf = Seconds(
      [&] { print::WriteOutput(pages, print::OutputFormat::Pdf, directory.Path("report.pdf"), {}, {}); });
  all += reading + layout + pdf;
  const double count = pages.PageCount();
  const std::string name = "report " + number + ", ";
  Tell(name + "rows", static_cast<double>(rows->rows.Count()), "");
  Tell(name + "pages", count, "");
  Tell(name + "reading", reading * 1000, "ms");
  Tell(name + "first page after the click", (all - layout - pdf + first) * 1000, "ms");
  Tell(name + "layout", count / layout, "pages/s");
  Tell(name + "PDF", count / pdf, "pages/s");
  Tell(name + "store to PDF", count / all, "pages/s");
  Tell(name + "memory", ResidentMegabytes() - before, "MB more");
}

}  // namespace

int Reports(int transactions) {
  const Directory directory;
  constexpr int kYears = 4;
  MakeFleet(directory.Path(), std::max(1, transactions / (30 * kYears)), kYears);
  for (const char* number : {"006", "009", "013", "015"}) Measure(number, directory);
  return 0;
}

}  // namespace bench
