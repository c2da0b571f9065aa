// Reads the file system for the lists of drives, directories and files.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ui {

/// The names in a directory without the hidden ones, each list in alphabetical order.
struct DirectoryEntries {
  std::vector<std::string> directories;
  std::vector<std::string> files;
};
/// Empty, after a box with the reason, if the directory cannot be read: a network directory that is no longer
/// there, a drive that is not ready, a directory without permission.
std::optional<DirectoryEntries> ReadDirectory(const std::string& path);

/// An absolute path without "." and "..", and without a separator at its end (but "/" itself).
std::string PlainPath(const std::string& path);

}  // namespace ui
