// The one place where a connection meets its engine's database.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/RawRow.h"
#include "platform/store/Schema.h"

namespace store {

namespace dialect {
class Spelling;
}
class RowList;
class Statements;
struct Normalized;
struct QueryPlan;
struct RecordUpdate;

/// A statement that a session has prepared, lent for one use. Everything may throw StoreError.
class Prepared {
 public:
  /// Binds ?index; an index that the statement does not have is passed over.
  virtual void Bind(int index, const rt::Value& value) = 0;
  virtual void Bind(int index, std::int64_t value) = 0;
  /// Binds a key of a row, :k0, :k1 …
  virtual void BindKey(int key, std::int64_t value) = 0;
  /// Binds :keys, the keys of several rows, `width` for each, one after the other; see
  /// Statements::RowsByKeys.
  virtual void BindKeys(const std::int64_t* keys, std::size_t width, std::size_t rows) = 0;

  /// True while there is a row.
  virtual bool Step() = 0;
  // The row's columns, from 0.
  virtual Cell CellOf(int column) const = 0;
  virtual std::int64_t Int64(int column) const = 0;
  virtual double Real(int column) const = 0;
  /// Valid until the next step.
  virtual std::string_view View(int column) const = 0;
  /// Copies `count` columns of the row, from column `first` on.
  virtual void Read(RawRow& row, int first, int count) const = 0;

  /// Gives the statement back, and lets go of the file. Called once, by who has borrowed it.
  virtual void Done() = 0;

 protected:
  ~Prepared() = default;
};

/// A prepared statement in use, given back at the end.
class Use {
 public:
  explicit Use(Prepared& statement) : statement_(statement) {}
  ~Use() { statement_.Done(); }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

  void Bind(int index, const rt::Value& value) { statement_.Bind(index, value); }
  void Bind(int index, std::int64_t value) { statement_.Bind(index, value); }
  void BindKey(int key, std::int64_t value) { statement_.BindKey(key, value); }
  void BindKeys(const std::int64_t* keys, std::size_t width, std::size_t rows) {
    statement_.BindKeys(keys, width, rows);
  }
  void BindAll(const std::vector<rt::Value>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) Bind(static_cast<int>(i) + 1, values[i]);
  }
  bool Step() { return statement_.Step(); }
  std::int64_t Int64(int column) const { return statement_.Int64(column); }
  bool IsNull(int column) const { return statement_.CellOf(column) == Cell::Null; }
  std::string Text(int column) const { return std::string(statement_.View(column)); }
  void Read(RawRow& row, int first, int count) const { statement_.Read(row, first, count); }
  const Prepared& Statement() const { return statement_; }

 private:
  Prepared& statement_;
};

/// What a write has changed.
struct Written {
  std::int64_t changed = 0;  ///< records
  std::int64_t lastKey = 0;  ///< of the last record that was added
};

/// What is known of a file's tables, and the plans of queries that hold for as long as these stay the same.
/// It belongs to the file rather than to one session.
struct KnownTables {
  std::shared_ptr<const Schema> schema;
  std::int64_t version = -1;  ///< of the tables; -1 if they have to be read
  std::chrono::steady_clock::time_point checked;
  std::unordered_map<std::string, std::shared_ptr<const QueryPlan>> plans;
};

/// What an engine does for one connection with one data file. It knows nothing of cursors, logs, groups and
/// caches: they ask it, and nobody else has the database. Everything may throw StoreError; an engine gives
/// its own errors the numbers of StoreError.h.
class Session {
 public:
  virtual ~Session() = default;

  // --- reading
  /// A statement for one use; end it with Done.
  virtual Prepared& Prepare(std::string_view sql) = 0;
  /// All readings see the same until EndReading; others cannot commit meanwhile.
  virtual void StartReading() = 0;
  virtual void EndReading() = 0;
  /// From here on the session reads a copy of its own, of the file at one moment, and can write no more.
  /// False, and nothing has changed, where `goOn` says no or the copy cannot be kept. Only without a reading.
  virtual bool ReadCopy(const std::function<bool()>& goOn) = 0;
  /// Asks now and then within a statement, and ends it with an error if the answer is true; null for never.
  virtual void SetEnd(std::function<bool()> over) = 0;
  /// Changes with every commit of somebody else.
  virtual std::int64_t Version() = 0;

  // --- writing
  /// How long Begin and Commit wait for other writers before they fail with 3188; 15 seconds unless set.
  virtual void SetPatience(std::chrono::milliseconds patience) = 0;
  /// Nobody else can write until Commit or Rollback.
  virtual void Begin() = 0;
  virtual void Commit() = 0;
  /// Without effect where nothing has begun. Throws nothing.
  virtual void Rollback() = 0;
  /// Begun, and not given up by the engine itself, as it may do on a full disk.
  virtual bool InTransaction() const = 0;
  /// Marks the beginning of the transaction; GoToMark takes back what was written behind it and keeps the
  /// others out.
  virtual void SetMark() = 0;
  virtual void GoToMark() = 0;
  virtual Written Write(const std::string& sql, const std::vector<rt::Value>& values) = 0;
  /// Changes the records of a list, which has their keys in ascending order; the number of records changed.
  virtual std::int64_t UpdateMany(const RecordUpdate& update, RowList& rows) = 0;
  /// Adds the records of a list, which has no keys. Returns the key of the first; those of the others follow
  /// in order. `sql` is from Statements::InsertMany.
  virtual std::int64_t InsertMany(const std::string& sql, RowList& rows) = 0;

  // --- the numbers of records
  /// The highest number that the table has given to a record, deleted ones included.
  virtual std::int64_t LastNumber(const std::string& table) = 0;
  /// Sees to it that no later record gets this number or a lower one.
  virtual void KeepNumber(const std::string& table, std::int64_t number) = 0;

  // --- tables
  /// The tables as they are. Other users' changes are noticed within a fifth of a second, or at once when
  /// asked.
  const std::shared_ptr<const Schema>& Tables(bool checkNow = false);
  void ForgetTables();
  /// The statement cut into what a cursor needs, kept for statements of the same shape.
  std::shared_ptr<const QueryPlan> Plan(const Normalized& statement);
  virtual const dialect::Spelling& Spelled() const = 0;
  virtual const Statements& Texts() const = 0;
  /// The engine's own test of the file's structure: one line for each fault, none for a sound file.
  virtual std::vector<std::string> Check() = 0;

 protected:
  virtual KnownTables& Known() = 0;
  /// Changes with every change of a table's definition, whoever makes it.
  virtual std::int64_t TablesVersion() = 0;
  /// Without the numbers of the tables.
  virtual std::vector<TableInfo> ReadTables() = 0;
};

}  // namespace store
