// The due analysis over every asset in service, into a text file.
#pragma once

#include <functional>
#include <string>

#include "fleet/DueAnalysis.h"

namespace dw {

enum class DueReportEnd {
  Written,
  NoAssets,  ///< none is in service, which has been told; no file was touched
  Failed     ///< told as well; nothing is left that could be taken for a report
};

/// Writes "Maintenance Report.Log" into `directory`, replacing an earlier one: the header, a block for each
/// asset in service by `Asset ID`, and the closing lines, each ended with CR LF. `dueBy` and `usage` are the
/// texts as typed; they are converted at each schedule line. `path` is the file that was written.
DueReportEnd MakeDueReport(const std::string& directory, const std::string& dueBy, const std::string& usage,
                           std::string& path, const std::function<void(const DueItem&)>& onItem = {});
/// The same; the path written, else empty.
std::string WriteDueReport(const std::string& directory, const std::string& dueBy, const std::string& usage,
                           const std::function<void(const DueItem&)>& onItem = {});

}  // namespace dw
