// A cursor over a query: its keys read once, its rows in windows.
#include <algorithm>

#include "platform/runtime/Text.h"
#include "platform/store/RecordCursor.h"

namespace store {
namespace {

constexpr std::int64_t kGrowth = 16;
constexpr std::int64_t kMostAhead = 256;

class QueryCursor : public RecordCursor {
 public:
  QueryCursor(std::shared_ptr<Connection> connection, std::shared_ptr<const QueryPlan> plan,
              std::vector<rt::Value> parameters, Locking locking)
      : RecordCursor(std::move(connection), std::move(plan), std::move(parameters), locking),
        width_(std::max<std::size_t>(1, plan_->translation.tables.size())) {
    ReadKeys();
  }

  bool AtBegin() const override { return place_ < 0 || Rows() == 0; }
  bool AtEnd() const override { return place_ >= Rows(); }
  std::int64_t Count() override { return Rows(); }
  std::int64_t Position() override { return place_; }

  void MoveFirst() override { MoveTo(0); }
  void MoveLast() override { MoveTo(std::max<std::int64_t>(0, Rows() - 1)); }
  void MoveNext() override {
    if (AtEnd()) throw StoreError(kNoCurrentRecord, "No current record.");
    // After a deletion the place already is that of the next record.
    const std::int64_t step = onDeleted_ ? 0 : 1;
    MoveTo(place_ + step);
  }
  void MovePrevious() override {
    if (AtBegin()) throw StoreError(kNoCurrentRecord, "No current record.");
    MoveTo(place_ - 1);
  }
  void MoveTo(std::int64_t position) override {
    LeaveEdit();
    onDeleted_ = false;
    place_ = std::clamp<std::int64_t>(position, -1, Rows());
  }

  Bookmark Mark() override {
    NeedRow();
    if (!plan_->keyed) return {place_};
    const auto* keys = KeysAt(place_);
    return Bookmark(keys, keys + width_);
  }
  void GoTo(const Bookmark& mark) override {
    if (!plan_->keyed) return MoveTo(mark.empty() ? 0 : mark[0]);
    // Most often the record is near; only then is the whole set looked through.
    for (std::int64_t i = std::max<std::int64_t>(0, place_ - 8), end = std::min(Rows(), place_ + 8); i < end;
         ++i)
      if (std::equal(mark.begin(), mark.end(), KeysAt(i))) return MoveTo(i);
    for (std::int64_t i = 0; i < Rows(); ++i)
      if (std::equal(mark.begin(), mark.end(), KeysAt(i))) return MoveTo(i);
    throw StoreError(kRecordDeleted, "Record is deleted.");
  }

  void Requery() override {
    LeaveEdit();
    ReadKeys();
  }

 protected:
  bool OnRow() const override { return !onDeleted_ && place_ >= 0 && place_ < Rows(); }
  std::int64_t RowKey() const override { return KeysAt(place_)[0]; }

  void ReadRow() override {
    if (!plan_->keyed) {
      row_ = &whole_[static_cast<std::size_t>(place_)];
      return;
    }
    const std::uint64_t epoch = Epoch();
    if (epoch != windowEpoch_ || place_ < windowStart_ ||
        place_ >= windowStart_ + static_cast<std::int64_t>(window_.size())) {
      FetchWindow();
    }
    const auto& row = window_[static_cast<std::size_t>(place_ - windowStart_)];
    if (row.Empty()) throw StoreError(kRecordDeleted, "Record is deleted.");
    row_ = &row;
  }

  void ReadRowAgain() override {
    windowEpoch_ = 0;
    ahead_ = 1;
    ReadRow();
  }

