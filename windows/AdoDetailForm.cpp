#include "windows/AdoDetailForm.h"

#include <QPushButton>
#include <utility>

#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "platform/controls/Application.h"
#include "platform/controls/DisableEntry.h"
#include "platform/runtime/Clock.h"
#include "windows/ListForm.h"

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

/// Runs a step of a transaction; false after a message.
bool Done(const std::function<void()>& step) {
  const Failure failure = Try(step);
  if (failure)
    screen::MessageBox("Error #" + std::to_string(failure.number) + "\r\r" + failure.description,
                       screen::Icon::Critical);
  return !failure;
}

}  // namespace

AdoDetailForm::AdoDetailForm(const AdoDetailDefinition& definition)
    : Form(definition.form),
      OKButton(new QPushButton("&OK")),
      CancelButton(new QPushButton("Cancel")),
      definition_(definition),
      data_(*this, definition.data) {
  setWindowTitle(definition.title);
  OKButton->setObjectName(definition.ok);
  CancelButton->setObjectName("CancelButton");
  for (const char* name : {"Label4(0)", "Label4(1)", "Label4(2)", "Label4(3)"}) Label4.emplace_back(name);
  const char* const columns[] = {"Created By", "Date Created", "Updated By", "Last Updated"};
  for (std::size_t i = 0; i < Label4.size(); ++i) Bind(Label4[i], columns[i]);
  ui::OnClick(*OKButton, [this] { Ok(); });
  ui::OnClick(*CancelButton, [this] { Cancel(); });
  SetDefault(OKButton);
  SetCancel(CancelButton);
}

void AdoDetailForm::Bind(ui::BoundControl& control, std::string column, std::string label) {
  bindings_.Add(control, std::move(column), std::move(label));
}

bool AdoDetailForm::HasRow() { return data_.Recordset() && !data_.Recordset()->AtEnd(); }

rt::Value AdoDetailForm::Stored(const std::string& column) {
  return HasRow() ? data_.Recordset()->Get(column) : rt::Value();
}

bool AdoDetailForm::ReadOnly() const { return !OKButton->isEnabled(); }

void AdoDetailForm::OnLoad() {
  RemoveCloseCommand();
  BindToMainFile(data_, definition_.emptyQuery);
  // From the first change on the record is taken from others.
  data_.LockType = ado::adLockPessimistic;
  data_.Refresh();
  Show();
}

void AdoDetailForm::OnActivate() {
  do {
    if (!Activated) LoadRecord();
    if (!LoadedOK || Minimised()) return;
  } while (!Refreshed());
}

void AdoDetailForm::Show() {
  AdoRecord record(data_.Recordset().get());
  bindings_.Show(record);
}

void AdoDetailForm::OpenRecord(std::int32_t id) {
  const screen::Hourglass hourglass;
  data_.RecordSource = definition_.query + std::to_string(id);
  data_.Refresh();
  OpenLists();
  Show();
}

bool AdoDetailForm::AddRow() {
  if (!data_.Recordset()) return false;
  const AdoConnectionPtr connection = Record().ActiveConnection();
  connection->BeginTrans();
  const bool added = AdoAutoAddRS(Record()) && AdoUpdateRS(Record(), false, false);
  if (!added) {
    connection->RollbackTrans();
    return false;
  }
  DataID = Record().Get("ID").AsLong();
  if (!Done([&] { connection->CommitTrans(); })) {
    data_.Close();
    return false;
  }
  AdoRefreshCache(connection, UseAccess);
  data_.Close();
  return true;
}

void AdoDetailForm::LoadRecord() {
  Activated = true;
  LoadedOK = true;
  OpenRecord(DataID);
  if (AddMode) {
    AddRow();
    OpenRecord(DataID);
  }
  const auto give = [this] {
    LoadedOK = false;
    Unload();
  };
  if (!HasRow()) {
    screen::MessageBox("Internal Error. Unable to re-read " + definition_.recordWords +
                       std::to_string(DataID) + "'s record.");
    give();
    return;
  }
  const int locked = AdoTestRecordLock(ado::Field(Record(), Record().FieldIndex(definition_.lockField)), true,
                                       Record().ActiveConnection());
  if (locked == 2) {
    give();
    return;
  }
  if (locked == 1) {
    OKButton->setEnabled(false);
    ui::DisableEntryControls(*this);
  } else {
    // Taken: nobody can change it now, but somebody may have since it was read.
    Show();
  }
  const screen::Hourglass hourglass;
  RecordLoaded();
  if (!ReadOnly()) Hold();
}

void AdoDetailForm::Hold() {
  // A box may have been answered by the end of the program.
  if (!HasRow()) return;
  Record().ActiveConnection()->BeginTrans();
  held_ = true;
}

void AdoDetailForm::LetGo() {
  held_ = false;
  data_.Close();
}

bool AdoDetailForm::SaveRecord() {
  if (!HasRow()) return false;
  ado::Recordset& record = Record();
  AdoRecord bound(&record);
  try {
    bindings_.Store(bound);
  } catch (const ui::BadContent& bad) {
    screen::MessageBox(bad.what(), screen::Icon::Critical);
    bad.Control().Widget()->setFocus();
    return false;
  }
  if (!StoreMore(record)) return false;
  record.Set(AddMode ? "Created By" : "Updated By", CurrentUserName);
  record.Set(AddMode ? "Date Created" : "Last Updated", rt::Now());
  const AdoConnectionPtr connection = record.ActiveConnection();
  if (!AdoUpdateRS(record, true, UseAccess)) {
    screen::SetPointer(screen::Pointer::Normal);
    return false;
  }
  // What was typed is still in the controls, and is stored again at the next try.
  if (held_ && !Done([&] { connection->CommitTrans(); })) return false;
  AdoRefreshCache(connection, UseAccess);
  LetGo();
  return true;
}

void AdoDetailForm::Rearm() {
  Activated = false;
  LoadedOK = false;
  AddMode = false;
  ClearCancelPressed();
}

bool AdoDetailForm::SaveForChild() {
  if (ReadOnly()) return true;
  if (!ValidData() || !SaveRecord()) return false;
  Rearm();
  return true;
}

void AdoDetailForm::Ok() {
  if (ValidData() && SaveRecord()) Unload();
}

void AdoDetailForm::Cancel() {
  if (HasRow() && AddMode) {
    const AdoConnectionPtr connection = Record().ActiveConnection();
    AdoCancelUpdateRS(Record());
    Record().Move(0);
    AdoDeleteRS(Record(), false, false);
    // Whatever fails, the user gets out: letting go takes back what is not committed.
    if (held_) Done([&] { connection->CommitTrans(); });
    AdoRefreshCache(connection, UseAccess);
  } else if (HasRow() && !ReadOnly()) {
    const AdoConnectionPtr connection = Record().ActiveConnection();
    AdoCancelUpdateRS(Record());
    if (held_) Done([&] { connection->RollbackTrans(); });
  }
  LetGo();
  Unload();
}

}  // namespace dw
