// A cursor over a whole table: in the order of its key or of an index, with Seek.
#include <algorithm>

#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"
#include "platform/store/RecordCursor.h"
#include "platform/store/Statements.h"

namespace store {
namespace {

// More rows at a time where the caller goes on.
constexpr int kAhead = 64;
constexpr int kMostAhead = 256;

/// What FitToColumn would leave unchanged: most sums.
bool FitsAsItIs(const ColumnInfo& column, const rt::Value& value) {
  return (column.type == ColumnType::Currency && value.Type() == rt::ValueType::Currency) ||
         (column.type == ColumnType::Single && value.Type() == rt::ValueType::Single);
}

class TableCursor : public RecordCursor {
 public:
  TableCursor(std::shared_ptr<Connection> connection, std::shared_ptr<const QueryPlan> plan, Locking locking)
      : RecordCursor(std::move(connection), std::move(plan), {}, locking) {
    MoveFirst();
  }

  bool AtBegin() const override { return place_ == Place::Begin || (place_ == Place::End && empty_); }
  bool AtEnd() const override { return place_ == Place::End; }
  std::int64_t Count() override {
    Question use(Impl(), *plan_->leading, Impl().Texts().Count(*plan_->leading));
    return use.Step() ? use.Int64(0) : 0;
  }
  std::int64_t Position() override { return -1; }
  void MoveTo(std::int64_t position) override {
    MoveFirst();
    for (std::int64_t i = 0; i < position && !AtEnd(); ++i) MoveNext();
  }

  void MoveFirst() override {
    Leave();
    if (byIndex_) {
      ReadOrder();
      return StandAt(0);
    }
    Walk(Toward::Next, kNoKey, true);
    empty_ = AtEnd();
  }
  void MoveLast() override {
    Leave();
    if (byIndex_) {
      ReadOrder();
      return StandAt(static_cast<std::int64_t>(order_.size()) - 1);
    }
    Walk(Toward::Previous, INT64_MAX, true);
    empty_ = AtEnd();
  }
  void MoveNext() override {
    if (AtEnd()) throw StoreError(kNoCurrentRecord, "No current record.");
    if (place_ == Place::Begin) return MoveFirst();
    GiveKey();
    Leave();
    if (byIndex_) {
      if (!orderRead_) FindInOrder();
      return StandAt(orderPlace_ + (onDeleted_ ? 0 : 1));
    }
    onDeleted_ = false;
    Impl().GroupTick();
    if (windowEpoch_ == Epoch() && windowPlace_ + 1 < windowKeys_.size()) {
      ++windowPlace_;
      key_ = windowKeys_[windowPlace_];
      return;
    }
    FetchAhead();
  }
  void MovePrevious() override {
    if (AtBegin()) throw StoreError(kNoCurrentRecord, "No current record.");
    if (place_ == Place::End) return MoveLast();
    GiveKey();
    Leave();
    if (byIndex_) {
      if (!orderRead_) FindInOrder();
      return StandAt(orderPlace_ - 1);
    }
    onDeleted_ = false;
    Walk(Toward::Previous, key_, false);
  }

  Bookmark Mark() override {
    NeedRow();
    GiveKey();
    return {key_};
  }
  void GoTo(const Bookmark& mark) override {
    Leave();
    onDeleted_ = false;
    const std::int64_t key = mark.empty() ? kNoKey : mark[0];
    Question use(Impl(), *plan_->leading, Impl().Texts().IsThere(*plan_->leading));
    use.Bind(1, key);
    if (!use.Step()) throw StoreError(kRecordDeleted, "Record is deleted.");
    place_ = Place::Row;
    key_ = key;
    windowEpoch_ = 0;
    if (byIndex_) FindInOrder();
  }
  void Requery() override { MoveFirst(); }

