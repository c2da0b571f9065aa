// Posting against its floor: the same five tables rebuilt by set-based SQL on the same file.
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <numeric>

#include "bench/Measure.h"
#include "costing/Posting.h"
#include "data/BrackenfelGlobals.h"
#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr const char* kAssetSums =
    "SUM(\"Internal Fuel Units\"), SUM(\"Internal Fuel Cost\"), SUM(\"Oil\"), SUM(\"Oil Cost\"), "
    "SUM(\"Time\"), "
    "SUM(\"Internal Time Cost\"), SUM(\"Outside Fuel Units\"), SUM(\"Outside Fuel Cost\"), SUM(\"Outside "
    "Cost\"), "
    "SUM(\"Parts Cost\"), SUM(\"Total Internal Cost\"), SUM(\"Total Outside Cost\")";
constexpr const char* kAssetColumns =
    "\"Internal Fuel Units\", \"Internal Fuel Cost\", \"Oil Units\", \"Oil Cost\", \"Internal Time\", "
    "\"Internal Time Cost\", "
    "\"Outside Fuel Units\", \"Outside Fuel Cost\", \"Outside Parts Cost\", \"Internal Parts Cost\", \"Total "
    "Internal Cost\", "
    "\"Total Outside Cost\"";

// Stamps every transaction of an asset on file and sums all of them into the five tables, in one commit.
void RebuildBySets(PlainFile& file) {
  const std::string posted =
      " FROM \"Maintenance Transactions\" AS t JOIN \"Vehicles\" AS v ON v.\"Asset ID\" = t.\"Asset ID\" ";
  const std::string asset = kAssetSums;
  file.Run("BEGIN IMMEDIATE");
  file.Run(
      "UPDATE \"Maintenance Transactions\" SET \"When Posted\" = '2026-06-30 12:00:00', "
      "\"Total Internal Cost\" = \"Internal Fuel Cost\" + \"Oil Cost\" + \"Internal Time Cost\" + \"Parts "
      "Cost\", "
      "\"Total Outside Cost\" = \"Outside Oil Cost\" + \"Outside Fuel Cost\" + \"Outside Cost\" "
      "WHERE \"When Posted\" IS NULL AND EXISTS (SELECT 1 FROM \"Vehicles\" AS v WHERE v.\"Asset ID\" = "
      "\"Maintenance Transactions\".\"Asset ID\")");
  file.Run("INSERT INTO \"Assets Period Costs\" (\"Asset ID\", \"Fiscal Year\", \"Period\", " +
           std::string(kAssetColumns) + ") SELECT t.\"Asset ID\", t.\"Year\", t.\"Period\", " + asset +
           posted + "GROUP BY 1, 2, 3");
  file.Run("INSERT INTO \"Assets Annual Costs\" (\"Asset ID\", \"Fiscal Year\", " +
           std::string(kAssetColumns) + ") SELECT t.\"Asset ID\", t.\"Year\", " + asset + posted +
           "GROUP BY 1, 2");
  file.Run("INSERT INTO \"Assets Lifetime Costs\" (\"Asset ID\", " + std::string(kAssetColumns) +
           ") SELECT t.\"Asset ID\", " + asset + posted + "GROUP BY 1");
  const std::string fuel =
      "SUM(\"Internal Fuel Units\"), SUM(\"Internal Fuel Cost\"), SUM(\"Outside Fuel Units\"), SUM(\"Outside "
      "Fuel Cost\")";
  file.Run(
      "INSERT INTO \"Fuel Period Costs\" (\"Fuel Type ID\", \"Fiscal Year\", \"Period\", \"Internal Units\", "
      "\"Internal Cost\", "
      "\"Outside Units\", \"Outside Cost\") SELECT v.\"Fuel Type\", t.\"Year\", t.\"Period\", " +
      fuel + posted + "GROUP BY 1, 2, 3");
  file.Run(
      "INSERT INTO \"Fuel Annual Costs\" (\"Fuel Type ID\", \"Fiscal Year\", \"Internal Units\", \"Internal "
      "Cost\", "
      "\"Outside Units\", \"Outside Cost\") SELECT v.\"Fuel Type\", t.\"Year\", " +
      fuel + posted + "GROUP BY 1, 2");
  file.Run("COMMIT");
}

