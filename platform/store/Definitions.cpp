// Tables, columns, indexes and relations: making and changing them.
#include "platform/runtime/Text.h"
#include "platform/store/ConnectionImpl.h"
#include "platform/store/IndexName.h"

namespace store {
namespace {

const TableInfo& Existing(const Schema& schema, std::string_view table) {
  const TableInfo* found = schema.Find(table);
  if (!found) throw StoreError(kTableNotFound, "Cannot find the table '" + std::string(table) + "'.");
  return *found;
}

std::string ColumnDefinition(const ColumnInfo& column) {
  const std::string name = QuoteName(column.name);
  std::string text = name + " " + DeclaredType(column);
  if (column.type == ColumnType::Boolean)
    text += column.defaultTrue ? " NOT NULL DEFAULT 1" : " NOT NULL DEFAULT 0";
  if (column.required && column.type != ColumnType::Boolean && column.type != ColumnType::Counter)
    text += " NOT NULL";
  // Every program that writes the file is held to the size of a text.
  if (column.type == ColumnType::Text)
    text += " CHECK (length(" + name + ") <= " + std::to_string(column.size) + ")";
  if (!column.allowZeroLength) text += " CHECK (" + name + " <> '')";
  return text;
}

// Runs definition statements in one unit, alone with the table.
class Definition {
 public:
  Definition(Connection::Impl& impl, const TableInfo* table) : impl_(impl), writing_(impl) {
    impl.BeforeReadOfAll();
    if (!table || impl.Request().share == Share::Exclusive) return;
    auto holder = impl.Holds().TakeTable(table->number);
    if (!holder) {
      for (const std::int64_t row : impl.Holds().LeftOut(table->number))
        if (!holder) holder = impl.Side().WhoHolds(table->number, row);
      if (impl.Depth() > 0) impl.Holds().KeepTable(table->number);
    }
    if (!holder) return;
    impl.ReleaseAfterWrite();
    throw StoreError(kTableLocked, "The table '" + table->name + "' is in use by user '" + holder->user +
                                       "' on machine '" + holder->computer + "'.");
  }
  ~Definition() {
    impl_.NoteTablesChanged();
    impl_.ReleaseAfterWrite();
  }
  Definition(const Definition&) = delete;
  Definition& operator=(const Definition&) = delete;
  void Run(const std::string& sql, std::vector<rt::Value> values = {}) {
    impl_.WriteDefinition(sql, std::move(values));
  }
  void Done() { writing_.Done(); }

 private:
  Connection::Impl& impl_;
  Writing writing_;
};

}  // namespace

void Connection::CreateTable(const TableInfo& table) {
  if (Tables()->Find(table.name))
    throw StoreError(kTableExists, "Table '" + table.name + "' already exists.");
  std::string body;
  bool counter = false;
  for (const auto& column : table.columns) {
    body += (body.empty() ? "" : ", ") + ColumnDefinition(column);
    counter = counter || column.type == ColumnType::Counter;
  }
  for (const auto& index : table.indexes) {
    if (!index.primary || counter) continue;
    body += ", PRIMARY KEY (";
    for (std::size_t i = 0; i < index.columns.size(); ++i)
      body += (i ? ", " : "") + QuoteName(index.columns[i]);
    body += ")";
  }
  {
    Definition definition(*impl_, nullptr);
    definition.Run("CREATE TABLE " + QuoteName(table.name) + " (" + body + ")");
    definition.Done();
  }
  for (const auto& index : table.indexes)
    if (!index.primary) CreateIndex(table.name, index);
}

void Connection::DropTable(std::string_view table) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  Definition definition(*impl_, &existing);
  definition.Run("DROP TABLE " + QuoteName(existing.name));
  definition.Run("DELETE FROM \"MSysRelationships\" WHERE \"Table\" = ?1 OR \"ForeignTable\" = ?1",
                 {rt::Value(existing.name)});
  definition.Done();
}

void Connection::AddColumn(std::string_view table, const ColumnInfo& column) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  if (existing.Find(column.name) >= 0)
    throw StoreError(kFieldExists,
                     "Field '" + column.name + "' already exists in table '" + existing.name + "'.");
  if (column.type == ColumnType::Counter)
    throw StoreError(kSyntax, "A numbering field cannot be added to a table that exists.");
  Definition definition(*impl_, &existing);
  definition.Run("ALTER TABLE " + QuoteName(existing.name) + " ADD COLUMN " + ColumnDefinition(column));
  definition.Done();
}

void Connection::DropColumn(std::string_view table, std::string_view column) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  if (existing.Find(column) < 0)
    throw StoreError(kItemNotFound,
                     "There is no field '" + std::string(column) + "' in table '" + existing.name + "'.");
  for (const auto& index : existing.indexes)
    for (const auto& used : index.columns)
      if (rt::EqualNoCase(used, column))
        throw StoreError(kFieldInIndex, "Cannot delete the field '" + std::string(column) + "': the index '" +
                                            index.name + "' needs it.");
  Definition definition(*impl_, &existing);
  definition.Run("ALTER TABLE " + QuoteName(existing.name) + " DROP COLUMN " + QuoteName(column));
  definition.Done();
}

