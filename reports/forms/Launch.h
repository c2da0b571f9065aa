// From a menu entry or a date form to ReportForm.
#pragma once

#include <string>

#include "reports/ReportTable.h"

namespace dw {

/// Sets the globals of a launch and shows ReportForm. Some reports load the form before, see
/// ReportEntry::loadsFormFirst.
void Launch(const ReportEntry& report, const std::string& selection = {});
/// The menu entry of a report that asks for no dates.
void LaunchFromMenu(const ReportEntry& report);

}  // namespace dw