// Another workstation that stores one reading after the other, and how long each has to wait.
class SecondWriter {
 public:
  explicit SecondWriter(const std::string& path) {
    shared_ = static_cast<Shared*>(
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    child_ = fork();
    if (child_ != 0) return;
    auto file = store::Connection::Open({path});
    auto readings = store::Cursor::OpenTable(file, "Odometer Entries", store::Locking::Pessimistic);
    while (!shared_->stop) {
      const double waited = Seconds([&] {
        readings->AddNew();
        readings->Set(readings->FieldIndex("Asset ID"), "NONE");
        readings->Set(readings->FieldIndex("Mileage"), 1.0f);
        readings->Update();
      });
      if (shared_->writes == shared_->waits.size()) break;
      shared_->waits[shared_->writes++] = waited;
      const timespec nap{0, 5000000};
      nanosleep(&nap, nullptr);
    }
    readings.reset();
    file.reset();
    _exit(0);
  }
  void Tell() {
    shared_->stop = true;
    waitpid(child_, nullptr, 0);
    const auto end = shared_->waits.begin() + static_cast<std::ptrdiff_t>(shared_->writes);
    std::sort(shared_->waits.begin(), end);
    bench::Tell("  the second process wrote meanwhile", static_cast<double>(shared_->writes), "rows");
    if (shared_->writes == 0) return;
    const double sum = std::accumulate(shared_->waits.begin(), end, 0.0);
    bench::Tell("  its longest wait", *(end - 1) * 1000, "ms");
    bench::Tell("  its mean wait", sum / static_cast<double>(shared_->writes) * 1000, "ms");
    bench::Tell("  its median wait", shared_->waits[shared_->writes / 2] * 1000, "ms");
  }

 private:
  /// In memory that both processes see.
  struct Shared {
    std::atomic<bool> stop;
    std::size_t writes;
    std::array<double, 100000> waits;  ///< in seconds
  };
  Shared* shared_;
  pid_t child_;
};

}  // namespace

int Posting(int transactions) {
  Directory directory;
  const int years = 4;
  MakeFleet(directory.Path(), transactions / (30 * years) + 1, years);
  const std::string path = directory.Path("DW.MDB");
  const std::string fresh = directory.Path("fresh");
  const std::string floor = directory.Path("floor");
  fs::copy_file(path, fresh);
  double rows = 0;

  // In turns, so that both meet the same load of the machine.
  constexpr int kRounds = 5;
  double floorRate = 0;
  double rate = 0;
  for (int round = 0; round < kRounds; ++round) {
    fs::copy_file(fresh, floor, fs::copy_options::overwrite_existing);
    {
      PlainFile file(floor);
      rows = static_cast<double>(file.Number("SELECT COUNT(*) FROM \"Maintenance Transactions\""));
      floorRate = std::max(floorRate, rows / Seconds([&] { RebuildBySets(file); }));
    }
    fs::copy_file(fresh, path, fs::copy_options::overwrite_existing);
    dw::PostingCounts counts;
    const double seconds = Seconds([&] { counts = dw::RunPosting(false, {}); });
    if (static_cast<double>(counts.posted) < rows * 0.9) return 1;
    rate = std::max(rate, static_cast<double>(counts.posted) / seconds);
  }
  Tell("transactions", rows, "rows");
  Tell("floor: set-based rebuild", floorRate, "rows/s");
  Tell("posting, groups of commits", rate, "rows/s");
  Tell("  of the floor", rate / floorRate, "");

  fs::copy_file(fresh, path, fs::copy_options::overwrite_existing);
  {
    // The same rows with a physical commit each: the cost of a row without sharing.
    PlainFile file(path);
    file.Run("DELETE FROM \"Maintenance Transactions\" WHERE ID > 1000");
  }
  yieldsEachTime = true;
  const double alone = Seconds([] { dw::RunPosting(false, {}); });
  yieldsEachTime = false;
  Tell("posting, a full commit for each row", 1000 / alone, "rows/s");
  Tell("  sharing is faster by", rate / (1000 / alone), "times");

  fs::copy_file(fresh, path, fs::copy_options::overwrite_existing);
  SecondWriter writer(path);
  const double shared = Seconds([] { dw::RunPosting(false, {}); });
  Tell("posting beside a second process", rows / shared, "rows/s");
  writer.Tell();
  return 0;
}

}  // namespace bench
