#include "reports/ReportTable.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "platform/system/Machine.h"
#include "reports/DWGlobals.h"

namespace dw {
namespace {

constexpr const char* kByAssetAndDate = "[Asset ID],[Transaction Date]";
constexpr const char* kTransactions = "Maintenance Transactions";
constexpr const char* kTransactionsAndVehicles = "[Maintenance Transactions],[Vehicles]";
constexpr auto kDirect = ReportRoute::Direct;
constexpr auto kDates = ReportRoute::DateRange;

constexpr std::array kReports{
    ReportEntry{"001", "DW_RptDivisionCodes", kDirect, "", "Division Codes Listing", "dwr001.rpt",
                "Divisions", "[Description]"},
    ReportEntry{"002", "DW_RptAssetClasses", kDirect, "", "Asset Classes Listing", "dwr002.rpt",
                "Asset Classes", "[Description]"},
    ReportEntry{"003", "DW_RptInventory", kDirect, "", "Inventory Listing", "dwr003.rpt", "Vehicles",
                "[Asset ID]"},
    ReportEntry{"004", "DW_RptInvDiv", kDates, "frmRptDWR004", "Equipment Costs By Division Listing",
                "dwr004.rpt", kTransactions, kByAssetAndDate},
    ReportEntry{"006", "DW_RptInvClass", kDates, "frmRptDWR006", "Equipment Costs By Class Listing",
                "dwr006.rpt", kTransactions, kByAssetAndDate},
    ReportEntry{"008", "DW_RptInventoryClass", kDirect, "", "Inventory By Class Listing", "dwr008.rpt",
                "Vehicles", "[Asset ID]"},
    ReportEntry{"009", "Rpt_OdometerAsset", kDates, "frmRptDWR009", "Odometer Listing by Asset", "dwr009.rpt",
                "Odometer Entries", "[Asset ID],[Date]"},
    ReportEntry{"010", "DW_RptCostPTD", kDirect, "", "Asset Costs By Class Listing", "dwr010.rpt",
                "Assets Period Costs", ""},
    ReportEntry{"011", "Rpt_OdometerEntry", ReportRoute::EntryForm, "", "Odometer Reading Entry Form",
                "dwr011.rpt", "Odometer Entry Work Table", "[Asset ID]"},
    ReportEntry{"012", "DW_RptCostLTD", kDirect, "", "Lifetime Asset Costs By Class Listing", "dwr012.rpt",
                "Assets Lifetime Costs", ""},
    ReportEntry{"013", "DW_RptGasMileage", kDates, "frmRptDWR013", "Gas Mileage Costs", "dwr013.rpt",
                kTransactionsAndVehicles, "", true},
    ReportEntry{"014", "Rpt_MaintenanceTypes", kDirect, "", "Scheduled Maintenance Types Listing",
                "dwr014.rpt", "Maintenance Types", "[Description]", true},
    // There is no table of this name, so no selection for this report can be made by looking up its table.
    ReportEntry{"015", "Rpt_MaintenanceSchedule", kDirect, "", "Asset Maintenance Schedule Listing",
                "dwr015.rpt", "Asset Maintenance Schedule", ""},
    ReportEntry{"016", "Rpt_ExternalMaintClass", kDates, "frmRptDWR016",
                "External Maintenance Costs By Class Listing", "dwr016.rpt", kTransactions, kByAssetAndDate},
    ReportEntry{"017", "DW_RptOilUsage", kDates, "frmRptDWR017", "Oil Usage Costs", "dwr017.rpt",
                kTransactionsAndVehicles, "", true},
};

}  // namespace

std::span<const ReportEntry> ReportTable() { return kReports; }

const ReportEntry* FindReport(std::string_view number) {
  const std::string padded =
      number.size() < 3 ? std::string(3 - number.size(), '0') + std::string(number) : std::string(number);
  const auto found = std::ranges::find(kReports, padded, &ReportEntry::number);
  return found == kReports.end() ? nullptr : &*found;
}

const ReportEntry& ReportOf(std::string_view menuItemOrForm) {
  const auto found = std::ranges::find_if(kReports, [&](const ReportEntry& report) {
    return report.menuItem == menuItemOrForm || report.dateForm == menuItemOrForm;
  });
  if (found == kReports.end() || menuItemOrForm.empty())
    throw std::out_of_range("no report " + std::string(menuItemOrForm));
  return *found;
}

std::string DefinitionFile(const ReportEntry& report) { return sys::ProgramDirectory() + "/" + report.file; }

void SetReportGlobals(const ReportEntry& report, const std::string& selection) {
  RptTitle = report.title;
  RptFile = DefinitionFile(report);
  RptPrimaryTable = report.primaryTable;
  RptSelection = selection;
  RptSort = report.sort;
  RptExtra.clear();
}

}  // namespace dw
