// The data directory of the console program.
#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "tools/dwadmin/Commands.h"

namespace dw {

void InstallConsoleLocator() {
  InstallFileLocator([](const std::string& fileName) {
    screen::MessageBox("The file " + BareFileName(fileName) + " was not found in " + DataPath +
                           "\rName the directory of the data files with --data.",
                       screen::Icon::Critical);
    throw FileMissing();
  });
}

void UseDataDirectory(const std::string& directory) {
  SetDataPath(directory);
  DataFile = FindFile(DataPath, "DW.MDB");
  DataConnect = MainFileConnect(DataFile);
  UsersFile = FindFile(DataPath, "DW_USERS.MDB");
  UsersConnect = FileConnect(UsersFile);
  ListsFile = FindFile(DataPath, "DW_LISTS.MDB");
  ListsConnect = FileConnect(ListsFile);
  SandsFile = FindFile(DataPath, "DW_SANDS.MDB");
  SandsConnect = FileConnect(SandsFile);
}

std::string RequireFile(const std::string& file) {
  std::string path = FindFile(DataPath, file);
  if (!FileExists(path)) LocateFile(path);
  return path;
}

}  // namespace dw
