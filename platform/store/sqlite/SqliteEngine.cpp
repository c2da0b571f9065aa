// SQLite as an engine: the only one so far.
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "platform/store/Engine.h"
#include "platform/store/sqlite/DataFiles.h"
#include "platform/store/sqlite/FileFormat.h"
#include "platform/store/sqlite/SideFile.h"
#include "platform/store/sqlite/SqliteSession.h"

namespace store {
namespace {

class SqliteEngine : public Engine {
 public:
  bool Knows(std::string_view beginning) const override { return beginning.starts_with("SQLite format 3"); }
  bool HasOpen(const std::string& path) const override { return Handle::AnyOf(path); }
  std::shared_ptr<Connection> Open(const OpenRequest& request) override;
  void Create(const std::string& path) override { CreateFile(path); }
  std::shared_ptr<Compaction> Compact(const std::string& path, const std::string& target) override {
    return CompactFile(path, target);
  }
  bool InUse(const std::string& path) override { return FileInUse(path); }
  void Drop(const std::string& path) override { DropFile(path); }
  std::uint64_t Bytes(const std::string& path) const override {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 ? static_cast<std::uint64_t>(found.st_size) : 0;
  }
};

std::shared_ptr<Connection> SqliteEngine::Open(const OpenRequest& request) {
  CheckFile(request.path);
  OpenRequest made = request;
  made.path = RealPath(request.path);
  // Who can only read the file must not be refused for it before anything is written.
  if (access(made.path.c_str(), W_OK) != 0) made.readOnly = true;
  auto side = SideFile::Enter(made.path, made.share, IdentityComputer(), IdentityUser(), made.readOnly);
  auto session = std::make_unique<SqliteSession>(Handle::Acquire(made.path, made.readOnly), *side);
  return std::make_shared<Connection>(std::move(session), std::move(side), std::move(made));
}

}  // namespace

Engine& Engine::ForNewFiles() {
  static SqliteEngine engine;
  return engine;
}

std::span<Engine* const> Engine::All() {
  static const std::array<Engine*, 1> engines{&ForNewFiles()};
  return engines;
}

}  // namespace store
