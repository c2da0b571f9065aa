#include "platform/dao/Dao.h"

#include <algorithm>

#include "platform/runtime/Text.h"
#include "platform/store/Dialect.h"
#include "platform/store/Engine.h"

namespace dao {
namespace {

store::ColumnInfo ToColumn(const Field& field) {
  store::ColumnInfo column;
  column.name = field.name;
  column.size = field.type == dbText ? (field.size > 0 ? field.size : 255) : 0;
  column.required = field.required;
  const bool text = field.type == dbText || field.type == dbMemo;
  column.allowZeroLength = !text || field.allowZeroLength;
  switch (field.type) {
    case dbBoolean:
      column.type = store::ColumnType::Boolean;
      break;
    case dbInteger:
      column.type = store::ColumnType::Short;
      break;
    case dbLong:
      column.type =
          (field.attributes & dbAutoIncrField) ? store::ColumnType::Counter : store::ColumnType::Long;
      break;
    case dbCurrency:
      column.type = store::ColumnType::Currency;
      break;
    case dbSingle:
      column.type = store::ColumnType::Single;
      break;
    case dbDouble:
      column.type = store::ColumnType::Double;
      break;
    case dbDate:
      column.type = store::ColumnType::DateTime;
      break;
    case dbText:
      column.type = store::ColumnType::Text;
      break;
    case dbLongBinary:
      column.type = store::ColumnType::LongBinary;
      break;
    case dbMemo:
      column.type = store::ColumnType::Memo;
      break;
    default:
      throw StoreError(store::kSyntax,
                       "Field '" + field.name + "' has the unknown type " + std::to_string(field.type) + ".");
  }
  return column;
}

Field ToField(const store::ColumnInfo& column) {
  Field field;
  field.name = column.name;
  field.required = column.required;
  field.allowZeroLength = column.allowZeroLength;
  switch (column.type) {
    case store::ColumnType::Counter:
      field.type = dbLong;
      field.attributes = dbAutoIncrField;
      field.size = 4;
      break;
    case store::ColumnType::Boolean:
      field.type = dbBoolean;
      field.size = 1;
      break;
    case store::ColumnType::Short:
      field.type = dbInteger;
      field.size = 2;
      break;
    case store::ColumnType::Long:
      field.type = dbLong;
      field.size = 4;
      break;
    case store::ColumnType::Single:
      field.type = dbSingle;
      field.size = 4;
      break;
    case store::ColumnType::Double:
      field.type = dbDouble;
      field.size = 8;
      break;
    case store::ColumnType::Currency:
      field.type = dbCurrency;
      field.size = 8;
      break;
    case store::ColumnType::DateTime:
      field.type = dbDate;
      field.size = 8;
      break;
    case store::ColumnType::Text:
      field.type = dbText;
      field.size = column.size;
      break;
    case store::ColumnType::Memo:
      field.type = dbMemo;
      break;
    case store::ColumnType::LongBinary:
      field.type = dbLongBinary;
      break;
  }
  return field;
}

std::string WithoutBrackets(std::string_view name) {
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
  return std::string(name);
}

}  // namespace

// --- Recordset

store::Cursor& Recordset::Cursor() {
  if (!cursor_) throw StoreError(store::kItemNotFound, "The recordset is closed.");
  return *cursor_;
}

bool Recordset::AtBegin() const { return !cursor_ || cursor_->AtBegin(); }
bool Recordset::AtEnd() const { return !cursor_ || cursor_->AtEnd(); }
std::int64_t Recordset::RecordCount() { return Cursor().Count(); }
void Recordset::MoveFirst() { Cursor().MoveFirst(); }
void Recordset::MoveLast() { Cursor().MoveLast(); }
void Recordset::MoveNext() { Cursor().MoveNext(); }
void Recordset::MovePrevious() { Cursor().MovePrevious(); }
rt::Value Recordset::Get(std::string_view column) { return Cursor().Get(FieldIndex(column)); }
void Recordset::Set(std::string_view column, const rt::Value& value) {
  Cursor().Set(FieldIndex(column), value);
}

int Recordset::FieldIndex(std::string_view column) const {
  if (!cursor_) throw StoreError(store::kItemNotFound, "The recordset is closed.");
  return cursor_->FieldIndex(column);
}

const std::vector<store::FieldInfo>& Recordset::Fields() const {
  if (!cursor_) throw StoreError(store::kItemNotFound, "The recordset is closed.");
  return cursor_->Fields();
}

void Recordset::AddNew() { Cursor().AddNew(); }
void Recordset::Edit() { Cursor().Edit(); }
void Recordset::Update() { Cursor().Update(); }
void Recordset::CancelUpdate() { Cursor().CancelUpdate(); }
void Recordset::Delete() { Cursor().Delete(); }
bool Recordset::Editing() const { return cursor_ && cursor_->Editing(); }
void Recordset::SetIndex(std::string_view name) { Cursor().SetIndex(name); }
void Recordset::Seek(const std::vector<rt::Value>& key) { Cursor().Seek(key); }
bool Recordset::NoMatch() const { return cursor_ && cursor_->NoMatch(); }
void Recordset::FindFirst(std::string_view condition) { Cursor().FindFirst(condition); }
void Recordset::FindNext(std::string_view condition) { Cursor().FindNext(condition); }
store::Bookmark Recordset::Bookmark() { return Cursor().Mark(); }
void Recordset::SetBookmark(const store::Bookmark& mark) { Cursor().GoTo(mark); }
store::Bookmark Recordset::LastModified() const {
  return cursor_ ? cursor_->LastModified() : store::Bookmark{};
}
void Recordset::Requery() { Cursor().Requery(); }
void Recordset::Close() { cursor_.reset(); }

// --- TableDef

std::vector<Field> TableDef::Fields() const {
  std::vector<Field> fields;
  if (!connection_) {
    for (const auto& column : building_.columns) fields.push_back(ToField(column));
    return fields;
  }
  const auto schema = connection_->Tables();
  if (const auto* table = schema->Find(name_))
    for (const auto& column : table->columns) fields.push_back(ToField(column));
  return fields;
}

std::vector<Index> TableDef::Indexes() const {
  const auto schema = connection_ ? connection_->Tables() : nullptr;
  const store::TableInfo* table = connection_ ? schema->Find(name_) : &building_;
  std::vector<Index> indexes;
  if (table)
    for (const auto& index : table->indexes)
      indexes.push_back(
          {index.name, index.columns, index.primary, index.required, index.unique, index.exceptEmpty});
  return indexes;
}

void TableDef::AppendField(const Field& field) {
  if (connection_)
    connection_->AddColumn(name_, ToColumn(field));
  else
    building_.columns.push_back(ToColumn(field));
}

void TableDef::DeleteField(std::string_view name) {
  if (connection_) return connection_->DropColumn(name_, name);
  std::erase_if(building_.columns, [&](const auto& column) { return rt::EqualNoCase(column.name, name); });
}

void TableDef::RenameField(std::string_view name, std::string_view newName) {
  if (connection_) return connection_->RenameColumn(name_, name, newName);
  for (auto& column : building_.columns)
    if (rt::EqualNoCase(column.name, name)) column.name = newName;
}

void TableDef::AppendIndex(const Index& index) {
  const store::IndexInfo info{index.name,   index.fields,   index.primary,
                              index.unique, index.required, index.exceptEmpty};
  if (connection_)
    connection_->CreateIndex(name_, info);
  else
    building_.indexes.push_back(info);
}

void TableDef::DeleteIndex(std::string_view name) {
  if (connection_) return connection_->DropIndex(name_, name);
  std::erase_if(building_.indexes, [&](const auto& index) { return rt::EqualNoCase(index.name, name); });
}

// --- Database

store::Connection& Database::Connection() {
  if (!connection_) throw StoreError(store::kItemNotFound, "The data base is closed.");
  return *connection_;
}

std::shared_ptr<Recordset> Database::OpenRecordset(std::string_view source, RecordsetType type,
                                                   Access access) {
  Connection();
  const bool readOnly = access == Access::ReadOnly || type == RecordsetType::Snapshot;
  const auto locking = readOnly ? store::Locking::ReadOnly : store::Locking::Pessimistic;
  std::unique_ptr<store::Cursor> cursor;
  if (store::IsQuery(source)) {
    if (type == RecordsetType::Table)
      throw StoreError(store::kTableNotFound, "A table recordset needs a table's name, not a query.");
    cursor = store::Cursor::OpenQuery(connection_, source, locking);
  } else if (type == RecordsetType::Table) {
    cursor = store::Cursor::OpenTable(connection_, WithoutBrackets(source), locking);
  } else {
    cursor =
        store::Cursor::OpenQuery(connection_, "SELECT * FROM [" + WithoutBrackets(source) + "]", locking);
  }
  auto recordset = std::make_shared<Recordset>(std::move(cursor));
  std::erase_if(recordsets_, [](const auto& opened) { return opened.expired(); });
  recordsets_.push_back(recordset);
  return recordset;
}

std::int64_t Database::Execute(std::string_view sql) { return Connection().Execute(sql); }

std::vector<std::string> Database::TableNames() {
  std::vector<std::string> names;
  for (const auto& table : Connection().Tables()->tables) names.push_back(table.name);
  return names;
}

TableDef Database::Table(std::string_view name) {
  const auto schema = Connection().Tables();
  const auto* found = schema->Find(WithoutBrackets(name));
  if (!found) throw StoreError(store::kItemNotFound, "There is no table '" + std::string(name) + "'.");
  TableDef table(found->name);
  table.connection_ = connection_;
  return table;
}

void Database::AppendTable(const TableDef& table) {
  store::TableInfo info = table.building_;
  info.name = table.name_;
  Connection().CreateTable(info);
}

void Database::DeleteTable(std::string_view name) { Connection().DropTable(WithoutBrackets(name)); }
std::vector<store::RelationInfo> Database::Relations() { return Connection().Relations(); }
void Database::AppendRelation(const store::RelationInfo& relation) { Connection().AddRelation(relation); }

const std::string& Database::Name() const {
  if (!connection_) throw StoreError(store::kItemNotFound, "The data base is closed.");
  return connection_->Path();
}

void Database::Close() {
  for (const auto& opened : recordsets_)
    if (const auto recordset = opened.lock()) recordset->Close();
  recordsets_.clear();
  connection_.reset();
}

// --- Workspace

template <class Work>
void Workspace::OnEach(Work work) {
  std::erase_if(databases_, [](const auto& opened) { return opened.expired(); });
  for (const auto& opened : databases_) {
    const auto database = opened.lock();
    if (database && database->IsOpen()) work(database->Connection());
  }
}

std::shared_ptr<Database> Workspace::OpenDatabase(const std::string& path, bool exclusive, bool readOnly) {
  auto connection = store::Engine::Of(path).Open(
      {path, exclusive ? store::Share::Exclusive : store::Share::Shared, readOnly});
  for (int i = 0; i < depth_; ++i) connection->BeginTrans();
  auto database = std::make_shared<Database>(std::move(connection));
  databases_.push_back(database);
  return database;
}

void Workspace::BeginTrans() {
  OnEach([](store::Connection& connection) { connection.BeginTrans(); });
  ++depth_;
}

void Workspace::CommitTrans(Commit how) {
  if (depth_ == 0) throw StoreError(store::kTransactionMissing, "There is no transaction to commit.");
  OnEach([how](store::Connection& connection) { connection.CommitTrans(how); });
  --depth_;
}

void Workspace::RollbackTrans() {
  if (depth_ == 0) throw StoreError(store::kTransactionMissing, "There is no transaction to roll back.");
  OnEach([](store::Connection& connection) { connection.RollbackTrans(); });
  --depth_;
}

void Workspace::EnterGroup() {
  OnEach([](store::Connection& connection) { connection.EnterGroup(); });
}

void Workspace::FinishGroup() {
  OnEach([](store::Connection& connection) { connection.FinishGroup(); });
}

void Workspace::AbandonGroup() {
  OnEach([](store::Connection& connection) { connection.AbandonGroup(); });
}

void Workspace::Close() {
  for (const auto& opened : databases_)
    if (const auto database = opened.lock()) database->Close();
  databases_.clear();
  depth_ = 0;
}

// --- DBEngine

namespace DBEngine {

std::shared_ptr<Workspace> CreateWorkspace(const std::string& name, const std::string& user,
                                           const std::string&, int) {
  return std::make_shared<Workspace>(name, user);
}

std::shared_ptr<Database> CreateDatabase(Workspace& workspace, const std::string& path) {
  store::Engine::ForNewFiles().Create(path);
  return workspace.OpenDatabase(path);
}

std::shared_ptr<store::Compaction> CompactDatabase(const std::string& source, const std::string& target) {
  return store::Engine::Of(source).Compact(source, target);
}

void Idle(int) {}
std::string Version() { return "4.0"; }

}  // namespace DBEngine

}  // namespace dao
