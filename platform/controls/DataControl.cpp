#include "platform/controls/DataControl.h"

#include <utility>

#include "platform/controls/Form.h"

namespace ui {
namespace {

DatabaseOpener& Installed() {
  static DatabaseOpener opener;
  return opener;
}

/// Shows a recordset to the bindings; a null one is a record without columns.
class DaoRecord : public BoundRecord {
 public:
  explicit DaoRecord(dao::Recordset* recordset) : recordset_(recordset) {}
  bool HasRow() override { return recordset_ && (recordset_->Editing() || !recordset_->AtEnd()); }
  const std::vector<store::FieldInfo>& Fields() override { return recordset_->Fields(); }
  int FieldIndex(std::string_view column) override {
    if (!recordset_) return -1;
    try {
      return recordset_->FieldIndex(column);
    } catch (const store::StoreError&) {
      return -1;
    }
  }
  rt::Value Get(int field) override { return recordset_->Get(field); }
  void Set(int field, const rt::Value& value) override { recordset_->Set(field, value); }

 private:
  dao::Recordset* recordset_;
};

}  // namespace

DatabaseOpener InstallDatabaseOpener(DatabaseOpener opener) {
  return std::exchange(Installed(), std::move(opener));
}

DataControl::DataControl(Form& form, std::string name) : name_(std::move(name)) {
  form.AtUnload([this] { Close(); });
}

void DataControl::Bind(BoundControl& control, std::string column, std::string label) {
  bindings_.Add(control, std::move(column), std::move(label));
}

void DataControl::Refresh() {
  if (database_ && openName_ != DatabaseName) Close();
  if (recordset_) recordset_->Close();
  recordset_.reset();
  if (!database_) {
    if (Installed()) {
      database_ = Installed()(DatabaseName);
    } else {
      workspace_ = dao::DBEngine::CreateWorkspace(name_, "admin", "");
      database_ = workspace_->OpenDatabase(DatabaseName);
    }
    openName_ = DatabaseName;
  }
  if (database_) recordset_ = database_->OpenRecordset(RecordSource);
  ShowRecord();
}

void DataControl::ShowRecord() {
  DaoRecord record(recordset_.get());
  bindings_.Show(record);
}

void DataControl::StoreControls() {
  if (!recordset_) return;
  DaoRecord record(recordset_.get());
  bindings_.Store(record);
}

void DataControl::Close() {
  try {
    if (recordset_) recordset_->Close();
    if (database_) database_->Close();
    if (workspace_) workspace_->Close();
  } catch (const std::exception&) {
    // A file that is no longer there has nothing to release.
  }
  recordset_.reset();
  database_.reset();
  workspace_.reset();
}

}  // namespace ui
