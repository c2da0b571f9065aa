// Connections, recordsets and the catalog: the object model of lists, look-ups and held transactions.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Error.h"
#include "platform/runtime/Value.h"
#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"

namespace ado {

/// Error numbers of the provider. Any other error keeps the engine's own number: waiting cannot cure it.
constexpr std::int32_t kUnspecified = -2147467259;       // 80004005: locked, in use
constexpr std::int32_t kErrorsOccurred = -2147217887;    // 80040E21: the file does not accept a value
constexpr std::int32_t kProviderFailure = -2147217888;   // 80040E20: the write-back of a locked record
constexpr std::int32_t kTimeout = -2147217871;           // 80040E31
constexpr std::int32_t kSyntax = -2147217900;            // 80040E14
constexpr std::int32_t kNoTable = -2147217865;           // 80040E37
constexpr std::int32_t kTooFewParameters = -2147217904;  // 80040E10
constexpr std::int32_t kClosed = 3704;
/// Native number of a file that was not found.
constexpr std::int32_t kNativeFileNotFound = -534578963;

/// The error that this model throws.
class Error : public rt::Error {
 public:
  Error(std::int32_t number, std::int32_t native, const std::string& text)
      : rt::Error(number, text), native_(native) {}
  std::int32_t Native() const { return native_; }

 private:
  std::int32_t native_;
};

struct ErrorEntry {
  std::int32_t number = 0;
  std::int32_t nativeError = 0;
  std::string description;
};

enum CursorType : int { adOpenForwardOnly = 0, adOpenKeyset = 1, adOpenDynamic = 2, adOpenStatic = 3 };
enum LockType : int { adLockReadOnly = 1, adLockPessimistic = 2, adLockOptimistic = 3 };

/// The rows that OpenSchema returns.
struct SchemaRow {
  std::string computerName;  ///< "COMPUTER_NAME", with a NUL at its end
  std::string loginName;     ///< "LOGIN_NAME", also with a NUL
  bool connected = false;    ///< "CONNECTED"
};

class Connection {
 public:
  int CommandTimeout = 30;     ///< seconds
  int ConnectionTimeout = 15;  ///< seconds

  /// Reads "Data Source=", "Mode=Share Exclusive" and "Mode=Share Deny None" from the string. Throws Error;
  /// every error is also added to Errors.
  void Open(const std::string& connectionString);
  bool IsOpen() const { return connection_ != nullptr; }
  /// Returns the number of changed records. Throws 80004005 (native 3260) if another user holds one of them.
  std::int64_t Execute(std::string_view sql);
  void BeginTrans();
  void CommitTrans();
  void RollbackTrans();
  /// The user roster: one row for each open of the file.
  std::vector<SchemaRow> OpenUserRoster();
  /// Rolls back an open transaction.
  void Close();
  std::vector<ErrorEntry> Errors;

  const std::shared_ptr<store::Connection>& Store() const { return connection_; }

 private:
  friend class Recordset;
  enum class Work;
  /// Adds the error to Errors and throws it as Error.
  [[noreturn]] void Fail(const store::StoreError& error, Work work);
  store::Connection& Opened();
  std::vector<std::weak_ptr<store::Cursor>> cursors_;
  std::shared_ptr<store::Connection> connection_;
};

/// A recordset. In this model, the first Set begins a change.
class Recordset {
 public:
  /// A SELECT or a table's name. Dynamic and keyset cursors behave alike here.
  void Open(std::string_view source, const std::shared_ptr<Connection>& connection,
            int cursor = adOpenForwardOnly, int lock = adLockReadOnly);
  bool IsOpen() const { return cursor_ != nullptr; }
  const std::shared_ptr<Connection>& ActiveConnection() const { return connection_; }

  bool AtBegin() const;
  bool AtEnd() const;
  std::int64_t RecordCount();
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  /// Moves by so many rows. In this model, a move to another row stores an edit in progress; 0 stays and
  /// stores nothing.
  void Move(std::int64_t rows);

  rt::Value Get(std::string_view column);
  /// Begins an edit if there is none: a pessimistic cursor holds the record then (80040E20 if another user
  /// holds it).
  void Set(std::string_view column, const rt::Value& value);
  int FieldIndex(std::string_view column) const;
  rt::Value Get(int field);
  void Set(int field, const rt::Value& value);
  const std::vector<store::FieldInfo>& Fields() const;

  void AddNew();
  /// 80004005 if another user holds the record.
  void Update();
  void CancelUpdate();
  /// Deletes the current row. 80004005 if another user holds the record.
  void Delete();
  /// Searches forward from the current row (from the first row if asked) for a condition such as "[ID] = 5";
  /// without a hit, the recordset is at its end.
  void Find(std::string_view condition, bool fromFirst = false);
  store::Bookmark Bookmark();
  void SetBookmark(const store::Bookmark& mark);
  void Requery();
  void Close();
  /// 3704 when it is closed.
  store::Cursor& Cursor();

 private:
  template <class Action>
  auto Guard(Connection::Work work, Action action);
  void StoreBeforeMove();
  std::shared_ptr<Connection> connection_;
  std::shared_ptr<store::Cursor> cursor_;
};

/// One value of a recordset's current row, in the form that the write-back probe needs.
class Field {
 public:
  Field(Recordset& recordset, int index) : recordset_(&recordset), index_(index) {}
  rt::Value Value() const { return recordset_->Get(index_); }
  void SetValue(const rt::Value& value) { recordset_->Set(index_, value); }

 private:
  Recordset* recordset_;
  int index_;
};

/// Type codes of the catalog: 2 small integer, 3 integer, 4 single, 5 double, 6 currency, 7 date, 11 Boolean,
/// 202 text, 203 memo, 205 long binary.
int TypeCode(store::ColumnType type);
store::ColumnType TypeOfCode(int code);

struct Column {
  std::string name;
  int type = 202;
  int definedSize = 0;
};

/// Tables and columns of an open connection.
class Catalog {
 public:
  explicit Catalog(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}
  std::vector<std::string> Tables();
  std::vector<Column> Columns(std::string_view table);
  /// With `nullable` false, the column can never be Null. `defaultTrue` is the value of a Boolean column in
  /// existing rows.
  void AppendColumn(std::string_view table, const Column& column, bool nullable, bool defaultTrue);
  void RenameColumn(std::string_view table, std::string_view column, std::string_view newName);

 private:
  std::shared_ptr<Connection> connection_;
};

/// Makes what other connections have written visible to this one.
namespace JetEngine {
void RefreshCache(Connection& connection);
}

}  // namespace ado
