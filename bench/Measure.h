// What the measurements share.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

#include <sqlite3.h>

namespace bench {

/// Seconds that `work` takes.
template <class Work>
double Seconds(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// A directory of its own, removed at the end. DWBENCH_DIR chooses the disk; the system's temporary directory
/// otherwise.
class Directory {
 public:
  Directory();
  ~Directory();
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  std::string Path(const std::string& name = {}) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

/// A data file opened by plain SQL, set up as the store sets it up.
class PlainFile {
 public:
  explicit PlainFile(const std::string& path);
  ~PlainFile();
  PlainFile(const PlainFile&) = delete;
  PlainFile& operator=(const PlainFile&) = delete;
  void Run(const std::string& sql);
  std::int64_t Number(const std::string& sql);
  sqlite3* Db() { return db_; }

 private:
  sqlite3* db_ = nullptr;
};

/// Makes a sample fleet in the directory, sets it as the data directory, and installs a screen that says yes
/// to every question.
void MakeFleet(const std::string& directory, int assets, int years);
/// Whether the screen releases the data files each time events are run, which gives each posted row a
/// physical commit of its own.
extern bool yieldsEachTime;
/// Resident memory of this process in MB.
double ResidentMegabytes();
/// "name: value unit", aligned.
void Tell(const std::string& name, double value, const std::string& unit);

// The measurements; each returns 0 if it could measure.
int Posting(int transactions);
int Lists(int transactions);
int Due(int assets);
int Statements(int assets);
int Walk(int seconds);
int Reports(int transactions);
int ReportRows(int transactions);
int Micro(int argc, char** argv);

}  // namespace bench
