#include "platform/print/TemporaryFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace print {

std::string TemporaryDirectory() {
  const char* chosen = std::getenv("TMPDIR");
  return chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
}

int OpenUnnamedFile(const std::string& directory) {
  int fd = open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (fd >= 0) return fd;
  // Some file systems know no unnamed files.
  std::string name = directory + "/dwprintXXXXXX";
  fd = mkostemp(name.data(), O_CLOEXEC);
  if (fd >= 0) unlink(name.c_str());
  return fd;
}

}  // namespace print
