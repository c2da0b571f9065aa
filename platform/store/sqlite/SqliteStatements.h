// The statements of SQLite: a row's key is its rowid.
#pragma once

#include "platform/store/Statements.h"

namespace store {

class SqliteStatements : public Statements {
 public:
  std::string KeysInOrder(const Translation& query) const override;
  std::string RowsInOrder(const Translation& query) const override;
  std::string RowsInAnyOrder(const Translation& query) const override;
  std::string KeysWhere(const Translation& query, WhichKeys which) const override;
  std::string RowByKeys(const Translation& query) const override;
  std::string RowsByKeys(const Translation& query) const override;
  std::string ValueByKeys(const Translation& query, const std::string& expression) const override;
  std::string Presence(const std::string& column) const override;

  std::string RowsAfter(const Translation& all, std::int64_t rows) const override;
  std::string RowBefore(const Translation& all) const override;
  std::string FirstByIndex(const Translation& all, const IndexInfo& index,
                           const std::vector<bool>& nulls) const override;
  std::string AllByLeading(const Translation& all, const IndexInfo& index, bool null,
                           std::int64_t most) const override;
  std::string KeysByIndex(const TableInfo& table, const IndexInfo& index) const override;
  std::string Count(const TableInfo& table) const override;
  std::string AnyRow(const TableInfo& table) const override;
  std::string IsThere(const TableInfo& table) const override;
  std::string Scan(const TableInfo& table, const std::vector<std::string>& columns) const override;

  RecordUpdate UpdateByKey(const TableInfo& table, const std::vector<WrittenColumn>& columns) const override;
  std::string DeleteByKey(const TableInfo& table) const override;
  std::string InsertWithKey(const TableInfo& table, const std::vector<WrittenColumn>& columns) const override;
  std::string InsertMany(const TableInfo& table, const std::vector<WrittenColumn>& columns) const override;
  std::string InsertNumbered(const Translation& insert, const ColumnInfo& counter,
                             std::size_t first) const override;
  std::string KeysTouched(const Translation& write, std::int64_t rows) const override;
  std::string IsTouched(const Translation& write) const override;

  std::string CreateTable(const TableInfo& table) const override;
  std::string DropTable(const TableInfo& table) const override;
  std::string AddColumn(const TableInfo& table, const ColumnInfo& column) const override;
  std::string DropColumn(const TableInfo& table, std::string_view column) const override;
  std::string RenameColumn(const TableInfo& table, std::string_view column,
                           std::string_view newName) const override;
  std::string CreateIndex(const TableInfo& table, const IndexInfo& index) const override;
  std::string DropIndex(const TableInfo& table, const IndexInfo& index) const override;
  std::string AnyExpectation() const override;
  std::vector<WithValues> Expect(const TableInfo& table, std::string_view index,
                                 const std::vector<std::int64_t>& rows, bool first) const override;

  /// What Prepared::BindKeys binds: a list of lists of keys in JSON.
  static std::string KeyList(const std::int64_t* keys, std::size_t width, std::size_t rows);
};

}  // namespace store
