// The due analysis over every asset in service, into a text file.
#pragma once

#include <functional>
#include <string>

#include "fleet/DueAnalysis.h"

namespace dw {

enum class DueReportEnd {
  Written,
  NoAssets,  ///< no asset is in service, which was reported; no file was touched
  Failed     ///< it failed, which was reported; an earlier report stays as it was
};

/// How the facts of the assets are found. Both ways write the same report.
enum class DueWay {
  OnePass,  ///< each table is read once; only assets with an odd value or code are queried one by one
  Queries   ///< every asset is queried: slow, but with no rules beyond those of the queries
};

struct DueReportRequest {
  std::string directory;  ///< where "Maintenance Report.Log" is written
  std::string dueBy;      ///< as typed; converted at each schedule line, like `usage`
  std::string usage;
  std::function<void(const DueItem&)> onItem;  ///< if set, gets each due item
  DueWay way = DueWay::OnePass;
};

/// Writes the report: the header, a block for each asset in service by `Asset ID`, and the closing lines,
/// each ended with CR LF. The report replaces an earlier one once it is complete. `path` is the file that was
/// written.
///
/// If an asset cannot be analyzed, because its code breaks the queries or a value in the file is of the wrong
/// kind, its block says why, and one message at the end names all such assets. A horizon that is not a date
/// or a number, or a data file that cannot be read, ends the run with a message.
DueReportEnd MakeDueReport(const DueReportRequest& request, std::string& path);
/// The same; returns the path that was written, or an empty text.
std::string WriteDueReport(const std::string& directory, const std::string& dueBy, const std::string& usage,
                           const std::function<void(const DueItem&)>& onItem = {});

}  // namespace dw
