// Prepared statements of an SQLite database.
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/store/Session.h"

namespace store {

class Handle;

/// Lent for one use at a time; resetting it at the end lets go of the file.
class PreparedStatement final : public Prepared {
 public:
  enum class Keep { ForNextUse, No };
  PreparedStatement(Handle& handle, std::string_view sql, Keep keep);
  ~PreparedStatement();
  PreparedStatement(const PreparedStatement&) = delete;
  PreparedStatement& operator=(const PreparedStatement&) = delete;

  bool Busy() const { return busy_; }
  void Lend() { busy_ = true; }
  /// Deletes a statement that is not kept.
  void Done() override;

  void Bind(int index, const rt::Value& value) override;
  void Bind(int index, std::int64_t value) override;
  void BindKey(int key, std::int64_t value) override;
  void BindKeys(const std::int64_t* keys, std::size_t width, std::size_t rows) override;
  /// Binds rows for dw_value; they must live for as long as the statement is in use.
  void BindRows(int index, RowList& rows);
  bool Step() override;
  Cell CellOf(int column) const override;
  std::int64_t Int64(int column) const override { return sqlite3_column_int64(statement_, column); }
  double Real(int column) const override { return sqlite3_column_double(statement_, column); }
  std::string_view View(int column) const override;
  void Read(RawRow& row, int first, int count) const override;

 private:
  Handle& handle_;
  sqlite3_stmt* statement_ = nullptr;
  Keep keep_;
  bool busy_ = false;
};

}  // namespace store
