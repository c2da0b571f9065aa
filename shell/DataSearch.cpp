#include "shell/DataSearch.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "data/GenericTools.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"

namespace dw {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

namespace {

namespace fs = std::filesystem;

DriveProvider& Provider() {
  static DriveProvider provider;
  return provider;
}

/// The file system of the directory itself, not of a link's target; empty for anything else.
std::optional<dev_t> DeviceOfDirectory(const std::string& path) {
  struct stat state {};
  if (lstat(path.c_str(), &state) != 0 || !S_ISDIR(state.st_mode)) return std::nullopt;
  return state.st_dev;
}

/// Appends the directories in `directory` that are on the same file system.
void AppendChildren(const std::string& directory, dev_t device, std::vector<std::string>& directories) {
  const auto begin = static_cast<std::ptrdiff_t>(directories.size());
  const std::string base = WithSeparator(directory);
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code gone;
    if (entry->symlink_status(gone).type() != fs::file_type::directory || gone) continue;
    std::string child = base + entry->path().filename().string();
    if (DeviceOfDirectory(child) == device) directories.push_back(std::move(child));
  }
  std::sort(directories.begin() + begin, directories.end());
}

bool HoldsCopy(const std::string& directory, const std::string& code) {
  for (const char* ending : {".mdb", "_USERS.mdb", "_sands.mdb"})
    if (!FileExists(FindFile(directory, code + ending))) return false;
  return true;
}

bool AskYesNo(const std::string& text) {
  return screen::MessageBox(text, Icon::None, Buttons::YesNo) == Answer::Yes;
}

void Offer(const std::string& root, const std::vector<std::string>& copies, const DataSearch& search) {
  if (copies.size() == 1) {
    if (AskYesNo("Found one copy at " + copies.front() + " on drive " + root +
                 ".\r\rUse this database location?"))
      search.use(copies.front());
    return;
  }
  std::string text = "Found " + std::to_string(copies.size()) + " copies on drive " + root + ".";
  for (const std::string& copy : copies) text += '\r' + copy;
  screen::MessageBox(text, Icon::Information);
  for (const std::string& copy : copies) {
    if (!AskYesNo("Use copy at " + copy + "?")) continue;
    search.use(copy);
    return;
  }
}

}  // namespace

DriveProvider InstallDrives(DriveProvider drives) { return std::exchange(Provider(), std::move(drives)); }

std::vector<sys::Drive> MachineDrives() { return Provider() ? Provider()() : sys::Drives(); }

std::vector<std::string> ListSubdirectories(const std::string& root, const std::function<bool()>& stopped) {
  const auto device = DeviceOfDirectory(root);
  if (!device) return {};
  std::vector<std::string> directories{root};
  // Subdirectories are appended behind the level that is being read, and are read later.
  for (std::size_t i = 0; i < directories.size(); ++i) {
    screen::DoEvents();
    if (stopped && stopped()) break;
    AppendChildren(std::string(directories[i]), *device, directories);
  }
  return directories;
}

std::size_t SearchDrive(const std::string& root, const DataSearch& search) {
  const auto stopped = [&] { return search.stopped && search.stopped(); };
  std::vector<std::string> directories{root};
  if (!FileExists(FindFile(root, search.code + ".mdb")))
    directories = ListSubdirectories(root, search.stopped);
  std::vector<std::string> copies;
  for (std::string& directory : directories) {
    if (stopped()) return 0;
    screen::DoEvents();
    if (HoldsCopy(directory, search.code)) copies.push_back(std::move(directory));
  }
  if (stopped()) return 0;
  if (!copies.empty()) Offer(root, copies, search);
  return copies.size();
}

SearchEnd SearchDrives(const DataSearch& search) {
  const auto stopped = [&] { return search.stopped && search.stopped(); };
  const std::vector<sys::Drive> drives = MachineDrives();
  if (drives.empty()) {
    screen::MessageBox("No Drives were found!", Icon::Critical);
    return SearchEnd::NoDrives;
  }
  for (const sys::Drive& drive : drives) {
    if (drive.kind == sys::DriveKind::RemovableDisc) continue;
    const std::size_t found = SearchDrive(drive.root, search);
    if (stopped()) return SearchEnd::Stopped;
    if (found > 0) return SearchEnd::Done;
  }
  for (const sys::Drive& drive : drives)
    if (drive.kind == sys::DriveKind::RemovableDisc)
      screen::MessageBox("CD drive found at " + rt::UpperCase(drive.root));
  return SearchEnd::Done;
}

}  // namespace dw
