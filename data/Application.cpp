#include "data/Application.h"

#include <utility>

#include "platform/screen/Screen.h"

namespace dw {
namespace {

FileLocator& Locator() {
  static FileLocator locator;
  return locator;
}

FileRepair& Repair() {
  static FileRepair repair;
  return repair;
}

std::function<void()>& End() {
  static std::function<void()> end;
  return end;
}

/// Never returns, also if the installed end only closes windows and returns: the caller would ask again for
/// ever.
[[noreturn]] void EndForGood(const std::string& reason) {
  screen::MessageBox(reason + "\r\rApplication terminated.", screen::Icon::Critical);
  EndApplication();
  throw ApplicationEnd();
}

}  // namespace

void InstallFileLocator(FileLocator locator) { Locator() = std::move(locator); }

void LocateFile(const std::string& fileName) {
  if (!Locator()) EndForGood("The file " + fileName + " was not found.");
  Locator()(fileName);
}

void InstallFileRepair(FileRepair repair) { Repair() = std::move(repair); }

void RepairFile(const std::string& path) {
  if (!Repair()) EndForGood("The file " + path + " is damaged. It has been left as it is.");
  Repair()(path);
}

void EndApplication() {
  if (!End()) throw ApplicationEnd();
  End()();
}

void InstallEndApplication(std::function<void()> end) { End() = std::move(end); }

}  // namespace dw
