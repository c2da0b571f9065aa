// The rows that a connection keeps in memory while a group of commits is open.
#include <algorithm>

#include "platform/store/ConnectionImpl.h"

namespace store {

std::shared_ptr<RowCache> Connection::Impl::CacheFor(const std::shared_ptr<const Schema>& schema,
                                                     const TableInfo& table, const IndexInfo& index) {
  if (!InGroup() || !index.unique || index.primary || index.exceptEmpty) return nullptr;
  auto found = caches_.find(table.number);
  if (found != caches_.end() && found->second->IndexName() != index.name) {
    SpillCache(table.number);
    found = caches_.end();
  }
  if (found == caches_.end())
    found = caches_.emplace(table.number, std::make_shared<RowCache>(schema, table, index)).first;
  return found->second;
}

void Connection::Impl::KeepForUndo(RowCache& cache, const std::shared_ptr<CachedRow>& row,
                                   const std::string& key, bool wasThere) {
  if (Depth() == 0 || row->changedIn == transactionSerial_) return;
  CacheUndo entry;
  entry.cache = &cache;
  entry.row = row;
  entry.key = key;
  entry.wasThere = wasThere;
  entry.wasDirty = row->dirty;
  entry.wasChangedIn = row->changedIn;
  if (wasThere) entry.before = row->values;
  undo_.push_back(std::move(entry));
  row->changedIn = transactionSerial_;
}

void Connection::Impl::MarkDirty(RowCache& cache, const std::string& key,
                                 const std::shared_ptr<CachedRow>& row) {
  cache.Rows()[key] = row;
  if (row->dirty) return;
  row->dirty = true;
  cache.Dirty().push_back(row);
}

namespace {

// The earliest entry of a row tells what it was before all open transactions.
const CacheUndo* UndoOf(const std::vector<CacheUndo>& undo, const std::shared_ptr<CachedRow>& row) {
  const auto found =
      std::find_if(undo.begin(), undo.end(), [&](const CacheUndo& entry) { return entry.row == row; });
  return found == undo.end() ? nullptr : &*found;
}

}  // namespace

void Connection::Impl::StoreCaches(bool committedOnly) {
  for (auto& [table, cache] : caches_) {
    if (cache->Dirty().empty()) continue;
    Use update(*handle_, cache->UpdateStatement());
    Use insert(*handle_, cache->InsertStatement());
    for (const auto& row : cache->Dirty()) {
      const CacheUndo* undo = committedOnly ? UndoOf(undo_, row) : nullptr;
      if (undo && (!undo->wasThere || !undo->wasDirty)) continue;
      Use& write = row->id != 0 ? update : insert;
      const int last = cache->BindRow(write, undo ? undo->before : row->values);
      if (row->id != 0) write.Bind(last + 1, row->id);
      write.Step();
      write.Reset();
      if (row->id == 0) row->newId = sqlite3_last_insert_rowid(handle_->Db());
    }
  }
}

void Connection::Impl::CachesAreStored(bool committedOnly) {
  for (auto& [table, cache] : caches_) {
    std::vector<std::shared_ptr<CachedRow>> still;
    for (const auto& row : cache->Dirty()) {
      if (row->newId != 0) row->id = row->newId;
      row->newId = 0;
      if (committedOnly && UndoOf(undo_, row))
        still.push_back(row);
      else
        row->dirty = false;
    }
    cache->Dirty() = std::move(still);
  }
  if (committedOnly)
    for (auto& entry : undo_) entry.wasDirty = false;
}

void Connection::Impl::SpillCache(int table) {
  const auto found = caches_.find(table);
  if (found == caches_.end()) return;
  RowCache& cache = *found->second;
  BeginPhysical();
  const auto write = [&](const CachedRow& image, CachedRow& row, std::vector<Change>& log) {
    Change change;
    change.values = cache.Parameters(image);
    if (row.id != 0) {
      change.sql = cache.UpdateStatement();
      change.values.push_back(static_cast<std::int32_t>(row.id));
      change.changed = Run(change, nullptr);
    } else {
      change.sql = cache.InsertStatement();
      change.changed = Run(change, &row.id);
    }
    log.push_back(std::move(change));
  };
  // First what earlier transactions of the group left, so that undoing the open one brings exactly that back.
  for (const auto& row : cache.Dirty()) {
    const CacheUndo* undo = UndoOf(undo_, row);
    if (!undo) {
      write(*row, *row, groupLog_);
    } else if (undo->wasThere && undo->wasDirty) {
      CachedRow before;
      before.values = undo->before;
      write(before, *row, groupLog_);
    }
  }
  for (const auto& row : cache.Dirty())
    if (UndoOf(undo_, row)) write(*row, *row, Depth() > 0 ? log_ : groupLog_);
  std::erase_if(undo_, [&](const CacheUndo& entry) { return entry.cache == &cache; });
  for (auto& mark : undoMarks_) mark = std::min(mark, undo_.size());
  cache.Retire();
  caches_.erase(found);
  NoteChange(table);
}

void Connection::Impl::RetireCaches() {
  for (auto& [table, cache] : caches_) cache->Retire();
  caches_.clear();
}

void Connection::Impl::DropCleanCaches() {
  for (auto& [table, cache] : caches_)
    std::erase_if(cache->Rows(), [](const auto& entry) { return !entry.second || !entry.second->dirty; });
}

}  // namespace store
