// Where the data is: which kind of data source, which directory or server, and the connection strings of all
// files. Runs once at the start, before anybody signs on.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "data/BrackenfelGlobals.h"

namespace dw {

/// The facts that an application code selects.
struct ApplicationFacts {
  enum class Source { Access, Server, Asked };
  std::string code;
  std::string mainFile;
  std::string serverDatabase;  ///< empty if the code has no data on a server
  Source source = Source::Access;
  bool hasListsFile = true;
};
/// A code without facts of its own keeps its data in files that are named after it.
ApplicationFacts FactsOf(const std::string& code);

/// The section and key of the settings under which a code keeps its data directory.
inline constexpr const char* kDataSection = "Data";
std::string DataPathKey(const std::string& code);
/// Keeps a setting of the user. Reports a failure, because the program would ask for the same again at the
/// next start.
void KeepSetting(const std::string& application, const std::string& section, const std::string& key,
                 const std::string& value);

/// The state before the sign-on: nobody is signed on, and the file user is the default one.
void BeginSignOn();
/// Notes in the settings that the program has run once under this user, and clears FirstRunPending.
void SettleFirstRun();

/// Files or a server: sets UseAccess, UseSQLServer and the four literals of SQL. Asks the user, once, if the
/// code allows both.
void SetDataSourceKind(const std::string& code = kApplicationCode);
/// Moves the setting with the directory of the shared system file to its present section, and removes it from
/// two older ones. If an older one names another directory, the present one counts and the user is told so.
void CleanOldSettings(const std::string& code = kApplicationCode);

/// Finds the data and sets the paths and connection strings of all files; true then. Shows the locator form
/// again as long as the main file is missing, and the server form as long as no server is known; the only
/// other way out is ApplicationEnd. Paths of existing files are spelled as in the file system; missing
/// companion files get their standard names.
bool LocateData(const std::string& code = kApplicationCode);
/// The last steps of LocateData, for a data directory that is known: paths and connection strings of the
/// companion files in DataPath, and of the shared system file.
void SetCompanionFiles(const std::string& code = kApplicationCode);

/// Takes over the directory in which the user has found a missing file, and keeps it in the settings: as the
/// directory of the shared system file if that was the file, otherwise as the data directory of the code. The
/// connection strings of the lists and of select and sort stay as they are; SetCompanionFiles corrects them.
void TakeDirectory(const std::string& directory, const std::string& fileName,
                   const std::string& code = kApplicationCode);

/// The window that asks for a server: it keeps server and login in the settings of the code. The desktop
/// installs it; without one the program ends with a message.
using ServerLoginForm = std::function<void(const std::string& code, const std::string& database)>;
/// Returns the earlier one.
ServerLoginForm InstallServerLoginForm(ServerLoginForm form);

/// Makes a file writable; true if it exists. Called for every data file before use: files from a disc are
/// read-only.
bool ClearReadOnly(const std::string& path);
/// Reports that a record could not be read again after it was stored.
void ShowReReadError(std::int32_t id);

}  // namespace dw