  void SetIndex(std::string_view name) override {
    Leave();
    const IndexInfo* index = plan_->leading->FindIndex(name);
    if (!index)
      throw StoreError(kNotAnIndex, "'" + std::string(name) + "' is not an index in table '" +
                                        plan_->leading->name + "'.");
    index_ = index;
    byIndex_ = !index->primary;
    orderRead_ = false;
    if (!byIndex_) return MoveFirst();
    // Standing on the first row would need the whole order read, which who only seeks never wants.
    place_ = Place::Begin;
    Question any(Impl(), *plan_->leading, Impl().Texts().AnyRow(*plan_->leading));
    empty_ = !any.Step();
    if (empty_) place_ = Place::End;
  }

  void Seek(const std::vector<rt::Value>& key) override {
    Leave();
    onDeleted_ = false;
    if (!index_) throw StoreError(kNotAnIndex, "Seek needs an index.");
    if (key.empty() || key.size() > index_->columns.size())
      throw StoreError(kTypeMismatch, "The index '" + index_->name + "' has " +
                                          std::to_string(index_->columns.size()) + " fields.");
    noMatch_ = true;
    const std::vector<rt::Value> values = Fitted(key);
    if (key.size() == index_->columns.size() && locking_ == Locking::Pessimistic) {
      cache_ = Impl().CacheFor(plan_->schema, *plan_->leading, *index_);
      if (cache_) {
        SeekInCache(values);
        return;
      }
    }
    SeekInFile(values, Connection::Impl::CachedRows::Store);
  }

  bool AddAtOnce(const std::vector<rt::Value>& key, const std::vector<int>& fields,
                 std::span<const rt::Value> values, Direction direction) override {
    if (!index_ || Editing() || locking_ != Locking::Pessimistic || key.size() != index_->columns.size())
      return false;
    if (!CanKeepOn()) sumCache_ = Impl().CacheFor(plan_->schema, *plan_->leading, *index_);
    if (!sumCache_) return false;
    RowCache::KeyOf(key, sumKey_);
    const auto found = sumCache_->Rows().find(sumKey_);
    if (found == sumCache_->Rows().end() || !found->second) return false;
    const std::shared_ptr<CachedRow>& row = found->second;
    if (!FormSums(*row, fields, values, direction)) return false;
    if (row->id != 0 && Impl().HoldRecord(Table(), row->id)) return false;
    auto& before = Impl().Caches().NoteChange(*sumCache_, row, Impl().Depth() > 0).before;
    for (auto& [column, sum] : sums_) {
      rt::Value& value = row->values[column];
      before.emplace_back(column, std::move(value));
      value = std::move(sum);
    }
    NoteTableChange();
    return true;
  }

 protected:
  bool OnRow() const override { return place_ == Place::Row && !onDeleted_; }
  std::int64_t RowKey() const override { return cachedRow_ ? cachedRow_->id : key_; }

  void StandInFile(std::int64_t key) override {
    key_ = key;
    windowEpoch_ = 0;
  }
  void ReadRow() override {
    if (windowEpoch_ == Epoch() && windowPlace_ < windowKeys_.size() && windowKeys_[windowPlace_] == key_) {
      if (window_[windowPlace_].Empty() && !FetchByKeys(&key_, window_[windowPlace_]))
        throw StoreError(kRecordDeleted, "Record is deleted.");
      row_ = &window_[windowPlace_];
      return;
    }
    ReadRowAgain();
  }
  void ReadRowAgain() override {
    Impl().BeforeRead(Table());
    KeepWindow(1);
    if (!FetchByKeys(&key_, window_[0])) {
      windowEpoch_ = 0;
      throw StoreError(kRecordDeleted, "Record is deleted.");
    }
    windowKeys_[0] = key_;
    row_ = &window_[0];
  }
  void RowStored(std::int64_t) override {
    // The rows read ahead are still good; only the one at the place has changed.
    if (windowEpoch_ + 1 != Epoch() || windowPlace_ >= windowKeys_.size()) return;
    windowEpoch_ += 1;
    window_[windowPlace_].Clear();
  }
  void RowAdded(std::int64_t) override {
    orderRead_ = false;
    empty_ = false;
  }
  void RowDeleted() override {
    onDeleted_ = true;
    if (byIndex_ && orderRead_ && orderPlace_ < static_cast<std::int64_t>(order_.size()))
      order_.erase(order_.begin() + orderPlace_);
  }
  bool MoveToOneOf(const std::vector<std::int64_t>& keys, bool first) override {
    if (!first && AtEnd()) return false;
    const bool fromStart = first || place_ == Place::Begin;
    if (!byIndex_) {
      const auto next = fromStart ? keys.begin() : std::upper_bound(keys.begin(), keys.end(), key_);
      if (next == keys.end()) return false;
      Leave();
      onDeleted_ = false;
      place_ = Place::Row;
      empty_ = false;
      key_ = *next;
      windowEpoch_ = 0;
      return true;
    }
    if (fromStart)
      ReadOrder();
    else if (!orderRead_)
      FindInOrder();
    auto at = fromStart ? 0 : orderPlace_ + (onDeleted_ ? 0 : 1);
    for (; at < static_cast<std::int64_t>(order_.size()); ++at) {
      if (!std::binary_search(keys.begin(), keys.end(), order_[static_cast<std::size_t>(at)])) continue;
      Leave();
      StandAt(at);
      return true;
    }
    return false;
  }

