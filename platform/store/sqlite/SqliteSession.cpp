#include "platform/store/sqlite/SqliteSession.h"

#include <utility>

#include "platform/store/RowList.h"
#include "platform/store/sqlite/PrivateCopy.h"

namespace store {

SqliteSession::SqliteSession(std::unique_ptr<Handle> handle, Holds& sign) : handle_(std::move(handle)) {
  handle_->SetWaitingSign(&sign);
}

SqliteSession::~SqliteSession() {
  SetEnd(nullptr);
  Rollback();
  handle_->SetWaitingSign(nullptr);
  Handle::Park(std::move(handle_));
}

bool SqliteSession::ReadCopy(const std::function<bool()>& goOn) {
  auto copy = CopyPrivately(*handle_, goOn);
  if (!copy) return false;
  SetEnd(nullptr);
  handle_->SetWaitingSign(nullptr);
  Handle::Park(std::exchange(handle_, std::move(copy)));
  return true;
}

void SqliteSession::SetEnd(std::function<bool()> over) {
  over_ = std::move(over);
  constexpr int kStepsBetween = 5'000;  // some tenths of a millisecond
  sqlite3_progress_handler(
      handle_->Db(), over_ ? kStepsBetween : 0,
      [](void* session) { return static_cast<SqliteSession*>(session)->over_() ? 1 : 0; }, this);
}

void SqliteSession::Do(std::string_view sql) {
  Use use(handle_->Prepare(sql));
  use.Step();
}

void SqliteSession::Rollback() {
  if (InTransaction()) sqlite3_exec(handle_->Db(), "ROLLBACK", nullptr, nullptr, nullptr);
}

Written SqliteSession::Write(const std::string& sql, const std::vector<rt::Value>& values) {
  {
    Use use(handle_->Prepare(sql));
    use.BindAll(values);
    while (use.Step()) {
    }
  }
  return {sqlite3_changes64(handle_->Db()), sqlite3_last_insert_rowid(handle_->Db())};
}

std::int64_t SqliteSession::UpdateMany(const RecordUpdate& update, RowList& rows) {
  const bool gapless = rows.Gapless();
  PreparedStatement& statement = handle_->Prepare(gapless ? update.range : update.list);
  {
    const Use use(statement);
    statement.BindRows(1, rows);
    if (gapless) {
      statement.Bind(2, rows.FirstKey());
      statement.Bind(3, rows.LastKey());
    } else {
      statement.Bind(2, rt::Value(rows.Keys()));
    }
    statement.Step();
  }
  return sqlite3_changes64(handle_->Db());
}

std::int64_t SqliteSession::InsertMany(const std::string& sql, RowList& rows) {
  const auto count = static_cast<std::int64_t>(rows.Count());
  PreparedStatement& statement = handle_->Prepare(sql);
  {
    const Use use(statement);
    statement.BindRows(1, rows);
    statement.Bind(2, count);
    statement.Step();
  }
  return sqlite3_last_insert_rowid(handle_->Db()) - count + 1;
}

std::int64_t SqliteSession::LastNumber(const std::string& table) {
  Use last(handle_->Prepare("SELECT seq FROM sqlite_sequence WHERE name = ?1"));
  last.Bind(1, rt::Value(table));
  return last.Step() ? last.Int64(0) : 0;
}

void SqliteSession::KeepNumber(const std::string& table, std::int64_t number) {
  const auto run = [&](const char* sql) {
    Use keep(handle_->Prepare(sql));
    keep.Bind(1, rt::Value(table));
    keep.Bind(2, number);
    keep.Step();
    return sqlite3_changes64(handle_->Db());
  };
  if (run("UPDATE sqlite_sequence SET seq = MAX(seq, ?2) WHERE name = ?1") == 0)
    run("INSERT INTO sqlite_sequence (name, seq) VALUES (?1, ?2)");
}

const Statements& SqliteSession::Texts() const {
  static const SqliteStatements texts;
  return texts;
}

std::vector<std::string> SqliteSession::Check() {
  std::vector<std::string> faults;
  Use check(handle_->Prepare("PRAGMA integrity_check"));
  while (check.Step())
    if (check.Text(0) != "ok") faults.push_back(check.Text(0));
  return faults;
}

}  // namespace store
