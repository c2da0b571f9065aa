// The rows of a report of costs, while another program writes.
#include <atomic>
#include <cstdio>
#include <fstream>
#include <thread>

#include "bench/Measure.h"
#include "platform/print/data/ReportQuery.h"
#include "platform/print/definition/DefinitionReader.h"

namespace bench {
namespace {

constexpr const char* kCosts = R"(<report name="Costs">
<data>
  <table name="Maintenance Transactions"/>
  <table name="Vehicles"><join field="Asset ID" to="Maintenance Transactions.Asset ID"/></table>
  <table name="Inventory Classes"><join field="Class ID" to="Vehicles.Class ID"/></table>
  <order field="{Maintenance Transactions.Transaction Date}"/>
</data>
<group by="{Vehicles.Class ID}" tree="{Inventory Classes.Description}"/>
<group by="{Maintenance Transactions.Asset ID}" tree="{Vehicles.Description}"/>
<detail><text value="{Maintenance Transactions.Transaction Date} &amp; {Maintenance Transactions.Work Order Number}
  &amp; {Maintenance Transactions.Mileage} &amp; {Maintenance Transactions.Internal Fuel Cost}
  &amp; {Maintenance Transactions.Oil Cost} &amp; {Maintenance Transactions.Internal Time Cost}
  &amp; {Maintenance Transactions.Parts Cost} &amp; {Maintenance Transactions.Outside Fuel Cost}
  &amp; {Maintenance Transactions.Outside Oil Cost} &amp; {Maintenance Transactions.Outside Cost}
  &amp; {Maintenance Transactions.Total Internal Cost} &amp; {Maintenance Transactions.Total Outside Cost}"/></detail>
</report>)";

/// Commits one small change after the other and keeps the longest that one took.
class Writer {
 public:
  explicit Writer(const std::string& path) : thread_([this, path] { Write(path); }) {}
  ~Writer() {
    end_ = true;
    if (thread_.joinable()) thread_.join();
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  double LongestMilliseconds() {
    end_ = true;
    thread_.join();
    return longest_ * 1000;
  }

 private:
  void Write(const std::string& path) {
    PlainFile file(path);
    file.Run("PRAGMA busy_timeout = 60000");
    while (!end_) {
      const double took = Seconds([&] { file.Run("UPDATE Parameters SET Contact = 'x' WHERE ID = 1"); });
      longest_ = std::max(longest_, took);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  std::atomic<bool> end_{false};
  double longest_ = 0;
  std::thread thread_;
};

}  // namespace

int ReportRows(int transactions) {
  const Directory directory;
  MakeFleet(directory.Path(), 500, 1);
  const std::string path = directory.Path("DW.MDB");
  {
    PlainFile file(path);
    const auto count = file.Number("SELECT COUNT(*) FROM \"Maintenance Transactions\"");
    const std::string copied =
        "\"Asset ID\", \"Transaction Date\", \"Work Order Number\", \"Mileage\", \"Internal Fuel Cost\", "
        "\"Oil Cost\", "
        "\"Internal Time Cost\", \"Parts Cost\", \"Outside Fuel Cost\", \"Outside Oil Cost\", \"Outside "
        "Cost\", "
        "\"Total Internal Cost\", \"Total Outside Cost\"";
    const std::string copies =
        std::to_string(std::max<std::int64_t>(1, transactions / std::max<std::int64_t>(1, count)));
    file.Run("INSERT INTO \"Maintenance Transactions\" (" + copied +
             ") WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + copies +
             ") SELECT " + copied +
             " FROM n, (SELECT * FROM \"Maintenance Transactions\" ORDER BY ID LIMIT " +
             std::to_string(count) + ")");
    Tell("transactions",
         static_cast<double>(file.Number("SELECT COUNT(*) FROM \"Maintenance Transactions\"")), "");
  }
  const std::string definition = directory.Path("costs.rpt");
  std::ofstream(definition) << kCosts;
  double opened = 0;
  std::shared_ptr<const print::ReportDefinition> report;
  opened = Seconds([&] { report = print::ReadDefinition(definition, path); });
  Tell("reading the definition", opened * 1000, "ms");
  for (const char* selection : {"",
                                "{Maintenance Transactions.Transaction Date} >= Date(2026,1,1) AND "
                                "{Maintenance Transactions.Transaction Date} <= Date(2026,1,14)"}) {
    const double before = ResidentMegabytes();
    Writer writer(path);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::unique_ptr<print::ReportRows> rows;
    const double took = Seconds([&] {
      rows = print::ReadReportRows(*report, {path, selection, {}}, {}, nullptr);
    });
    const std::string name = *selection ? "of two weeks: " : "all: ";
    Tell(name + "rows", static_cast<double>(rows->rows.Count()), "");
    Tell(name + "reading them", took * 1000, "ms");
    Tell(name + "longest wait of another writer", writer.LongestMilliseconds(), "ms");
    Tell(name + "memory", ResidentMegabytes() - before, "MB");
    print::Row row;
    const double again = Seconds([&] {
      for (std::int64_t i = 0; i < rows->rows.Count(); ++i) rows->rows.Read(i, row);
    });
    Tell(name + "reading them from the spool", again * 1000, "ms");
  }
  return 0;
}

}  // namespace bench
