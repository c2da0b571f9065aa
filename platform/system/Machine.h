// The machine that the program runs on: its name, its drives, the programs that it can start.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace sys {

/// The folder of the running program, without a separator at its end.
std::string ProgramDirectory();
/// The machine's name in the network; empty without one.
std::string HostName();

enum class DriveKind { Fixed, Remote, RemovableDisc };

/// The root of a tree of files.
struct Drive {
  std::string root;
  DriveKind kind = DriveKind::Fixed;
};

/// The drives that can be read now: the system's own root first, the others by their path. Leaves out file
/// systems without user files.
std::vector<Drive> Drives();
/// What kind of drive a mounted file system is; empty for those that Drives leaves out.
std::optional<DriveKind> KindOfDrive(const std::string& root, const std::string& device,
                                     const std::string& fileSystem);

/// Starts a program and does not wait for it. Looks for the program along the search path. False when it
/// could not be started.
bool StartProgram(const std::string& program, const std::vector<std::string>& arguments);
/// Shows a file in the user's viewer: the program that the environment variable DROVEWRIGHT_VIEWER names,
/// else the desktop's own choice for the file. Does not wait for the viewer to close, but for up to a second
/// and a half for its errors. False if the viewer cannot be started, or if it ends with an error in that
/// time, as the desktop's does if no program opens the file.
bool StartViewer(const std::string& path);
/// Opens a new message with this subject and the file attached in the user's mail program: the program that
/// the environment variable DROVEWRIGHT_MAILER names, else the desktop's own choice. Both get `--subject TEXT
/// --attach PATH`. Waits and answers as StartViewer. The mail program may read the file at any time later.
bool StartMail(const std::string& path, const std::string& subject);

}  // namespace sys
