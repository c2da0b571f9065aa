// Copying data files: a first installation from the release disc, and the copy of one file with its
// questions.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "platform/system/Machine.h"

namespace dw {

enum class CopyEnd {
  Copied,
  Canceled,  ///< the user did not want an existing file to be replaced, which was reported
  Failed,    ///< reported; the user did not want the plain copy either, or it failed too
};
/// Copies a data file and makes the folder of the target. Asks before it replaces a file. Neither copies nor
/// replaces a file that somebody has open. If the copy fails, offers a plain copy.
CopyEnd CopyDataFile(const std::string& source, const std::string& target);

/// The release disc, and its directory with the files of a first installation.
struct ReleaseDisc {
  std::string root;
  std::string directory;  ///< ends with its separator
};
/// Looks for the main file of a first installation on each disc drive; skips drives without a disc.
std::optional<ReleaseDisc> FindReleaseDisc(const std::vector<sys::Drive>& drives,
                                           const std::string& code = kApplicationCode);

/// The directory of a new installation: "Brackenfel Software" and the code at the root of the drive. At the
/// system's own root, and where the user may not write, it is below the user's home directory instead, if
/// that is on the drive.
std::string InstallationDirectory(const std::string& driveRoot, const std::string& code);

/// Copies the files of a first installation from the disc to a drive, and with them the shared system file.
/// Keeps the directories in the settings and sets the paths. True if the data files are in place, even
/// without the system file.
bool CopyDataFromCD(const ReleaseDisc& disc, const std::string& driveRoot,
                    const std::string& code = kApplicationCode);

/// Asks the user to insert the disc; false if the user does not want to.
bool AskForReleaseDisc();
/// Looks for the disc and copies its files; true if the data files are in place. Reports what is missing.
bool InstallFromReleaseDisc(const std::string& driveRoot, const std::string& code = kApplicationCode);

}  // namespace dw
