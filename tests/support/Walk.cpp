#include "support/Walk.h"

#include <sys/mman.h>

#include <array>
#include <filesystem>
#include <map>
#include <new>
#include <random>
#include <stdexcept>
#include <thread>

#include "platform/store/Connection.h"
#include "support/Apart.h"
#include "support/WalkLog.h"
#include "support/WholeFleet.h"

namespace walk {
namespace {

namespace fs = std::filesystem;

/// A page that all processes share.
class SharedPage {
 public:
  SharedPage() {
    void* page = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) throw std::runtime_error("no shared memory");
    shared_ = new (page) Shared;
  }
  ~SharedPage() { munmap(shared_, sizeof(Shared)); }
  SharedPage(const SharedPage&) = delete;
  SharedPage& operator=(const SharedPage&) = delete;
  Shared& operator*() const { return *shared_; }

 private:
  Shared* shared_;
};

}  // namespace

void Make(const std::string& directory) {
  test::MakeFleet(directory, 6, 2);
  // Other names for the directory and the file.
  fs::create_directory_symlink(directory, directory + "/same");
  fs::create_directory(directory + "/beside");
  fs::create_symlink("../DW.MDB", directory + "/beside/DW.MDB");
  const auto file = store::Connection::Open({directory + "/DW.MDB"});
  using store::ColumnType;
  store::TableInfo rows;
  rows.name = "Walk";
  rows.columns = {{"ID", ColumnType::Counter},   {"Name", ColumnType::Text, 10}, {"Group", ColumnType::Long},
                  {"Version", ColumnType::Long}, {"Token", ColumnType::Long},    {"Amount", ColumnType::Long},
                  {"Notes", ColumnType::Memo}};
  rows.indexes = {{"By Name", {"Name"}, false, true, false}, {"By Group", {"Group"}, false, false, false}};
  file->CreateTable(rows);
  for (int group = 1; group <= kGroups; ++group)
    for (int row = FirstRow(group); row < FirstRow(group + 1); ++row)
      file->Execute("INSERT INTO [Walk] ([Name], [Group], [Version], [Token], [Amount]) VALUES ('ROW" +
                    std::to_string(row) + "', " + std::to_string(group) + ", 0, 0, 0)");
}

Outcome Go(const std::string& directory, const Options& options) {
  const SharedPage shared;
  std::mt19937 random(options.seed);
  std::vector<test::Apart> processes;
  processes.reserve(static_cast<std::size_t>(options.workers + options.kills));
  const auto logOf = [&](std::size_t worker) {
    return directory + "/worker" + std::to_string(worker) + ".log";
  };
  const auto begin = [&] {
    const std::size_t worker = processes.size();
    const unsigned seed = static_cast<unsigned>(random());
    processes.emplace_back([&, worker, seed] {
      Log log(logOf(worker));
      return WorkOn(directory, static_cast<int>(worker) + 1, seed, options, *shared, log);
    });
    return worker;
  };
  std::vector<std::size_t> working;
  for (int i = 0; i < options.workers; ++i) working.push_back(begin());
  test::Faults faults;
  for (int kill = 0; kill <= options.kills; ++kill) {
    std::this_thread::sleep_for(options.time / (options.kills + 1));
    if (kill == options.kills) break;
    std::size_t& victim = working[random() % working.size()];
    if (!processes[victim].Kill())
      faults.Take(processes[victim].Result(), "worker " + std::to_string(victim + 1));
    victim = begin();
  }
  (*shared).stop = true;
  for (const std::size_t worker : working)
    faults.Take(processes[worker].Result(60), "worker " + std::to_string(worker + 1));

  Outcome outcome;
  std::vector<Transaction> all;
  std::array<std::int64_t, static_cast<std::size_t>(Work::kCount)> done{};
  for (std::size_t worker = 0; worker < processes.size(); ++worker)
    for (Transaction& transaction : Log::Read(logOf(worker))) {
      if (transaction.end == End::Acknowledged) {
        ++done[static_cast<std::size_t>(transaction.work)];
        outcome.changes += static_cast<std::int64_t>(transaction.changes.size());
        if (transaction.group != 0) outcome.changes += RowsIn(transaction.group);
      } else {
        ++(transaction.end == End::Refused ? outcome.refused : outcome.inDoubt);
      }
      all.push_back(std::move(transaction));
    }
  for (std::size_t i = 0; i < done.size(); ++i)
    outcome.kinds += (i == 0 ? "" : ", ") + std::to_string(done[i]) + " " + kWorkNames[i];
  const std::string path = directory + "/DW.MDB";
  faults.Take(test::RunApart([&] { return Check(path, all); }), "in the end");
  faults.Take(test::CheckMainFileApart(path), "in the end");
  outcome.faults = faults.Text();
  return outcome;
}

}  // namespace walk
