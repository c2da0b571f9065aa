// The due report of a whole fleet in both of its ways, compared with one hand-written statement that finds
// the same due lines.
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

#include "bench/Measure.h"
#include "fleet/DueReport.h"
#include "platform/runtime/Clock.h"

namespace bench {
namespace {

// Each due line of each asset in service, by date or by mileage, as the analysis finds them.
constexpr const char* kDueByOneStatement = R"(
WITH latest AS (
  SELECT v."Asset ID" AS asset, v."Purchase Date" AS bought,
    (SELECT o."Mileage" FROM "Odometer Entries" AS o WHERE o."Asset ID" = v."Asset ID" ORDER BY o."Date" DESC LIMIT 1) AS read_miles,
    (SELECT o."Date" FROM "Odometer Entries" AS o WHERE o."Asset ID" = v."Asset ID" ORDER BY o."Date" DESC LIMIT 1) AS read_date,
    (SELECT t.ID FROM "Maintenance Transactions" AS t WHERE t."Asset ID" = v."Asset ID" AND t."Mileage" > 0
      ORDER BY t."Mileage" DESC LIMIT 1) AS highest
  FROM "Vehicles" AS v WHERE v."No_Longer_In_Service" = 0),
standing AS (
  SELECT l.asset, l.bought,
    CASE WHEN t.ID IS NOT NULL AND date(t."Transaction Date") > date(COALESCE(l.read_date, l.bought, '2026-06-30'))
      THEN t."Mileage" ELSE COALESCE(l.read_miles, 0) END AS miles
  FROM latest AS l LEFT JOIN "Maintenance Transactions" AS t ON t.ID = l.highest),
lines AS (
  SELECT s.asset, s.bought, s.miles, m."Monthly Frequently" AS months, m."Usage Frequency" AS uses, y."Description" AS type,
    (SELECT t.ID FROM "Maintenance_Performed" AS p JOIN "Maintenance Transactions" AS t ON p."Maintenance_Entry_ID" = t.ID
      WHERE p."Maintenance_Type_ID" = m."Type ID" AND t."Asset ID" = s.asset ORDER BY t."Transaction Date" DESC LIMIT 1) AS last
  FROM standing AS s JOIN "Maintenance Schedule" AS m ON m."Asset ID" = s.asset
  LEFT JOIN "Maintenance Types" AS y ON y.ID = m."Type ID")
SELECT l.asset, l.type FROM lines AS l LEFT JOIN "Maintenance Transactions" AS t ON t.ID = l.last
WHERE (l.months > 0 AND date(COALESCE(t."Transaction Date", l.bought, '2026-06-30'), '+' || l.months || ' months') <= '2026-07-14')
   OR (l.uses > 0 AND 500 + l.miles >= CASE WHEN t.ID IS NULL THEN 0 ELSE COALESCE(t."Mileage", 0) END + l.uses))";

std::int64_t RunStatement(PlainFile& file, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(file.Db(), sql, -1, &statement, nullptr) != SQLITE_OK)
    throw std::runtime_error(sqlite3_errmsg(file.Db()));
  std::int64_t rows = 0;
  while (sqlite3_step(statement) == SQLITE_ROW) ++rows;
  sqlite3_finalize(statement);
  return rows;
}

/// Counts the statements of every connection that is opened from now on.
class StatementCount {
 public:
  static void Install() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(&Watch)); }
  static void Start() {
    run_ = 0;
    texts_.clear();
    counting_ = true;
  }
  static void Stop() { counting_ = false; }
  static std::int64_t Run() { return run_; }
  static std::size_t Different() { return texts_.size(); }

 private:
  static int Watch(sqlite3* db, char**, const void*) {
    return sqlite3_trace_v2(db, SQLITE_TRACE_STMT, &Begun, nullptr);
  }
  static int Begun(unsigned, void*, void*, void* text) {
    if (!counting_) return 0;
    ++run_;
    texts_.emplace(static_cast<const char*>(text));
    return 0;
  }
  static inline bool counting_ = false;
  static inline std::int64_t run_ = 0;
  static inline std::set<std::string> texts_;
};

