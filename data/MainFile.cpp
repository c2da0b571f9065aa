#include "data/MainFile.h"

#include "data/BrackenfelGlobals.h"

namespace dw {

MainFile::MainFile() {
  int error = 0;
  open_ = DaoOpenDatabase(DataFile, false, DataUserID, DataPassword, workspace_, database_, error);
}

MainFile::~MainFile() { CloseAll(rows_, database_, workspace_); }

dao::Recordset& MainFile::Read(const std::string& source) {
  CloseObject(rows_);
  rows_ = database_->OpenRecordset(source, dao::RecordsetType::Dynaset, dao::Access::ReadOnly);
  return *rows_;
}

dao::Recordset& MainFile::Edit(const std::string& query) {
  CloseObject(rows_);
  rows_ = database_->OpenRecordset(query);
  return *rows_;
}

}  // namespace dw
