// What the fifteen launches set, and the work table of the entry form.
#include <gtest/gtest.h>

#include "data/BrackenfelGlobals.h"
#include "platform/runtime/Clock.h"
#include "platform/system/Machine.h"
#include "reports/DWGlobals.h"
#include "reports/DateRange.h"
#include "reports/EntryForm.h"
#include "reports/Literals.h"
#include "reports/ReportTable.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

TEST(Launches, SetAllGlobalsOfAReport) {
  dw::RptExtra = "left over";
  dw::RptSelection = "left over";
  dw::RptQueryID = 5;
  dw::SetReportGlobals(dw::ReportOf("frmRptDWR017"), "{X.Y} = 1");
  EXPECT_EQ(dw::RptTitle, "Oil Usage Costs");
  EXPECT_EQ(dw::RptFile, sys::ProgramDirectory() + "/dwr017.rpt");
  EXPECT_EQ(dw::RptPrimaryTable, "[Maintenance Transactions],[Vehicles]");
  EXPECT_EQ(dw::RptSelection, "{X.Y} = 1");
  EXPECT_EQ(dw::RptSort + dw::RptExtra, "");
  EXPECT_EQ(dw::RptQueryID, 5) << "belongs to ReportForm";
  dw::SetReportGlobals(dw::ReportOf("DW_RptAssetClasses"));
  EXPECT_EQ(dw::RptPrimaryTable + "|" + dw::RptSelection + "|" + dw::RptSort, "Asset Classes||[Description]");

  EXPECT_EQ(dw::ReportTable().size(), 15u);
  EXPECT_EQ(dw::FindReport("6"), dw::FindReport("006"));
  for (const char* unused : {"005", "7", "18", "", "0006", "x"}) EXPECT_EQ(dw::FindReport(unused), nullptr);
  EXPECT_THROW(dw::ReportOf(""), std::out_of_range);
  std::string first;
  for (const dw::ReportEntry& report : dw::ReportTable())
    if (report.loadsFormFirst) first += std::string(report.number) + " ";
  EXPECT_EQ(first, "013 014 017 ");
}

TEST(Launches, DateRangesAreFormulasToTheLetter) {
  const rt::DateTime start(2026, 2, 3), end(2025, 12, 31, 23, 59, 59);
  const auto formula = [&](const char* form, const std::string& asset = {}) {
    return dw::DateRangeSelection(dw::DateRangeOf(form), start, end, asset);
  };
  const std::string range =
      "{Maintenance Transactions.Transaction Date} >= Date(2026,2,3) AND "
      "{Maintenance Transactions.Transaction Date} <= Date(2025,12,31)";
  EXPECT_EQ(formula("frmRptDWR004"), range);
  EXPECT_EQ(formula("frmRptDWR006"), range);
  EXPECT_EQ(formula("frmRptDWR006", "O'BRIEN"),
            range + " AND {Maintenance Transactions.Asset ID} = 'O''BRIEN'");
  EXPECT_EQ(formula("frmRptDWR009"),
            "{Odometer Entries.Date} >= Date(2026,2,3) AND {Odometer Entries.Date} <= Date(2025,12,31)");
  EXPECT_EQ(formula("frmRptDWR013"),
            "({Maintenance Transactions.Outside Fuel Cost} <> 0 OR "
            "{Maintenance Transactions.Internal Fuel Cost} <> 0) AND " +
                range);
  EXPECT_EQ(formula("frmRptDWR016"), range + " AND {Maintenance Transactions.Outside Fuel Cost} = 0");
  EXPECT_EQ(formula("frmRptDWR017"),
            "({Maintenance Transactions.Outside Oil Units} <> 0 OR "
            "{Maintenance Transactions.Oil} <> 0) AND " +
                range);
  const rt::FixedClock clock(rt::DateTime(2026, 5, 31, 10, 0));
  EXPECT_EQ(rt::ShortDate(dw::DefaultStart(dw::DateRangeOf("frmRptDWR013"))), "5/17/2026");
  EXPECT_EQ(rt::ShortDate(dw::DefaultStart(dw::DateRangeOf("frmRptDWR017"))), "2/28/2026");
}

TEST(Launches, TheEntryFormShowsEachUserOnlyTheirOwnRows) {
  test::SmallFleet fleet;
  test::ScreenScript screen;
  const rt::DateTime day(2026, 3, 1);
  fleet.Add("Odometer Entry Work Table", {{"User Name", "OTHER"}, {"Asset ID", "X"}});
  fleet.Add("Odometer Entry Work Table", {{"User Name", "O'BRIEN"}, {"Asset ID", "old"}});
  fleet.Add("Odometer Entries", {{"Asset ID", ""}, {"Date", day}, {"Mileage", 12.5}});
  fleet.Add("Odometer Entries", {{"Asset ID", "TRK-1"}, {"Date", day}, {"Mileage", 1}});
  fleet.Add("Odometer Entries", {{"Date", day}, {"Mileage", 2}});
  const std::string user = std::exchange(dw::CurrentUserName, "O'BRIEN");
  EXPECT_TRUE(dw::PrepareEntryForm());
  EXPECT_EQ(dw::RptSelection, "{Odometer Entry Work Table.User Name} = 'O''BRIEN'");
  EXPECT_EQ(dw::RptTitle + dw::RptSort, "Odometer Reading Entry Form[Asset ID]");
  EXPECT_EQ(fleet.Ask("SELECT COUNT(*) FROM [Odometer Entry Work Table]"), "2");
  EXPECT_EQ(fleet.Ask("SELECT [Mileage] FROM [Odometer Entry Work Table] WHERE [User Name] = 'O''BRIEN'"),
            "12.5");
  EXPECT_EQ(fleet.Ask("SELECT [Asset ID] FROM [Odometer Entry Work Table] WHERE [User Name] = 'OTHER'"), "X");
  dw::CurrentUserName = user;
}

TEST(Literals, GoByTheColumnsTypeAndNotByTheValue) {
  using dw::FormatLiteral;
  EXPECT_EQ(FormatLiteral("O'Neil", dw::kTextType), "'O''Neil'");
  EXPECT_EQ(FormatLiteral("'it''s'", dw::kMemoType), "'it''s'") << "quoted already";
  EXPECT_EQ(FormatLiteral("'60s", dw::kTextType), "'''60s'");
  EXPECT_EQ(FormatLiteral("", dw::kTextType), "''");
  EXPECT_EQ(FormatLiteral("12", dw::kTextType), "'12'");
  EXPECT_EQ(FormatLiteral("01/02/1999 3:00 PM", dw::kDateType), "Date(1999,1,2)");
  EXPECT_EQ(FormatLiteral("next week", dw::kDateType), "next week");
  EXPECT_EQ(FormatLiteral("Date(1999,1,2)", dw::kDateType), "Date(1999,1,2)") << "entered a second time";
  EXPECT_EQ(FormatLiteral("12,5", 6), "12,5");
  EXPECT_EQ(FormatLiteral("", 3), "");
  EXPECT_EQ(dw::LiteralInWords("'O''Neil'"), "O'Neil");
  EXPECT_EQ(dw::LiteralInWords("''''"), "'");
  EXPECT_EQ(dw::LiteralInWords("''"), "empty");
  EXPECT_EQ(dw::LiteralInWords("'"), "'");
  EXPECT_EQ(dw::LiteralInWords("Date(1999,1,2)"), "1/2/1999");
  EXPECT_EQ(dw::LiteralInWords("Date(1999,1,2) + 1"), "Date(1999,1,2) + 1");
}

}  // namespace