void Connection::RenameColumn(std::string_view table, std::string_view column, std::string_view newName) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  if (existing.Find(column) < 0)
    throw StoreError(kItemNotFound,
                     "There is no field '" + std::string(column) + "' in table '" + existing.name + "'.");
  if (existing.Find(newName) >= 0 && !rt::EqualNoCase(column, newName))
    throw StoreError(kFieldExists,
                     "Field '" + std::string(newName) + "' already exists in table '" + existing.name + "'.");
  Definition definition(*impl_, &existing);
  definition.Run("ALTER TABLE " + QuoteName(existing.name) + " RENAME COLUMN " + QuoteName(column) + " TO " +
                 QuoteName(newName));
  definition.Done();
}

void Connection::CreateIndex(std::string_view table, const IndexInfo& index) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  if (existing.FindIndex(index.name))
    throw StoreError(kIndexExists,
                     "Table '" + existing.name + "' already has an index named '" + index.name + "'.");
  std::string columns;
  for (const auto& column : index.columns) {
    if (existing.Find(column) < 0)
      throw StoreError(kItemNotFound, "There is no field '" + column + "' in table '" + existing.name + "'.");
    columns += (columns.empty() ? "" : ", ") + QuoteName(column);
  }
  Definition definition(*impl_, &existing);
  definition.Run(std::string("CREATE ") + (index.unique || index.primary ? "UNIQUE " : "") + "INDEX " +
                 QuoteName(StoredIndexName(existing.name, index.name)) + " ON " + QuoteName(existing.name) +
                 " (" + columns + ")" +
                 (index.exceptEmpty ? " WHERE " + QuoteName(index.columns.front()) + " <> ''" : ""));
  definition.Done();
}

void Connection::DropIndex(std::string_view table, std::string_view index) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  const IndexInfo* found = existing.FindIndex(index);
  if (!found || found->primary)
    throw StoreError(kItemNotFound, "There is no index '" + std::string(index) +
                                        "' that could be deleted from table '" + existing.name + "'.");
  Definition definition(*impl_, &existing);
  definition.Run("DROP INDEX " + QuoteName(StoredIndexName(existing.name, found->name)));
  definition.Done();
}

void Connection::Expect(std::string_view table, std::string_view index,
                        const std::vector<std::int64_t>& rows) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  std::string numbers;
  for (const std::int64_t number : rows) numbers += (numbers.empty() ? "" : " ") + std::to_string(number);
  const std::string stored = StoredIndexName(existing.name, index);
  Writing writing(*impl_);
  // Makes the table of expectations; a second time would take out what is in it.
  const bool made = Question(*impl_, "SELECT 1 FROM sqlite_schema WHERE name = 'sqlite_stat1'").Step();
  if (!made) impl_->WriteDefinition("ANALYZE");
  impl_->WriteDefinition("DELETE FROM sqlite_stat1 WHERE idx = ?1", {rt::Value(stored)});
  impl_->WriteDefinition("INSERT INTO sqlite_stat1 (tbl, idx, stat) VALUES (?1, ?2, ?3)",
                         {rt::Value(existing.name), rt::Value(stored), rt::Value(numbers)});
  impl_->WriteDefinition("ANALYZE sqlite_schema");
  writing.Done();
}

std::vector<RelationInfo> Connection::Relations() {
  std::vector<RelationInfo> relations;
  Question rows(
      *impl_,
      "SELECT \"Name\", \"Table\", \"ForeignTable\", \"Attributes\", \"Column\", \"ForeignColumn\" FROM "
      "\"MSysRelationships\" ORDER BY \"Name\", \"Position\"");
  while (rows.Step()) {
    if (relations.empty() || relations.back().name != rows.Text(0))
      relations.push_back({rows.Text(0), rows.Text(1), rows.Text(2), static_cast<int>(rows.Int64(3)), {}});
    relations.back().columns.emplace_back(rows.Text(4), rows.Text(5));
  }
  return relations;
}

void Connection::AddRelation(const RelationInfo& relation) {
  for (const auto& existing : Relations())
    if (rt::EqualNoCase(existing.name, relation.name))
      throw StoreError(kRelationExists, "A relation named '" + relation.name + "' already exists.");
  const auto schema = Tables();
  const TableInfo& table = Existing(*schema, relation.table);
  const TableInfo& foreign = Existing(*schema, relation.foreignTable);
  Definition definition(*impl_, nullptr);
  for (std::size_t i = 0; i < relation.columns.size(); ++i) {
    const auto& [column, foreignColumn] = relation.columns[i];
    if (table.Find(column) < 0 || foreign.Find(foreignColumn) < 0)
      throw StoreError(kItemNotFound,
                       "The relation '" + relation.name + "' names a field that is not there.");
    definition.Run(
        "INSERT INTO \"MSysRelationships\" VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)",
        {rt::Value(relation.name), rt::Value(table.name), rt::Value(foreign.name), relation.attributes,
         static_cast<std::int32_t>(i), rt::Value(column), rt::Value(foreignColumn)});
  }
  definition.Done();
}

}  // namespace store
