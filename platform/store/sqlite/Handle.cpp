#include "platform/store/sqlite/Handle.h"

#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <utility>

#include "platform/store/StoreError.h"
#include "platform/store/sqlite/FileFormat.h"
#include "platform/store/sqlite/Functions.h"
#include "platform/store/sqlite/Rights.h"

namespace store {
namespace {

constexpr std::chrono::milliseconds kPatience{15000};
/// At an opening, where whoever asks waits on.
constexpr std::chrono::milliseconds kOpenPatience{5000};
constexpr std::chrono::milliseconds kReadersPatience{60000};
constexpr std::size_t kMostStatements = 256;
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
      found->known_.checked = {};
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
  CheckHeader(*handle);
  sqlite3_busy_handler(handle->db_, Nap, handle.get());
  handle->SetUp();
  CheckFormat(*handle);
  if (readOnly) {
    handle->Run("PRAGMA query_only = ON");
  } else {
    handle->Run("PRAGMA journal_mode = TRUNCATE");
    handle->Run("PRAGMA synchronous = FULL");
  }
  return handle;
}

void Handle::SetUp() {
  AddFunctions(db_, refused_);
  Run("PRAGMA temp_store = MEMORY");
  Run("PRAGMA cache_size = -16000");
}

std::unique_ptr<Handle> Handle::OpenCopy(const std::string& copy, const Handle& of) {
  std::unique_ptr<Handle> handle(new Handle);
  handle->path_ = of.path_;
  handle->readOnly_ = true;
  handle->copy_ = true;
  std::string uri = "file:";
  for (const char c : copy) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    uri += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
  }
  // Nobody else has it, so that neither locks nor a journal are looked for.
  const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_URI;
  const int code = sqlite3_open_v2((uri + "?immutable=1").c_str(), &handle->db_, flags, FileLayer());
  if (code != SQLITE_OK) handle->Fail(code);
  handle->SetUp();
  CheckFormat(*handle);
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
  if (handle->copy_) return;
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
  statements_.clear();
  sqlite3_close(db_);
}

void Handle::Run(std::string_view sql) {
  const int code = sqlite3_exec(db_, std::string(sql).c_str(), nullptr, nullptr, nullptr);
  if (waiting_) StopWaiting();
  if (code != SQLITE_OK) Fail(code, sql);
}

std::int64_t Handle::Number(std::string_view sql) {
  Use use(Prepare(sql));
  return use.Step() ? use.Int64(0) : 0;
}

PreparedStatement& Handle::Prepare(std::string_view sql) {
  auto found = statements_.find(sql);
  if (found != statements_.end() && found->second->Busy()) {
    // The same statement is being stepped further up: a copy of its own serves.
    return *new PreparedStatement(*this, sql, PreparedStatement::Keep::No);
  }
  if (found == statements_.end()) {
    auto made = std::make_unique<PreparedStatement>(*this, sql, PreparedStatement::Keep::ForNextUse);
    if (statements_.size() >= kMostStatements)
      std::erase_if(statements_, [](const auto& entry) { return !entry.second->Busy(); });
    found = statements_.emplace(std::string(sql), std::move(made)).first;
  }
  found->second->Lend();
  return *found->second;
}

}  // namespace store
