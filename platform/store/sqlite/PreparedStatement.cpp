#include "platform/store/sqlite/PreparedStatement.h"

#include "platform/store/StoreError.h"
#include "platform/store/sqlite/Cells.h"
#include "platform/store/sqlite/Functions.h"
#include "platform/store/sqlite/Handle.h"
#include "platform/store/sqlite/SqliteStatements.h"

namespace store {

PreparedStatement::PreparedStatement(Handle& handle, std::string_view sql, Keep keep)
    : handle_(handle), keep_(keep) {
  const int code =
      sqlite3_prepare_v3(handle.Db(), sql.data(), static_cast<int>(sql.size()),
                         keep == Keep::ForNextUse ? SQLITE_PREPARE_PERSISTENT : 0, &statement_, nullptr);
  if (code != SQLITE_OK) handle.Fail(code, sql);
}

PreparedStatement::~PreparedStatement() { sqlite3_finalize(statement_); }

void PreparedStatement::Done() {
  if (keep_ == Keep::No) {
    delete this;
    return;
  }
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
  busy_ = false;
}

void PreparedStatement::Bind(int index, std::int64_t value) {
  if (index > 0) sqlite3_bind_int64(statement_, index, value);
}

void PreparedStatement::BindKey(int key, std::int64_t value) {
  static const char* const kNames[] = {":k0", ":k1", ":k2", ":k3", ":k4", ":k5", ":k6", ":k7"};
  if (key >= 8) throw StoreError(kSyntax, "A query can join eight tables at most.");
  const int index = sqlite3_bind_parameter_index(statement_, kNames[key]);
  if (index == 0) return;
  if (value == kNoKey)
    sqlite3_bind_null(statement_, index);
  else
    sqlite3_bind_int64(statement_, index, value);
}

void PreparedStatement::BindKeys(const std::int64_t* keys, std::size_t width, std::size_t rows) {
  const std::string list = SqliteStatements::KeyList(keys, width, rows);
  sqlite3_bind_text64(statement_, sqlite3_bind_parameter_index(statement_, ":keys"), list.data(), list.size(),
                      SQLITE_TRANSIENT, SQLITE_UTF8);
}

void PreparedStatement::Bind(int index, const rt::Value& value) {
  if (index > sqlite3_bind_parameter_count(statement_)) return;
  switch (value.Type()) {
    case rt::ValueType::Null:
      sqlite3_bind_null(statement_, index);
      break;
    case rt::ValueType::Boolean:
      sqlite3_bind_int(statement_, index, std::get<bool>(value.Data()) ? 1 : 0);
      break;
    case rt::ValueType::Integer:
      sqlite3_bind_int(statement_, index, std::get<std::int16_t>(value.Data()));
      break;
    case rt::ValueType::Long:
      sqlite3_bind_int(statement_, index, std::get<std::int32_t>(value.Data()));
      break;
    case rt::ValueType::Single:
      sqlite3_bind_double(statement_, index, static_cast<double>(std::get<float>(value.Data())));
      break;
    case rt::ValueType::Double:
      sqlite3_bind_double(statement_, index, std::get<double>(value.Data()));
      break;
    case rt::ValueType::Currency:
      sqlite3_bind_int64(statement_, index, std::get<rt::Currency>(value.Data()).Units());
      break;
    case rt::ValueType::Date: {
      const std::string iso = std::get<rt::DateTime>(value.Data()).ToIso();
      sqlite3_bind_text64(statement_, index, iso.data(), iso.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
      break;
    }
    case rt::ValueType::Text: {
      const auto& text = std::get<std::string>(value.Data());
      sqlite3_bind_text64(statement_, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
      break;
    }
    case rt::ValueType::Binary: {
      const auto& bytes = std::get<rt::Binary>(value.Data());
      sqlite3_bind_blob64(statement_, index,
                          bytes.empty() ? reinterpret_cast<const std::uint8_t*>("") : bytes.data(),
                          bytes.size(), SQLITE_TRANSIENT);
      break;
    }
  }
}

void PreparedStatement::BindRows(int index, RowList& rows) {
  sqlite3_bind_pointer(statement_, index, &rows, kRowsPointer, nullptr);
}

bool PreparedStatement::Step() {
  const int code = sqlite3_step(statement_);
  if (handle_.waiting_) handle_.StopWaiting();
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  // The reset fetches the extended code; the text stays.
  handle_.Fail(sqlite3_extended_errcode(handle_.db_), sqlite3_sql(statement_));
}

Cell PreparedStatement::CellOf(int column) const {
  return store::CellOf(sqlite3_column_type(statement_, column));
}

std::string_view PreparedStatement::View(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  if (!bytes) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

void PreparedStatement::Read(RawRow& row, int first, int count) const {
  row.Start(count);
  for (int i = 0; i < count; ++i) PutCell(row, i, ColumnSource{statement_, first + i});
}

}  // namespace store
