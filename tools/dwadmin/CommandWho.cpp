// Who is in the data files, and which records they hold.
#include <algorithm>
#include <iostream>

#include "platform/store/Connection.h"
#include "tools/dwadmin/Commands.h"
#include "tools/dwadmin/Output.h"

namespace dw {
namespace {

/// "window" for a record that somebody has open for changing, "transaction" for one that is changed already.
std::string Manner(store::Hold hold) { return hold == store::Hold::Edit ? "window" : "transaction"; }

void Read(const std::string& file, ResultTable& users, ResultTable& held) {
  std::shared_ptr<store::Connection> connection;
  try {
    connection = store::Connection::Open({.path = RequireFile(file), .readOnly = true});
  } catch (const store::StoreError& error) {
    if (error.Number() != store::kOpenedExclusively) throw;
    users.rows.push_back({file, rt::Null(), rt::Null(), true});
    return;
  }
  const store::SideFile& side = connection->Side();
  for (const store::RosterEntry& entry : side.Roster()) {
    // This look into the file is nobody's work.
    if (entry.slot != side.Slot()) users.rows.push_back({file, entry.computer, entry.user, false});
  }
  const auto schema = connection->Tables();
  std::vector<int> numbers;
  for (const store::TableInfo& table : schema->tables) numbers.push_back(table.number);
  for (const store::HeldRecord& record : side.HeldByOthers(numbers)) {
    const auto table =
        std::find_if(schema->tables.begin(), schema->tables.end(),
                     [&](const store::TableInfo& info) { return info.number == record.table; });
    held.rows.push_back({file, table == schema->tables.end() ? rt::Value() : rt::Value(table->name),
                         record.row == 0 ? rt::Value("all") : rt::Value(std::to_string(record.row)),
                         record.holder.computer, record.holder.user, Manner(record.holder.hold)});
  }
}

void WritePart(const ResultTable& table, const char* title, const char* none) {
  if (table.rows.empty()) {
    std::cout << none << '\n';
    return;
  }
  std::cout << title << '\n';
  table.WriteText(std::cout);
}

}  // namespace

int Who(Format format) {
  ResultTable users{{"File", "Computer", "User", "Exclusive"}, {}};
  ResultTable held{{"File", "Table", "Record", "Computer", "User", "Held By"}, {}};
  for (const char* file : kDataFiles) Read(file, users, held);
  if (format == Format::Json) {
    std::cout << "{\"users\": ";
    users.WriteJson(std::cout);
    std::cout << ",\n\"held\": ";
    held.WriteJson(std::cout);
    std::cout << "}\n";
    return 0;
  }
  WritePart(users, "Data files in use:", "Nobody has a data file open.");
  WritePart(held, "\nRecords held:", "No record is held.");
  return 0;
}

}  // namespace dw
