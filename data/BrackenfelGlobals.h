// What all parts of a running program share. It is set at sign-on and only read afterwards, without further
// checks.
#pragma once

#include <cstdint>
#include <string>

namespace dw {

/// The application code: selects file names, settings keys and the data source kind.
inline constexpr const char* kApplicationCode = "DW";

inline std::string CurrentUserName;  ///< the signed-on user, as `Application User List` spells the name
inline std::int32_t CurrentUserID = 0;
inline std::string WorkstationName;  ///< this machine's name in the application
inline std::int32_t WorkstationID = 0;
inline bool IsAdministrator = false;
inline bool SignedOn = false;
inline bool FirstRunPending = false;

inline bool UseAccess = true;  ///< the main data is a file
inline bool UseSQLServer = false;
inline std::string DateDelimiter = "#";
inline std::string DeletePrefix = "DELETE * ";
inline std::string TrueLiteral = "TRUE";
inline std::string FalseLiteral = "FALSE";

/// The data directory, always with its separator at the end.
inline std::string DataPath;
inline std::string DataFile, UsersFile, SandsFile, ListsFile;
inline std::string DataConnect, UsersConnect, SandsConnect, ListsConnect, SystemConnect;
inline std::string SystemPath, SystemFile;
inline bool HasSystemData = false;
inline std::string DataUserID = "admin";
inline std::string DataPassword;
inline bool LocalDataInUse = false;
inline std::string OrganisationName;
inline std::string AppVersion;

/// The files that data is kept in.
enum class DataKind { Main, Users, SelectAndSort, Lists, System };
/// Sets where a file is and, from that, how it is opened: its path and its connection string above.
void SetDataFile(DataKind kind, const std::string& path);
/// Sets the data directory and from it the four files and their connection strings, as sign-on does once the
/// directory is known. Adds a missing separator at the end. The files need not exist.
void SetDataPath(const std::string& directory);
/// The connection string of a data file other than the main one.
std::string FileConnect(const std::string& path);
/// The connection string of the main file, with DataUserID and DataPassword.
std::string MainFileConnect(const std::string& path);
/// The connection string of the main data on a server, trusted or by login.
std::string ServerConnect(const std::string& server, const std::string& database);
std::string ServerConnect(const std::string& server, const std::string& database, const std::string& id,
                          const std::string& password);

}  // namespace dw
