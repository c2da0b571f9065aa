// Workspaces, databases, recordsets and definitions: the object model with table recordsets and seeks.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "platform/store/StoreError.h"

namespace store {
class Compaction;
}

namespace dao {

using store::Commit;
using store::StoreError;

/// Type codes of columns.
enum FieldType : int {
  dbBoolean = 1,
  dbInteger = 3,
  dbLong = 4,
  dbCurrency = 5,
  dbSingle = 6,
  dbDouble = 7,
  dbDate = 8,
  dbText = 10,
  dbLongBinary = 11,
  dbMemo = 12,
};
constexpr int dbAutoIncrField = 16;
constexpr int dbUseJet = 2;

enum class RecordsetType { Table = 1, Dynaset = 2, Snapshot = 4 };
enum class Access { ReadWrite, ReadOnly };

class Workspace;
class Database;

/// A set of records with a current place, an edit buffer and locks. Every function throws StoreError.
class Recordset {
 public:
  bool AtBegin() const;
  bool AtEnd() const;
  /// The number of all rows of the set (the engine reads no further than necessary to count them).
  std::int64_t RecordCount();
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();

  rt::Value Get(std::string_view column);
  void Set(std::string_view column, const rt::Value& value);
  /// The same by position, for loops; FieldIndex throws 3265 if there is no such column.
  int FieldIndex(std::string_view column) const;
  rt::Value Get(int field) { return cursor_->Get(field); }
  void Set(int field, const rt::Value& value) { cursor_->Set(field, value); }
  const std::vector<store::FieldInfo>& Fields() const;

  void AddNew();
  void Edit();
  void Update();
  void CancelUpdate();
  void Delete();
  bool Editing() const;  ///< an edit or an addition is in progress

  /// For table recordsets.
  void SetIndex(std::string_view name);
  /// "=" on the current index, with as many leading values as the caller passes.
  void Seek(const std::vector<rt::Value>& key);
  bool NoMatch() const;
  /// Seek, Edit, Set and Update in one step where that can be done at once; see store::Cursor::AddAtOnce.
  bool AddAtOnce(const std::vector<rt::Value>& key, const std::vector<int>& fields,
                 std::span<const rt::Value> values, store::Direction direction) {
    return cursor_->AddAtOnce(key, fields, values, direction);
  }
  void FindFirst(std::string_view condition);
  void FindNext(std::string_view condition);

  store::Bookmark Bookmark();
  void SetBookmark(const store::Bookmark& mark);
  store::Bookmark LastModified() const;
  void Requery();
  void Close();

  explicit Recordset(std::unique_ptr<store::Cursor> cursor) : cursor_(std::move(cursor)) {}
  store::Cursor& Cursor();

 private:
  std::unique_ptr<store::Cursor> cursor_;
};

struct Field {
  std::string name;
  int type = dbText;
  int size = 0;
  int attributes = 0;  ///< dbAutoIncrField
  bool required = false;
  bool allowZeroLength = false;
};

struct Index {
  std::string name;
  std::vector<std::string> fields;
  bool primary = false;
  bool required = false;
  bool unique = false;
  bool exceptEmpty = false;  ///< see store::IndexInfo
};

/// A table's definition: of a stored table, whose changes go to the file at once, or of a new one, which
/// Database::AppendTable stores.
class TableDef {
 public:
  explicit TableDef(std::string name) : name_(std::move(name)) {}
  const std::string& Name() const { return name_; }
  std::vector<Field> Fields() const;
  std::vector<Index> Indexes() const;
  void AppendField(const Field& field);
  void DeleteField(std::string_view name);
  void RenameField(std::string_view name, std::string_view newName);
  void AppendIndex(const Index& index);
  void DeleteIndex(std::string_view name);

 private:
  friend class Database;
  std::string name_;
  std::shared_ptr<store::Connection> connection_;  ///< null until the table is stored
  store::TableInfo building_;
};

class Database {
 public:
  /// A table's name (with or without brackets) or a SELECT. The table type needs a table's name.
  std::shared_ptr<Recordset> OpenRecordset(std::string_view source,
                                           RecordsetType type = RecordsetType::Dynaset,
                                           Access access = Access::ReadWrite);
  /// Runs a statement and returns the number of changed records.
  std::int64_t Execute(std::string_view sql);
  std::vector<std::string> TableNames();
  /// 3265 if there is none.
  TableDef Table(std::string_view name);
  void AppendTable(const TableDef& table);
  void DeleteTable(std::string_view name);
  std::vector<store::RelationInfo> Relations();
  void AppendRelation(const store::RelationInfo& relation);
  const std::string& Name() const;
  /// The file format's version, "4.0".
  std::string Version() const { return "4.0"; }
  /// See store::Connection::Glance.
  std::uint64_t Glance() { return Connection().Glance(); }
  /// Closes its recordsets too.
  void Close();

  explicit Database(std::shared_ptr<store::Connection> connection) : connection_(std::move(connection)) {}
  /// 3265 when it is closed.
  store::Connection& Connection();
  bool IsOpen() const { return connection_ != nullptr; }

 private:
  std::shared_ptr<store::Connection> connection_;
  std::vector<std::weak_ptr<Recordset>> recordsets_;
};

/// Transactions of a workspace span all of its databases.
class Workspace {
 public:
  Workspace(std::string name, std::string user) : name_(std::move(name)), user_(std::move(user)) {}
  const std::string& Name() const { return name_; }
  std::shared_ptr<Database> OpenDatabase(const std::string& path, bool exclusive = false,
                                         bool readOnly = false);
  void BeginTrans();
  void CommitTrans(Commit how = Commit::Now);
  /// 3034 without a transaction.
  void RollbackTrans();
  /// See store::Connection; applies to every database of the workspace.
  void EnterGroup();
  void FinishGroup();
  void AbandonGroup();
  /// Rolls back an open transaction and closes its databases.
  void Close();

 private:
  template <class Work>
  void OnEach(Work work);

  std::string name_;
  std::string user_;
  int depth_ = 0;
  std::vector<std::weak_ptr<Database>> databases_;
};

/// The engine itself.
namespace DBEngine {
std::shared_ptr<Workspace> CreateWorkspace(const std::string& name, const std::string& user,
                                           const std::string& password, int type = dbUseJet);
/// Creates an empty file and opens it.
std::shared_ptr<Database> CreateDatabase(Workspace& workspace, const std::string& path);
/// See store::Compaction: nobody else can open the source for as long as the result exists.
[[nodiscard]] std::shared_ptr<store::Compaction> CompactDatabase(const std::string& source,
                                                                 const std::string& target);
/// Releases read locks for 1. Does nothing: reading takes no locks here.
void Idle(int what);
/// "4.0": this engine has no repair method of its own.
std::string Version();
}  // namespace DBEngine

}  // namespace dao
