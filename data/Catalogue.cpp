#include "data/Catalogue.h"

#include <initializer_list>
#include <stdexcept>
#include <utility>

#include "platform/runtime/Text.h"

namespace dw {
namespace {

using store::ColumnInfo;
using store::ColumnType;
using store::IndexInfo;
using store::RelationInfo;
using store::TableInfo;

// The words of the list below: each returns one or more columns of its kind.

using Names = std::initializer_list<const char*>;
using Columns = std::vector<ColumnInfo>;

Columns OfType(ColumnType type, Names names, int size = 0) {
  Columns columns;
  for (const char* name : names) columns.push_back({.name = name, .type = type, .size = size});
  return columns;
}

Columns Counter() { return OfType(ColumnType::Counter, {"ID"}); }
Columns Flag(Names names) { return OfType(ColumnType::Boolean, names); }
Columns Short(Names names) { return OfType(ColumnType::Short, names); }
Columns Long(Names names) { return OfType(ColumnType::Long, names); }
Columns Single(Names names) { return OfType(ColumnType::Single, names); }
Columns Money(Names names) { return OfType(ColumnType::Currency, names); }
Columns Date(Names names) { return OfType(ColumnType::DateTime, names); }
Columns Text(int size, Names names) { return OfType(ColumnType::Text, names, size); }
Columns Notes() { return OfType(ColumnType::Memo, {"Notes"}); }
Columns Picture(Names names) { return OfType(ColumnType::LongBinary, names); }

// Widths that several tables share: a code has the same width in every table, or a join would miss rows.
constexpr int kAssetCode = 20;
constexpr int kGroupCode = 20;
constexpr int kPerson = 20;
constexpr int kDescription = 100;
constexpr int kObjectName = 64;

Columns AssetCode() { return Text(kAssetCode, {"Asset ID"}); }
Columns Description() { return Text(kDescription, {"Description"}); }

/// Who made a row and who changed it last, and when.
Columns Audit() {
  Columns columns = Text(kPerson, {"Created By"});
  for (const Columns& more : {Date({"Date Created"}), Text(kPerson, {"Updated By"}), Date({"Last Updated"})})
    columns.insert(columns.end(), more.begin(), more.end());
  return columns;
}

IndexInfo Index(const char* name, std::vector<std::string> columns) {
  return {.name = name, .columns = std::move(columns)};
}
IndexInfo Unique(const char* name, std::vector<std::string> columns) {
  return {.name = name, .columns = std::move(columns), .unique = true};
}
/// Unique, except that any number of rows may have nothing in the column yet.
IndexInfo UniqueWhereGiven(const char* name, std::vector<std::string> columns) {
  return {.name = name, .columns = std::move(columns), .unique = true, .exceptEmpty = true};
}
IndexInfo UniqueRequired(const char* name, std::vector<std::string> columns) {
  return {.name = name, .columns = std::move(columns), .unique = true, .required = true};
}

/// Columns that must have a value in every row.
Columns Required(Columns columns) {
  for (ColumnInfo& column : columns) column.required = true;
  return columns;
}

/// A table whose first column is its key.
TableInfo Table(const char* name, std::initializer_list<Columns> groups,
                std::vector<IndexInfo> indexes = {}) {
  TableInfo table;
  table.name = name;
  for (const Columns& group : groups) table.columns.insert(table.columns.end(), group.begin(), group.end());
  table.indexes.push_back({.name = "PrimaryKey",
                           .columns = {table.columns.front().name},
                           .primary = true,
                           .unique = true,
                           .required = true});
  table.indexes.insert(table.indexes.end(), indexes.begin(), indexes.end());
  return table;
}

/// `foreignTable`.`foreignColumn` refers to `table`.`column`.
RelationInfo Refers(const char* foreignTable, const char* foreignColumn, const char* table,
                    const char* column) {
  return {.name = std::string(table) + foreignTable,
          .table = table,
          .foreignTable = foreignTable,
          .columns = {{column, foreignColumn}}};
}

/// The twelve sums of an asset's costs.
Columns AssetSums() {
  Columns columns;
  for (const Columns& more : {Single({"Internal Fuel Units"}), Money({"Internal Fuel Cost"}),
                              Single({"Oil Units"}), Money({"Oil Cost"}), Single({"Internal Time"}),
                              Money({"Internal Time Cost"}), Single({"Outside Fuel Units"}),
                              Money({"Outside Fuel Cost", "Outside Parts Cost", "Internal Parts Cost",
                                     "Total Internal Cost", "Total Outside Cost"})})
    columns.insert(columns.end(), more.begin(), more.end());
  return columns;
}

/// The four sums of a fuel type's costs.
Columns FuelSums() {
  Columns columns;
  for (const Columns& more : {Single({"Internal Units"}), Money({"Internal Cost"}), Single({"Outside Units"}),
                              Money({"Outside Cost"})})
    columns.insert(columns.end(), more.begin(), more.end());
  return columns;
}

CatalogueFile MainFileTables() {
  CatalogueFile file;
  file.name = "DW.MDB";
  file.tables = {
      Table("Parameters",
            {Required(Long({"ID"})),
             Text(50, {"Organization Name", "Address Line 1", "Address Line 2", "Address Line 3"}),
             Text(50, {"Contact"}), Text(30, {"Contact Phone"}), Date({"Date Installed"}),
             Short({"Major Version Number", "Minor Version Number", "Revision Number"}),
             Flag({"Data Initialized", "Internal_Fuel_Available"}), Date({"Transaction Close Out Date"}),
             Long({"Deleted Inventory ID"})}),

      // A code that two assets share would mix their costs, and removing one asset would delete the readings
      // of the other. So the table itself refuses a second asset with a code. Assets that are still being
      // entered have no code yet. That unique index leaves them out and cannot serve every query, so a second
      // index on the code finds rows. The picture is the last column: the engine reads through all of it to
      // reach a column behind it.
      Table("Vehicles",
            {Counter(), AssetCode(), Description(), Text(30, {"VIN/Serial Number"}),
             Text(kGroupCode, {"Division ID", "Class ID"}), Long({"Fuel Type"}),
             Text(20, {"Location ID", "Type", "Meter Type"}), Text(10, {"Model Year"}),
             Date({"Entry Date", "Purchase Date", "Replacement Date"}), Money({"Purchase Price"}),
             Flag({"No_Longer_In_Service"}),
             Money({"Life Maintenance Cost", "Life Operational Cost", "Life Fuel Cost", "Life Usage Cost"}),
             Text(kAssetCode, {"Secondary Asset ID"}), Notes(), Audit(), Picture({"Photograph"})},
            {Index("Asset ID", {"Asset ID"}), UniqueWhereGiven("One Asset a Code", {"Asset ID"}),
             Index("Division ID", {"Division ID"}), Index("Class ID", {"Class ID"}),
             Index("Fuel Type", {"Fuel Type"})}),

      // Nothing here keeps two divisions, or two classes, from having the same code. A row that is being
      // entered has none yet.
      Table("Divisions", {Counter(), Text(kGroupCode, {"Division ID"}), Description(), Notes(), Audit()},
            {Index("Division ID", {"Division ID"})}),
      Table("Inventory Classes", {Counter(), Text(kGroupCode, {"Class ID"}), Description(), Notes(), Audit()},
            {Index("Class ID", {"Class ID"})}),
      Table("Fuel Types", {Counter(), Description(), Notes(), Audit()}),
      Table("Maintenance Types", {Counter(), Description(), Notes(), Audit()}),

      // No index on `When Posted` or on the totals: posting writes them in every row.
      Table("Maintenance Transactions",
            {Counter(), AssetCode(), Date({"Transaction Date"}), Text(20, {"Work Order Number"}),
             Short({"Year", "Period"}), Single({"Mileage", "Internal Fuel Units"}),
             Money({"Internal Fuel Cost"}), Single({"Oil"}), Money({"Oil Cost"}), Single({"Time"}),
             Money({"Internal Time Cost", "Parts Cost"}), Single({"Outside Fuel Units"}),
             Money({"Outside Fuel Cost"}), Single({"Outside Oil Units"}),
             Money({"Outside Oil Cost", "Outside Cost", "Total Internal Cost", "Total Outside Cost"}),
             Long({"Type_ID"}), Date({"When Posted"}), Notes(), Audit()},
            {Unique("Type_ID_Key", {"Type_ID", "Transaction Date", "ID"}),
             Index("By Asset and Date", {"Asset ID", "Transaction Date"})}),
      Table("Maintenance_Performed",
            {Counter(), Required(Long({"Maintenance_Entry_ID", "Maintenance_Type_ID"})), Money({"Cost"}),
             Notes(), Date({"Date_Created"}), Text(kPerson, {"Created_By"}), Date({"Last_Updated"}),
             Text(kPerson, {"Updated_By"})},
            {UniqueRequired("By_Maintenance_Type_ID", {"Maintenance_Type_ID", "ID"}),
             UniqueRequired("By_Maintenance_ID", {"Maintenance_Entry_ID", "ID"})}),
      Table("Maintenance Schedule",
            {Counter(), AssetCode(), Short({"Line Item"}), Long({"Type ID"}), Description(),
             Long({"Monthly Frequently", "Usage Frequency"}), Money({"Estimated Cost"}), Notes(), Audit()},
            {Index("By Asset and Line", {"Asset ID", "Line Item"}), Index("Type ID", {"Type ID"})}),
      Table(
          "Performed Scheduled Maintenance",
          {Counter(), AssetCode(), Short({"Line Item"}), Long({"Type ID"}), Description(), Notes(), Audit()},
          {Index("Asset ID", {"Asset ID"})}),
      Table("Performed Maintenance Work Table", {Counter(), AssetCode()}, {Index("Asset ID", {"Asset ID"})}),

      // The analysis of what is due asks for the newest reading, the lists for the highest one.
      Table("Odometer Entries",
            {Counter(), AssetCode(), Date({"Date"}), Single({"Mileage"}), Notes(), Audit()},
            {Index("By Asset and Date", {"Asset ID", "Date"}),
             Index("By Asset and Mileage", {"Asset ID", "Mileage"})}),
      Table("Odometer Entry Work Table",
            {Counter(), Text(kPerson, {"User Name"}), AssetCode(), Single({"Mileage"}), Date({"Date"})},
            {Index("User Name", {"User Name"})}),

      // The indexes of the cost tables are unique, so that two posting runs cannot both add a row for one
      // sum.
      Table("Assets Period Costs", {Counter(), AssetCode(), Short({"Fiscal Year", "Period"}), AssetSums()},
            {Unique("Assets by Period", {"Asset ID", "Fiscal Year", "Period"})}),
      Table("Assets Annual Costs", {Counter(), AssetCode(), Short({"Fiscal Year"}), AssetSums()},
            {Unique("Assets by Year", {"Asset ID", "Fiscal Year"})}),
      Table("Assets Lifetime Costs", {Counter(), AssetCode(), AssetSums()},
            {Unique("By Asset ID", {"Asset ID"})}),
      Table("Fuel Period Costs",
            {Counter(), Long({"Fuel Type ID"}), Short({"Fiscal Year", "Period"}), FuelSums()},
            {Unique("Fuel By Period", {"Fuel Type ID", "Fiscal Year", "Period"})}),
      Table("Fuel Annual Costs", {Counter(), Long({"Fuel Type ID"}), Short({"Fiscal Year"}), FuelSums()},
            {Unique("Fuel By Year", {"Fuel Type ID", "Fiscal Year"})}),

      Table(
          "Internal Fuel Pricing Log",
          {Counter(), Long({"Fuel Type"}), Date({"Effective Date"}), Money({"Fuel Price"}), Notes(), Audit()},
          {Index("By Fuel and Date", {"Fuel Type", "Effective Date"})}),
      Table("Internal Pricing Log",
            {Counter(), Date({"Effective Date"}), Money({"Hourly Rate", "Oil Price"}), Notes(), Audit()},
            {Index("Effective Date", {"Effective Date"})}),
      Table("Fiscal Periods",
            {Counter(), Short({"Fiscal Year", "Period"}), Date({"Start Date", "End Date"}), Audit()},
            {Index("Start Date", {"Start Date"}), Index("By Year and Period", {"Fiscal Year", "Period"})}),
  };
  file.relations = {
      Refers("Vehicles", "Division ID", "Divisions", "Division ID"),
      Refers("Vehicles", "Class ID", "Inventory Classes", "Class ID"),
      Refers("Vehicles", "Fuel Type", "Fuel Types", "ID"),
      Refers("Maintenance Transactions", "Asset ID", "Vehicles", "Asset ID"),
      Refers("Odometer Entries", "Asset ID", "Vehicles", "Asset ID"),
      Refers("Maintenance Schedule", "Asset ID", "Vehicles", "Asset ID"),
      Refers("Performed Scheduled Maintenance", "Asset ID", "Vehicles", "Asset ID"),
      Refers("Maintenance_Performed", "Maintenance_Entry_ID", "Maintenance Transactions", "ID"),
      Refers("Maintenance_Performed", "Maintenance_Type_ID", "Maintenance Types", "ID"),
      Refers("Maintenance Schedule", "Type ID", "Maintenance Types", "ID"),
      Refers("Maintenance Transactions", "Type_ID", "Maintenance Types", "ID"),
      Refers("Internal Fuel Pricing Log", "Fuel Type", "Fuel Types", "ID"),
      Refers("Fuel Period Costs", "Fuel Type ID", "Fuel Types", "ID"),
      Refers("Fuel Annual Costs", "Fuel Type ID", "Fuel Types", "ID"),
  };
  return file;
}

CatalogueFile UsersFileTables() {
  CatalogueFile file;
  file.name = "DW_USERS.MDB";
  file.tables = {
      // Not unique: names are compared in upper case by the code that reads them, and a user or workstation
      // that is being entered has none.
      Table("Application User List",
            {Counter(), Text(kPerson, {"User Name"}), Text(8, {"Password"}),
             Flag({"Allow Access", "Administrator"}), Audit()},
            {Index("User Name", {"User Name"})}),
      Table("Application Workstation List",
            {Counter(), Text(20, {"Workstation Name"}), Notes(), Flag({"Allow Access", "Active"}), Audit()},
            {Index("Workstation Name", {"Workstation Name"})}),
      Table("Access Log",
            {Counter(), Long({"User ID", "Computer ID"}), Date({"Time In", "Time Out"}), Flag({"Terminated"}),
             Text(kPerson, {"Updated By"}), Date({"Last Updated"})},
            {Index("By User and Time", {"User ID", "Time In"}),
             Index("By Computer and Time", {"Computer ID", "Time In"})}),
      Table("Activity Log", {Counter(), Long({"User ID", "Computer ID"}), Date({"Time"}), Description()},
            {Index("User ID", {"User ID"})}),
  };
  file.relations = {
      Refers("Access Log", "User ID", "Application User List", "ID"),
      Refers("Access Log", "Computer ID", "Application Workstation List", "ID"),
  };
  return file;
}

CatalogueFile ListsFileTables() {
  CatalogueFile file;
  file.name = "DW_LISTS.MDB";
  file.tables = {
      Table("List Definitions", {Counter(), Text(50, {"Name"}), Short({"Type"})}, {Index("Name", {"Name"})}),
      Table("Lists",
            {Counter(), Text(50, {"Table Name"}), Short({"Position"}), Long({"Value"}), Description(),
             Text(20, {"Abbreviation"})},
            {Index("By Table and Position", {"Table Name", "Position"})}),
  };
  file.relations = {Refers("Lists", "Table Name", "List Definitions", "Name")};
  return file;
}

CatalogueFile QueriesFileTables() {
  CatalogueFile file;
  file.name = "DW_SANDS.MDB";
  file.tables = {
      Table("Select and Sort Queries",
            {Counter(), Description(), Text(255, {"Primary Table"}), Flag({"Permanent"}), Audit()},
            {Index("Primary Table", {"Primary Table"})}),
      Table("Selection Criteria",
            {Counter(), Long({"Query ID"}), Short({"Line Number"}),
             Text(kObjectName, {"Table Name", "Field Name"}), Text(30, {"Field Function"}),
             Text(2, {"Comparison Operator"}), Text(255, {"Value"}), Text(3, {"Connector"}),
             Text(10, {"Open Parentheses", "Close Parentheses"}), Flag({"Get Value at Runtime"}),
             Text(255, {"Runtime Value Prompt"}), Text(130, {"Table Field"}), Audit()},
            {Index("By Query and Line", {"Query ID", "Line Number"})}),
      Table("Sort Criteria",
            {Counter(), Long({"Query ID"}), Short({"Line Number"}),
             Text(kObjectName, {"Table Name", "Field Name"}), Text(10, {"Ascending or Descending"}), Audit()},
            {Index("By Query and Line", {"Query ID", "Line Number"})}),
  };
  file.relations = {
      Refers("Selection Criteria", "Query ID", "Select and Sort Queries", "ID"),
      Refers("Sort Criteria", "Query ID", "Select and Sort Queries", "ID"),
  };
  return file;
}

}  // namespace

const std::vector<CatalogueFile>& Catalogue() {
  static const std::vector<CatalogueFile> files = {
      MainFileTables(), UsersFileTables(), ListsFileTables(), QueriesFileTables(),
      // Shared with the other products of the family. Only its place and its connection are known here.
      CatalogueFile{.name = "BFSYS.MDB", .tables = {}, .relations = {}}};
  return files;
}

const CatalogueFile& CatalogueOf(std::string_view file) {
  for (const CatalogueFile& candidate : Catalogue())
    if (rt::EqualNoCase(candidate.name, file)) return candidate;
  throw std::invalid_argument("no data file is called " + std::string(file));
}

}  // namespace dw
