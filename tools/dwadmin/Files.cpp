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
  SetDataFile(DataKind::Main, FindFile(DataPath, "DW.MDB"));
  SetDataFile(DataKind::Users, FindFile(DataPath, "DW_USERS.MDB"));
  SetDataFile(DataKind::Lists, FindFile(DataPath, "DW_LISTS.MDB"));
  SetDataFile(DataKind::SelectAndSort, FindFile(DataPath, "DW_SANDS.MDB"));
}

std::string RequireFile(const std::string& file) {
  std::string path = FindFile(DataPath, file);
  if (!FileExists(path)) LocateFile(path);
  return path;
}

}  // namespace dw
