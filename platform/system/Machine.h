// The machine that the program runs on: its name, its drives, the programs that it can start.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace sys {

/// The folder that holds the running program, without a separator at its end.
std::string ProgramDirectory();
/// The machine's name in the network; empty when it has none.
std::string HostName();

enum class DriveKind { Fixed, Remote, RemovableDisc };

/// A place where a tree of files begins.
struct Drive {
  std::string root;
  DriveKind kind = DriveKind::Fixed;
};

/// The drives that can be read now: the system's own root first, the others by their path. Leaves out file
/// systems without people's files.
std::vector<Drive> Drives();
/// What kind of drive a mounted file system is; empty for those that Drives leaves out.
std::optional<DriveKind> KindOfDrive(const std::string& root, const std::string& device,
                                     const std::string& fileSystem);

/// Starts a program and does not wait for it. Looks for the program along the search path. False when it
/// could not be started.
bool StartProgram(const std::string& program, const std::vector<std::string>& arguments);
/// Shows a file in the user's viewer: the program that the environment variable DROVEWRIGHT_VIEWER names,
/// else the desktop's own choice for the file. It does not wait for the viewer to be closed, but for up to a
/// second and a half to learn whether there is one. False when the viewer cannot be started, or when it ends
/// with an error in that time, as the desktop does where no program takes the file.
bool StartViewer(const std::string& path);

}  // namespace sys
