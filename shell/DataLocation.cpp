#include "shell/DataLocation.h"

#include <algorithm>
#include <array>
#include <utility>

#include "data/Application.h"
#include "data/GenericTools.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "platform/system/Files.h"
#include "platform/system/Machine.h"
#include "platform/system/Settings.h"
#include "shell/ServerLogin.h"

namespace dw {

using screen::Icon;
using Source = ApplicationFacts::Source;

namespace {

constexpr const char* kSystemCode = "PK";
constexpr const char* kSystemFile = "BFSYS.MDB";
constexpr const char* kSystemPathKey = "PK Data Path";
constexpr const char* kSourceKey = "Datasource Type";

ServerLoginForm& LoginForm() {
  static ServerLoginForm form;
  return form;
}

/// Asks for server and login until the settings have them, and then builds the connection string.
bool ConnectToServer(const ApplicationFacts& facts) {
  const auto setting = [&](const char* key) { return sys::GetSetting(facts.code, kDataSection, key); };
  const std::string server = setting("Server Name");
  const std::string trusted = setting("Trusted Connection");
  if (!server.empty() && trusted == "Yes") {
    DataConnect = ServerConnect(server, facts.serverDatabase);
    return true;
  }
  if (!server.empty() && trusted == "No") {
    DataConnect =
        ServerConnect(server, facts.serverDatabase, setting("Server User ID"), setting("Server Password"));
    return true;
  }
  if (!LoginForm()) {
    screen::MessageBox("The database server is not known.\r\rApplication terminated.", Icon::Critical);
    EndApplication();
    throw ApplicationEnd();
  }
  LoginForm()(facts.code, facts.serverDatabase);
  return false;
}

bool ConnectToFile(const ApplicationFacts& facts) {
  SetDataFile(DataKind::Main, FindFile(DataPath, facts.mainFile));
  if (!FileExists(DataFile)) {
    LocateFile(facts.mainFile);
    return false;
  }
  ClearReadOnly(DataFile);
  return true;
}

/// Uses the file of this name in a directory.
void UseFile(DataKind kind, const std::string& directory, const std::string& name) {
  const std::string path = FindFile(directory, name);
  SetDataFile(kind, path);
  ClearReadOnly(path);
}

}  // namespace

ApplicationFacts FactsOf(const std::string& code) {
  static const std::array<ApplicationFacts, 4> kFacts{{
      {kSystemCode, kSystemFile, "", Source::Access, true},
      {"BFC", "BFC.MDB", "", Source::Access, false},
      {"TH", "TH.MDB", "Keelwatch", Source::Server, false},
      {"RZ", "RZ.MDB", "Ostrandry", Source::Asked, false},
  }};
  const auto found = std::find_if(kFacts.begin(), kFacts.end(),
                                  [&](const ApplicationFacts& facts) { return facts.code == code; });
  return found != kFacts.end() ? *found : ApplicationFacts{code, code + ".MDB", "", Source::Access, true};
}

std::string DataPathKey(const std::string& code) { return code + " Data Path"; }

void KeepSetting(const std::string& application, const std::string& section, const std::string& key,
                 const std::string& value) {
  if (sys::SaveSetting(application, section, key, value)) return;
  screen::MessageBox("The setting '" + key + "' could not be saved in " + sys::SettingsFile() + ".",
                     Icon::Critical);
}

void BeginSignOn() {
  DataUserID = "admin";
  DataPassword.clear();
  FirstRunPending = true;
  SignedOn = false;
}

void SettleFirstRun() {
  if (sys::GetSetting(kApplicationCode, "Control", "Initialized", "No") == "No")
    sys::SaveSetting(kApplicationCode, "Control", "Initialized", "Yes");
  FirstRunPending = false;
}

void SetDataSourceKind(const std::string& code) {
  const Source source = FactsOf(code).source;
  UseAccess = source == Source::Access;
  if (source == Source::Asked) {
    std::string kind = sys::GetSetting(code, kDataSection, kSourceKey);
    if (kind.empty()) {
      const auto answer =
          screen::MessageBox("Are you using an Access version of " + screen::ApplicationTitle() + "? ",
                             Icon::None, screen::Buttons::YesNo);
      kind = answer == screen::Answer::Yes ? "Access" : "SQL Server";
      KeepSetting(code, kDataSection, kSourceKey, kind);
    }
    UseAccess = kind == "Access";
  }
  UseSQLServer = !UseAccess;
  DateDelimiter = UseAccess ? "#" : "'";
  DeletePrefix = UseAccess ? "DELETE * " : "DELETE ";
  TrueLiteral = UseAccess ? "TRUE" : "1";
  FalseLiteral = UseAccess ? "FALSE" : "0";
}

void CleanOldSettings(const std::string& code) {
  if (code == kSystemCode) return;
  const std::string old = sys::GetSetting(code, kDataSection, kSystemPathKey);
  if (!old.empty()) {
    const std::string present = sys::GetSetting(kSystemCode, kDataSection, kSystemPathKey);
    if (present.empty()) {
      KeepSetting(kSystemCode, kDataSection, kSystemPathKey, old);
    } else if (present != old) {
      screen::MessageBox("You had two different locations for BFSYS.MDB database.\r1) " + old + "\r2) " +
                             present +
                             " (assumed correct).\rPlease correct if the was not the correct assumption "
                             "under Administration|Application Setup|Options.",
                         Icon::Information);
    }
    sys::DeleteSetting(code, kDataSection, kSystemPathKey);
  }
  if (!sys::GetSetting(code, kSystemCode, kSystemPathKey).empty())
    sys::DeleteSetting(code, kSystemCode, kSystemPathKey);
}

bool LocateData(const std::string& code) {
  const ApplicationFacts facts = FactsOf(code);
  if (sys::SettingsDamaged())
    screen::MessageBox("The settings file " + sys::SettingsFile() +
                           " is damaged. Settings that it kept may be missing; correct or remove the file.",
                       Icon::Exclamation);
  do {
    LocalDataInUse = false;
    DataPath = WithSeparator(sys::GetSetting(code, kDataSection, DataPathKey(code), sys::ProgramDirectory()));
  } while (!(UseAccess ? ConnectToFile(facts) : ConnectToServer(facts)));
  SetCompanionFiles(code);
  return true;
}

void SetCompanionFiles(const std::string& code) {
  if (FactsOf(code).hasListsFile) UseFile(DataKind::Lists, DataPath, code + "_LISTS.MDB");
  UseFile(DataKind::Users, DataPath, code + "_USERS.MDB");
  UseFile(DataKind::SelectAndSort, DataPath, code + "_SANDS.MDB");

  const std::string systemPath = sys::GetSetting(kSystemCode, kDataSection, kSystemPathKey);
  HasSystemData = !systemPath.empty();
  if (!HasSystemData) return;
  SystemPath = WithSeparator(systemPath);
  UseFile(DataKind::System, SystemPath, kSystemFile);
}

void TakeDirectory(const std::string& directory, const std::string& fileName, const std::string& code) {
  if (code != kSystemCode && rt::EqualNoCase(fileName, kSystemFile)) {
    SystemPath = WithSeparator(directory);
    UseFile(DataKind::System, SystemPath, kSystemFile);
    KeepSetting(kSystemCode, kDataSection, kSystemPathKey, SystemPath);
    return;
  }
  DataPath = WithSeparator(directory);
  UseFile(DataKind::Main, DataPath, code + ".mdb");
  const std::string server = sys::GetSetting(code, kDataSection, "Server Name");
  if (!server.empty()) DataConnect = DriverConnect(server);
  UseFile(DataKind::Users, DataPath, code + "_users.mdb");
  ListsFile = FindFile(DataPath, code + "_lists.mdb");
  ClearReadOnly(ListsFile);
  SandsFile = FindFile(DataPath, code + "_sands.mdb");
  ClearReadOnly(SandsFile);
  KeepSetting(code, kDataSection, DataPathKey(code), DataPath);
}

ServerLoginForm InstallServerLoginForm(ServerLoginForm form) {
  return std::exchange(LoginForm(), std::move(form));
}

bool ClearReadOnly(const std::string& path) { return sys::ClearReadOnly(path); }

void ShowReReadError(std::int32_t id) {
  screen::MessageBox("Internal Error: Unable to re-read record #" + std::to_string(id) + ".",
                     Icon::Information);
}

}  // namespace dw
