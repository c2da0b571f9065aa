// The search of the machine's drives for a directory that holds the data files.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "platform/system/Machine.h"

namespace dw {

/// Where the list of drives comes from; the machine itself unless something else is installed. An empty
/// function brings the machine back. Gives the earlier one.
using DriveProvider = std::function<std::vector<sys::Drive>()>;
DriveProvider InstallDrives(DriveProvider drives);
std::vector<sys::Drive> MachineDrives();

/// What a search is for, and who hears of it.
struct DataSearch {
  std::string code = kApplicationCode;
  /// The user has accepted the copy in this directory.
  std::function<void(const std::string& directory)> use;
  /// Asked at each directory; true gives the search up, without another box. May be empty.
  std::function<bool()> stopped;
};

/// The root and all directories below it, level by level, each level by name. Lets events run at each one.
/// What cannot be read, links, and what is mounted from another drive are left out. The paths have no
/// separator at their end (but "/" itself).
std::vector<std::string> ListSubdirectories(const std::string& root,
                                            const std::function<bool()>& stopped = {});
/// Looks for complete copies of the data on one drive and asks the user which one to use. Where the main file
/// lies in the root itself no other directory is looked at. The number of copies found, accepted or not.
std::size_t SearchDrive(const std::string& root, const DataSearch& search);

enum class SearchEnd {
  NoDrives,  ///< the machine told of none
  Done,
  Stopped,
};
/// SearchDrive on the fixed and the remote drives up to the first that holds a copy. Where none does, the
/// user is told of each disc.
SearchEnd SearchDrives(const DataSearch& search);

}  // namespace dw
