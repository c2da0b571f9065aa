// Where the data is: which kind of data source, which directory or server, and the connection strings of all
// files. Runs once in the start, before anybody signs on.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "data/BrackenfelGlobals.h"

namespace dw {

/// What an application code selects.
struct ApplicationFacts {
  enum class Source { Access, Server, Asked };
  std::string code;
  std::string mainFile;
  std::string serverDatabase;  ///< empty where the code has no data on a server
  Source source = Source::Access;
  bool hasListsFile = true;
};
/// Every code that has no facts of its own keeps its data in files that are named after it.
ApplicationFacts FactsOf(const std::string& code);

/// The section and key of the settings under which a code keeps its data directory.
inline constexpr const char* kDataSection = "Data";
std::string DataPathKey(const std::string& code);
/// Keeps a setting of the user. A failure is told: what was chosen would be asked for again at the next
/// start.
void KeepSetting(const std::string& application, const std::string& section, const std::string& key,
                 const std::string& value);

/// What the sign-on starts from: nobody is signed on, the file user is the default one.
void BeginSignOn();
/// Notes in the settings that the program has run once under this user, and clears FirstRunPending.
void SettleFirstRun();

/// Files or a server: sets UseAccess, UseSQLServer and the four literals of SQL. Asks the user, once, under a
/// code that leaves the choice.
void SetDataSourceKind(const std::string& code = kApplicationCode);
/// Moves the directory of the shared system file to where it is kept now, and removes it from two older
/// places. Where two places name different directories the newer one wins and the user is told.
void CleanOldSettings(const std::string& code = kApplicationCode);

/// Finds the data and builds the paths and connection strings of all files; `ok` is true then. As long as the
/// main file is missing the locator form is shown again, and as long as a server is not known the form for
/// it; the only other way out is ApplicationEnd. Paths of files that exist have the letters that the file
/// system knows; companion files that are missing have their standard names.
void LocateData(bool& ok, const std::string& code = kApplicationCode);
/// The last steps of LocateData, for a data directory that is known: paths and connection strings of the
/// companion files in DataPath, and of the shared system file.
void SetCompanionFiles(const std::string& code = kApplicationCode);

/// Takes over the directory that a user has found a missing file in, and keeps it in the settings: as that of
/// the shared system file where this was the file, else as the data directory of the code. The strings of the
/// lists and of select and sort stay as they are; SetCompanionFiles corrects them.
void TakeDirectory(const std::string& directory, const std::string& fileName,
                   const std::string& code = kApplicationCode);

/// The window that asks for a server: keeps server and login in the settings of the code. Installed by the
/// desktop; without one the program ends with a message.
using ServerLoginForm = std::function<void(const std::string& code, const std::string& database)>;
/// Gives the earlier one.
ServerLoginForm InstallServerLoginForm(ServerLoginForm form);

/// Makes a file writable; true if it exists. For every data file before use: files from a disc arrive
/// read-only.
bool ClearReadOnly(const std::string& path);
/// Tells that a record could not be read again after it was stored.
void ShowReReadError(std::int32_t id);

}  // namespace dw