/// Another user who stores a row every few milliseconds, and the longest time that a row took.
class Writer {
 public:
  explicit Writer(const std::string& path) : thread_([this, path] { Write(path); }) {}
  /// Ends and returns the longest time in seconds.
  double Longest() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    return longest_;
  }
  ~Writer() { Longest(); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

 private:
  void Write(const std::string& path) {
    PlainFile file(path);
    // As the store waits.
    sqlite3_busy_handler(
        file.Db(),
        [](void*, int) {
          std::this_thread::sleep_for(std::chrono::microseconds(500));
          return 1;
        },
        nullptr);
    while (!stop_) {
      longest_ = std::max(longest_, Seconds([&] {
                            file.Run(
                                "UPDATE \"Maintenance Types\" SET \"Description\" = \"Description\" "
                                "WHERE ID = 1");
                          }));
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }
  std::atomic<bool> stop_ = false;
  double longest_ = 0;
  std::thread thread_;
};

/// The allocated memory, including pages of the file. Resident memory would not show freed blocks that are
/// used again.
double MegabytesInUse() {
  const auto all = mallinfo2();
  return static_cast<double>(all.uordblks + all.hblkhd) / 1048576.0;
}

struct Report {
  double seconds = std::numeric_limits<double>::max();
  std::int64_t found = 0;
  double megabytes = 0;  ///< the most that the process had allocated beyond the amount before
  std::string log;
};

Report MakeReport(const std::string& directory, dw::DueWay way, int rounds) {
  Report report;
  const double before = MegabytesInUse();
  std::string path;
  for (int round = 0; round < rounds; ++round) {
    report.found = 0;
    const auto onItem = [&](const dw::DueItem&) {
      // Asking for the memory takes longer than finding an item.
      if (report.found++ % 1000 == 0)
        report.megabytes = std::max(report.megabytes, MegabytesInUse() - before);
    };
    report.seconds = std::min(report.seconds, Seconds([&] {
                                dw::MakeDueReport({directory, "7/14/2026", "500", onItem, way}, path);
                              }));
  }
  std::ifstream file(path, std::ios::binary);
  report.log = std::string(std::istreambuf_iterator<char>(file), {});
  return report;
}

void TellReport(const std::string& name, const Report& report, double floor) {
  Tell(name, report.seconds * 1000, "ms");
  Tell("  due lines it finds", static_cast<double>(report.found), "rows");
  Tell("  times the floor", report.seconds / floor, "");
  Tell("  memory in use beyond before", report.megabytes, "MB");
}

void TellStatements(const std::string& directory, dw::DueWay way) {
  StatementCount::Start();
  MakeReport(directory, way, 1);
  StatementCount::Stop();
  Tell("  statements run", static_cast<double>(StatementCount::Run()), "");
  Tell("  different statements", static_cast<double>(StatementCount::Different()), "");
}

}  // namespace

int Due(int assets) {
  StatementCount::Install();
  Directory directory;
  MakeFleet(directory.Path(), assets, 2);
  const std::string file = directory.Path("DW.MDB");
  const rt::FixedClock clock(rt::DateTime(2026, 6, 30, 12, 0, 0));
  std::int64_t facts = 0;
  double floor = std::numeric_limits<double>::max();
  {
    PlainFile plain(file);
    for (const char* table :
         {"Maintenance Schedule", "Maintenance Transactions", "Maintenance_Performed", "Odometer Entries"})
      Tell(table, static_cast<double>(plain.Number("SELECT COUNT(*) FROM \"" + std::string(table) + "\"")),
           "rows");
    for (int round = 0; round < 3; ++round)
      floor = std::min(floor, Seconds([&] { facts = RunStatement(plain, kDueByOneStatement); }));
  }
  Tell("floor: one statement", floor * 1000, "ms");
  Tell("  due lines it finds", static_cast<double>(facts), "rows");

  const Report pass = MakeReport(directory.Path(), dw::DueWay::OnePass, 3);
  TellReport("due report of the whole fleet, with its file", pass, floor);
  TellStatements(directory.Path(), dw::DueWay::OnePass);
  const Report queries = MakeReport(directory.Path(), dw::DueWay::Queries, 3);
  TellReport("the same by a query for each fact", queries, floor);
  TellStatements(directory.Path(), dw::DueWay::Queries);

  Writer alone(file);
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  Tell("longest write of another user", alone.Longest() * 1000, "ms");
  Writer beside(file);
  MakeReport(directory.Path(), dw::DueWay::OnePass, 3);
  Tell("  beside the due report", beside.Longest() * 1000, "ms");

  const bool same = pass.log == queries.log && pass.found == facts && queries.found == facts;
  if (!same) std::printf("the reports or their counts differ\n");
  return same ? 0 : 1;
}

}  // namespace bench
