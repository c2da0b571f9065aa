// What the data layer needs of the shell: the form that finds a missing file, and the end of the program.
#pragma once

#include <exception>
#include <functional>
#include <string>

namespace dw {

/// Finds a missing data file: from the name or path that was looked for, it corrects DataPath and the
/// connection strings. The shell installs a form for this. Without one, LocateFile shows a message and throws
/// ApplicationEnd.
using FileLocator = std::function<void(const std::string& fileName)>;
void InstallFileLocator(FileLocator locator);
void LocateFile(const std::string& fileName);

/// Repairs a damaged file. Installed by the module that can do it. Without one the file stays as it is and
/// the program ends with a message: RepairFile throws ApplicationEnd, also if the installed end returns.
using FileRepair = std::function<void(const std::string& path)>;
void InstallFileRepair(FileRepair repair);
void RepairFile(const std::string& path);

/// Thrown by EndApplication if no other end is installed; only main functions catch it.
class ApplicationEnd : public std::exception {
 public:
  const char* what() const noexcept override { return "the program was ended"; }
};

/// Ends the program: closes every form, signs off.
void EndApplication();
void InstallEndApplication(std::function<void()> end);

}  // namespace dw
