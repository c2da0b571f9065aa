#include "platform/store/RecordCursor.h"

#include "platform/runtime/Text.h"
#include "platform/store/Numbers.h"

namespace store {

RecordCursor::RecordCursor(std::shared_ptr<Connection> connection, std::shared_ptr<const QueryPlan> plan,
                           std::vector<rt::Value> parameters, Locking locking)
    : connection_(std::move(connection)),
      impl_(&connection_->Internals()),
      plan_(std::move(plan)),
      changes_(&impl_->ChangesOf(Table())),
      parameters_(std::move(parameters)),
      locking_(locking) {}

RecordCursor::~RecordCursor() { ReleaseEdit(); }

void RecordCursor::Detach() {
  LeaveEdit();
  connection_.reset();
}

int RecordCursor::FieldIndex(std::string_view name) const {
  const auto& fields = plan_->fields;
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (rt::EqualNoCase(fields[i].name, name)) return static_cast<int>(i);
  // "table.column" finds the column also where its bare name was enough.
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (!fields[i].table.empty() && name.size() == fields[i].table.size() + 1 + fields[i].column.size() &&
        rt::EqualNoCase(fields[i].table + "." + fields[i].column, name))
      return static_cast<int>(i);
  throw StoreError(kItemNotFound, "There is no field '" + std::string(name) + "' in this recordset.");
}

void RecordCursor::NeedRow() const {
  if (!OnRow()) throw StoreError(kNoCurrentRecord, "No current record.");
}

void RecordCursor::LeaveRetiredCache() {
  if (!cachedRow_) return;
  bool good = !cache_->Retired();
  if (good && !cachedRow_->dirty) {
    // A row that was merely read is as old as its group: others may have changed it since, while the program
    // waited.
    const auto kept = cache_->Rows().find(cacheKey_);
    good = impl_->InGroup() && kept != cache_->Rows().end() && kept->second == cachedRow_;
  }
  if (good) return;
  const std::int64_t key = cachedRow_->id;
  cachedRow_ = nullptr;
  cache_ = nullptr;
  StandInFile(key);
}

bool RecordCursor::FetchByKeys(const std::int64_t* keys, RawRow& row) {
  const int width = static_cast<int>(plan_->translation.tables.size());
  Question use(*impl_, plan_->translation, plan_->row);
  use.BindAll(parameters_);
  for (int i = 0; i < width; ++i) use.BindKey(i, keys[i]);
  if (!use.Step()) return false;
  if (keys[0] != kNoKey && use.IsNull(0)) return false;
  use.Read(row, width, static_cast<int>(plan_->fields.size()));
  return true;
}

rt::Value RecordCursor::ValueOf(int field, const RawRow& row) {
  const auto at = static_cast<std::size_t>(field);
  rt::Value value = row.Decode(field, plan_->types[at]);
  if (plan_->apart[at].empty() || value.IsNull()) return value;
  const Bookmark keys = Mark();
  Question use(*impl_, plan_->translation, plan_->apart[at]);
  for (std::size_t i = 0; i < keys.size(); ++i) use.BindKey(static_cast<int>(i), keys[i]);
  if (!use.Step()) throw StoreError(kRecordDeleted, "Record is deleted.");
  RawRow alone;
  use.Read(alone, 0, 1);
  return alone.Decode(0, plan_->types[at]);
}

rt::Value RecordCursor::Get(int field) {
  const auto at = static_cast<std::size_t>(field);
  const int column = plan_->leadingColumn[at];
  if (state_ != State::Viewing && column >= 0) {
    const auto place = static_cast<std::size_t>(column);
    if (buffer_[place]) return *buffer_[place];
    if (state_ == State::Adding) {
      const ColumnInfo& info = plan_->leading->columns[place];
      if (info.type == ColumnType::Boolean) return false;
      if (info.type != ColumnType::Counter) return rt::Null{};
      // Asked for before the record is stored: the number is taken for it now.
      impl_->BeforeRead(Table());
      impl_->CheckNumbersLeft(*plan_->leading);
      buffer_[place] = static_cast<std::int32_t>(impl_->ReserveId(*plan_->leading));
      return *buffer_[place];
    }
  }
  if (state_ == State::Adding) return rt::Null{};
  NeedRow();
  LeaveRetiredCache();
  if (cachedRow_ && plan_->leading->columns[static_cast<std::size_t>(column)].type == ColumnType::Counter) {
    // It gets its number when it goes to the file.
    if (cachedRow_->id == 0) impl_->SpillCache(Table());
    return static_cast<std::int32_t>(cachedRow_->id);
  }
  if (cachedRow_) return cachedRow_->values[static_cast<std::size_t>(column)];
  ReadRow();
  return ValueOf(field, *row_);
}

void RecordCursor::Set(int field, const rt::Value& value) {
  if (state_ == State::Viewing)
    throw StoreError(kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  const int column = plan_->leadingColumn[static_cast<std::size_t>(field)];
  if (column < 0)
    throw StoreError(kCannotUpdate, "The field '" + plan_->fields[static_cast<std::size_t>(field)].name +
                                        "' cannot be updated.");
  const auto place = static_cast<std::size_t>(column);
  const ColumnInfo& info = plan_->leading->columns[place];
  rt::Value fitted = FitToColumn(info, value);
  if (info.type == ColumnType::Counter && state_ == State::Editing) {
    if (fitted == Get(field)) return;  // written back unchanged, as a probe does
    throw StoreError(kCannotUpdate, "The field '" + info.name + "' numbers itself and cannot be updated.");
  }
  buffer_[place] = std::move(fitted);
  changed_ = true;
}

// --- taking and letting go

void RecordCursor::HoldForEdit() {
  const std::int64_t row = RowKey();
  if (row == 0) return;  // a row of this group, not in the file yet
  CheckLockable(*plan_->leading, row);
  const bool transaction = impl_->Depth() > 0;
  std::optional<Holder> refused;
  if (transaction || impl_->InGroup()) refused = impl_->HoldRecord(Table(), row);
  // Outside of a transaction the group may end before the edit does.
  if (!transaction && !refused) refused = impl_->Records().TakeForEdit(Table(), row);
  if (refused) throw Refusal(refused->hold == Hold::Edit ? kEditLocked : kRecordLocked, *refused);
  if (transaction) return;
  holding_ = true;
  heldTable_ = Table();
  heldRow_ = row;
}

void RecordCursor::ReleaseEdit() {
  if (!holding_) return;
  holding_ = false;
  impl_->Records().ReleaseEdit(heldTable_, heldRow_);
}

void RecordCursor::LeaveEdit() {
  state_ = State::Viewing;
  ReleaseEdit();
}

void RecordCursor::Edit() {
  if (locking_ == Locking::ReadOnly || !plan_->keyed || impl_->Request().readOnly)
    throw StoreError(kReadOnly, "Cannot update. The data base or the recordset is read-only.");
  LeaveEdit();
  NeedRow();
  LeaveRetiredCache();
  if (locking_ == Locking::Pessimistic) HoldForEdit();
  if (!cachedRow_) {
    try {
      // Inside a group nobody can have changed what was read inside it.
      if (impl_->InGroup())
        ReadRow();
      else
        ReadRowAgain();
    } catch (...) {
      ReleaseEdit();
      throw;
    }
  }
  buffer_.assign(plan_->leading->columns.size(), std::nullopt);
  changed_ = false;
  editedInGroup_ = impl_->InGroup() && locking_ == Locking::Pessimistic;
  editedAt_ = Epoch();
  state_ = State::Editing;
}

void RecordCursor::AddNew() {
  if (locking_ == Locking::ReadOnly || !plan_->keyed || impl_->Request().readOnly)
    throw StoreError(kReadOnly, "Cannot update. The data base or the recordset is read-only.");
  LeaveEdit();
  buffer_.assign(plan_->leading->columns.size(), std::nullopt);
  changed_ = false;
  state_ = State::Adding;
}

void RecordCursor::CancelUpdate() {
  if (state_ == State::Viewing)
    throw StoreError(kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  LeaveEdit();
}

// --- storing

void RecordCursor::CheckRequired(const std::vector<std::optional<rt::Value>>& buffer, bool adding) const {
  for (std::size_t i = 0; i < buffer.size(); ++i) {
    const ColumnInfo& column = plan_->leading->columns[i];
    if (!column.required || column.type == ColumnType::Counter) continue;
    if (buffer[i] ? buffer[i]->IsNull() : adding)
      throw StoreError(kFieldRequired, InColumn(column, "The field cannot be Null: a value is required."));
  }
}

void RecordCursor::Update() {
  if (state_ == State::Viewing)
    throw StoreError(kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  CheckRequired(buffer_, state_ == State::Adding);
  if (state_ == State::Adding)
    StoreNew();
  else
    StoreEdit();
  LeaveEdit();
}

void RecordCursor::StoreEdit() {
  NeedRow();
  LeaveRetiredCache();
  if (changed_ && cachedRow_ && ChangesCacheKey()) {
    impl_->SpillCache(Table());
    LeaveRetiredCache();
  }
  const std::int64_t key = RowKey();
  lastAdded_ = key == 0 ? cachedRow_ : nullptr;
  lastModified_ = key == 0 ? Bookmark{} : Mark();
  if (!changed_) return;
  if (cachedRow_) {
    auto& before = impl_->Caches().NoteChange(*cache_, cachedRow_, impl_->Depth() > 0).before;
    for (std::size_t i = 0; i < buffer_.size(); ++i) {
      if (!buffer_[i]) continue;
      std::swap(cachedRow_->values[i], *buffer_[i]);
      before.emplace_back(i, std::move(*buffer_[i]));
    }
    NoteTableChange();
    return;
  }
  CheckLockable(*plan_->leading, key);
  if (locking_ == Locking::Optimistic) {
    const auto refused = impl_->HoldRecord(Table(), key);
    if (refused) throw Refusal(kSaveLocked, *refused);
  }
  Change change;
  change.table = Table();
  columns_.assign(buffer_.size(), false);
  for (std::size_t i = 0; i < buffer_.size(); ++i) {
    if (!buffer_[i]) continue;
    columns_[i] = true;
    change.values.push_back(*buffer_[i]);
  }
  change.values.push_back(KeyValue(key));
  if (columns_ != changedBefore_) PrepareUpdate();
  change.update = update_;
  change.sql = {update_, &update_->one};
  try {
    Writing writing(*impl_);
    impl_->SpillCache(Table());
    if (editedInGroup_ && updateCanWait_ && impl_->InGroup() && editedAt_ == Epoch())
      impl_->WriteLater(std::move(change));
    else if (impl_->Write(std::move(change)) == 0)
      throw StoreError(kRecordDeleted, "Record is deleted.");
    NoteTableChange();
    writing.Done();
  } catch (...) {
    impl_->ReleaseAfterWrite();
    throw;
  }
  impl_->ReleaseAfterWrite();
  RowStored(key);
}

/// Makes the statements that change the columns of the edit.
void RecordCursor::PrepareUpdate() {
  std::vector<WrittenColumn> written;
  updateCanWait_ = true;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (!columns_[i]) continue;
    const ColumnInfo& column = plan_->leading->columns[i];
    written.push_back({column.name, written.size()});
    // Doubled keys must be reported at once, and pictures would fill the memory.
    if (column.type == ColumnType::LongBinary) updateCanWait_ = false;
    for (const auto& index : plan_->leading->indexes)
      for (const auto& used : index.columns)
        if ((index.unique || index.primary) && rt::EqualNoCase(used, column.name)) updateCanWait_ = false;
  }
  update_ = std::make_shared<const RecordUpdate>(impl_->Texts().UpdateByKey(*plan_->leading, written));
  changedBefore_ = columns_;
}

bool RecordCursor::ChangesCacheKey() const {
  for (std::size_t i = 0; i < buffer_.size(); ++i)
    if (buffer_[i] && cache_->IsKey(i) && *buffer_[i] != cachedRow_->values[i]) return true;
  return false;
}

bool RecordCursor::StoreNewInCache(std::vector<rt::Value>& values) {
  // Only where a Seek of this group has just found that there is no such row.
  if (!cache_ || cache_->Retired() || !impl_->InGroup() || impl_->Depth() > 1 || !noMatch_ ||
      cacheKey_.empty())
    return false;
  if (cache_->KeyOfRow(values) != cacheKey_) return false;
  const auto absent = cache_->Rows().find(cacheKey_);
  if (absent == cache_->Rows().end() || absent->second) return false;
  for (std::size_t i = 0; i < buffer_.size(); ++i)
    if (plan_->leading->columns[i].type == ColumnType::Counter && buffer_[i]) return false;
  auto row = std::make_shared<CachedRow>();
  row->values = std::move(values);
  impl_->Caches().NoteAdded(*cache_, cacheKey_, row, impl_->Depth() > 0);
  NoteTableChange();
  lastAdded_ = std::move(row);
  return true;
}

void RecordCursor::StoreNew() {
  const TableInfo& table = *plan_->leading;
  std::vector<rt::Value> row;
  row.reserve(buffer_.size());
  for (std::size_t i = 0; i < buffer_.size(); ++i) {
    if (buffer_[i])
      row.push_back(*buffer_[i]);
    else if (table.columns[i].type == ColumnType::Boolean)
      row.emplace_back(false);
    else
      row.emplace_back(rt::Null{});
  }
  if (StoreNewInCache(row)) return;
  Change change;
  change.table = Table();
  std::vector<WrittenColumn> written;
  bool counted = false;
  rt::Value key{rt::Null{}};
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (table.columns[i].type == ColumnType::Counter) {
      counted = true;
      key = std::move(row[i]);
      continue;
    }
    written.push_back({table.columns[i].name, written.size()});
    change.values.push_back(std::move(row[i]));
  }
  const bool numbered = !key.IsNull();
  change.values.push_back(std::move(key));
  const int idParameter = static_cast<int>(change.values.size());
  std::int64_t id = 0;
  {
    Writing writing(*impl_);
    impl_->BeforeRead(Table());
    if (counted && !numbered) impl_->CheckNumbersLeft(table);
    change.sql = std::make_shared<const std::string>(impl_->Texts().InsertWithKey(table, written));
    impl_->Write(std::move(change), &id, idParameter);
    NoteTableChange();
    if (counted) impl_->NoteReserved(table.name, id);
    writing.Done();
  }
  lastModified_.assign(plan_->translation.tables.size(), kNoKey);
  lastModified_[0] = id;
  lastAdded_ = nullptr;
  LeaveRetiredCache();
  RowAdded(id);
}

// A row that was added in a group's memory gets its key when it goes to the file.
Bookmark RecordCursor::LastModified() const {
  if (!lastAdded_) return lastModified_;
  if (lastAdded_->id == 0) impl_->SpillCache(Table());
  return {lastAdded_->id};
}

void RecordCursor::Delete() {
  if (locking_ == Locking::ReadOnly || !plan_->keyed || impl_->Request().readOnly)
    throw StoreError(kReadOnly, "Cannot delete. The data base or the recordset is read-only.");
  LeaveEdit();
  NeedRow();
  // A row that a group keeps in memory must be in the file before it can be deleted there.
  if (cachedRow_) impl_->SpillCache(Table());
  LeaveRetiredCache();
  const std::int64_t key = RowKey();
  CheckLockable(*plan_->leading, key);
  if (const auto refused = impl_->HoldRecord(Table(), key)) throw Refusal(kRecordLocked, *refused);
  try {
    Writing writing(*impl_);
    impl_->BeforeRead(Table());
    if (impl_->Write(Table(), impl_->Texts().DeleteByKey(*plan_->leading), {KeyValue(key)}) == 0)
      throw StoreError(kRecordDeleted, "Record is deleted.");
    NoteTableChange();
    writing.Done();
  } catch (...) {
    impl_->ReleaseAfterWrite();
    throw;
  }
  impl_->ReleaseAfterWrite();
  RowDeleted();
}

bool RecordCursor::HeldByThisProcess() const {
  if (!plan_->keyed || Adding() || !OnRow()) return false;
  const std::int64_t row = RowKey();
  if (row == 0) return false;  // a row of this connection's group, not in the file yet
  const auto holder = impl_->Holds().WhoHolds(Table(), row);
  return holder && holder->ownProcess;
}

// --- looking for rows

void RecordCursor::SetIndex(std::string_view) {
  throw StoreError(kCannotUpdate, "Only a table recordset has an index.");
}
void RecordCursor::Seek(const std::vector<rt::Value>&) {
  throw StoreError(kCannotUpdate, "Only a table recordset can seek.");
}
void RecordCursor::FindFirst(std::string_view condition) { Find(condition, true); }
void RecordCursor::FindNext(std::string_view condition) { Find(condition, false); }

void RecordCursor::Find(std::string_view condition, bool first) {
  LeaveEdit();
  noMatch_ = true;
  if (!plan_->keyed) throw StoreError(kCannotUpdate, "This recordset cannot be searched.");
  std::vector<rt::Value> values;
  const auto probe = connection_->Plan(
      "SELECT * FROM [" + plan_->translation.tables[0].name + "] WHERE " + std::string(condition), &values);
  impl_->BeforeRead(probe->translation);
  // Read before the keys are: a change that comes in between leads to another query the next time.
  const FoundKeys::State now{impl_->Version(), Epoch()};
  const bool known = found_.condition == condition && found_.state == now;
  if (!known && !first && FindNear(*probe, values)) {
    noMatch_ = false;
    return;
  }
  if (!known) {
    found_ = {std::string(condition), now, {}};
    Question use(*impl_, probe->translation,
                 impl_->Texts().KeysWhere(probe->translation, Statements::WhichKeys::All));
    use.BindAll(values);
    while (use.Step()) found_.keys.push_back(use.Int64(0));
  }
  const bool hadRow = OnRow();
  noMatch_ = !MoveToOneOf(found_.keys, first);
  if (!noMatch_ || hadRow) return;
  MoveLast();
  if (!AtEnd()) MoveNext();
}

// A caller that changes each row it finds would otherwise ask for all keys again after each change, although
// the next row is near.
bool RecordCursor::FindNear(const QueryPlan& probe, const std::vector<rt::Value>& values) {
  constexpr int kNear = 256;
  if (!OnRow()) return false;
  const Bookmark place = Mark();
  const std::string sql = impl_->Texts().KeysWhere(probe.translation, Statements::WhichKeys::One);
  MoveNext();
  for (int i = 0; i < kNear && !AtEnd(); ++i, MoveNext()) {
    Question use(*impl_, probe.translation, sql);
    use.BindAll(values);
    use.BindKey(0, RowKey());
    if (use.Step()) return true;
  }
  GoTo(place);
  return false;
}

}  // namespace store
