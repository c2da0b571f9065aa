// A connection's use of an SQLite database.
#pragma once

#include <memory>

#include "platform/store/sqlite/Handle.h"
#include "platform/store/sqlite/SqliteSpelling.h"
#include "platform/store/sqlite/SqliteStatements.h"

namespace store {

class SqliteSession : public Session {
 public:
  /// `sign` shows others that this session waits for them; it must live as long as the session.
  SqliteSession(std::unique_ptr<Handle> handle, Holds& sign);
  /// Rolls back what is open and parks the handle for the next open of the file.
  ~SqliteSession() override;
  SqliteSession(const SqliteSession&) = delete;
  SqliteSession& operator=(const SqliteSession&) = delete;

  Prepared& Prepare(std::string_view sql) override { return handle_->Prepare(sql); }
  void StartReading() override { Do("BEGIN"); }
  void EndReading() override { Do("COMMIT"); }
  bool ReadCopy(const std::function<bool()>& goOn) override;
  void SetEnd(std::function<bool()> over) override;
  std::int64_t Version() override { return handle_->Number("PRAGMA data_version"); }

  void SetPatience(std::chrono::milliseconds patience) override { handle_->SetPatience(patience); }
  void Begin() override { Do("BEGIN IMMEDIATE"); }
  void Commit() override { Do("COMMIT"); }
  void Rollback() override;
  bool InTransaction() const override { return !sqlite3_get_autocommit(handle_->Db()); }
  void SetMark() override { Do("SAVEPOINT start"); }
  void GoToMark() override { Do("ROLLBACK TO start"); }
  Written Write(const std::string& sql, const std::vector<rt::Value>& values) override;
  std::int64_t UpdateMany(const RecordUpdate& update, RowList& rows) override;
  std::int64_t InsertMany(const std::string& sql, RowList& rows) override;

  std::int64_t LastNumber(const std::string& table) override;
  void KeepNumber(const std::string& table, std::int64_t number) override;

  const dialect::Spelling& Spelled() const override { return SqliteWords(); }
  const Statements& Texts() const override;
  std::vector<std::string> Check() override;

 protected:
  KnownTables& Known() override { return handle_->Known(); }
  std::int64_t TablesVersion() override { return handle_->Number("PRAGMA schema_version"); }
  std::vector<TableInfo> ReadTables() override { return store::ReadTables(*handle_); }

 private:
  void Do(std::string_view sql);

  std::unique_ptr<Handle> handle_;
  std::function<bool()> over_;
};

}  // namespace store
