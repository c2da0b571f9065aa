// Who is in the data files, and which records they hold.
#include <iostream>

#include "platform/store/Engine.h"
#include "tools/dwadmin/Commands.h"
#include "tools/dwadmin/Output.h"

namespace dw {
namespace {

/// "window" for a record that somebody has open for changing, "transaction" for one that is already changed.
std::string Manner(store::Hold hold) { return hold == store::Hold::Edit ? "window" : "transaction"; }

void Read(const std::string& file, ResultTable& users, ResultTable& held) {
  const std::string path = RequireFile(file);
  const store::FileReport report = store::Engine::Of(path).Describe(path);
  if (report.exclusively) users.rows.push_back({file, rt::Null(), rt::Null(), true});
  for (const store::RosterEntry& entry : report.users)
    users.rows.push_back({file, entry.computer, entry.user, false});
  for (const store::RecordInUse& record : report.held)
    held.rows.push_back({file, record.table.empty() ? rt::Value() : rt::Value(record.table),
                         record.row == 0 ? rt::Value("all") : rt::Value(std::to_string(record.row)),
                         record.holder.computer, record.holder.user, Manner(record.holder.hold)});
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
