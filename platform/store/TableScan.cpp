#include "platform/store/TableScan.h"

#include <chrono>
#include <limits>

#include "platform/store/ConnectionImpl.h"
#include "platform/store/Handle.h"

namespace store {
namespace {

/// How long others may have to wait before they can commit.
constexpr std::chrono::milliseconds kLongestLook{4};
/// The clock is asked once for this many records: that takes as long as reading one of them.
constexpr int kRecordsBetweenClocks = 64;

std::string ScanStatement(const TableInfo& table, const std::vector<std::string>& columns) {
  std::string sql = "SELECT _rowid_";
  for (const std::string& name : columns) {
    const int column = table.Find(name);
    if (column < 0)
      throw StoreError(kItemNotFound, "There is no field '" + name + "' in the table '" + table.name + "'.");
    sql += ", " + QuoteName(table.columns[static_cast<std::size_t>(column)].name);
  }
  return sql + " FROM " + QuoteName(table.name) + " WHERE _rowid_ > ?1 ORDER BY _rowid_";
}

}  // namespace

std::int64_t ScannedRecord::Key() const { return sqlite3_column_int64(statement_, 0); }

ScannedRecord::Cell ScannedRecord::CellOf(int column) const {
  switch (sqlite3_column_type(statement_, column + 1)) {
    case SQLITE_NULL:
      return Cell::Null;
    case SQLITE_INTEGER:
      return Cell::Whole;
    case SQLITE_FLOAT:
      return Cell::Real;
    case SQLITE_TEXT:
      return Cell::Text;
    default:
      return Cell::Binary;
  }
}

std::int64_t ScannedRecord::Whole(int column) const { return sqlite3_column_int64(statement_, column + 1); }

double ScannedRecord::Real(int column) const { return sqlite3_column_double(statement_, column + 1); }

std::string_view ScannedRecord::Text(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column + 1));
  if (!bytes) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column + 1))};
}

void ScanTable(const std::shared_ptr<Connection>& connection, std::string_view table,
               const std::vector<std::string>& columns,
               const std::function<void(const ScannedRecord&)>& look) {
  using Clock = std::chrono::steady_clock;
  const auto schema = connection->Tables();
  const TableInfo* info = schema->Find(table);
  if (!info) throw StoreError(kTableNotFound, "There is no table '" + std::string(table) + "'.");
  const std::string sql = ScanStatement(*info, columns);

  Connection::Impl& impl = connection->Internals();
  std::int64_t reached = std::numeric_limits<std::int64_t>::min();
  for (bool more = true; more;) {
    Question use(impl, *info, sql);
    use.Bind(1, reached);
    Clock::time_point end;
    for (int seen = 0; (more = use.Step()); ++seen) {
      // The first step may have waited for another's commit, which is no part of the look.
      if (seen == 0) end = Clock::now() + kLongestLook;
      const ScannedRecord record(use.Raw());
      reached = record.Key();
      look(record);
      if (seen % kRecordsBetweenClocks == kRecordsBetweenClocks - 1 && Clock::now() > end) break;
    }
  }
}

}  // namespace store
