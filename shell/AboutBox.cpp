#include "shell/AboutBox.h"

#include "data/BrackenfelGlobals.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "data/Version.h"
#include "platform/runtime/Clock.h"
#include "platform/system/Settings.h"
#include "shell/DataLocation.h"

namespace dw {
namespace {

constexpr const char* kParametersQuery = "SELECT * FROM [Parameters] WHERE [ID] = 1";
constexpr std::array<const char*, 4> kOrganizationColumns{"Organization Name", "Address Line 1",
                                                          "Address Line 2", "Address Line 3"};

/// The main file, closed again in every case.
struct OpenFile {
  DaoWorkspacePtr workspace;
  DaoDatabasePtr database;
  DaoRecordsetPtr rows;
  OpenFile() = default;
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() { CloseAll(rows, database, workspace); }
};

void AddParameters(dao::Recordset& rows) {
  DaoAddRecord(rows);
  if (!rows.Editing()) return;
  rows.Set("ID", 1);
  for (const char* column : kOrganizationColumns) rows.Set(column, "");
  rows.Set("Date Installed", rt::Today());
  DaoUpdateRecord(rows);
}

/// The date alone: the stored value may have a time of day as well.
std::string DateShown(const rt::Value& value) {
  return value.IsNull() ? std::string() : rt::ShortDate(value.AsDate());
}

}  // namespace

AboutFacts LoadAboutBox() {
  AppVersion = kVersionText;
  const std::string systemPath = sys::GetSetting("PK", kDataSection, DataPathKey("PK"));
  if (!systemPath.empty()) {
    SystemPath = WithSeparator(systemPath);
    SystemFile = FindFile(SystemPath, "BFSYS.MDB");
  }

  AboutFacts facts;
  OpenFile file;
  int error = 0;
  if (!DaoOpenDatabase(DataFile, false, DataUserID, DataPassword, file.workspace, file.database, error))
    return facts;
  file.rows = file.database->OpenRecordset(kParametersQuery);
  if (file.rows->AtEnd()) {
    AddParameters(*file.rows);
    CloseObject(file.rows);
    file.rows = file.database->OpenRecordset(kParametersQuery);
    // The engine's message has said why there is none.
    if (file.rows->AtEnd()) return facts;
  }
  for (std::size_t i = 0; i < facts.organization.size(); ++i)
    facts.organization[i] = file.rows->Get(kOrganizationColumns[i]).Shown();
  OrganisationName = facts.organization[0];
  facts.dateInstalled = DateShown(file.rows->Get("Date Installed"));
  return facts;
}

}  // namespace dw
