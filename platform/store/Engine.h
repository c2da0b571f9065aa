// What keeps data files. Everything above the store asks an engine, and knows neither what is beside a file
// nor how it is written.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store/Compaction.h"
#include "platform/store/Connection.h"

namespace store {

/// A record that somebody holds.
struct RecordInUse {
  std::string table;     ///< empty for a table that is gone
  std::int64_t row = 0;  ///< 0 where the whole table is held
  Holder holder;
};

/// Who is in a data file.
struct FileReport {
  bool exclusively = false;        ///< one user has it exclusively; the user's name and holds are not known
  std::vector<RosterEntry> users;  ///< without the one that asks
  std::vector<RecordInUse> held;
};

class Engine {
 public:
  /// The engine of a file, by the bytes with which it begins. A file that no engine knows, or that does not
  /// exist, gets the engine that makes new files: it refuses in words.
  static Engine& Of(const std::string& path);
  /// The engine that makes new files.
  static Engine& ForNewFiles();
  /// All engines of this program.
  static std::span<Engine* const> All();

  virtual ~Engine() = default;
  /// Whether a file that begins with these bytes is one of this engine's.
  virtual bool Knows(std::string_view beginning) const = 0;
  /// Whether this process has the file open already: then its bytes must not be read, because closing a file
  /// drops all locks that the process has on it.
  virtual bool HasOpen(const std::string& path) const = 0;
  /// 3024 no such file, 3044 no such directory, 3051 a directory under the file's name or no permission, 3049
  /// not a data file of this system, 3041 one of a later version, 3343 a damaged one, 3045 in use by another
  /// program or by others where the file is wanted exclusively, 3356 where another has it exclusively.
  virtual std::shared_ptr<Connection> Open(const OpenRequest& request) = 0;
  /// Makes an empty data file. 3204 when something of that name exists already.
  virtual void Create(const std::string& path) = 0;
  /// Copies the file to `target`, without the space of deleted records. 3196 while anyone has it open, also
  /// with another tool, 3183 for a full disk, 3343 for a damaged file, 3204 when the target exists.
  [[nodiscard]] virtual std::shared_ptr<Compaction> Compact(const std::string& path,
                                                            const std::string& target) = 0;
  /// Whether anyone has the file open.
  virtual bool InUse(const std::string& path) = 0;
  /// Deletes a file with all that belongs to it. Throws StoreError 3045 while anyone has it open, 3024 where
  /// it is not there, 3051 where it cannot be deleted.
  virtual void Drop(const std::string& path) = 0;
  /// What the file takes on the disk; 0 where it is not there.
  virtual std::uint64_t Bytes(const std::string& path) const = 0;

  /// Opens the file for a moment to look. Throws StoreError as Open does, but for a file that is open
  /// exclusively.
  FileReport Describe(const std::string& path);
};

}  // namespace store
