#include "windows/TransactionHold.h"

#include <utility>

#include "data/BrackenfelGlobals.h"
#include "data/FailureBox.h"
#include "data/GenericADO.h"
#include "platform/controls/DisableEntry.h"
#include "platform/controls/Form.h"
#include "windows/BoundFile.h"

namespace dw {
namespace {

class AdoRecord : public ui::BoundRecord {
 public:
  explicit AdoRecord(ado::Recordset* recordset) : recordset_(recordset) {}
  bool HasRow() override { return recordset_ && !recordset_->AtEnd(); }
  const std::vector<store::FieldInfo>& Fields() override { return recordset_->Fields(); }
  int FieldIndex(std::string_view column) override {
    if (!recordset_) return -1;
    try {
      return recordset_->FieldIndex(column);
    } catch (const ado::Error&) {
      return -1;
    }
  }
  rt::Value Get(int field) override { return recordset_->Get(field); }
  void Set(int field, const rt::Value& value) override {
    try {
      recordset_->Set(field, value);
    } catch (const ado::Error& error) {
      // The bindings know the engine's own numbers.
      throw store::StoreError(error.Native(), error.what());
    }
  }

 private:
  ado::Recordset* recordset_;
};

}  // namespace

TransactionHold::TransactionHold(ui::Form& form, RecordSource source, const char* lockField)
    : form_(form), source_(std::move(source)), lockField_(lockField), data_(form, source_.data) {}

void TransactionHold::Bind(ui::BoundControl& control, std::string column, std::string label) {
  bindings_.Add(control, std::move(column), std::move(label));
}

rt::Value TransactionHold::Get(const std::string& column) {
  return HasRow() ? Record().Get(column) : rt::Value();
}

void TransactionHold::Set(const std::string& column, const rt::Value& value) { Record().Set(column, value); }

void TransactionHold::Show() {
  AdoRecord record(data_.Recordset().get());
  bindings_.Show(record);
}

void TransactionHold::OpenBlank(const AroundRecord&) {
  BindToFile(data_, source_.Query(-1), *source_.file);
  // From the first change on others cannot change the record.
  data_.LockType = ado::adLockPessimistic;
  data_.Refresh();
  Show();
}

void TransactionHold::Read(std::int32_t id, std::int32_t, const AroundRecord& around) {
  data_.RecordSource = source_.Query(id);
  data_.Refresh();
  around.openLists();
  Show();
}

std::optional<std::int32_t> TransactionHold::AddRow(const std::function<void()>& fill) {
  if (!data_.Recordset()) return std::nullopt;
  const AdoConnectionPtr connection = Record().ActiveConnection();
  connection->BeginTrans();
  bool added = AdoAutoAddRS(Record());
  if (added) {
    fill();
    added = AdoUpdateRS(Record(), false, false);
  }
  if (!added) {
    connection->RollbackTrans();
    return std::nullopt;
  }
  const std::int32_t id = Record().Get("ID").AsLong();
  const bool committed = Done([&] { connection->CommitTrans(); });
  if (committed) AdoRefreshCache(connection, UseAccess);
  data_.Close();
  return id;
}

Taken TransactionHold::Take() {
  const int locked = AdoTestRecordLock(ado::Field(Record(), Record().FieldIndex(lockField_)), true,
                                       Record().ActiveConnection());
  taken_ = locked == 0;
  if (locked == 1) ui::DisableEntryControls(form_);
  return locked == 0 ? Taken::Held : locked == 1 ? Taken::HeldElsewhere : Taken::Failed;
}

void TransactionHold::KeepHeld() {
  // The end of the program may have answered a box.
  if (!HasRow()) return;
  Record().ActiveConnection()->BeginTrans();
  held_ = true;
}

void TransactionHold::StoreControls() {
  AdoRecord record(data_.Recordset().get());
  bindings_.Store(record);
}

bool TransactionHold::Store() {
  const AdoConnectionPtr connection = Record().ActiveConnection();
  if (!AdoUpdateRS(Record(), true, UseAccess)) {
    screen::SetPointer(screen::Pointer::Normal);
    return false;
  }
  // The controls still have what was typed; the next try stores it again.
  if (held_ && !Done([&] { connection->CommitTrans(); })) return false;
  AdoRefreshCache(connection, UseAccess);
  LetGo();
  return true;
}

void TransactionHold::RemoveRow() {
  if (HasRow()) {
    const AdoConnectionPtr connection = Record().ActiveConnection();
    AdoCancelUpdateRS(Record());
    Record().Move(0);
    AdoDeleteRS(Record(), false, false);
    // The user can always leave: closing takes back what is not committed.
    if (held_) Done([&] { connection->CommitTrans(); });
    AdoRefreshCache(connection, UseAccess);
  }
  LetGo();
}

void TransactionHold::GiveBack() {
  if (HasRow() && taken_) {
    const AdoConnectionPtr connection = Record().ActiveConnection();
    AdoCancelUpdateRS(Record());
    if (held_) Done([&] { connection->RollbackTrans(); });
  }
  LetGo();
}

void TransactionHold::LetGo() {
  held_ = false;
  taken_ = false;
  data_.Close();
}

}  // namespace dw
