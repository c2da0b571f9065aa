// The date ranges of the reports that ask for one.
#pragma once

#include <string>
#include <string_view>

#include "platform/runtime/DateTime.h"

namespace dw {

/// What one of the six date forms does in its own way.
struct DateRangeReport {
  std::string_view form;  ///< "frmRptDWR004"
  const char* caption;
  const char* interval;  ///< as rt::DateAdd calls it: how far before today the range starts …
  int back;              ///< … and how many of them
  const char* before;    ///< of the selection formula, in front of the dates
  const char* field;     ///< the date, "{Table.Field}"
  const char* behind;    ///< of the selection formula, behind the dates
};

/// Throws std::out_of_range if there is no such form.
const DateRangeReport& DateRangeOf(std::string_view form);

/// The first day of the range that a form offers.
rt::DateTime DefaultStart(const DateRangeReport& report);
/// The selection formula of a range; times of day are not looked at, and no order of the dates is asked for.
/// `asset` is for frmRptDWR006: the code of the only asset; empty for all.
std::string DateRangeSelection(const DateRangeReport& report, const rt::DateTime& start,
                               const rt::DateTime& end, const std::string& asset = {});

/// "Date(2026,3,1)", as formulas write a date.
std::string FormulaDate(const rt::DateTime& date);

}  // namespace dw
