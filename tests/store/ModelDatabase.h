// The tables of the model: a plain database in memory, with savepoints for transactions.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/store/StoreError.h"

namespace model {

/// A row as texts; a Null as "Null".
using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

inline std::string Shown(const Row& row) {
  std::string text;
  for (const auto& value : row) text += (text.empty() ? "" : ", ") + value;
  return "(" + text + ")";
}
inline std::string Shown(const Rows& rows) {
  std::string text;
  for (const auto& row : rows) text += Shown(row) + " ";
  return text.empty() ? "nothing" : text;
}

/// The rows of both tables at one moment, in the order of their tags.
struct State {
  Rows sums, lines;
  bool operator==(const State&) const = default;
};

class Database {
 public:
  /// Opens a file, or a database in memory with the tables Sums and Lines.
  explicit Database(const std::string& path = ":memory:") {
    if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) throw std::runtime_error("cannot open " + path);
    if (path != ":memory:") return;
    for (const char* table : {"Sums", "Lines"})
      Must(std::string("CREATE TABLE ") + table +
           " (ID INTEGER PRIMARY KEY AUTOINCREMENT, Tag INTEGER, A INTEGER, B TEXT COLLATE NOCASE, N "
           "INTEGER)");
    Must("CREATE UNIQUE INDEX KeyOfSums ON Sums (A, B)");
  }
  ~Database() { sqlite3_close(db_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /// 0, or 3022 for a duplicate key.
  int Try(const std::string& sql) {
    const int code = sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr);
    if (code == SQLITE_OK) return 0;
    if (code == SQLITE_CONSTRAINT) return store::kDuplicateKey;
    throw std::runtime_error("the model cannot " + sql + ": " + sqlite3_errmsg(db_));
  }
  void Must(const std::string& sql) {
    if (Try(sql) != 0) throw std::runtime_error("the model refuses " + sql);
  }
  std::int64_t Changed() const { return sqlite3_changes64(db_); }

  Rows Read(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
      throw std::runtime_error("the model cannot " + sql + ": " + sqlite3_errmsg(db_));
    Rows rows;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      Row& row = rows.emplace_back();
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
        row.emplace_back(text ? text : "Null");
      }
    }
    sqlite3_finalize(statement);
    return rows;
  }
  State ReadState() {
    return {Read("SELECT Tag, A, B, N FROM Sums ORDER BY Tag"),
            Read("SELECT Tag, A, B, N FROM Lines ORDER BY Tag")};
  }
  void Become(const State& state) {
    for (const auto& [table, rows] : {std::pair("Sums", &state.sums), std::pair("Lines", &state.lines)}) {
      Must(std::string("DELETE FROM ") + table);
      for (const Row& row : *rows)
        Must(std::string("INSERT INTO ") + table + " (Tag, A, B, N) VALUES (" + row[0] + ", " + row[1] +
             ", " + (row[2] == "Null" ? row[2] : "'" + row[2] + "'") + ", " + row[3] + ")");
    }
  }

 private:
  sqlite3* db_ = nullptr;
};

}  // namespace model
