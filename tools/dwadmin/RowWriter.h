// Adds rows by the hundred thousand: one table opened for adding, and commits that many rows share.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "platform/dao/Dao.h"

namespace dw {

/// A transaction that is committed and begun anew after a number of rows.
class Batch {
 public:
  explicit Batch(dao::Workspace& workspace) : workspace_(workspace) { workspace_.BeginTrans(); }
  void CountRow() {
    if (++rows_ % kRowsPerCommit != 0) return;
    workspace_.CommitTrans();
    workspace_.BeginTrans();
  }
  void Finish() { workspace_.CommitTrans(); }

 private:
  static constexpr int kRowsPerCommit = 25000;
  dao::Workspace& workspace_;
  int rows_ = 0;
};

/// Adds rows to one table, always the same columns in the same order.
class RowWriter {
 public:
  RowWriter(Batch& batch, dao::Database& database, const char* table,
            std::initializer_list<const char*> columns)
      : batch_(batch),
        rows_(database.OpenRecordset("[" + std::string(table) + "]", dao::RecordsetType::Table)) {
    for (const char* column : columns) fields_.push_back(rows_->FieldIndex(column));
  }

  /// Adds a row and returns its ID. A Null, or a missing value at the end, leaves the column as a new row has
  /// it.
  std::int32_t Add(std::initializer_list<rt::Value> values) {
    rows_->AddNew();
    std::size_t position = 0;
    for (const rt::Value& value : values) {
      if (!value.IsNull()) rows_->Set(fields_.at(position), value);
      ++position;
    }
    rows_->Update();
    batch_.CountRow();
    return static_cast<std::int32_t>(rows_->LastModified().front());
  }

 private:
  Batch& batch_;
  std::shared_ptr<dao::Recordset> rows_;
  std::vector<int> fields_;
};

}  // namespace dw
