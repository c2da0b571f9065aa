#include "platform/store/RecordWrites.h"

#include "platform/store/Handle.h"
#include "platform/store/RowList.h"
#include "platform/store/Statements.h"

namespace store {

RecordUpdate::RecordUpdate(const std::string& table, const std::vector<WrittenColumn>& columns)
    : one(UpdateOne(table, columns)),
      range(UpdateRange(table, columns)),
      list(UpdateListed(table, columns)) {}

RecordInsert::RecordInsert(const std::string& table, const std::vector<WrittenColumn>& columns)
    : many(InsertMany(table, columns)) {}

std::int64_t UpdateRecords(Handle& handle, const RecordUpdate& update, RowList& rows) {
  if (rows.Count() == 0) return 0;
  const bool gapless = rows.Gapless();
  Use use(handle, gapless ? update.range : update.list);
  use.BindRows(1, rows);
  if (gapless) {
    use.Bind(2, rows.FirstKey());
    use.Bind(3, rows.LastKey());
  } else {
    use.Bind(2, rt::Value(rows.Keys()));
  }
  use.Step();
  return sqlite3_changes64(handle.Db());
}

std::int64_t InsertRecords(Handle& handle, const RecordInsert& insert, RowList& rows) {
  const auto count = static_cast<std::int64_t>(rows.Count());
  if (count == 0) return 0;
  Use use(handle, insert.many);
  use.BindRows(1, rows);
  use.Bind(2, count);
  use.Step();
  return sqlite3_last_insert_rowid(handle.Db()) - count + 1;
}

}  // namespace store
