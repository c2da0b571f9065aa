// The rows of a report of costs, while eight other processes write.
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

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

/// Other processes that commit one small change after the other and keep the longest that one took.
class Writers {
 public:
  Writers(const std::string& path, int count) {
    for (int i = 0; i < count; ++i) {
      std::array<int, 2> stop{};
      std::array<int, 2> told{};
      if (pipe(stop.data()) != 0 || pipe(told.data()) != 0) throw std::runtime_error("no pipes");
      const pid_t pid = fork();
      if (pid == 0) {
        close(stop[1]);
        for (const auto& other : processes_) close(other.stop);
        Write(path, stop[0], told[1]);
        _exit(0);
      }
      close(stop[0]);
      close(told[1]);
      processes_.push_back({pid, stop[1], told[0]});
    }
  }
  ~Writers() { End(); }
  Writers(const Writers&) = delete;
  Writers& operator=(const Writers&) = delete;

  struct Waits {
    double longest = 0;  ///< of all, in milliseconds
    double commits = 0;
  };
  Waits End() {
    Waits all;
    for (const auto& process : processes_) close(process.stop);
    for (const auto& process : processes_) {
      std::array<double, 2> own{};
      if (read(process.told, own.data(), sizeof(own)) == sizeof(own)) {
        all.longest = std::max(all.longest, own[0] * 1000);
        all.commits += own[1];
      }
      close(process.told);
      waitpid(process.pid, nullptr, 0);
    }
    processes_.clear();
    return all;
  }

 private:
  struct Process {
    pid_t pid;
    int stop;
    int told;
  };

  /// Each waits a while between two changes, as people do.
  static void Write(const std::string& path, int stop, int told) {
    std::array<double, 2> own{};
    {
      PlainFile file(path);
      // The library's own naps grow to a tenth of a second.
      sqlite3_busy_handler(
          file.Db(),
          [](void*, int) {
            usleep(500);
            return 1;
          },
          nullptr);
      pollfd end{stop, POLLIN, 0};
      while (poll(&end, 1, 25) == 0) {
        const double took = Seconds([&] { file.Run("UPDATE Parameters SET Contact = 'x' WHERE ID = 1"); });
        own[0] = std::max(own[0], took);
        ++own[1];
      }
    }
    [[maybe_unused]] const auto wrote = write(told, own.data(), sizeof(own));
  }

  std::vector<Process> processes_;
};

/// Seconds that this thread has had the processor.
double ProcessorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

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
  Tell("size of the file", static_cast<double>(std::filesystem::file_size(path)) / 1e6, "MB");
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
    const std::string name = *selection ? "of two weeks: " : "all: ";
    constexpr int kWriters = 8;
    const auto apart = std::chrono::milliseconds(50);
    std::unique_ptr<print::ReportRows> rows;
    double took = 0;
    double processor = 0;
    Writers::Waits alone;
    Writers::Waits beside;
    {
      Writers writers(path, kWriters);
      std::this_thread::sleep_for(std::chrono::seconds(2));
      alone = writers.End();
    }
    {
      Writers writers(path, kWriters);
      std::this_thread::sleep_for(apart);
      const double start = ProcessorSeconds();
      took = Seconds([&] { rows = print::ReadReportRows(*report, {path, selection, {}}, {}, nullptr); });
      processor = ProcessorSeconds() - start;
      beside = writers.End();
    }
    Tell(name + "rows", static_cast<double>(rows->rows.Count()), "");
    Tell(name + "reading them", took * 1000, "ms");
    Tell(name + "reading them, processor", processor * 1000, "ms");
    Tell(name + "longest wait of eight writers", beside.longest, "ms");
    Tell(name + "their commits meanwhile", beside.commits, "");
    Tell(name + "longest wait of them alone", alone.longest, "ms");
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
