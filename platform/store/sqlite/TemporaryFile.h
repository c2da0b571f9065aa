// Data files that are still being made.
#pragma once

#include <string>

namespace store {

/// A file under a temporary name, removed at the end unless it has been given its own name. A lock on it
/// shows others that its maker lives; it goes with the process.
class TemporaryFile {
 public:
  /// Makes an empty file. Throws StoreError 3204 where something of that name exists, 3044, 3026 or 3051.
  explicit TemporaryFile(std::string path);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& Path() const { return path_; }
  int Descriptor() const { return fd_; }
  /// From here on it is an ordinary file, which stays.
  void Keep();

  /// A name of the kind that is used for temporary files, in this folder and not taken.
  static std::string NameIn(const std::string& folder);
  /// Removes what processes that have died left under such names in the folder. A file that somebody is still
  /// making, and one that is no data file, stay.
  static void RemoveLitter(const std::string& folder);

 private:
  std::string path_;
  int fd_ = -1;
  bool kept_ = false;
};

}  // namespace store
