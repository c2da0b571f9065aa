#include "platform/store/GroupCaches.h"

#include <algorithm>
#include <deque>

#include "platform/store/RowList.h"
#include "platform/store/Session.h"

namespace store {
namespace {

constexpr std::size_t kMostCachedRows = 50000;
constexpr std::size_t kMostKeptUndo = 64;

}  // namespace

RowCache* GroupCaches::Of(int table) const {
  const auto found = caches_.find(table);
  return found == caches_.end() ? nullptr : found->second.get();
}

std::shared_ptr<RowCache> GroupCaches::Make(std::shared_ptr<const Schema> schema, const TableInfo& table,
                                            const IndexInfo& index, const Statements& statements) {
  auto& cache = caches_[table.number];
  if (!cache) cache = std::make_shared<RowCache>(std::move(schema), table, index, statements);
  return cache;
}

bool GroupCaches::AnyDirty() const {
  return std::any_of(caches_.begin(), caches_.end(),
                     [](const auto& cache) { return !cache.second->Dirty().empty(); });
}

bool GroupCaches::AnyCommittedDirty() const {
  std::vector<rt::Value> image;
  for (const auto& [table, cache] : caches_)
    for (const auto& row : cache->Dirty())
      if (!TouchedByTransaction(*row) || CommittedImage(*row, image)) return true;
  return false;
}

CacheUndo& GroupCaches::NoteChange(RowCache& cache, const std::shared_ptr<CachedRow>& row,
                                   bool inTransaction) {
  CacheUndo* undo = &unused_;
  if (inTransaction) {
    if (used_ == undo_.size()) undo_.emplace_back();
    undo = &undo_[used_++];
    undo->cache = &cache;
    undo->row = row;
    undo->wasThere = true;
    undo->wasDirty = row->dirty;
  }
  undo->before.clear();
  if (!row->dirty) {
    row->dirty = true;
    cache.Dirty().push_back(row);
  }
  return *undo;
}

void GroupCaches::NoteAdded(RowCache& cache, const std::string& key, const std::shared_ptr<CachedRow>& row,
                            bool inTransaction) {
  CacheUndo& undo = NoteChange(cache, row, inTransaction);
  undo.wasThere = false;
  undo.wasDirty = false;
  undo.key = key;
  cache.Rows()[key] = row;
}

void GroupCaches::UndoTo(std::size_t mark) {
  while (used_ > mark) {
    CacheUndo& entry = undo_[--used_];
    for (auto before = entry.before.rbegin(); before != entry.before.rend(); ++before)
      entry.row->values[before->first] = std::move(before->second);
    entry.row->dirty = entry.wasDirty;
    if (!entry.wasThere) entry.cache->Rows()[entry.key] = nullptr;
    if (!entry.wasDirty) std::erase(entry.cache->Dirty(), entry.row);
  }
  if (mark == 0) ForgetUndo();
}

void GroupCaches::ForgetUndo() {
  used_ = 0;
  if (undo_.size() > kMostKeptUndo) undo_.resize(kMostKeptUndo);
}

bool GroupCaches::TouchedByTransaction(const CachedRow& row) const {
  return std::any_of(undo_.begin(), undo_.begin() + static_cast<std::ptrdiff_t>(used_),
                     [&](const CacheUndo& entry) { return entry.row.get() == &row; });
}

bool GroupCaches::CommittedImage(const CachedRow& row, std::vector<rt::Value>& values) const {
  values = row.values;
  bool wasDirty = false;
  for (std::size_t i = used_; i > 0; --i) {
    const CacheUndo& entry = undo_[i - 1];
    if (entry.row.get() != &row) continue;
    for (auto before = entry.before.rbegin(); before != entry.before.rend(); ++before)
      values[before->first] = before->second;
    wasDirty = entry.wasThere && entry.wasDirty;
  }
  return wasDirty;
}

void GroupCaches::Store(Session& session, Rows rows) {
  for (auto& [table, cache] : caches_) {
    RowList changed;
    RowList added;
    std::vector<CachedRow*> addedRows;
    std::deque<std::vector<rt::Value>> images;
    for (const auto& row : cache->Dirty()) {
      const std::vector<rt::Value>* values = &row->values;
      if (rows == Rows::Committed && TouchedByTransaction(*row)) {
        if (!CommittedImage(*row, images.emplace_back())) continue;
        values = &images.back();
      }
      if (row->id != 0) {
        changed.Add(row->id, *values);
      } else {
        added.Add(*values);
        addedRows.push_back(row.get());
      }
    }
    changed.Sort();
    if (changed.Count() > 0) session.UpdateMany(cache->Update(), changed);
    if (added.Count() == 0) continue;
    std::int64_t id = session.InsertMany(cache->InsertMany(), added);
    for (CachedRow* row : addedRows) row->newId = id++;
  }
}

void GroupCaches::Stored(Rows rows) {
  for (auto& [table, cache] : caches_) {
    std::vector<std::shared_ptr<CachedRow>> still;
    for (const auto& row : cache->Dirty()) {
      if (row->newId != 0) row->id = row->newId;
      row->newId = 0;
      if (rows == Rows::Committed && TouchedByTransaction(*row))
        still.push_back(row);
      else
        row->dirty = false;
    }
    cache->Dirty() = std::move(still);
  }
  if (rows == Rows::Committed)
    for (std::size_t i = 0; i < used_; ++i) undo_[i].wasDirty = false;
}

void GroupCaches::Spill(int table, const Keep& settled, const Keep& open) {
  const auto found = caches_.find(table);
  if (found == caches_.end()) return;
  const std::shared_ptr<RowCache> cache = found->second;
  const auto write = [&](const std::vector<rt::Value>& values, CachedRow& row, const Keep& keep) {
    Change change;
    change.table = table;
    change.changed = 1;
    if (row.id != 0) {
      change.sql = cache->UpdateStatement();
      change.values = cache->UpdateValues(values, row.id);
      keep(std::move(change));
    } else {
      change.sql = cache->InsertStatement();
      change.values = cache->InsertValues(values);
      row.id = keep(std::move(change));
    }
  };
  // First what earlier transactions of the group left, so that undoing the open one brings exactly that back.
  std::vector<rt::Value> image;
  for (const auto& row : cache->Dirty())
    if (!TouchedByTransaction(*row))
      write(row->values, *row, settled);
    else if (CommittedImage(*row, image))
      write(image, *row, settled);
  for (const auto& row : cache->Dirty())
    if (TouchedByTransaction(*row)) write(row->values, *row, open);
  const auto kept = std::remove_if(undo_.begin(), undo_.begin() + static_cast<std::ptrdiff_t>(used_),
                                   [&](const CacheUndo& entry) { return entry.cache == cache.get(); });
  used_ = static_cast<std::size_t>(kept - undo_.begin());
  cache->Retire();
  caches_.erase(found);
}

void GroupCaches::ForgetClean() {
  for (auto& [table, cache] : caches_) {
    std::erase_if(cache->Rows(), [](const auto& entry) { return !entry.second || !entry.second->dirty; });
    cache->ForgetRead();
  }
}

void GroupCaches::ForgetAll() {
  ForgetUndo();
  for (auto& [table, cache] : caches_) cache->Retire();
  caches_.clear();
}

void GroupCaches::Trim() {
  for (auto& [table, cache] : caches_) {
    if (cache->Rows().size() <= kMostCachedRows) continue;
    cache->Rows().clear();
    cache->ForgetRead();
  }
}

std::vector<int> GroupCaches::TablesOfTransaction() const {
  std::vector<int> tables;
  for (std::size_t i = 0; i < used_; ++i) {
    const int table = undo_[i].cache->Table().number;
    if (std::find(tables.begin(), tables.end(), table) == tables.end()) tables.push_back(table);
  }
  return tables;
}

}  // namespace store
