// What the data layer needs of the shell: the form that finds a missing file, and the end of the program.
#pragma once

#include <exception>
#include <functional>
#include <string>

namespace dw {

/// Finds a data file that is missing: given the name or path that was looked for, it corrects DataPath and
/// the connection strings. The shell installs the form for it; without one, ApplicationEnd is thrown after a
/// message.
using FileLocator = std::function<void(const std::string& fileName)>;
void InstallFileLocator(FileLocator locator);
void LocateFile(const std::string& fileName);

/// Repairs a damaged file. Installed by the module that knows how; without one the file is left as it is and
/// the program ends with a message: ApplicationEnd is thrown even where the end that is installed comes back.
using FileRepair = std::function<void(const std::string& path)>;
void InstallFileRepair(FileRepair repair);
void RepairFile(const std::string& path);

/// Thrown by EndApplication where nothing else is installed; only main functions catch it.
class ApplicationEnd : public std::exception {
 public:
  const char* what() const noexcept override { return "the program was ended"; }
};

/// Ends the program: closes every form, signs off.
void EndApplication();
void InstallEndApplication(std::function<void()> end);

}  // namespace dw
