#include "shell/ReleaseCopy.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "data/GenericTools.h"
#include "platform/screen/Screen.h"
#include "platform/system/Files.h"
#include "shell/DataLocation.h"
#include "shell/DataSearch.h"

namespace dw {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

namespace {

constexpr const char* kSystemCode = "PK";
constexpr const char* kSystemFile = "BFSYS.MDB";
/// The code of a copy that is refused because another user has the file open.
constexpr int kSharingViolation = 32;

/// The question before a file is replaced, for a program whose desktop has installed none.
class ReplaceQuestion {
 public:
  ReplaceQuestion() : earlier_(sys::InstallReplaceConfirm(&Ask)) {
    if (earlier_) sys::InstallReplaceConfirm(earlier_);
  }
  ~ReplaceQuestion() { sys::InstallReplaceConfirm(earlier_); }
  ReplaceQuestion(const ReplaceQuestion&) = delete;
  ReplaceQuestion& operator=(const ReplaceQuestion&) = delete;

 private:
  static bool Ask(const std::string& target) {
    return screen::MessageBox(target + " already exists. Do you want to replace it?", Icon::Question,
                              Buttons::YesNo) == Answer::Yes;
  }
  sys::ReplaceConfirm earlier_;
};

std::string HomeDirectory() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home != '\0') return home;
  const passwd* user = getpwuid(getuid());
  return user != nullptr ? user->pw_dir : "/";
}

/// The release's directory of initialized files, given from the root of the disc.
std::string ReleaseFolder(const std::string& code) {
  return screen::ApplicationTitle() + " Release/" + code + " Initialized Data Files/";
}

/// Copies a file into a directory. Returns its path there, or an empty text if it could not be copied.
std::string CopyInto(const std::string& directory, const std::string& source, const std::string& name) {
  std::string target = FindFile(directory, name);
  if (CopyDataFile(source, target) != CopyEnd::Copied) return {};
  ClearReadOnly(target);
  return target;
}

}  // namespace

CopyEnd CopyDataFile(const std::string& source, const std::string& target) {
  const bool inUse = IsInUse(source) || IsInUse(target);
  const ReplaceQuestion question;
  const int code = inUse ? kSharingViolation : sys::ShellCopy(source, target);
  if (code == sys::kShellDone) return CopyEnd::Copied;
  if (code == sys::kShellCanceled) {
    screen::MessageBox("Copy of " + source + " to " + target + " cancelled.", Icon::Information);
    return CopyEnd::Canceled;
  }
  const Answer answer = screen::MessageBox(
      "Copy failed with a code of " + std::to_string(code) + ". Press OK to do it the old fashioned way.",
      Icon::None, Buttons::OkCancel);
  if (answer != Answer::Ok) return CopyEnd::Failed;
  if (IsInUse(source) || IsInUse(target)) {
    screen::MessageBox("The file is in use by another person and cannot be copied.", Icon::Critical);
    return CopyEnd::Failed;
  }
  const sys::FileResult result = sys::CopyFile(source, target);
  if (result.Done()) return CopyEnd::Copied;
  screen::MessageBox("Could not copy file.\r" + result.text, Icon::Critical);
  return CopyEnd::Failed;
}

std::optional<ReleaseDisc> FindReleaseDisc(const std::vector<sys::Drive>& drives, const std::string& code) {
  for (const sys::Drive& drive : drives) {
    if (drive.kind != sys::DriveKind::RemovableDisc) continue;
    const std::string mainFile = FindFile(drive.root, ReleaseFolder(code) + code + ".mdb");
    if (!FileExists(mainFile)) continue;
    const std::size_t name = BareFileName(mainFile).size();
    return ReleaseDisc{drive.root, mainFile.substr(0, mainFile.size() - name)};
  }
  return std::nullopt;
}

std::string InstallationDirectory(const std::string& driveRoot, const std::string& code) {
  const std::string home = WithSeparator(HomeDirectory());
  const std::string root = WithSeparator(driveRoot);
  const bool writable = access(root.c_str(), W_OK | X_OK) == 0;
  const bool atHome = root == "/" || (!writable && home.starts_with(root));
  return (atHome ? home : root) + "Brackenfel Software/" + code + "/";
}

bool CopyDataFromCD(const ReleaseDisc& disc, const std::string& driveRoot, const std::string& code) {
  const screen::Hourglass hourglass;
  const std::string directory = InstallationDirectory(driveRoot, code);
  const auto copy = [&](const std::string& name) {
    return CopyInto(directory, FindFile(disc.directory, name), name);
  };

  std::string path = copy(code + ".MDB");
  if (path.empty()) return false;
  SetDataFile(DataKind::Main, path);
  path = copy(code + "_USERS.MDB");
  if (path.empty()) return false;
  SetDataFile(DataKind::Users, path);
  path = copy(code + "_SANDS.MDB");
  if (path.empty()) return false;
  SandsFile = path;

  KeepSetting(code, kDataSection, DataPathKey(code), directory);
  DataPath = directory;
  SystemPath.clear();
  SystemFile.clear();
  if (code == kSystemCode) return true;

  const std::string systemDirectory = InstallationDirectory(driveRoot, kSystemCode);
  path =
      CopyInto(systemDirectory, FindFile(disc.root, ReleaseFolder(kSystemCode) + kSystemFile), kSystemFile);
  if (path.empty()) return true;
  KeepSetting(kSystemCode, kDataSection, DataPathKey(kSystemCode), systemDirectory);
  SystemPath = systemDirectory;
  SetDataFile(DataKind::System, path);
  return true;
}

bool AskForReleaseDisc() {
  return screen::MessageBox("Insert your " + screen::ApplicationTitle() +
                                " release CD into your computer now.\r\rPress OK when you are ready to "
                                "proceed.",
                            Icon::None, Buttons::OkCancel) == Answer::Ok;
}

bool InstallFromReleaseDisc(const std::string& driveRoot, const std::string& code) {
  const std::vector<sys::Drive> drives = MachineDrives();
  if (drives.empty()) {
    screen::MessageBox("No Drives were found!", Icon::Critical);
    return false;
  }
  const auto disc = FindReleaseDisc(drives, code);
  if (!disc) {
    screen::MessageBox(screen::ApplicationTitle() + " Release CD was not found. No files copied.",
                       Icon::Critical);
    return false;
  }
  return CopyDataFromCD(*disc, driveRoot, code);
}

}  // namespace dw
