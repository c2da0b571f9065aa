#include "platform/store/Handle.h"

#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <utility>

#include "platform/store/FileFormat.h"
#include "platform/store/Functions.h"
#include "platform/store/Rights.h"
#include "platform/store/RowList.h"
#include "platform/store/SideFile.h"
#include "platform/store/StoreError.h"

namespace store {
namespace {

constexpr std::chrono::milliseconds kPatience{15000};
/// At an opening, where whoever asks waits on.
constexpr std::chrono::milliseconds kOpenPatience{5000};
constexpr std::chrono::milliseconds kReadersPatience{60000};
constexpr std::size_t kMostStatements = 256;
constexpr std::size_t kMostPlans = 512;
constexpr std::size_t kMostParked = 8;
/// What a parked handle may keep in memory of the file, in bytes.
constexpr int kMostPages = 4'000'000;

/// All handles of this process. Never destroyed: the parked ones go at the very end.
std::set<const Handle*>& Open() {
  static auto& open = *new std::set<const Handle*>;
  return open;
}

std::vector<std::unique_ptr<Handle>>& Parked() {
  static std::vector<std::unique_ptr<Handle>> parked;
  return parked;
}

}  // namespace

// Writers wait for each other in short naps; the library's own handler grows its naps and starves the one who
// waits.
int Handle::Nap(void* self, int tries) {
  auto& handle = *static_cast<Handle*>(self);
  const auto now = std::chrono::steady_clock::now();
  if (tries == 0) handle.waitingSince_ = now;
  if (handle.sign_ && !handle.waiting_) {
    handle.waiting_ = true;
    handle.sign_->ShowWaiting(true);
  }
  // A write that is made waits for its readers, and theirs may be long. Whoever gave up would have to make it
  // again.
  const bool committing = sqlite3_txn_state(handle.db_, "main") == SQLITE_TXN_WRITE;
  if (now - handle.waitingSince_ >
      (committing ? std::max(handle.patience_, kReadersPatience) : handle.patience_))
    return 0;
  const timespec halfMillisecond{0, 500000};
  nanosleep(&halfMillisecond, nullptr);
  return 1;
}

void Handle::StopWaiting() {
  waiting_ = false;
  if (sign_) sign_->ShowWaiting(false);
}

std::unique_ptr<Handle> Handle::Acquire(const std::string& path, bool readOnly) {
  try {
    auto handle = FindOrOpen(path, readOnly);
    handle->patience_ = kPatience;
    return handle;
  } catch (const StoreError& error) {
    if (error.Number() != kSessionLocked) throw;
    throw StoreError(kFileInUse, "Could not use '" + path + "'; it is in use by another program.");
  }
}

std::unique_ptr<Handle> Handle::FindOrOpen(const std::string& path, bool readOnly) {
  struct stat now {};
  const bool there = stat(path.c_str(), &now) == 0;
  auto& parked = Parked();
  for (auto it = parked.begin(); it != parked.end();) {
    Handle& waiting = **it;
    const bool same = there && waiting.device_ == now.st_dev && waiting.inode_ == now.st_ino;
    if (waiting.path_ == path && !same) {
      it = parked.erase(it);  // the file was replaced since
    } else if (waiting.path_ == path && waiting.readOnly_ == readOnly) {
      auto found = std::move(*it);
      parked.erase(it);
      found->schemaChecked_ = {};
      found->patience_ = kOpenPatience;
      CheckFormat(*found);
      return found;
    } else {
      ++it;
    }
  }

  std::unique_ptr<Handle> handle(new Handle);
  handle->path_ = path;
  handle->patience_ = kOpenPatience;
  handle->readOnly_ = readOnly;
  handle->device_ = now.st_dev;
  handle->inode_ = now.st_ino;
  // Also who only reads must be able to take back what a killed writer left half done. A file that cannot be
  // written is opened for reading all the same.
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  const int code = sqlite3_open_v2(path.c_str(), &handle->db_, flags, FileLayer());
  if (code != SQLITE_OK) handle->Fail(code);
  sqlite3* db = handle->db_;
  CheckHeader(*handle);
  sqlite3_busy_handler(db, Nap, handle.get());
  AddFunctions(db, handle->refused_);
  handle->Run("PRAGMA temp_store = MEMORY");
  handle->Run("PRAGMA cache_size = -16000");
  CheckFormat(*handle);
  if (readOnly) {
    handle->Run("PRAGMA query_only = ON");
  } else {
    handle->Run("PRAGMA journal_mode = TRUNCATE");
    handle->Run("PRAGMA synchronous = FULL");
  }
  return handle;
}

Handle::Handle() { Open().insert(this); }

bool Handle::AnyOf(const std::string& path) {
  struct stat named {};
  if (stat(path.c_str(), &named) != 0) return false;
  return std::ranges::any_of(Open(), [&](const Handle* handle) {
    return handle->device_ == named.st_dev && handle->inode_ == named.st_ino;
  });
}

bool Handle::IsReplaced() const {
  struct stat now {};
  return stat(path_.c_str(), &now) != 0 || now.st_dev != device_ || now.st_ino != inode_;
}

void Handle::Park(std::unique_ptr<Handle> handle) {
  // A long list or a large picture fills the memory of a handle with pages that nobody may want again.
  int pages = 0;
  int most = 0;
  if (sqlite3_db_status(handle->db_, SQLITE_DBSTATUS_CACHE_USED, &pages, &most, 0) == SQLITE_OK &&
      pages > kMostPages)
    sqlite3_db_release_memory(handle->db_);
  auto& parked = Parked();
  if (parked.size() >= kMostParked) parked.erase(parked.begin());
  parked.push_back(std::move(handle));
}

void Handle::DropParked(const std::string& path) {
  std::erase_if(Parked(), [&](const auto& waiting) { return waiting->path_ == path; });
}

Handle::~Handle() {
  Open().erase(this);
  for (auto& [sql, slot] : statements_) sqlite3_finalize(slot.statement);
  sqlite3_close(db_);
}

void Handle::Run(std::string_view sql) {
  const int code = sqlite3_exec(db_, std::string(sql).c_str(), nullptr, nullptr, nullptr);
  if (waiting_) StopWaiting();
  if (code != SQLITE_OK) Fail(code, sql);
}

std::int64_t Handle::Number(std::string_view sql) {
  Use use(*this, sql);
  return use.Step() ? use.Int64(0) : 0;
}

const std::shared_ptr<const Schema>& Handle::Tables(bool checkNow) {
  const auto now = std::chrono::steady_clock::now();
  if (!checkNow && schemaVersion_ >= 0 && now - schemaChecked_ < std::chrono::milliseconds(200))
    return schema_;
  schemaChecked_ = now;
  const std::int64_t version = Number("PRAGMA schema_version");
  if (version != schemaVersion_) {
    schema_ = std::make_shared<const Schema>(ReadSchema(*this));
    schemaVersion_ = version;
    plans_.clear();
  }
  return schema_;
}

void Handle::ForgetTables() { schemaVersion_ = -1; }

std::shared_ptr<const QueryPlan> Handle::Plan(const Normalized& statement) {
  Tables();
  const auto found = plans_.find(statement.key);
  if (found != plans_.end()) return found->second;
  if (plans_.size() >= kMostPlans) plans_.clear();
  const auto schema = Tables(true);
  auto plan = MakePlan(Translate(statement, *schema), schema);
  plans_[statement.key] = plan;
  return plan;
}

bool DiskIsFull(sqlite3* db, int code) {
  if ((code & 0xff) == SQLITE_FULL) return true;
  if (!db || (code & 0xff) != SQLITE_IOERR) return false;
  const auto full = [](int error) { return error == ENOSPC || error == EDQUOT || error == EFBIG; };
  if (full(sqlite3_system_errno(db))) return true;
  if (code != SQLITE_IOERR_WRITE && code != SQLITE_IOERR_FSYNC && code != SQLITE_IOERR_TRUNCATE) return false;
  // What the database did to take back the write has hidden the reason; the files still know it.
  for (const int which : {SQLITE_FCNTL_FILE_POINTER, SQLITE_FCNTL_JOURNAL_POINTER}) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(db, "main", which, &file);
    int error = 0;
    if (file && file->pMethods &&
        file->pMethods->xFileControl(file, SQLITE_FCNTL_LAST_ERRNO, &error) == SQLITE_OK && full(error))
      return true;
  }
  return false;
}

