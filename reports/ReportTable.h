// The fifteen reports and what a launch of each one sets.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace dw {

/// How a report is launched from its menu entry.
enum class ReportRoute {
  Direct,     ///< ReportForm at once
  DateRange,  ///< a form that asks for dates, then ReportForm
  EntryForm,  ///< a work table is filled, then ReportForm
};

/// One report.
struct ReportEntry {
  std::string_view number;  ///< "006"
  const char* menuItem;     ///< name of the menu entry
  ReportRoute route;
  const char* dateForm;  ///< the form that asks for dates; empty for the other routes
  const char* title;
  const char* file;  ///< name of the definition file, which lies beside the program
  const char* primaryTable;
  const char* sort;
  /// The launch loads and hides ReportForm before it sets the globals, so that the form takes its caption and
  /// first title line from the launch before.
  bool loadsFormFirst = false;
};

/// All reports, in the order of their numbers.
std::span<const ReportEntry> ReportTable();
/// The report with this number ("6", "06" and "006" are the same); null if there is none.
const ReportEntry* FindReport(std::string_view number);
/// The report of a menu entry or a date form. Throws std::out_of_range if there is none.
const ReportEntry& ReportOf(std::string_view menuItemOrForm);

/// Sets all globals of a launch; RptQueryID stays as it is.
void SetReportGlobals(const ReportEntry& report, const std::string& selection = {});
/// The full path of a report's definition file.
std::string DefinitionFile(const ReportEntry& report);

}  // namespace dw