 private:
  enum class Place { Begin, Row, End };
  enum class Toward { Next, Previous };

  /// A row that is in a group's memory alone gets its key when it goes to the file.
  void GiveKey() {
    if (!cachedRow_) return;
    if (cachedRow_->id == 0) Impl().SpillCache(Table());
    key_ = cachedRow_->id;
  }

  void Leave() {
    LeaveEdit();
    cachedRow_ = nullptr;
    cache_ = nullptr;
    cacheKey_.clear();
  }

  void KeepWindow(std::size_t count) {
    window_.resize(count);
    windowKeys_.assign(count, kNoKey);
    windowPlace_ = 0;
    windowEpoch_ = Epoch();
  }

  // One step by comparing keys; `edge` says that there is nothing to stand on when there is none.
  void Walk(Toward toward, std::int64_t from, bool edge) {
    const Translation& all = plan_->translation;
    const bool back = toward == Toward::Previous;
    Question use(Impl(), *plan_->leading,
                 back ? Impl().Texts().RowBefore(all) : Impl().Texts().RowsAfter(all, 1));
    use.Bind(1, from);
    if (!use.Step()) {
      place_ = edge || from == INT64_MAX ? Place::End : Place::Begin;
      return;
    }
    const std::int64_t found = use.Int64(0);
    if (found == from || (found < from) != back) OutOfOrder();
    onDeleted_ = false;
    place_ = Place::Row;
    KeepWindow(1);
    key_ = windowKeys_[0] = found;
    use.Read(window_[0], 1, static_cast<int>(plan_->fields.size()));
  }

  /// A damaged file can give keys that are not in their order. Whoever goes on from such a key comes back to
  /// it again and again.
  [[noreturn]] void OutOfOrder() {
    windowEpoch_ = 0;
    throw StoreError(kBadFormat, "Unrecognized data base format '" + Impl().Request().path +
                                     "': it is damaged (the records of '" + plan_->leading->name +
                                     "' are out of order).");
  }

  void FetchAhead() {
    const bool goesOn = windowEpoch_ == Epoch() && windowKeys_.size() > 1;
    const int ahead = goesOn ? kMostAhead : kAhead;
    Question use(Impl(), *plan_->leading, Impl().Texts().RowsAfter(plan_->translation, ahead));
    use.Bind(1, key_);
    KeepWindow(static_cast<std::size_t>(ahead));
    std::size_t count = 0;
    while (use.Step()) {
      windowKeys_[count] = use.Int64(0);
      if (windowKeys_[count] <= (count == 0 ? key_ : windowKeys_[count - 1])) OutOfOrder();
      use.Read(window_[count], 1, static_cast<int>(plan_->fields.size()));
      ++count;
    }
    windowKeys_.resize(count);
    if (count == 0) {
      place_ = Place::End;
      return;
    }
    place_ = Place::Row;
    key_ = windowKeys_[0];
  }