void Handle::Fail(int code, std::string_view sql) {
  const std::string what = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(code);
  const std::string file = "'" + path_ + "'";
  const int kind = code & 0xff;
  const bool aboutTheFile = kind == SQLITE_READONLY || kind == SQLITE_CANTOPEN || kind == SQLITE_IOERR ||
                            kind == SQLITE_PERM || kind == SQLITE_NOTADB;
  if (aboutTheFile && IsReplaced()) throw FileIsGone(path_);
  if (refused_) throw *std::exchange(refused_, std::nullopt);
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw StoreError(kSessionLocked, "Could not update; " + file + " is being written by another session.");
    case SQLITE_FULL:
      throw StoreError(kDiskFull, "Not enough space on the disk for " + file + ".");
    case SQLITE_READONLY:
      if (code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY)
        throw StoreError(kReadOnly,
                         "Cannot read the data base " + file +
                             ": a write of it was cut off and can be taken back only where it can be "
                             "written. Copy it with its journal to a directory of your own.");
      throw StoreError(kReadOnly, "Cannot update. The data base " + file + " is read-only.");
    case SQLITE_PERM:
    case SQLITE_AUTH:
      throw StoreError(kCannotStart, "Access to " + file + " is not permitted.");
    case SQLITE_CANTOPEN:
      if (const std::string closed = WhatIsClosed(path_); !closed.empty())
        throw StoreError(kCannotStart, "Could not use " + file + "; " + closed + ".");
      throw StoreError(kCannotStart, "Cannot open " + file + ": " +
                                         std::strerror(db_ ? sqlite3_system_errno(db_) : ENOENT) + ".");
    case SQLITE_NOTADB:
      throw StoreError(kBadFormat, "Unrecognized data base format " + file + ": it is not a data file.");
    case SQLITE_CORRUPT:
      throw StoreError(kBadFormat,
                       "Unrecognized data base format " + file + ": it is damaged (" + what + ").");
    case SQLITE_IOERR: {
      if (DiskIsFull(db_, code))
        throw StoreError(kDiskFull, "Not enough space on the disk for " + file + ".");
      const int system = db_ ? sqlite3_system_errno(db_) : 0;
      throw StoreError(kPathNotFound,
                       "Disk or network error during access to " + file +
                           (system ? std::string(": ") + std::strerror(system) : std::string()) + ".");
    }
    case SQLITE_CONSTRAINT:
      if (code == SQLITE_CONSTRAINT_NOTNULL)
        throw StoreError(kFieldRequired, "A value is required: " + what + ".");
      if (code == SQLITE_CONSTRAINT_CHECK && what.find("length(") != std::string::npos)
        throw StoreError(kFieldTooSmall,
                         "The field is too small for the text that was to be stored in it: " + what + ".");
      if (code == SQLITE_CONSTRAINT_CHECK)
        throw StoreError(kZeroLength, "A field cannot be an empty text: " + what + ".");
      throw StoreError(
          kDuplicateKey,
          "The changes would create duplicate values in the index or primary key: " + what + ".");
    case SQLITE_TOOBIG:
      throw StoreError(kFieldTooSmall, "The value is too large to be stored.");
    case SQLITE_NOMEM:
      throw StoreError(kInternal, "Not enough memory.");
    case SQLITE_ERROR:
      if (what == "integer overflow") throw StoreError(kOverflow, "A total is beyond what a field can hold.");
      [[fallthrough]];
    default:
      throw StoreError(kInternal, "Data base error " + std::to_string(code) + ": " + what +
                                      (sql.empty() ? "" : " in: " + std::string(sql)) + ".");
  }
}

