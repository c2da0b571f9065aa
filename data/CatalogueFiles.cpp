// Data files made from the list of tables, and compared with it.
#include <algorithm>
#include <filesystem>

#include "data/Attempt.h"
#include "data/BrackenfelGlobals.h"
#include "data/Catalogue.h"
#include "platform/runtime/Text.h"
#include "platform/store/Cursor.h"
#include "platform/store/Engine.h"
#include "platform/store/StoreError.h"

namespace dw {
namespace {

using store::ColumnInfo;
using store::IndexInfo;
using store::RelationInfo;
using store::TableInfo;

/// What the query planner should expect of a fleet of some years: few types of work, many assets. Without it
/// the planner would look for one asset's work among all the work of one type.
struct Expectation {
  const char* table;
  const char* index;
  std::vector<std::int64_t> rows;  ///< in all; sharing the first field, the first two …
};
const Expectation kExpected[] = {
    {"Maintenance Transactions", "By Asset and Date", {100000, 100, 2}},
    {"Maintenance Transactions", "Type_ID_Key", {100000, 100000, 200, 1}},
    {"Maintenance_Performed", "By_Maintenance_Type_ID", {20000, 1000, 1}},
    {"Maintenance_Performed", "By_Maintenance_ID", {20000, 2, 1}},
    {"Maintenance Schedule", "By Asset and Line", {5000, 8, 1}},
    {"Odometer Entries", "By Asset and Date", {20000, 40, 1}},
    {"Odometer Entries", "By Asset and Mileage", {20000, 40, 1}},
};

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

/// The type without the collation that every text column has.
std::string TypeName(const ColumnInfo& column) {
  const std::string declared = store::DeclaredType(column);
  return declared.substr(0, declared.find(" COLLATE"));
}

/// A text column may be wider than the list asks for: no text is cut off.
bool Serves(const ColumnInfo& stored, const ColumnInfo& wanted) {
  return stored.type == wanted.type && stored.size >= wanted.size;
}

bool SameColumns(const IndexInfo& a, const IndexInfo& b) {
  if (a.columns.size() != b.columns.size()) return false;
  for (std::size_t i = 0; i < a.columns.size(); ++i)
    if (!rt::EqualNoCase(a.columns[i], b.columns[i])) return false;
  return true;
}

void CompareTable(const TableInfo& stored, const TableInfo& wanted, std::vector<std::string>& differences) {
  for (const ColumnInfo& column : wanted.columns) {
    const std::string name = "[" + wanted.name + "].[" + column.name + "]";
    const int position = stored.Find(column.name);
    if (position < 0) {
      differences.push_back("column " + name + " is missing");
      continue;
    }
    const ColumnInfo& found = stored.columns[static_cast<std::size_t>(position)];
    if (!Serves(found, column))
      differences.push_back("column " + name + " is " + TypeName(found) + " instead of " + TypeName(column));
  }
  for (const IndexInfo& index : wanted.indexes) {
    const std::string name = "[" + index.name + "] of [" + wanted.name + "]";
    const IndexInfo* found = stored.FindIndex(index.name);
    if (!found) {
      differences.push_back("index " + name + " is missing");
    } else if (!SameColumns(*found, index)) {
      differences.push_back("index " + name + " is on " + Joined(found->columns) + " instead of " +
                            Joined(index.columns));
    } else if (found->unique != index.unique) {
      differences.push_back("index " + name + (index.unique ? " is not unique" : " is unique"));
    } else if (found->exceptEmpty != index.exceptEmpty) {
      differences.push_back("index " + name +
                            (index.exceptEmpty ? " refuses empty values" : " leaves out some rows"));
    } else if (index.required && !found->required) {
      differences.push_back("index " + name + " allows a Null");
    } else if (found->primary != index.primary) {
      differences.push_back("index " + name +
                            (index.primary ? " is not the primary key" : " is the primary key"));
    }
  }
}

/// Values that several rows of the table share although the index allows each only once, with the keys of
/// those rows.
void NameDoubles(store::Connection& connection, const TableInfo& stored, const IndexInfo& index,
                 std::vector<std::string>& differences) {
  const std::string& column = index.columns.front();
  const std::string& key = stored.columns.front().name;
  if (stored.Find(column) < 0) return;
  const auto rows =
      store::Cursor::OpenQuery(connection.shared_from_this(),
                               "SELECT [" + column + "], [" + key + "] FROM [" + stored.name + "] WHERE [" +
                                   column + "] <> '' ORDER BY [" + column + "], [" + key + "]",
                               store::Locking::ReadOnly);
  std::string value;
  std::string keys;
  int count = 0;
  const auto end = [&] {
    if (count > 1)
      differences.push_back(std::to_string(count) + " rows of [" + stored.name + "] have the [" + column +
                            "] '" + value + "': [" + key + "] " + keys);
  };
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const std::string next = rows->Get(0).Shown();
    const std::string number = rows->Get(1).Shown();
    if (count > 0 && rt::EqualNoCase(next, value)) {
      keys += ", " + number;
      ++count;
      continue;
    }
    end();
    value = next;
    keys = number;
    count = 1;
  }
  end();
}

}  // namespace

