#include "platform/store/Engine.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "platform/store/FileFormat.h"
#include "platform/store/Handle.h"

namespace store {
namespace {

class SqliteEngine : public Engine {
 public:
  bool Knows(std::string_view beginning) const override { return beginning.starts_with("SQLite format 3"); }
  bool HasOpen(const std::string& path) const override { return Handle::AnyOf(path); }
  std::shared_ptr<Connection> Open(const OpenRequest& request) override { return Connection::Open(request); }
  void Create(const std::string& path) override { Connection::Create(path); }
  std::shared_ptr<Compaction> Compact(const std::string& path, const std::string& target) override {
    return CompactFile(path, target);
  }
  bool InUse(const std::string& path) override { return store::InUse(path); }
  void Drop(const std::string& path) override;
  std::uint64_t Bytes(const std::string& path) const override {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 ? static_cast<std::uint64_t>(found.st_size) : 0;
  }
  FileReport Describe(const std::string& path) override;
};

void SqliteEngine::Drop(const std::string& path) {
  const std::string real = RealPath(path);
  const auto alone = SideFile::Enter(real, Share::Exclusive, IdentityComputer(), IdentityUser());
  Handle::DropParked(real);
  if (unlink(real.c_str()) != 0) {
    const int error = errno;
    if (error == ENOENT) throw StoreError(kFileNotFound, "Could not find file '" + path + "'.");
    throw StoreError(kCannotStart, "Could not delete '" + real + "': " + std::strerror(error) + ".");
  }
  // A journal that stays behind would be applied to the next file of this name.
  unlink((real + "-journal").c_str());
}

FileReport SqliteEngine::Describe(const std::string& path) {
  FileReport report;
  std::shared_ptr<Connection> connection;
  try {
    connection = Open({.path = path, .readOnly = true});
  } catch (const StoreError& error) {
    if (error.Number() != kOpenedExclusively) throw;
    report.exclusively = true;
    return report;
  }
  const SideFile& side = connection->Side();
  for (const RosterEntry& entry : side.Roster())
    if (entry.slot != side.Slot()) report.users.push_back(entry);
  const auto schema = connection->Tables();
  std::vector<int> numbers;
  for (const TableInfo& table : schema->tables) numbers.push_back(table.number);
  for (const HeldRecord& record : side.HeldByOthers(numbers)) {
    const auto table = std::ranges::find(schema->tables, record.table, &TableInfo::number);
    report.held.push_back(
        {table == schema->tables.end() ? std::string() : table->name, record.row, record.holder});
  }
  return report;
}

}  // namespace

Engine& Engine::ForNewFiles() {
  static SqliteEngine engine;
  return engine;
}

Engine& Engine::Of(const std::string& path) {
  static const std::array<Engine*, 1> engines{&ForNewFiles()};
  for (Engine* engine : engines)
    if (engine->HasOpen(path)) return *engine;
  std::array<char, kHeaderBytes> bytes{};
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  const std::string_view beginning(bytes.data(), static_cast<std::size_t>(file.gcount()));
  for (Engine* engine : engines)
    if (engine->Knows(beginning)) return *engine;
  return ForNewFiles();
}

}  // namespace store
