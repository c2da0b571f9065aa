// Rows that a group of commits changes again and again, kept in memory and written once before the group's
// commit.
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
  std::uint64_t changedIn = 0;  ///< the transaction that keeps this row's earlier state for an undo
};

/// The rows of one table by the values of one unique index. An entry without a row says that there is none in
/// the file.
class RowCache {
 public:
  RowCache(std::shared_ptr<const Schema> schema, const TableInfo& table, const IndexInfo& index);

  /// The key as the index compares it: texts without regard to case, Null equal to Null.
  static std::string KeyOf(const std::vector<rt::Value>& key);
  std::string KeyOfRow(const std::vector<rt::Value>& values) const;

  const TableInfo& Table() const { return table_; }
  const std::string& IndexName() const { return index_.name; }
  std::size_t KeyLength() const { return keyColumns_.size(); }
  std::unordered_map<std::string, std::shared_ptr<CachedRow>>& Rows() { return rows_; }
  std::vector<std::shared_ptr<CachedRow>>& Dirty() { return dirty_; }
  /// Whether its rows have gone to the file and are to be read there again.
  bool Retired() const { return retired_; }
  void Retire() { retired_ = true; }

  /// What a write of this row says in the file's SQL: all columns, an UPDATE by the row's ID or an INSERT.
  const std::string& UpdateStatement() const { return update_; }
  const std::string& InsertStatement() const { return insert_; }
  /// The values to bind for either, in order.
  std::vector<rt::Value> Parameters(const CachedRow& row) const;
  /// Binds them to a statement from ?1 on; the index of the last.
  int BindRow(Use& statement, const std::vector<rt::Value>& values) const;

 private:
  std::shared_ptr<const Schema> schema_;
  const TableInfo& table_;
  const IndexInfo& index_;
  std::vector<std::size_t> keyColumns_;
  std::vector<std::size_t> stored_;  ///< the columns that are written: all but the counter
  std::string update_;
  std::string insert_;
  std::unordered_map<std::string, std::shared_ptr<CachedRow>> rows_;
  std::vector<std::shared_ptr<CachedRow>> dirty_;
  bool retired_ = false;
};

/// What a row of a cache was before the running transaction changed it.
struct CacheUndo {
  RowCache* cache = nullptr;
  std::shared_ptr<CachedRow> row;
  std::string key;
  bool wasThere = true;  ///< false for a row that the transaction added
  bool wasDirty = false;
  std::uint64_t wasChangedIn = 0;
  std::vector<rt::Value> before;
};

}  // namespace store
