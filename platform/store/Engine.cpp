#include "platform/store/Engine.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "platform/store/StoreError.h"

namespace store {
namespace {

/// Enough of a file's first bytes for every engine to know its own.
constexpr std::size_t kBeginning = 100;

}  // namespace

Engine& Engine::Of(const std::string& path) {
  for (Engine* engine : All())
    if (engine->HasOpen(path)) return *engine;
  std::array<char, kBeginning> bytes{};
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  const std::string_view beginning(bytes.data(), static_cast<std::size_t>(file.gcount()));
  for (Engine* engine : All())
    if (engine->Knows(beginning)) return *engine;
  return ForNewFiles();
}

FileReport Engine::Describe(const std::string& path) {
  FileReport report;
  std::shared_ptr<Connection> connection;
  try {
    connection = Open({.path = path, .readOnly = true});
  } catch (const StoreError& error) {
    if (error.Number() != kOpenedExclusively) throw;
    report.exclusively = true;
    return report;
  }
  const Holds& holds = connection->Holds();
  for (const RosterEntry& entry : holds.Roster())
    if (entry.slot != holds.Slot()) report.users.push_back(entry);
  const auto schema = connection->Tables();
  std::vector<int> numbers;
  for (const TableInfo& table : schema->tables) numbers.push_back(table.number);
  for (const HeldRecord& record : holds.HeldByOthers(numbers)) {
    const auto table = std::ranges::find(schema->tables, record.table, &TableInfo::number);
    report.held.push_back(
        {table == schema->tables.end() ? std::string() : table->name, record.row, record.holder});
  }
  return report;
}

}  // namespace store
