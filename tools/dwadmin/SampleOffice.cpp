// The companions of the main file: users and workstations, lists, stored definitions.
#include <filesystem>
#include <functional>

#include "tools/dwadmin/SampleParts.h"

namespace dw::sample {
namespace {

void Fill(const std::string& directory, const char* file,
          const std::function<void(dao::Database& database, Batch& batch)>& write) {
  const auto workspace = dao::DBEngine::CreateWorkspace("Sample", "admin", "");
  const auto database = workspace->OpenDatabase((std::filesystem::path(directory) / file).string(), true);
  Batch batch(*workspace);
  write(*database, batch);
  batch.Finish();
  database->Close();
  workspace->Close();
}

rt::DateTime At(const rt::DateTime& day, int hour, int minute) {
  return rt::DateTime(day.Time() + std::chrono::hours(hour) + std::chrono::minutes(minute));
}

}  // namespace

void WriteUsers(const std::string& directory, const Span& span) {
  Fill(directory, "DW_USERS.MDB", [&](dao::Database& database, Batch& batch) {
    const rt::DateTime made = span.First();
    RowWriter users(batch, database, "Application User List",
                    {"User Name", "Password", "Allow Access", "Administrator", "Created By", "Date Created"});
    const std::int32_t administrator =
        users.Add({kAdministrator, rt::Null(), true, true, kAdministrator, made});
    const std::int32_t clerk = users.Add({kClerk, "FLEET", true, false, kAdministrator, made});
    users.Add({"SEASONAL", "SUMMER", false, false, kAdministrator, made});

    RowWriter workstations(
        batch, database, "Application Workstation List",
        {"Workstation Name", "Allow Access", "Active", "Notes", "Created By", "Date Created"});
    const std::int32_t office =
        workstations.Add({"OFFICE", true, true, "Front office", kAdministrator, made});
    const std::int32_t shop = workstations.Add({"SHOP", true, true, "Parts counter", kAdministrator, made});
    workstations.Add({"LAPTOP", true, false, "Given back", kAdministrator, made});

    // The sign-ons of the last two weeks. The first Tuesday's session died and was marked as such.
    RowWriter log(
        batch, database, "Access Log",
        {"User ID", "Computer ID", "Time In", "Time Out", "Terminated", "Updated By", "Last Updated"});
    constexpr int kSunday = 1;
    constexpr int kTuesday = 3;
    constexpr int kSaturday = 7;
    bool died = false;
    for (int back = 14; back >= 1; --back) {
      const rt::DateTime day = span.Day(span.Days() - back);
      const int weekday = rt::DatePart("w", day);
      if (weekday == kSunday || weekday == kSaturday) continue;
      if (weekday == kTuesday && !died) {
        log.Add({clerk, office, At(day, 7, 55), rt::Null(), true, kAdministrator, At(day, 16, 30)});
        died = true;
      } else {
        log.Add({clerk, office, At(day, 7, 50 + back % 10), At(day, 16, 5 + back % 7), false});
      }
      log.Add({administrator, shop, At(day, 9, 10 + back), At(day, 9, 35 + back), false});
    }
  });
}

void WriteLists(const std::string& directory) {
  Fill(directory, "DW_LISTS.MDB", [](dao::Database& database, Batch& batch) {
    // Type 1 lists have numbers, type 2 lists abbreviations.
    constexpr std::int16_t kNumbers = 1;
    constexpr std::int16_t kAbbreviations = 2;
    RowWriter definitions(batch, database, "List Definitions", {"Name", "Type"});
    RowWriter entries(batch, database, "Lists",
                      {"Table Name", "Position", "Value", "Description", "Abbreviation"});
    definitions.Add({"Asset Conditions", kNumbers});
    std::int16_t position = 0;
    for (const char* condition : {"New", "Good", "Fair", "Poor", "Unsafe"}) {
      ++position;
      entries.Add({"Asset Conditions", position, std::int32_t{position}, condition});
    }
    definitions.Add({"Meter Types", kAbbreviations});
    entries.Add({"Meter Types", std::int16_t{1}, rt::Null(), "Miles", "MI"});
    entries.Add({"Meter Types", std::int16_t{2}, rt::Null(), "Hours", "HR"});
    definitions.Add({"Ownership", kAbbreviations});
    entries.Add({"Ownership", std::int16_t{1}, rt::Null(), "Owned", "OWN"});
    entries.Add({"Ownership", std::int16_t{2}, rt::Null(), "Leased", "LSE"});
    entries.Add({"Ownership", std::int16_t{3}, rt::Null(), "Rented", "RNT"});
  });
}

void WriteQueries(const std::string& directory, const Span& span) {
  Fill(directory, "DW_SANDS.MDB", [&](dao::Database& database, Batch& batch) {
    const rt::DateTime made = span.First();
    RowWriter queries(batch, database, "Select and Sort Queries",
                      {"Description", "Primary Table", "Permanent", "Created By", "Date Created"});
    RowWriter criteria(batch, database, "Selection Criteria",
                       {"Query ID", "Line Number", "Table Name", "Field Name", "Comparison Operator", "Value",
                        "Connector", "Open Parentheses", "Close Parentheses", "Get Value at Runtime",
                        "Runtime Value Prompt", "Created By", "Date Created"});
    RowWriter sorts(batch, database, "Sort Criteria",
                    {"Query ID", "Line Number", "Table Name", "Field Name", "Ascending or Descending",
                     "Created By", "Date Created"});
    constexpr std::int16_t kFirst = 1;
    constexpr std::int16_t kSecond = 2;

    const std::int32_t pickups =
        queries.Add({"Pickups And Vans By Purchase", "Vehicles", true, kAdministrator, made});
    criteria.Add({pickups, kFirst, "Vehicles", "Class ID", "=", "'PICKUP'", "OR", "(", "", false, "",
                  kAdministrator, made});
    criteria.Add({pickups, kSecond, "Vehicles", "Class ID", "=", "'VAN'", "", "", ")", false, "",
                  kAdministrator, made});
    sorts.Add({pickups, kFirst, "Vehicles", "Purchase Date", "D", kAdministrator, made});
    sorts.Add({pickups, kSecond, "Vehicles", "Asset ID", "A", kAdministrator, made});

    const std::int32_t dear =
        queries.Add({"Outside Work Above An Amount", "Maintenance Transactions", true, kClerk, made});
    criteria.Add({dear, kFirst, "Maintenance Transactions", "Outside Cost", ">", "0", "", "", "", true,
                  "Outside cost above which amount?", kClerk, made});
    sorts.Add({dear, kFirst, "Maintenance Transactions", "Transaction Date", "D", kClerk, made});
  });
}

}  // namespace dw::sample
