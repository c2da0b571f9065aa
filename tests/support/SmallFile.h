#pragma once

#include <memory>
#include <string>

#include "platform/store/Connection.h"
#include "platform/store/Cursor.h"
#include "platform/store/StoreError.h"

namespace test {

/// Makes a data file with the tables Assets (ID, Code TEXT(10) unique by index Code, Cost CURRENCY, Miles
/// SINGLE, Bought DATETIME, Active YESNO, Notes MEMO) and Lines (ID, Asset LONG, Code TEXT(10)).
inline void MakeSmallFile(const std::string& path) {
  using store::ColumnType;
  store::Connection::Create(path);
  auto file = store::Connection::Open({path});
  store::TableInfo assets;
  assets.name = "Assets";
  assets.columns = {{"ID", ColumnType::Counter},      {"Code", ColumnType::Text, 10},
                    {"Cost", ColumnType::Currency},   {"Miles", ColumnType::Single},
                    {"Bought", ColumnType::DateTime}, {"Active", ColumnType::Boolean},
                    {"Notes", ColumnType::Memo},      {"Year", ColumnType::Short}};
  assets.indexes = {{"Code", {"Code"}, false, true, false}, {"By Year", {"Year"}, false, false, false}};
  file->CreateTable(assets);
  store::TableInfo lines;
  lines.name = "Lines";
  lines.columns = {{"ID", ColumnType::Counter}, {"Asset", ColumnType::Long}, {"Code", ColumnType::Text, 10}};
  file->CreateTable(lines);
}

inline std::shared_ptr<store::Connection> OpenSmallFile(const std::string& path) {
  return store::Connection::Open({path});
}

/// Adds an asset through a cursor; returns its ID.
inline std::int32_t AddAsset(const std::shared_ptr<store::Connection>& file, const std::string& code,
                             int year = 2020) {
  auto table = store::Cursor::OpenTable(file, "Assets", store::Locking::Pessimistic);
  table->AddNew();
  table->Set(table->FieldIndex("Code"), code);
  table->Set(table->FieldIndex("Year"), year);
  table->Set(table->FieldIndex("Cost"), rt::Currency::FromWhole(100));
  const auto id = table->Get(table->FieldIndex("ID")).AsLong();
  table->Update();
  return id;
}

/// The first value of a query.
inline rt::Value Ask(const std::shared_ptr<store::Connection>& file, const std::string& sql) {
  auto rows = store::Cursor::OpenQuery(file, sql, store::Locking::ReadOnly);
  return rows->AtEnd() ? rt::Value() : rows->Get(0);
}

/// "done", or the number and the text of the StoreError that `work` throws.
template <class Work>
std::string Told(Work work) {
  try {
    work();
    return "done";
  } catch (const store::StoreError& error) {
    return std::to_string(error.Number()) + " " + error.what();
  }
}

/// The number of the StoreError that `work` throws; 0 if it throws none.
template <class Work>
int ErrorOf(Work work) {
  try {
    work();
  } catch (const store::StoreError& error) {
    return error.Number();
  }
  return 0;
}

}  // namespace test
