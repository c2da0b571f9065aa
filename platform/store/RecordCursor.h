// What query and table cursors have in common: the current row, the edit buffer, and the records held for it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/store/ConnectionImpl.h"
#include "platform/store/Cursor.h"
#include "platform/store/QueryPlan.h"
#include "platform/store/Values.h"

namespace store {

/// The keys that satisfied a condition, for as long as nothing has changed since they were read.
struct FoundKeys {
  struct State {
    std::int64_t version = -1;  ///< of the file: changes with every commit of another user
    std::uint64_t epoch = 0;    ///< of the table, as this connection has changed it
    friend bool operator==(const State&, const State&) = default;
  };
  std::string condition;
  State state;
  std::vector<std::int64_t> keys;  ///< ascending
};

class RecordCursor : public Cursor {
 public:
  RecordCursor(std::shared_ptr<Connection> connection, std::shared_ptr<const QueryPlan> plan,
               std::vector<rt::Value> parameters, Locking locking);
  ~RecordCursor() override;
  RecordCursor(const RecordCursor&) = delete;
  RecordCursor& operator=(const RecordCursor&) = delete;

  const std::vector<FieldInfo>& Fields() const override { return plan_->fields; }
  int FieldIndex(std::string_view name) const override;
  rt::Value Get(int field) override;
  void Set(int field, const rt::Value& value) override;
  bool Editing() const override { return state_ != State::Viewing; }
  bool Adding() const override { return state_ == State::Adding; }
  void Edit() override;
  void AddNew() override;
  void Update() override;
  void CancelUpdate() override;
  void Delete() override;
  Bookmark LastModified() const override;
  bool HeldByThisProcess() const override;
  bool NoMatch() const override { return noMatch_; }
  void FindFirst(std::string_view condition) override;
  void FindNext(std::string_view condition) override;
  void SetIndex(std::string_view name) override;
  void Seek(const std::vector<rt::Value>& key) override;
  void Detach() override;

 protected:
  enum class State { Viewing, Editing, Adding };

  /// Whether there is a row at the place; NeedRow throws 3021 otherwise.
  virtual bool OnRow() const = 0;
  /// The key of the leading table's record at the place.
  virtual std::int64_t RowKey() const = 0;
  /// Makes row_ point at the row at the place, as it is now where others or this connection may have changed
  /// it. 3167 when it is gone.
  virtual void ReadRow() = 0;
  /// Reads the row at the place from the file again.
  virtual void ReadRowAgain() = 0;
  /// Told after a change, so that the cursor's own windows follow it.
  virtual void RowStored(std::int64_t key) = 0;
  virtual void RowAdded(std::int64_t key) = 0;
  virtual void RowDeleted() = 0;
  /// Moves to the first row, or to the next one behind the place, whose leading key is among these (in
  /// ascending order). False, and no move, where there is none.
  virtual bool MoveToOneOf(const std::vector<std::int64_t>& keys, bool first) = 0;

  /// Goes on in the file where the cache of the row is no longer kept.
  void LeaveRetiredCache();
  /// Told that the row at the place is in the file under this key.
  virtual void StandInFile(std::int64_t key) = 0;
  void NeedRow() const;
  void LeaveEdit();
  Connection::Impl& Impl() const { return *impl_; }
  int Table() const { return plan_->leading ? plan_->leading->number : 0; }
  /// See Connection::Impl::EpochOf, for the leading table.
  std::uint64_t Epoch() const { return impl_->EpochWith(*changes_); }
  void NoteTableChange() { ++*changes_; }
  /// Reads one row by its keys; false when the leading record is gone.
  bool FetchByKeys(const std::int64_t* keys, RawRow& row);
  /// The value of a field in a row that has been read, fetched now where rows leave it out.
  rt::Value ValueOf(int field, const RawRow& row);

  std::shared_ptr<Connection> connection_;
  Connection::Impl* impl_;
  std::shared_ptr<const QueryPlan> plan_;
  std::uint64_t* changes_;  ///< the connection's count of changes of the leading table
  std::vector<rt::Value> parameters_;
  Locking locking_;
  const RawRow* row_ = nullptr;
  std::shared_ptr<CachedRow> cachedRow_;  ///< where the row at the place lives in a group's cache
  std::shared_ptr<RowCache> cache_;       ///< the cache that the last Seek asked
  std::string cacheKey_;
  bool noMatch_ = false;
  Bookmark lastModified_;

 private:
  void Find(std::string_view condition, bool first);
  /// Looks for a row that satisfies the probe's condition among the next ones; the place stays where there is
  /// none.
  bool FindNear(const QueryPlan& probe, const std::vector<rt::Value>& values);
  void HoldForEdit();
  void ReleaseEdit();
  void StoreEdit();
  void StoreNew();
  void PrepareUpdate();
  bool ChangesCacheKey() const;
  /// Moves the values away if it returns true.
  bool StoreNewInCache(std::vector<rt::Value>& values);
  void CheckRequired(const std::vector<std::optional<rt::Value>>& buffer, bool adding) const;

  State state_ = State::Viewing;
  std::vector<std::optional<rt::Value>> buffer_;  ///< by column of the leading table
  bool changed_ = false;
  std::vector<bool> changedBefore_;  ///< the columns that update_ changes
  std::vector<bool> columns_;        ///< the columns of the edit
  std::shared_ptr<const RecordUpdate> update_;
  bool updateCanWait_ = false;            ///< nothing in the file can refuse it
  bool editedInGroup_ = false;            ///< the edit began in a group, with the record held and read
  std::uint64_t editedAt_ = 0;            ///< the table's epoch then
  std::shared_ptr<CachedRow> lastAdded_;  ///< the row last stored, where it has no key yet
  FoundKeys found_;
  bool holding_ = false;
  int heldTable_ = 0;
  std::int64_t heldRow_ = 0;
};

}  // namespace store
