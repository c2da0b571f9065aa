// Files that a run needs for itself.
#pragma once

#include <string>

namespace print {

/// The directory for temporary files: the environment's TMPDIR, else /tmp.
std::string TemporaryDirectory();

/// Opens a file without a name in this directory, for reading and writing; it is gone with its descriptor,
/// however the program ends. -1, with errno set, if it cannot be made.
int OpenUnnamedFile(const std::string& directory);

}  // namespace print
