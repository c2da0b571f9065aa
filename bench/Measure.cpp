#include "bench/Measure.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "data/BrackenfelGlobals.h"
#include "platform/screen/Screen.h"
#include "platform/store/Connection.h"
#include "tools/dwadmin/Sample.h"

namespace bench {

bool yieldsEachTime = false;

namespace {

// Nobody watches: every box is confirmed, and nothing sleeps.
class Unwatched : public screen::Screen {
 public:
  screen::Answer ShowBox(const screen::Box& box) override {
    switch (box.buttons) {
      case screen::Buttons::YesNo:
        return screen::Answer::Yes;
      case screen::Buttons::RetryCancel:
        return screen::Answer::Cancel;
      default:
        return screen::Answer::Ok;
    }
  }
  std::string AskText(const std::string&, const std::string&, const std::string& text) override {
    return text;
  }
  void SetPointer(screen::Pointer) override {}
  void DoEvents() override {
    if (yieldsEachTime) store::YieldFiles();
  }
  void Sleep(int) override {}
  void ShowNotice(const std::string&, const std::string&) override {}
  void HideNotice() override {}
};

}  // namespace

Directory::Directory() {
  const char* chosen = std::getenv("DWBENCH_DIR");
  const auto parent = chosen ? std::filesystem::path(chosen) : std::filesystem::temp_directory_path();
  std::string pattern = (parent / "dwbench-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("no directory to measure in: " + pattern);
  path_ = pattern;
}

Directory::~Directory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

PlainFile::PlainFile(const std::string& path) {
  if (sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK)
    throw std::runtime_error("cannot open " + path);
  sqlite3_busy_timeout(db_, 60000);
  Run("PRAGMA temp_store = MEMORY; PRAGMA cache_size = -16000; PRAGMA journal_mode = TRUNCATE; PRAGMA "
      "synchronous = FULL");
}

PlainFile::~PlainFile() { sqlite3_close(db_); }

void PlainFile::Run(const std::string& sql) {
  char* text = nullptr;
  if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &text) == SQLITE_OK) return;
  const std::string what = text ? text : "";
  sqlite3_free(text);
  throw std::runtime_error(what + " in " + sql);
}

std::int64_t PlainFile::Number(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
    throw std::runtime_error(sqlite3_errmsg(db_));
  const std::int64_t value = sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : 0;
  sqlite3_finalize(statement);
  return value;
}

void MakeFleet(const std::string& directory, int assets, int years) {
  screen::Install(std::make_shared<Unwatched>());
  dw::MakeSample(directory, assets, years, 1, {}, rt::DateTime(2026, 6, 30));
  dw::SetDataPath(directory);
}

double ResidentMegabytes() {
  std::ifstream in("/proc/self/statm");
  long total = 0;
  long resident = 0;
  in >> total >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576.0;
}

void Tell(const std::string& name, double value, const std::string& unit) {
  std::printf("%-66s %14.3f %s\n", name.c_str(), value, unit.c_str());
  std::fflush(stdout);
}

}  // namespace bench
