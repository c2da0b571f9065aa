// The due analysis over every asset in service, into a text file.
#pragma once

#include <functional>
#include <string>

#include "fleet/DueAnalysis.h"

namespace dw {

/// Writes "Maintenance Report.Log" into `directory`, replacing an earlier one: the header, a block for each
/// asset in service by `Asset ID`, and the closing lines, each ended with CR LF. `dueBy` and `usage` are the
/// texts as typed; they are converted at each schedule line. The path written, or empty after the box "There
/// are no assets in service to report." (then no file is touched) or after a message that the file cannot be
/// written.
std::string WriteDueReport(const std::string& directory, const std::string& dueBy, const std::string& usage,
                           const std::function<void(const DueItem&)>& onItem = {});

}  // namespace dw
