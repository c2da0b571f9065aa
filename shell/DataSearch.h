// The search of the machine's drives for a directory with the data files.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "platform/system/Machine.h"

namespace dw {

/// The source of the list of drives: the machine itself unless something else is installed. An empty function
/// restores the machine. Returns the earlier one.
using DriveProvider = std::function<std::vector<sys::Drive>()>;
DriveProvider InstallDrives(DriveProvider drives);
std::vector<sys::Drive> MachineDrives();

/// What a search looks for, and the functions that it calls.
struct DataSearch {
  std::string code = kApplicationCode;
  /// The user has accepted the copy in this directory.
  std::function<void(const std::string& directory)> use;
  /// Called at each directory; true ends the search without another box. May be empty.
  std::function<bool()> stopped;
};

/// The root and all directories below it, level by level, each level sorted by name. Lets events run at each
/// one. Leaves out what cannot be read, links, and what is mounted from another drive. The paths have no
/// separator at their end (except "/" itself).
std::vector<std::string> ListSubdirectories(const std::string& root,
                                            const std::function<bool()>& stopped = {});
/// Looks for complete copies of the data on one drive and asks the user which one to use. If the main file is
/// in the root itself, looks at no other directory. Returns the number of copies found, accepted or not.
std::size_t SearchDrive(const std::string& root, const DataSearch& search);

enum class SearchEnd {
  NoDrives,  ///< the machine has no drives
  Done,
  Stopped,
};
/// SearchDrive on the fixed and the remote drives up to the first one with a copy. If none has one, a message
/// names each disc drive.
SearchEnd SearchDrives(const DataSearch& search);

}  // namespace dw