Use::Use(Handle& handle, std::string_view sql) : handle_(handle) {
  auto& statements = handle.statements_;
  auto found = statements.find(sql);
  const bool taken = found != statements.end() && found->second.busy;
  if (found == statements.end() || taken) {
    sqlite3_stmt* made = nullptr;
    const int code = sqlite3_prepare_v3(handle.db_, sql.data(), static_cast<int>(sql.size()),
                                        taken ? 0 : SQLITE_PREPARE_PERSISTENT, &made, nullptr);
    if (code != SQLITE_OK) handle.Fail(code, sql);
    if (taken) {  // the same statement is being stepped further up: a copy of its own serves
      statement_ = made;
      return;
    }
    if (statements.size() >= kMostStatements) {
      std::erase_if(statements, [](auto& entry) {
        if (entry.second.busy) return false;
        sqlite3_finalize(entry.second.statement);
        return true;
      });
    }
    found = statements.emplace(std::string(sql), PreparedStatement{made, false}).first;
  }
  kept_ = &found->second;
  kept_->busy = true;
  statement_ = kept_->statement;
}

Use::~Use() {
  if (!kept_) {
    sqlite3_finalize(statement_);
    return;
  }
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
  kept_->busy = false;
}

void Use::Bind(int index, std::int64_t value) {
  if (index > 0) sqlite3_bind_int64(statement_, index, value);
}

