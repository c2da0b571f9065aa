#include "platform/store/TableScan.h"

#include <chrono>
#include <limits>

#include "platform/store/ConnectionImpl.h"

namespace store {
namespace {

using Clock = std::chrono::steady_clock;

/// The clock is asked once for this many records: that takes as long as reading one of them.
constexpr int kRecordsBetweenClocks = 64;

/// Says when a look at the file has to end because others want to commit.
class Look {
 public:
  explicit Look(const Holds& others) : others_(others) {}
  void Begin() {
    end_ = Clock::now() + kLongest;
    nextQuestion_ = Clock::now() + kBetweenQuestions;
  }
  bool Over() {
    const auto now = Clock::now();
    if (now < nextQuestion_) return false;
    nextQuestion_ = now + kBetweenQuestions;
    return now > end_ || others_.OthersWait();
  }

 private:
  static constexpr std::chrono::microseconds kBetweenQuestions{500};
  /// Other tools cannot show that they wait.
  static constexpr std::chrono::milliseconds kLongest{25};

  const Holds& others_;
  Clock::time_point end_;
  Clock::time_point nextQuestion_;
};

std::string ScanStatement(const Statements& texts, const TableInfo& table,
                          const std::vector<std::string>& columns) {
  std::vector<std::string> names;
  for (const std::string& name : columns) {
    const int column = table.Find(name);
    if (column < 0)
      throw StoreError(kItemNotFound, "There is no field '" + name + "' in the table '" + table.name + "'.");
    names.push_back(table.columns[static_cast<std::size_t>(column)].name);
  }
  return texts.Scan(table, names);
}

}  // namespace

std::int64_t ScannedRecord::Key() const { return statement_.Int64(0); }
Cell ScannedRecord::CellOf(int column) const { return statement_.CellOf(column + 1); }
std::int64_t ScannedRecord::Whole(int column) const { return statement_.Int64(column + 1); }
double ScannedRecord::Real(int column) const { return statement_.Real(column + 1); }
std::string_view ScannedRecord::Text(int column) const { return statement_.View(column + 1); }

void ScanTable(const std::shared_ptr<Connection>& connection, std::string_view table,
               const std::vector<std::string>& columns,
               const std::function<void(const ScannedRecord&)>& look) {
  Connection::Impl& impl = connection->Internals();
  const auto schema = impl.Tables();
  const TableInfo* info = schema->Find(table);
  if (!info) throw StoreError(kTableNotFound, "There is no table '" + std::string(table) + "'.");
  const std::string sql = ScanStatement(impl.Texts(), *info, columns);
  std::int64_t reached = std::numeric_limits<std::int64_t>::min();
  for (bool more = true; more;) {
    Question use(impl, *info, sql);
    use.Bind(1, reached);
    Look current(impl.Holds());
    for (int seen = 0; (more = use.Step()); ++seen) {
      // The first step may have waited for another's commit, which is no part of the look.
      if (seen == 0) current.Begin();
      const ScannedRecord record(use.Statement());
      reached = record.Key();
      look(record);
      if (seen % kRecordsBetweenClocks == kRecordsBetweenClocks - 1 && current.Over()) break;
    }
  }
}

}  // namespace store
