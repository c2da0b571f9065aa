// Data files copied from elsewhere: a first installation from the release disc, and the copy of one file with
// its questions.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "platform/system/Machine.h"

namespace dw {

enum class CopyEnd {
  Copied,
  Cancelled,  ///< the user did not want an existing file to be replaced; told
  Failed,     ///< told, and the user did not want the plain copy either, or it failed too
};
/// Copies a data file and makes the folder of the target. Asks before a file is replaced. A file that
/// somebody has open is neither copied nor replaced. Where the copy fails a plain copy is offered.
CopyEnd CopyDataFile(const std::string& source, const std::string& target);

/// The release disc, and the directory on it that holds the files of a first installation.
struct ReleaseDisc {
  std::string root;
  std::string directory;  ///< with its separator
};
/// Looks for the main file of a first installation on each disc drive; drives without a disc are passed over.
std::optional<ReleaseDisc> FindReleaseDisc(const std::vector<sys::Drive>& drives,
                                           const std::string& code = kApplicationCode);

/// The directory of a new installation: "Brackenfel Software" and the code at the root of the drive. Nobody
/// keeps files at the system's own root, nor where people may not write: there they go below the user's home
/// directory, if that lies on the drive.
std::string InstallationDirectory(const std::string& driveRoot, const std::string& code);

/// Copies the files of a first installation from the disc to a drive, and with them the shared system file.
/// Keeps the directories in the settings and sets the paths. True when the data files are in place, also
/// where the system file is not.
bool CopyDataFromCD(const ReleaseDisc& disc, const std::string& driveRoot,
                    const std::string& code = kApplicationCode);

/// Asks for the disc to be put in; false when the user does not want to.
bool AskForReleaseDisc();
/// Looks for the disc and copies its files; true when the data files are in place. What is missing is told.
bool InstallFromReleaseDisc(const std::string& driveRoot, const std::string& code = kApplicationCode);

}  // namespace dw
