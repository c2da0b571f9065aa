#include "platform/ado/Ado.h"

#include <algorithm>

#include "platform/runtime/Text.h"
#include "platform/store/Dialect.h"
#include "platform/store/Engine.h"

namespace ado {

/// The kind of work decides which provider number an engine error gets.
enum class Connection::Work { Opening, Reading, WritingBack, Storing, Executing };

namespace {

using store::StoreError;

bool IsLocked(int number) {
  return number == store::kSaveLocked || number == store::kSessionLocked || number == store::kEditLocked ||
         number == store::kRecordLocked || number == store::kTableLocked;
}

bool IsTransient(int number) { return number == store::kFileInUse || number == store::kOpenedExclusively; }

/// Whether the file refuses a value; whoever entered it can correct it and try again.
bool IsRefusedValue(int number) {
  switch (number) {
    case store::kDuplicateKey:
    case store::kFieldRequired:
    case store::kFieldTooSmall:
    case store::kZeroLength:
    case store::kOverflow:
    case store::kTypeMismatch:
      return true;
    default:
      return false;
  }
}

/// Callers wait on the provider's numbers, so only errors that another try can cure get one. Everything else
/// keeps the engine's own number, so that a missing row, a damaged file or a lost directory ends the
/// operation at once.
std::int32_t NumberOf(int number, bool writingBack, bool executing) {
  if (IsLocked(number)) {
    if (executing && number == store::kSessionLocked) return kTimeout;
    return writingBack ? kProviderFailure : kUnspecified;
  }
  if (IsTransient(number)) return kUnspecified;
  if (IsRefusedValue(number)) return kErrorsOccurred;
  switch (number) {
    case store::kSyntax:
    case store::kAmbiguousColumn:
    case store::kSelectNotExecuted:
      return kSyntax;
    case store::kTableNotFound:
      return kNoTable;
    case store::kTooFewParameters:
      return kTooFewParameters;
    default:
      return number;
  }
}

// The value of a key of a connection string, whatever the case of the key.
std::string ValueOf(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    const auto end = std::min(text.find(';'), text.size());
    const auto part = text.substr(0, end);
    const auto equals = part.find('=');
    if (equals != std::string_view::npos && rt::EqualNoCase(rt::Trim(part.substr(0, equals)), key))
      return std::string(part.substr(equals + 1));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return {};
}

}  // namespace

// --- Connection

void Connection::Fail(const StoreError& error, Work work) {
  std::int32_t number = NumberOf(error.Number(), work == Work::WritingBack, work == Work::Executing);
  std::int32_t native = error.Number();
  if (work == Work::Opening) {
    number = kUnspecified;
    if (native == store::kFileNotFound || native == store::kPathNotFound) native = kNativeFileNotFound;
  }
  Errors.push_back({number, native, error.what()});
  throw Error(number, native, error.what());
}

store::Connection& Connection::Opened() {
  if (!connection_) throw Error(kClosed, 0, "Operation is not allowed when the object is closed.");
  return *connection_;
}

void Connection::Open(const std::string& connectionString) {
  store::OpenRequest request;
  request.path = ValueOf(connectionString, "Data Source");
  if (rt::EqualNoCase(ValueOf(connectionString, "Mode"), "Share Exclusive"))
    request.share = store::Share::Exclusive;
  try {
    const std::string provider = ValueOf(connectionString, "Provider");
    if (!rt::EqualNoCase(provider.substr(0, 14), "Microsoft.Jet.") || request.path.empty())
      // The message leaves out the rest of the string, which may contain a password.
      throw StoreError(store::kCannotStart, "This program cannot reach the data source '" +
                                                (request.path.empty() ? provider : request.path) + "'.");
    connection_ = store::Engine::Of(request.path).Open(request);
  } catch (const StoreError& error) {
    Fail(error, Work::Opening);
  }
}

std::int64_t Connection::Execute(std::string_view sql) {
  try {
    Opened().SetPatience(CommandTimeout * 1000);
    return connection_->Execute(sql);
  } catch (const StoreError& error) {
    Fail(error, Work::Executing);
  }
}

void Connection::BeginTrans() { Opened().BeginTrans(); }

void Connection::CommitTrans() {
  try {
    Opened().CommitTrans();
  } catch (const StoreError& error) {
    Fail(error, Work::Executing);
  }
}

void Connection::RollbackTrans() {
  try {
    Opened().RollbackTrans();
  } catch (const StoreError& error) {
    Fail(error, Work::Executing);
  }
}

std::vector<SchemaRow> Connection::OpenUserRoster() {
  std::vector<SchemaRow> rows;
  for (const auto& entry : Opened().Holds().Roster())
    rows.push_back({entry.computer + '\0', entry.user + '\0', true});
  return rows;
}

void Connection::Close() {
  for (const auto& opened : cursors_)
    if (const auto cursor = opened.lock()) cursor->Detach();
  cursors_.clear();
  connection_.reset();
}

// --- Recordset

store::Cursor& Recordset::Cursor() {
  if (!cursor_ || !connection_ || !connection_->IsOpen())
    throw Error(kClosed, 0, "Operation is not allowed when the object is closed.");
  return *cursor_;
}

template <class Action>
auto Recordset::Guard(Connection::Work work, Action action) {
  try {
    return action(Cursor());
  } catch (const StoreError& error) {
    connection_->Fail(error, work);
  }
}

void Recordset::Open(std::string_view source, const std::shared_ptr<Connection>& connection, int, int lock) {
  connection_ = connection;
  const auto locking = lock == adLockReadOnly      ? store::Locking::ReadOnly
                       : lock == adLockPessimistic ? store::Locking::Pessimistic
                                                   : store::Locking::Optimistic;
  const std::string query =
      store::IsQuery(source) ? std::string(source) : "SELECT * FROM [" + std::string(source) + "]";
  connection->Opened();
  try {
    cursor_ = store::Cursor::OpenQuery(connection->Store(), query, locking);
  } catch (const StoreError& error) {
    connection->Fail(error, Connection::Work::Reading);
  }
  std::erase_if(connection->cursors_, [](const auto& opened) { return opened.expired(); });
  connection->cursors_.push_back(cursor_);
}

bool Recordset::AtBegin() const { return !cursor_ || cursor_->AtBegin(); }
bool Recordset::AtEnd() const { return !cursor_ || cursor_->AtEnd(); }
std::int64_t Recordset::RecordCount() { return Cursor().Count(); }

void Recordset::StoreBeforeMove() {
  if (Cursor().Editing()) Update();
}

void Recordset::MoveFirst() {
  StoreBeforeMove();
  Guard(Connection::Work::Reading, [](store::Cursor& cursor) { cursor.MoveFirst(); });
}
void Recordset::MoveLast() {
  StoreBeforeMove();
  Guard(Connection::Work::Reading, [](store::Cursor& cursor) { cursor.MoveLast(); });
}
void Recordset::MoveNext() {
  StoreBeforeMove();
  Guard(Connection::Work::Reading, [](store::Cursor& cursor) { cursor.MoveNext(); });
}
void Recordset::MovePrevious() {
  StoreBeforeMove();
  Guard(Connection::Work::Reading, [](store::Cursor& cursor) { cursor.MovePrevious(); });
}
void Recordset::Move(std::int64_t rows) {
  if (rows == 0) return;
  StoreBeforeMove();
  Guard(Connection::Work::Reading,
        [rows](store::Cursor& cursor) { cursor.MoveTo(cursor.Position() + rows); });
}

rt::Value Recordset::Get(std::string_view column) { return Get(FieldIndex(column)); }
void Recordset::Set(std::string_view column, const rt::Value& value) { Set(FieldIndex(column), value); }

int Recordset::FieldIndex(std::string_view column) const {
  try {
    return const_cast<Recordset*>(this)->Cursor().FieldIndex(column);
  } catch (const StoreError& error) {
    connection_->Fail(error, Connection::Work::Reading);
  }
}

rt::Value Recordset::Get(int field) {
  return Guard(Connection::Work::Reading, [field](store::Cursor& cursor) { return cursor.Get(field); });
}

void Recordset::Set(int field, const rt::Value& value) {
  Guard(Connection::Work::WritingBack, [&](store::Cursor& cursor) {
    if (!cursor.Editing()) cursor.Edit();
    cursor.Set(field, value);
  });
}

const std::vector<store::FieldInfo>& Recordset::Fields() const {
  return const_cast<Recordset*>(this)->Cursor().Fields();
}

void Recordset::AddNew() {
  StoreBeforeMove();
  Guard(Connection::Work::Storing, [](store::Cursor& cursor) { cursor.AddNew(); });
}

void Recordset::Update() {
  Guard(Connection::Work::Storing, [](store::Cursor& cursor) {
    if (!cursor.Editing()) return;  // no field has changed, so there is nothing to store
    const bool adding = cursor.Adding();
    cursor.Update();
    if (adding) cursor.GoTo(cursor.LastModified());
  });
}

void Recordset::CancelUpdate() {
  Guard(Connection::Work::Storing, [](store::Cursor& cursor) {
    if (cursor.Editing()) cursor.CancelUpdate();
  });
}

void Recordset::Delete() {
  Guard(Connection::Work::Storing, [](store::Cursor& cursor) { cursor.Delete(); });
}

void Recordset::Find(std::string_view condition, bool fromFirst) {
  StoreBeforeMove();
  Guard(Connection::Work::Reading, [&](store::Cursor& cursor) {
    if (fromFirst)
      cursor.FindFirst(condition);
    else
      cursor.FindNext(condition);
    if (cursor.NoMatch()) cursor.MoveTo(cursor.Count());
  });
}

store::Bookmark Recordset::Bookmark() {
  return Guard(Connection::Work::Reading, [](store::Cursor& cursor) { return cursor.Mark(); });
}
void Recordset::SetBookmark(const store::Bookmark& mark) {
  StoreBeforeMove();
  Guard(Connection::Work::Reading, [&](store::Cursor& cursor) { cursor.GoTo(mark); });
}
void Recordset::Requery() {
  Guard(Connection::Work::Reading, [](store::Cursor& cursor) { cursor.Requery(); });
}
void Recordset::Close() {
  cursor_.reset();
  connection_.reset();
}

// --- Catalog

int TypeCode(store::ColumnType type) {
  switch (type) {
    case store::ColumnType::Boolean:
      return 11;
    case store::ColumnType::Short:
      return 2;
    case store::ColumnType::Counter:
    case store::ColumnType::Long:
      return 3;
    case store::ColumnType::Single:
      return 4;
    case store::ColumnType::Double:
      return 5;
    case store::ColumnType::Currency:
      return 6;
    case store::ColumnType::DateTime:
      return 7;
    case store::ColumnType::Text:
      return 202;
    case store::ColumnType::Memo:
      return 203;
    case store::ColumnType::LongBinary:
      return 205;
  }
  return 0;
}

store::ColumnType TypeOfCode(int code) {
  switch (code) {
    case 11:
      return store::ColumnType::Boolean;
    case 2:
      return store::ColumnType::Short;
    case 3:
      return store::ColumnType::Long;
    case 4:
      return store::ColumnType::Single;
    case 5:
      return store::ColumnType::Double;
    case 6:
      return store::ColumnType::Currency;
    case 7:
      return store::ColumnType::DateTime;
    case 202:
      return store::ColumnType::Text;
    case 203:
      return store::ColumnType::Memo;
    case 205:
      return store::ColumnType::LongBinary;
    default:
      throw Error(kErrorsOccurred, store::kTypeMismatch,
                  "There is no column type " + std::to_string(code) + ".");
  }
}

namespace {

template <class Action>
auto OnCatalog(Connection& connection, Action action) {
  if (!connection.IsOpen()) throw Error(kClosed, 0, "Operation is not allowed when the object is closed.");
  try {
    return action(*connection.Store());
  } catch (const StoreError& error) {
    connection.Errors.push_back({NumberOf(error.Number(), false, true), error.Number(), error.what()});
    throw Error(NumberOf(error.Number(), false, true), error.Number(), error.what());
  }
}

}  // namespace

std::vector<std::string> Catalog::Tables() {
  return OnCatalog(*connection_, [](store::Connection& store) {
    std::vector<std::string> names;
    for (const auto& table : store.Tables()->tables) names.push_back(table.name);
    return names;
  });
}

std::vector<Column> Catalog::Columns(std::string_view table) {
  return OnCatalog(*connection_, [&](store::Connection& store) {
    std::vector<Column> columns;
    const auto schema = store.Tables();
    const auto* found = schema->Find(table);
    if (!found) throw StoreError(store::kItemNotFound, "There is no table '" + std::string(table) + "'.");
    for (const auto& column : found->columns)
      columns.push_back({column.name, TypeCode(column.type), column.size});
    return columns;
  });
}

void Catalog::AppendColumn(std::string_view table, const Column& column, bool nullable, bool defaultTrue) {
  OnCatalog(*connection_, [&](store::Connection& store) {
    store::ColumnInfo info;
    info.name = column.name;
    info.type = TypeOfCode(column.type);
    info.size =
        info.type == store::ColumnType::Text ? (column.definedSize > 0 ? column.definedSize : 255) : 0;
    info.required = !nullable;
    info.defaultTrue = defaultTrue;
    store.AddColumn(table, info);
  });
}

void Catalog::RenameColumn(std::string_view table, std::string_view column, std::string_view newName) {
  OnCatalog(*connection_, [&](store::Connection& store) { store.RenameColumn(table, column, newName); });
}

void JetEngine::RefreshCache(Connection& connection) {
  // Every read sees the file's newest state, so only what a group keeps back remains to be released.
  if (connection.IsOpen()) connection.Store()->FinishGroup();
}

}  // namespace ado