  void ReadOrder() {
    if (orderRead_ && orderEpoch_ == Epoch()) return;
    Question use(Impl(), *plan_->leading, Impl().Texts().KeysByIndex(*plan_->leading, *index_));
    order_.clear();
    while (use.Step()) order_.push_back(use.Int64(0));
    orderRead_ = true;
    orderEpoch_ = Epoch();
  }
  void StandAt(std::int64_t place) {
    empty_ = order_.empty();
    onDeleted_ = false;
    orderPlace_ = place;
    if (place < 0 || place >= static_cast<std::int64_t>(order_.size())) {
      place_ = place < 0 && !order_.empty() ? Place::Begin : Place::End;
      return;
    }
    place_ = Place::Row;
    key_ = order_[static_cast<std::size_t>(place)];
    windowEpoch_ = 0;
  }
  void FindInOrder() {
    ReadOrder();
    orderPlace_ = std::find(order_.begin(), order_.end(), key_) - order_.begin();
  }

  /// The values as the index holds them.
  std::vector<rt::Value> Fitted(const std::vector<rt::Value>& key) const {
    std::vector<rt::Value> values;
    values.reserve(key.size());
    for (std::size_t i = 0; i < key.size(); ++i) {
      const auto column = static_cast<std::size_t>(plan_->leading->Find(index_->columns[i]));
      values.push_back(FitToColumn(plan_->leading->columns[column], key[i]));
    }
    return values;
  }

  /// Most seeks of a cursor have the same form as the one before.
  const std::string& SeekStatement(const std::vector<rt::Value>& key) {
    seekNulls_.clear();
    for (const auto& value : key) seekNulls_.push_back(value.IsNull());
    if (seekIndex_ != index_ || seekNulls_ != seekNullsBefore_) {
      seekStatement_ = Impl().Texts().FirstByIndex(plan_->translation, *index_, seekNulls_);
      seekIndex_ = index_;
      seekNullsBefore_ = seekNulls_;
    }
    return seekStatement_;
  }

  // Finds the row and reads it in one query; true where there is one.
  bool SeekInFile(const std::vector<rt::Value>& key, Connection::Impl::CachedRows cached) {
    Question use(Impl(), *plan_->leading, SeekStatement(key), cached);
    use.BindAll(key);
    if (!use.Step()) {
      place_ = Place::End;
      return false;
    }
    noMatch_ = false;
    place_ = Place::Row;
    KeepWindow(1);
    key_ = windowKeys_[0] = use.Int64(0);
    use.Read(window_[0], 1, static_cast<int>(plan_->fields.size()));
    orderRead_ = false;
    return true;
  }

  void SeekInCache(const std::vector<rt::Value>& key) {
    RowCache::KeyOf(key, cacheKey_);
    auto& rows = cache_->Rows();
    auto found = rows.find(cacheKey_);
    if (found == rows.end()) {
      RowCache::Asked asked = cache_->NoteMissing(key[0]);
      if (asked == RowCache::Asked::Again) {
        asked = ReadAllIntoCache(key[0]);
        found = rows.find(cacheKey_);
      }
      if (found == rows.end()) {
        const bool there =
            asked != RowCache::Asked::All && SeekInFile(key, Connection::Impl::CachedRows::Keep);
        found = rows.emplace(cacheKey_, there ? ForCache(key_, window_[0]) : nullptr).first;
      }
    }
    cachedRow_ = found->second;
    noMatch_ = !cachedRow_;
    place_ = cachedRow_ ? Place::Row : Place::End;
    if (cachedRow_) key_ = cachedRow_->id;
    // What was read ahead, and the place in the index, belong to the row before.
    windowEpoch_ = 0;
    orderRead_ = false;
  }

  std::shared_ptr<CachedRow> ForCache(std::int64_t key, const RawRow& read) {
    auto row = std::make_shared<CachedRow>();
    row->id = key;
    const auto count = plan_->fields.size();
    row->values.reserve(count);
    for (std::size_t i = 0; i < count; ++i) row->values.push_back(ValueOf(static_cast<int>(i), read));
    return row;
  }

