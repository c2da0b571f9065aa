// The rows of all tables that a group of commits keeps in memory, and what the open transaction did to them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/store/RowCache.h"
#include "platform/store/TransactionLog.h"

namespace store {

class Session;

/// What a cached row was before a change of the open transaction.
struct CacheUndo {
  RowCache* cache = nullptr;
  std::shared_ptr<CachedRow> row;
  std::string key;       ///< of a row that was added
  bool wasThere = true;  ///< false for a row that was added
  bool wasDirty = false;
  std::vector<std::pair<std::size_t, rt::Value>> before;  ///< the columns that were changed
};

/// A changed row is dirty until the group's commit writes it. What the open transaction has changed can be
/// undone, and written as it was before.
class GroupCaches {
 public:
  enum class Rows {
    All,
    Committed,  ///< without what the open transaction has changed
  };

  bool Empty() const { return caches_.empty(); }
  /// Null where nothing of the table is kept.
  RowCache* Of(int table) const;
  std::shared_ptr<RowCache> Make(std::shared_ptr<const Schema> schema, const TableInfo& table,
                                 const IndexInfo& index, const Statements& statements);
  bool AnyDirty() const;
  bool AnyCommittedDirty() const;

  /// Called before the columns are changed and a row is added; `inTransaction` keeps what is needed to undo
  /// it.
  CacheUndo& NoteChange(RowCache& cache, const std::shared_ptr<CachedRow>& row, bool inTransaction);
  void NoteAdded(RowCache& cache, const std::string& key, const std::shared_ptr<CachedRow>& row,
                 bool inTransaction);

  std::size_t UndoMark() const { return used_; }
  void UndoTo(std::size_t mark);
  void ForgetUndo();

  /// Writes the dirty rows into the file's write transaction; Stored is called once it is committed.
  void Store(Session& session, Rows rows);
  void Stored(Rows rows);
  /// Hands the dirty rows of a table over as changes, those of committed transactions first, and forgets the
  /// table. `settled` and `open` make a change and keep it; they give the new ID of an INSERT.
  using Keep = std::function<std::int64_t(Change)>;
  void Spill(int table, const Keep& settled, const Keep& open);

  /// Rows that were merely read may be out of date.
  void ForgetClean();
  void ForgetAll();
  /// Keeps the memory small after a commit.
  void Trim();
  std::vector<int> TablesOfTransaction() const;

 private:
  bool TouchedByTransaction(const CachedRow& row) const;
  /// The row before the open transaction; false where it was not there or not dirty.
  bool CommittedImage(const CachedRow& row, std::vector<rt::Value>& values) const;

  std::map<int, std::shared_ptr<RowCache>> caches_;
  std::vector<CacheUndo> undo_;  ///< only the first used_ count; the others wait to be used again
  std::size_t used_ = 0;
  CacheUndo unused_;
};

}  // namespace store