void Use::BindKey(int key, std::int64_t value) {
  static const char* const kNames[] = {":k0", ":k1", ":k2", ":k3", ":k4", ":k5", ":k6", ":k7"};
  if (key >= 8) throw StoreError(kSyntax, "A query can join eight tables at most.");
  const int index = sqlite3_bind_parameter_index(statement_, kNames[key]);
  if (index == 0) return;
  if (value == kNoKey)
    sqlite3_bind_null(statement_, index);
  else
    sqlite3_bind_int64(statement_, index, value);
}

void Use::BindKeyList(std::string_view keys) {
  sqlite3_bind_text64(statement_, sqlite3_bind_parameter_index(statement_, ":keys"), keys.data(), keys.size(),
                      SQLITE_TRANSIENT, SQLITE_UTF8);
}

void Use::BindRows(int index, RowList& rows) {
  sqlite3_bind_pointer(statement_, index, &rows, RowList::kPointerType, nullptr);
}

void Use::Bind(int index, const rt::Value& value) {
  if (index > sqlite3_bind_parameter_count(statement_)) return;
  switch (value.Type()) {
    case rt::ValueType::Null:
      sqlite3_bind_null(statement_, index);
      break;
    case rt::ValueType::Boolean:
      sqlite3_bind_int(statement_, index, std::get<bool>(value.Data()) ? 1 : 0);
      break;
    case rt::ValueType::Integer:
      sqlite3_bind_int(statement_, index, std::get<std::int16_t>(value.Data()));
      break;
    case rt::ValueType::Long:
      sqlite3_bind_int(statement_, index, std::get<std::int32_t>(value.Data()));
      break;
    case rt::ValueType::Single:
      sqlite3_bind_double(statement_, index, static_cast<double>(std::get<float>(value.Data())));
      break;
    case rt::ValueType::Double:
      sqlite3_bind_double(statement_, index, std::get<double>(value.Data()));
      break;
    case rt::ValueType::Currency:
      sqlite3_bind_int64(statement_, index, std::get<rt::Currency>(value.Data()).Units());
      break;
    case rt::ValueType::Date: {
      const std::string iso = std::get<rt::DateTime>(value.Data()).ToIso();
      sqlite3_bind_text64(statement_, index, iso.data(), iso.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
      break;
    }
    case rt::ValueType::Text: {
      const auto& text = std::get<std::string>(value.Data());
      sqlite3_bind_text64(statement_, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
      break;
    }
    case rt::ValueType::Binary: {
      const auto& bytes = std::get<rt::Binary>(value.Data());
      sqlite3_bind_blob64(statement_, index,
                          bytes.empty() ? reinterpret_cast<const std::uint8_t*>("") : bytes.data(),
                          bytes.size(), SQLITE_TRANSIENT);
      break;
    }
  }
}

void Use::BindAll(const std::vector<rt::Value>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) Bind(static_cast<int>(i) + 1, values[i]);
}

bool Use::Step() {
  const int code = sqlite3_step(statement_);
  if (handle_.waiting_) handle_.StopWaiting();
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  // The reset fetches the extended code; the text stays.
  handle_.Fail(sqlite3_extended_errcode(handle_.db_), sqlite3_sql(statement_));
}

std::string Use::Text(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  return bytes ? std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)))
               : std::string();
}

}  // namespace store
