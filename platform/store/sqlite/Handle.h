// The SQLite database underneath a session, with its prepared statements. Nothing outside this folder sees
// it.
#pragma once

#include <sqlite3.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/store/Holds.h"
#include "platform/store/Session.h"
#include "platform/store/StoreError.h"
#include "platform/store/sqlite/PreparedStatement.h"

namespace store {

/// One SQLite database. Handles outlive connections: they wait, without any lock, for the next open of the
/// same file.
class Handle {
 public:
  /// Throws StoreError as Connection::Open.
  static std::unique_ptr<Handle> Acquire(const std::string& path, bool readOnly);
  static void Park(std::unique_ptr<Handle> handle);
  /// Opens a copy of the file's bytes that nobody writes any more, for reading. The path may go once it is
  /// open. Errors name the file that it is a copy of.
  static std::unique_ptr<Handle> OpenCopy(const std::string& copy, const Handle& of);
  /// Closes the handles that wait, so that a file can be replaced.
  static void DropParked(const std::string& path);
  ~Handle();

  /// Whether this process has the file open, by whatever path.
  static bool AnyOf(const std::string& path);
  /// Whether another file has taken this one's name, or none bears it any more.
  bool IsReplaced() const;
  sqlite3* Db() const { return db_; }
  const std::string& Path() const { return path_; }
  bool ReadOnly() const { return readOnly_; }

  /// A statement for one use; the same one is lent again the next time.
  PreparedStatement& Prepare(std::string_view sql);
  void Run(std::string_view sql);
  /// The first column of the first row of a statement without parameters; 0 for none.
  std::int64_t Number(std::string_view sql);
  KnownTables& Known() { return known_; }
  [[noreturn]] void Fail(int code, std::string_view sql = {});
  /// How long to wait for another writer before the error 3188. A commit waits for readers for a minute at
  /// least.
  void SetPatience(std::chrono::milliseconds patience) { patience_ = patience; }
  /// Where to show that this handle waits for another writer; null for nowhere.
  void SetWaitingSign(Holds* sign) { sign_ = sign; }

 private:
  friend class PreparedStatement;
  Handle();
  static std::unique_ptr<Handle> FindOrOpen(const std::string& path, bool readOnly);
  /// What holds for every database before its format is known.
  void SetUp();
  static int Nap(void* self, int tries);
  std::chrono::milliseconds patience_{15000};
  std::chrono::steady_clock::time_point waitingSince_;
  void StopWaiting();
  Holds* sign_ = nullptr;
  bool waiting_ = false;
  std::string path_;
  bool readOnly_ = false;
  bool copy_ = false;  ///< never parked: the next open wants the file itself
  dev_t device_ = 0;
  ino_t inode_ = 0;
  sqlite3* db_ = nullptr;
  /// Finds a text without making a string of it first.
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  std::unordered_map<std::string, std::unique_ptr<PreparedStatement>, TextHash, std::equal_to<>> statements_;
  KnownTables known_;
  std::optional<StoreError> refused_;  ///< why dw_fit has refused a value of the statement that fails
};

/// Whether an error of the database means that the disk, or the user's share of it, is full.
bool DiskIsFull(sqlite3* db, int code);
/// Reads the tables, columns and indexes of a file.
std::vector<TableInfo> ReadTables(Handle& handle);

}  // namespace store