  void StandInFile(std::int64_t) override {}  // query cursors read no caches
  void RowStored(std::int64_t) override { windowEpoch_ = 0; }
  void RowAdded(std::int64_t key) override {
    keys_.push_back(key);
    for (std::size_t i = 1; i < width_; ++i) keys_.push_back(kNoKey);
  }
  void RowDeleted() override {
    const auto from = keys_.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(place_) * width_);
    keys_.erase(from, from + static_cast<std::ptrdiff_t>(width_));
    windowEpoch_ = 0;
    onDeleted_ = true;
  }
  bool MoveToOneOf(const std::vector<std::int64_t>& keys, bool first) override {
    for (std::int64_t at = first ? 0 : place_ + (onDeleted_ ? 0 : 1); at < Rows(); ++at) {
      if (!std::binary_search(keys.begin(), keys.end(), KeysAt(at)[0])) continue;
      MoveTo(at);
      return true;
    }
    return false;
  }

 private:
  std::int64_t Rows() const {
    return static_cast<std::int64_t>(plan_->keyed ? keys_.size() / width_ : whole_.size());
  }
  const std::int64_t* KeysAt(std::int64_t place) const {
    return keys_.data() + static_cast<std::size_t>(place) * width_;
  }

  void ReadKeys() {
    keys_.clear();
    whole_.clear();
    window_.clear();
    windowEpoch_ = 0;
    ahead_ = 1;
    place_ = 0;
    onDeleted_ = false;
    if (!plan_->keyed) {
      Question use(Impl(), plan_->translation, plan_->whole);
      use.BindAll(parameters_);
      const int count = static_cast<int>(plan_->fields.size());
      while (use.Step()) {
        whole_.emplace_back();
        use.Read(whole_.back(), 0, count);
      }
      return;
    }
    Question use(Impl(), plan_->translation, plan_->keys);
    use.BindAll(parameters_);
    if (width_ == 1) {
      while (use.Step()) keys_.push_back(use.Int64(0));
    } else {
      while (use.Step())
        for (int i = 0; i < static_cast<int>(width_); ++i)
          keys_.push_back(use.IsNull(i) ? kNoKey : use.Int64(i));
    }
    if (keys_.size() > 100000) keys_.shrink_to_fit();
  }

  // A caller that goes on from row to row gets more rows at a time. One that jumps, or that changes rows on
  // its way, gets one.
  void FetchWindow() {
    Impl().BeforeRead(plan_->translation);
    const std::uint64_t epoch = Epoch();
    const std::int64_t next = windowStart_ + static_cast<std::int64_t>(window_.size());
    ahead_ = epoch == windowEpoch_ && place_ == next ? std::min(ahead_ * kGrowth, kMostAhead) : 1;
    windowStart_ = place_;
    windowEpoch_ = epoch;
    const auto count = static_cast<std::size_t>(std::min(ahead_, Rows() - place_));
    window_.assign(count, {});
    if (count == 1) {
      FetchByKeys(KeysAt(place_), window_[0]);
      return;
    }
    const auto fields = static_cast<int>(plan_->fields.size());
    Question use(Impl(), plan_->translation, plan_->rows);
    use.BindAll(parameters_);
    use.BindKeys(KeysAt(place_), width_, count);
    while (use.Step()) {
      const auto at = static_cast<std::size_t>(use.Int64(0));
      const bool there = KeysAt(place_ + static_cast<std::int64_t>(at))[0] == kNoKey || !use.IsNull(1);
      if (there) use.Read(window_[at], 1 + static_cast<int>(width_), fields);
    }
  }

  std::size_t width_;  ///< keys of a row: one for each table
  std::vector<std::int64_t> keys_;
  std::vector<RawRow> whole_;
  std::int64_t place_ = 0;
  bool onDeleted_ = false;
  std::vector<RawRow> window_;
  std::int64_t windowStart_ = 0;
  std::uint64_t windowEpoch_ = 0;
  std::int64_t ahead_ = 1;
};

}  // namespace

std::unique_ptr<Cursor> Cursor::OpenQuery(std::shared_ptr<Connection> connection, std::string_view sql,
                                          Locking locking) {
  std::vector<rt::Value> parameters;
  auto plan = connection->Plan(sql, &parameters);
  if (plan->translation.kind != StatementKind::Select)
    throw StoreError(kSyntax, "Only a SELECT opens a recordset: " + std::string(sql));
  return std::make_unique<QueryCursor>(std::move(connection), std::move(plan), std::move(parameters),
                                       locking);
}

}  // namespace store
