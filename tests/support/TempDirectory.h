#pragma once

#include <filesystem>
#include <string>

namespace test {

/// A directory of its own for one test, removed at the end.
class TempDirectory {
 public:
  TempDirectory();
  ~TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;
  std::string Path(const std::string& name = {}) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace test
