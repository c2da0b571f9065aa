#include "platform/store/TableScan.h"

#include <chrono>
#include <limits>

#include "platform/store/ConnectionImpl.h"

namespace store {
namespace {

/// How long others may have to wait before they can commit.
constexpr std::chrono::milliseconds kLongestLook{4};
/// The clock is asked once for this many records: that takes as long as reading one of them.
constexpr int kRecordsBetweenClocks = 64;

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
  using Clock = std::chrono::steady_clock;
  const auto schema = connection->Tables();
  const TableInfo* info = schema->Find(table);
  if (!info) throw StoreError(kTableNotFound, "There is no table '" + std::string(table) + "'.");
  Connection::Impl& impl = connection->Internals();
  const std::string sql = ScanStatement(impl.Texts(), *info, columns);
  std::int64_t reached = std::numeric_limits<std::int64_t>::min();
  for (bool more = true; more;) {
    Question use(impl, *info, sql);
    use.Bind(1, reached);
    Clock::time_point end;
    for (int seen = 0; (more = use.Step()); ++seen) {
      // The first step may have waited for another's commit, which is no part of the look.
      if (seen == 0) end = Clock::now() + kLongestLook;
      const ScannedRecord record(use.Statement());
      reached = record.Key();
      look(record);
      if (seen % kRecordsBetweenClocks == kRecordsBetweenClocks - 1 && Clock::now() > end) break;
    }
  }
}

}  // namespace store
