// What the drive, directory and file lists read of the file system.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ui {

/// The names in a directory, without the hidden ones, each list in the order of the alphabet.
struct DirectoryEntries {
  std::vector<std::string> directories;
  std::vector<std::string> files;
};
/// Empty where the directory cannot be read, after a box that says so: a network directory that has vanished,
/// a drive that is not ready, a directory of others.
std::optional<DirectoryEntries> ReadDirectory(const std::string& path);

/// An absolute path without "." and "..", and without a separator at its end (but "/" itself).
std::string PlainPath(const std::string& path);

}  // namespace ui
