// Rows of one table that a group of commits changes again and again, kept in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/Schema.h"

namespace store {

class Use;

struct CachedRow {
  std::int64_t id = 0;     ///< 0 until it is in the file
  std::int64_t newId = 0;  ///< the ID it was given, until that is committed
  std::vector<rt::Value> values;
  bool dirty = false;
};

/// The rows of one table by the values of one unique index. An entry without a row says that there is none in
/// the file.
class RowCache {
 public:
  RowCache(std::shared_ptr<const Schema> schema, const TableInfo& table, const IndexInfo& index);

  /// The key as the index compares it: texts without regard to case, Null equal to Null.
  static std::string KeyOf(const std::vector<rt::Value>& key);
  /// The same in the place of an earlier text, which saves making a new one.
  static void KeyOf(const std::vector<rt::Value>& key, std::string& text);
  std::string KeyOfRow(const std::vector<rt::Value>& values) const;

  const TableInfo& Table() const { return table_; }
  const std::string& IndexName() const { return index_.name; }
  bool IsKey(std::size_t column) const;
  std::unordered_map<std::string, std::shared_ptr<CachedRow>>& Rows() { return rows_; }
  std::vector<std::shared_ptr<CachedRow>>& Dirty() { return dirty_; }
  /// Whether its rows have gone to the file and are to be read there again.
  bool Retired() const { return retired_; }
  void Retire() { retired_ = true; }

  /// What a write of this row says in the file's SQL: an UPDATE of all columns but the key by the row's ID,
  /// or an INSERT of all columns with the ID, Null for a new one.
  const std::shared_ptr<const std::string>& UpdateStatement() const { return update_; }
  const std::shared_ptr<const std::string>& InsertStatement() const { return insert_; }
  /// The values to bind for either, in order; the ID is the last.
  std::vector<rt::Value> UpdateValues(const std::vector<rt::Value>& row, std::int64_t id) const;
  std::vector<rt::Value> InsertValues(const std::vector<rt::Value>& row) const;
  void BindUpdate(Use& statement, const std::vector<rt::Value>& row, std::int64_t id) const;
  void BindInsert(Use& statement, const std::vector<rt::Value>& row) const;

 private:
  std::shared_ptr<const Schema> schema_;
  const TableInfo& table_;
  const IndexInfo& index_;
  std::vector<std::size_t> keyColumns_;
  std::vector<std::size_t> inserted_;  ///< all columns but the counter
  std::vector<std::size_t> updated_;   ///< those that are not part of the key either
  std::shared_ptr<const std::string> update_;
  std::shared_ptr<const std::string> insert_;
  std::unordered_map<std::string, std::shared_ptr<CachedRow>> rows_;
  std::vector<std::shared_ptr<CachedRow>> dirty_;
  bool retired_ = false;
};

}  // namespace store
