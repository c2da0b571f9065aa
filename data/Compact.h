// Compaction of a data file that nobody has open.
#pragma once

#include <string>

namespace dw {

/// Rewrites the file to reclaim space and reports the outcome to the user. The first file is touched only
/// after a complete copy exists. `temporaryFolder` is DataPath when empty. Ends the application after an
/// error that it does not know.
void CompactDatabase(const std::string& path, const std::string& temporaryFolder = {});

}  // namespace dw