void AddMissingIndexes(store::Connection& connection, const CatalogueFile& file) {
  const auto schema = connection.Tables();
  for (const TableInfo& wanted : file.tables) {
    const TableInfo* stored = schema->Find(wanted.name);
    if (!stored) continue;
    for (const IndexInfo& index : wanted.indexes) {
      if (index.primary || stored->FindIndex(index.name)) continue;
      try {
        connection.CreateIndex(stored->name, index);
      } catch (const store::StoreError&) {
        // The next call tries again. Until then the file works as before.
      }
    }
  }
}

void CompleteMainFile() {
  Try([] {
    const auto connection = store::Connection::Open({.path = DataFile});
    AddMissingIndexes(*connection, CatalogueOf("DW.MDB"));
  });
}

void CreateDataFile(const std::string& directory, std::string_view file) {
  const CatalogueFile& catalogue = CatalogueOf(file);
  const std::string path = (std::filesystem::path(directory) / catalogue.name).string();
  store::Engine::ForNewFiles().Create(path);
  try {
    const auto connection = store::Engine::Of(path).Open({.path = path, .share = store::Share::Exclusive});
    // In one transaction: a hundred separate commits would keep the disk busy for a second.
    connection->BeginTrans();
    for (const TableInfo& table : catalogue.tables) connection->CreateTable(table);
    for (const RelationInfo& relation : catalogue.relations) connection->AddRelation(relation);
    connection->CommitTrans();
    connection->BeginTrans();
    for (const Expectation& expected : kExpected)
      if (std::any_of(catalogue.tables.begin(), catalogue.tables.end(),
                      [&](const TableInfo& table) { return table.name == expected.table; }))
        connection->Expect(expected.table, expected.index, expected.rows);
    connection->CommitTrans();
  } catch (...) {
    // The next start would take an incomplete file for a complete one.
    Try([&] { store::Engine::Of(path).Drop(path); });
    throw;
  }
}

std::vector<std::string> CompareWithCatalogue(store::Connection& connection, const CatalogueFile& file) {
  std::vector<std::string> differences;
  const auto schema = connection.Tables();
  for (const TableInfo& wanted : file.tables) {
    if (const TableInfo* stored = schema->Find(wanted.name)) {
      CompareTable(*stored, wanted, differences);
      for (const IndexInfo& index : wanted.indexes)
        if (index.exceptEmpty && !stored->FindIndex(index.name))
          NameDoubles(connection, *stored, index, differences);
    } else {
      differences.push_back("table [" + wanted.name + "] is missing");
    }
  }
  return differences;
}

}  // namespace dw
