// Rows of one table that a group of commits changes again and again, kept in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/runtime/Value.h"
#include "platform/store/RecordWrites.h"
#include "platform/store/Schema.h"

namespace store {

class Statements;

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
  RowCache(std::shared_ptr<const Schema> schema, const TableInfo& table, const IndexInfo& index,
           const Statements& statements);

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

  /// What was asked before about the records with this value in the first field of their key.
  enum class Asked {
    Once,      ///< for one record; or the others cannot be read in advance
    Again,     ///< so much that all of them should be read now
    All,       ///< they have all been read: one that is missing is not in the file
    OneByOne,  ///< they cannot all be read: there are too many of them, or one has an impossible value
  };
  /// A record is missing here. As long as this connection is alone in writing, what is read stays true, and
  /// the first one is enough for Again. Otherwise it takes two.
  Asked NoteMissing(const rt::Value& leading);
  /// What an attempt to read all records with this value has come to.
  void NoteRead(const rt::Value& leading, Asked result) { asked_[KeyOf({leading})] = result; }
  /// Somebody else has written, or the rows are given up: forgets which records have been read.
  void ForgetRead() {
    asked_.clear();
    alone_ = false;
  }

  /// A change of all columns but the key, for rows as they are kept here.
  const RecordUpdate& Update() const { return *update_; }
  /// An addition of all columns but the counter, for many rows as they are kept here and for one.
  const std::string& InsertMany() const { return insertMany_; }
  const std::shared_ptr<const std::string>& InsertStatement() const { return insertOne_; }
  std::shared_ptr<const std::string> UpdateStatement() const { return {update_, &update_->one}; }
  /// The values that the statements for one row take; the ID is the last, Null for a new one.
  std::vector<rt::Value> UpdateValues(const std::vector<rt::Value>& row, std::int64_t id) const;
  std::vector<rt::Value> InsertValues(const std::vector<rt::Value>& row) const;

 private:
  bool CanReadAll() const;

  std::shared_ptr<const Schema> schema_;
  const TableInfo& table_;
  const IndexInfo& index_;
  std::vector<std::size_t> keyColumns_;
  std::vector<WrittenColumn> inserted_;  ///< all columns but the counter
  std::vector<WrittenColumn> updated_;   ///< those that are not part of the key either
  std::shared_ptr<const RecordUpdate> update_;
  std::string insertMany_;
  std::shared_ptr<const std::string> insertOne_;
  bool canReadAll_;
  bool alone_ = true;                             ///< nobody else has written since the cache began
  std::unordered_map<std::string, Asked> asked_;  ///< by the first value of the key
  std::unordered_map<std::string, std::shared_ptr<CachedRow>> rows_;
  std::vector<std::shared_ptr<CachedRow>> dirty_;
  bool retired_ = false;
};

}  // namespace store
