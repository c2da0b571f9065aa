// Tables, columns, indexes and relations: making and changing them.
#include "platform/runtime/Text.h"
#include "platform/store/ConnectionImpl.h"

namespace store {
namespace {

const TableInfo& Existing(const Schema& schema, std::string_view table) {
  const TableInfo* found = schema.Find(table);
  if (!found) throw StoreError(kTableNotFound, "Cannot find the table '" + std::string(table) + "'.");
  return *found;
}

// Runs definition statements in one unit, alone with the table.
class Definition {
 public:
  Definition(Connection::Impl& impl, const TableInfo* table) : impl_(impl), writing_(impl) {
    impl.BeforeReadOfAll();
    if (!table || impl.Request().share == Share::Exclusive) return;
    auto holder = impl.Records().TakeTable(table->number);
    if (!holder) {
      for (const std::int64_t row : impl.Records().LeftOut(table->number))
        if (!holder) holder = impl.Holds().WhoHolds(table->number, row);
      if (impl.Depth() > 0) impl.Records().KeepTable(table->number);
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
  {
    Definition definition(*impl_, nullptr);
    definition.Run(impl_->Texts().CreateTable(table));
    definition.Done();
  }
  for (const auto& index : table.indexes)
    if (!index.primary) CreateIndex(table.name, index);
}

void Connection::DropTable(std::string_view table) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  Definition definition(*impl_, &existing);
  definition.Run(impl_->Texts().DropTable(existing));
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
  definition.Run(impl_->Texts().AddColumn(existing, column));
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
  definition.Run(impl_->Texts().DropColumn(existing, column));
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
  definition.Run(impl_->Texts().RenameColumn(existing, column, newName));
  definition.Done();
}

void Connection::CreateIndex(std::string_view table, const IndexInfo& index) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  if (existing.FindIndex(index.name))
    throw StoreError(kIndexExists,
                     "Table '" + existing.name + "' already has an index named '" + index.name + "'.");
  for (const auto& column : index.columns)
    if (existing.Find(column) < 0)
      throw StoreError(kItemNotFound, "There is no field '" + column + "' in table '" + existing.name + "'.");
  Definition definition(*impl_, &existing);
  definition.Run(impl_->Texts().CreateIndex(existing, index));
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
  definition.Run(impl_->Texts().DropIndex(existing, *found));
  definition.Done();
}

void Connection::Expect(std::string_view table, std::string_view index,
                        const std::vector<std::int64_t>& rows) {
  const auto schema = Tables();
  const TableInfo& existing = Existing(*schema, table);
  const Statements& texts = impl_->Texts();
  Writing writing(*impl_);
  const bool first = !Question(*impl_, texts.AnyExpectation()).Step();
  for (auto& [sql, values] : texts.Expect(existing, index, rows, first))
    impl_->WriteDefinition(std::move(sql), std::move(values));
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
