#include "reports/DateRange.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "data/GenericTools.h"
#include "platform/runtime/Clock.h"

namespace dw {
namespace {

constexpr const char* kTransactionDate = "{Maintenance Transactions.Transaction Date}";

constexpr std::array kForms{
    DateRangeReport{"frmRptDWR004", "Equipment Costs by Divisition Listing Parameters", "d", 14, "",
                    kTransactionDate, ""},
    DateRangeReport{"frmRptDWR006", "Equipment Costs Listing Parameters", "d", 14, "", kTransactionDate, ""},
    DateRangeReport{"frmRptDWR009", "Odometer Listing Parameters", "d", 14, "", "{Odometer Entries.Date}",
                    ""},
    DateRangeReport{"frmRptDWR013", "Gas Mileage Parameters", "d", 14,
                    "({Maintenance Transactions.Outside Fuel Cost} <> 0 OR "
                    "{Maintenance Transactions.Internal Fuel Cost} <> 0) AND ",
                    kTransactionDate, ""},
    DateRangeReport{"frmRptDWR016", "External Maintenance Equipment Costs Listing Parameters", "d", 14, "",
                    kTransactionDate, " AND {Maintenance Transactions.Outside Fuel Cost} = 0"},
    DateRangeReport{"frmRptDWR017", "Oil Usage Parameters", "m", 3,
                    "({Maintenance Transactions.Outside Oil Units} <> 0 OR "
                    "{Maintenance Transactions.Oil} <> 0) AND ",
                    kTransactionDate, ""},
};

}  // namespace

const DateRangeReport& DateRangeOf(std::string_view form) {
  const auto found = std::ranges::find(kForms, form, &DateRangeReport::form);
  if (found == kForms.end()) throw std::out_of_range("no date form " + std::string(form));
  return *found;
}

rt::DateTime DefaultStart(const DateRangeReport& report) {
  return rt::DateAdd(report.interval, -report.back, rt::Today());
}

std::string FormulaDate(const rt::DateTime& date) {
  return "Date(" + std::to_string(date.Year()) + "," + std::to_string(date.Month()) + "," +
         std::to_string(date.Day()) + ")";
}

std::string DateRangeSelection(const DateRangeReport& report, const rt::DateTime& start,
                               const rt::DateTime& end, const std::string& asset) {
  const std::string field = report.field;
  std::string formula = report.before + field + " >= " + FormulaDate(start) + " AND " + field +
                        " <= " + FormulaDate(end) + report.behind;
  if (!asset.empty()) formula += " AND {Maintenance Transactions.Asset ID} = '" + QuoteSQL(asset) + "'";
  return formula;
}

}  // namespace dw
