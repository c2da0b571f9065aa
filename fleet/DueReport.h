// The due analysis over every asset in service, into a text file.
#pragma once

#include <functional>
#include <string>

#include "fleet/DueAnalysis.h"

namespace dw {

enum class DueReportEnd {
  Written,
  NoAssets,  ///< none is in service, which was reported; no file was touched
  Failed     ///< reported as well; an earlier report stays as it was
};

/// How the facts of the assets are found. Both ways give the same report.
enum class DueWay {
  OnePass,  ///< each table is read once; only assets with an odd value or code are asked for one by one
  Queries   ///< every asset is asked for: slow, but it needs no other rules than those of the queries
};

struct DueReportRequest {
  std::string directory;  ///< where "Maintenance Report.Log" is written
  std::string dueBy;      ///< as typed; converted at each schedule line, like `usage`
  std::string usage;
  std::function<void(const DueItem&)> onItem;  ///< where given, gets each due item
  DueWay way = DueWay::OnePass;
};

/// Writes the report: the header, a block for each asset in service by `Asset ID`, and the closing lines,
/// each ended with CR LF. It replaces an earlier report once it is complete. `path` is the file that was
/// written.
///
/// Where an asset cannot be analyzed, because its code breaks the queries or a value in the file is of the
/// wrong kind, its block has the reason, and one message at the end names all such assets. A horizon that is
/// not a date or a number, and a data file that cannot be read, end the run with a message.
DueReportEnd MakeDueReport(const DueReportRequest& request, std::string& path);
/// The same; the path written, else empty.
std::string WriteDueReport(const std::string& directory, const std::string& dueBy, const std::string& usage,
                           const std::function<void(const DueItem&)>& onItem = {});

}  // namespace dw
