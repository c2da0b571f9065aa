// The data directory as the console knows it.
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

std::string RequireFile(const std::string& file) {
  std::string path = DataPath + file;
  if (!FileExists(path)) LocateFile(path);
  return path;
}

}  // namespace dw
