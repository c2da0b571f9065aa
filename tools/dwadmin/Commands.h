// The commands of the console program. Each returns the exit code: 0 if all of its work was done.
//
// A command that cannot do its work says so and returns 1, or throws NotDone, StoreError, ado::Error or
// RuntimeError. The data directory has been set (SetDataPath) before a command is called.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "costing/CostRows.h"
#include "data/Application.h"
#include "tools/dwadmin/CommandScreen.h"
#include "tools/dwadmin/Session.h"

namespace dw {

/// The files of a data directory, the main one first.
inline constexpr std::array kDataFiles{"DW.MDB", "DW_USERS.MDB", "DW_LISTS.MDB", "DW_SANDS.MDB"};

/// Thrown after the message that a data file was not found.
class FileMissing : public ApplicationEnd {
 public:
  const char* what() const noexcept override { return "a data file was not found"; }
};

/// Makes every missing file end the command, with a message that says what to do.
void InstallConsoleLocator();
/// Sets this directory as the data directory, whatever the case of the letters in its files' names.
void UseDataDirectory(const std::string& directory);
/// The path of a file in the data directory, whatever the case of the letters in its name. A missing file
/// ends the command.
std::string RequireFile(const std::string& file);

/// Whether a table is written for people or for programs.
enum class Format { Text, Json };

// --- making data
struct SampleRequest {
  int assets = 40;
  int years = 2;
  std::uint32_t seed = 1;
};
/// Empty files with the one user and the one workstation that the first sign-on needs. Existing files stay.
int CreateFiles(const std::string& directory, const std::string& workstation);
int CreateSample(const std::string& directory, const SampleRequest& request);

/// Exit code of a posting run that finished but left transactions unposted.
inline constexpr int kRowsLeft = 4;

// --- changing data: these sign on
/// Returns kRowsLeft if transactions stay unposted; standard error then names them and the reasons.
int Post(const SignOnRequest& signOn, const CommandScreen& screen, bool clearFirst);
int Unpost(const SignOnRequest& signOn, const CommandScreen& screen, std::int32_t transaction);
int Compact(const SignOnRequest& signOn, const CommandScreen& screen);

// --- looking at data
struct DueRequest {
  std::string by;             ///< a date as typed; empty: a fortnight from today
  std::string usage = "500";  ///< a number as typed, in miles
  std::string asset;          ///< empty: every asset in service
  std::string logDirectory;   ///< empty: the program's directory
};
int Due(const DueRequest& request, Format format);

/// Costs of one asset, or of all if `asset` is empty.
int Costs(const std::string& asset, CostSpan by, Format format);
int Who(Format format);
/// Returns 1 if the files differ from what they should be.
int Check(Format format);
struct ReportRequest {
  std::string number;  ///< "006" or "6"
  std::string from;    ///< a date as typed; empty: as the report's window offers it
  std::string to;      ///< a date as typed; empty: today
  std::string asset;   ///< for report 006: its only asset
  std::string select;  ///< name of a stored select and sort definition
  bool summary = false;
  std::string paper;   ///< "letter" or "a4"; empty: as the user's settings have it
  std::string out;     ///< a file, whose ending chooses the format, or "-"; empty: "-"
  std::string format;  ///< an ending without its point
  std::string user;    ///< the name that the report shows; empty: the login's
};
/// Makes a report and writes its pages.
int MakeReport(const ReportRequest& request);
int ListReports(Format format);
/// Writes each fault of a definition file with its line and column. Returns 1 if there are any. Tables and
/// fields are compared with the data directory's main file, if there is one.
int CheckReport(const std::string& definitionFile);

/// A table by its name, or a SELECT.
int Export(const std::string& source, Format format);

}  // namespace dw
