#include "shell/forms/MenuTree.h"

#include <array>
#include <map>
#include <string>
#include <utility>

namespace dw {
namespace {

using Targets = std::map<std::string, std::function<void()>, std::less<>>;

Targets& Installed() {
  static Targets targets;
  return targets;
}

constexpr std::array kTree{
    MenuEntry{1, "cptFile", "&File", "", ""},
    MenuEntry{2, "DW_Assets", "&Assets", "frmInventoryList",
              "Vehicles and equipment, with all that is kept for each"},
    MenuEntry{2, "DW_InvPricing", "Internal &Pricing", "", "What internal fuel, labor and oil cost"},
    MenuEntry{3, "DW_FuelLog", "&Fuel", "frmPriceLogList", "Prices of internal fuel, by date"},
    MenuEntry{3, "DW_ProcingLabor", "&Labor and Oil", "frmPricingList", "Rates of labor and oil, by date"},
    MenuEntry{2, "DW_Odometer", "&Odometer Readings", "frmOdometerList", "Meter readings of all assets"},
    MenuEntry{2, "DW_Transactions", "&Transactions", "frmTransactionList",
              "Fuel, oil and maintenance of all assets"},
    MenuEntry{2, "cptLine1", "", "", ""},
    MenuEntry{2, "cptExit", "E&xit", "", "Closes the main menu; the last window that closes signs off"},

    MenuEntry{1, "cptReporting", "&Reporting", "", ""},
    MenuEntry{2, "DW_RptAux", "&Auxiliary Listings", "", "Listings of codes"},
    MenuEntry{3, "DW_RptAssetClasses", "&Asset Classes", "DW_RptAssetClasses",
              "Listing of the asset classes"},
    MenuEntry{3, "DW_RptDivisionCodes", "&Division Codes", "DW_RptDivisionCodes", "Listing of the divisions"},
    MenuEntry{3, "Rpt_MaintenanceTypes", "&Schedule Types", "Rpt_MaintenanceTypes",
              "Listing of the kinds of scheduled maintenance"},
    MenuEntry{2, "DW_EquipmentCosts", "&Equipment Costs", "", "What assets have cost"},
    MenuEntry{3, "Rpt_EquipmentCostsByClass", "By &Class", "", "What assets have cost, by class"},
    MenuEntry{4, "DW_RptInvClass", "&All Costs", "frmRptDWR006", "All costs of assets, by class"},
    MenuEntry{4, "Rpt_ExternalMaintClass", "&External Maintence", "frmRptDWR016",
              "Costs of outside maintenance, by class"},
    MenuEntry{3, "DW_RptInvDiv", "By &Division", "frmRptDWR004", "What assets have cost, by division"},
    MenuEntry{3, "DW_RptGasMileage", "&Gas Mileage", "frmRptDWR013", "How far assets go on their fuel"},
    MenuEntry{3, "DW_RptOilUsage", "&Oil Usage", "frmRptDWR017", "How much oil assets use"},
    MenuEntry{2, "DW_RptOdometers", "&Odometer Report", "", "Meter readings"},
    MenuEntry{3, "Rpt_OdometerAsset", "&By &Asset", "frmRptDWR009", "Meter readings, by asset"},
    MenuEntry{3, "Rpt_OdometerEntry", "&Entry Form", "Rpt_OdometerEntry",
              "A form on paper to write meter readings on"},
    MenuEntry{2, "DW_RptCosts", "Origin of &Vehicle Costs", "", "Where costs come from"},
    MenuEntry{3, "DW_RptCostLTD", "By Class - &LTD", "DW_RptCostLTD",
              "Where costs come from, by class, life to date"},
    MenuEntry{3, "DW_RptCostPTD", "By Class - &PTD", "DW_RptCostPTD",
              "Where costs come from, by class, period to date"},
    MenuEntry{3, "Rpt_MaintenanceSchedule", "&Maintenance Schedule", "Rpt_MaintenanceSchedule",
              "The maintenance that is scheduled for each asset"},
    MenuEntry{2, "DW_RptInventoryClass", "Inventory by &Class", "DW_RptInventoryClass",
              "Listing of the assets, by class"},
    MenuEntry{2, "DW_RptInventory", "&Inventory", "DW_RptInventory", "Listing of the assets"},
    MenuEntry{2, "DW_MaintDueReport", "&Maintenance Due", "frmMaintenanceDueReport",
              "What is due on each asset, by date and by mileage"},

    MenuEntry{1, "cptAdministration", "&Administration", "", ""},
    MenuEntry{2, "DW_ApplicationSetup", "Application &Setup", "", "Options, lists, users and workstations"},
    MenuEntry{3, "DW_Options", "&Options", "frmOptions", "Settings that hold for everybody"},
    MenuEntry{3, "DW_Lists", "&Lists", "ListsList", "The lists that fields offer to choose from"},
    MenuEntry{3, "DW_Users", "&Users", "UserList", "Who may sign on"},
    MenuEntry{3, "DW_Workstations", "&Workstations", "WorkstationList", "From where people may sign on"},
    MenuEntry{2, "DW_AuxiliaryTables", "&Auxiliary Tables", "", "Codes that assets and their records go by"},
    MenuEntry{3, "DW_AssetClasses", "&Asset Classes", "frmClassList", "Classes that assets belong to"},
    MenuEntry{3, "DW_Divisions", "&Division Codes", "frmDivisionList", "Divisions that assets belong to"},
    MenuEntry{3, "DW_Periods", "Fiscal &Periods", "frmPeriodsList", "Fiscal years and their periods"},
    MenuEntry{3, "DW_FuelTypes", "&Fuel Types", "frmFuelTypesList", "Kinds of fuel"},
    MenuEntry{3, "DW_ScheduleTypes", "&Schedule Types", "frmScheduleTypesList",
              "Kinds of scheduled maintenance"},
    MenuEntry{2, "Utilities", "U&tilities", "", "Work on the data as a whole"},
    MenuEntry{3, "CompactDB", "&Compact/Repair Database", "",
              "Makes the main file as small as it can be; nobody may be working in it"},
    MenuEntry{3, "DW_Report", "&Post Transactions", "frmRePost", "Adds what was entered to the costs"},
    MenuEntry{3, "DW_UserPasswordChange", "&User Password Change", "frmChangeUserPassword",
              "Your own password"},
    MenuEntry{3, "DW_WorkstationNameChange", "&Workstation Name Change", "frmChangeWorkstationName",
              "The name of this workstation"},

    MenuEntry{1, "cptHelp", "&Help", "", ""},
    MenuEntry{2, "DW_Contents", "&Contents", "", "The help pages, from their contents"},
    MenuEntry{2, "DW_Search", "&Search for Help on ...", "", "The help pages, by words"},
    MenuEntry{2, "DW_Fill3", "", "", ""},
    MenuEntry{2, "DW_TechSupport", "&Technical Support", "", "Whom to ask about the program"},
    MenuEntry{2, "DW_About", "&About", "", "Version, organization and user"},
};

}  // namespace

std::span<const MenuEntry> MenuTree() { return kTree; }

void InstallMenuTarget(const char* target, std::function<void()> open) {
  Installed()[target] = std::move(open);
}

const std::function<void()>* MenuTarget(const char* target) {
  const auto found = Installed().find(target);
  return found == Installed().end() || !found->second ? nullptr : &found->second;
}

}  // namespace dw
