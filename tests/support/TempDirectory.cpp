#include "support/TempDirectory.h"

#include <cstdlib>
#include <stdexcept>

namespace test {

TempDirectory::TempDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "drovewright-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory: " + pattern);
  path_ = pattern;
}

TempDirectory::~TempDirectory() {
  std::error_code ignored;
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all, std::filesystem::perm_options::add,
                               ignored);
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace test