  /// Reads all rows with this first value of the index; those that the cache has already are the newer ones.
  RowCache::Asked ReadAllIntoCache(const rt::Value& leading) {
    constexpr int kMost = 512;
    Question use(Impl(), *plan_->leading,
                 Impl().Texts().AllByLeading(plan_->translation, *index_, leading.IsNull(), kMost + 1),
                 Connection::Impl::CachedRows::Keep);
    use.Bind(1, leading);
    RawRow read;
    bool all = true;
    for (int count = 0; use.Step() && (all = all && count < kMost); ++count) {
      use.Read(read, 1, static_cast<int>(plan_->fields.size()));
      try {
        std::shared_ptr<CachedRow> row = ForCache(use.Int64(0), read);
        std::string key = cache_->KeyOfRow(row->values);
        cache_->Rows().try_emplace(std::move(key), std::move(row));
      } catch (const rt::RuntimeError&) {
        all = false;  // a value that no column can hold: only who asks for this very row has to know
      }
    }
    const auto result = all ? RowCache::Asked::All : RowCache::Asked::OneByOne;
    cache_->NoteRead(leading, result);
    return result;
  }

  /// Whether the cache that took the last sums still takes some.
  bool CanKeepOn() const {
    return sumCache_ && !sumCache_->Retired() && sumCache_->IndexName() == index_->name && Impl().InGroup() &&
           Impl().Depth() <= 1;
  }

  /// The sums that the row would have; false where a column cannot take its sum.
  bool FormSums(const CachedRow& row, const std::vector<int>& fields, std::span<const rt::Value> values,
                Direction direction) {
    sums_.clear();
    try {
      for (std::size_t i = 0; i < fields.size(); ++i) {
        const int column = plan_->leadingColumn[static_cast<std::size_t>(fields[i])];
        const auto at = static_cast<std::size_t>(column);
        if (column < 0) return false;
        const rt::Value& old = row.values[at];
        rt::Value sum = direction == Direction::Add ? rt::Add(old, values[i]) : rt::Subtract(old, values[i]);
        const ColumnInfo& info = plan_->leading->columns[at];
        if (sum.IsNull() && info.required) return false;
        if (!FitsAsItIs(info, sum)) sum = FitToColumn(info, sum);
        sums_.emplace_back(at, std::move(sum));
      }
    } catch (const StoreError&) {
      return false;
    } catch (const rt::RuntimeError&) {
      return false;
    }
    return true;
  }

  std::shared_ptr<RowCache> sumCache_;  ///< took the last sums of AddAtOnce
  std::string sumKey_;
  std::vector<std::pair<std::size_t, rt::Value>> sums_;
  std::string seekStatement_;
  const IndexInfo* seekIndex_ = nullptr;  ///< of seekStatement_
  std::vector<bool> seekNullsBefore_;     ///< the same
  std::vector<bool> seekNulls_;
  Place place_ = Place::Begin;
  bool empty_ = false;
  bool onDeleted_ = false;
  std::int64_t key_ = kNoKey;
  std::vector<RawRow> window_;
  std::vector<std::int64_t> windowKeys_;
  std::size_t windowPlace_ = 0;
  std::uint64_t windowEpoch_ = 0;

  const IndexInfo* index_ = nullptr;
  bool byIndex_ = false;
  std::vector<std::int64_t> order_;
  bool orderRead_ = false;
  std::uint64_t orderEpoch_ = 0;
  std::int64_t orderPlace_ = 0;
};

}  // namespace

std::unique_ptr<Cursor> Cursor::OpenTable(std::shared_ptr<Connection> connection, std::string_view table,
                                          Locking locking) {
  std::vector<rt::Value> parameters;
  auto plan = connection->Plan("SELECT * FROM [" + std::string(table) + "]", &parameters);
  return std::make_unique<TableCursor>(std::move(connection), std::move(plan), locking);
}

}  // namespace store
