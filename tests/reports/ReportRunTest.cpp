// The engine's calls of a run, one by one.
#include "reports/ReportRun.h"

#include <gtest/gtest.h>

#include "data/BrackenfelGlobals.h"
#include "platform/system/Settings.h"
#include "reports/CrystalTables.h"
#include "reports/DWGlobals.h"
#include "reports/ReportTable.h"
#include "support/FakeEngine.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"

namespace {

using screen::Answer;
using screen::Buttons;
using screen::Icon;

class ReportRun : public testing::Test {
 protected:
  ReportRun() {
    sys::UseSettingsFile(fleet_.Path("settings"));
    dw::RptQueryID = 0;
    dw::SetReportGlobals(dw::ReportOf("DW_RptInventory"));
    options_.titles[0] = dw::RptTitle;
    options_.window = {0, 0, 800, 600};
    options_.whilePreviewed = [this] { return ++waits_ < 100; };
    print::InstallPrintDialog(dialog_);
    dw::ForgetPrinters();
  }
  ~ReportRun() override {
    print::InstallPrintDialog(nullptr);
    dw::ForgetPrinters();
    sys::UseSettingsFile({});
  }
  void ExpectBox(const std::string& text, Icon icon = Icon::None, const std::string& title = "Drovewright") {
    screen_->Expect(text, icon, Buttons::Ok, Answer::Ok, title);
  }
  void ExpectFault(const std::string& call) { ExpectBox("Fault of " + call, Icon::Exclamation); }
  /// The sort fields of a run with this list.
  std::string Sorted(const std::string& list, std::int32_t query = 0) {
    engine_->calls.clear();
    dw::RptSort = list;
    dw::RptQueryID = query;
    dw::ApplySortFields(7);
    return engine_->Joined();
  }

  test::SmallFleet fleet_;
  test::ScreenScript screen_;
  test::EngineScript engine_;
  std::shared_ptr<test::FakePrintDialog> dialog_ = std::make_shared<test::FakePrintDialog>();
  dw::ReportOptions options_;
  int waits_ = 0;
};

TEST_F(ReportRun, GoesThroughTheCallsInTheirOrder) {
  engine_->looks = 3;
  engine_->groups = 1;
  engine_->subreports[4000] = 1;
  dw::RptSelection = "{Vehicles.Asset ID} = 'O''BRIEN'";
  options_.titles = {"Say \"50%\" [ü]", "", "Trucks", ""};
  options_.aux[6] = "seven";
  EXPECT_TRUE(dw::RunReport(options_));
  EXPECT_EQ(engine_->Joined(),
            "SetPrintSettings TESTER Letter\n"
            "PEOpenPrintJob dwr003.rpt\n"
            "PESetWindowOptions\n"
            "PEOutputToWindow Inventory Listing\n"
            "PEShowPrintControls 1\n"
            "PESetFormula RptTitle1~ \"Say \"50%\" [ü]\"~\n"
            "PESetFormula RptTitle3~ \"Trucks\"~\n"
            "PESetFormula RptGenedBy~ \"TESTER\"~\n"
            "PESetFormula RptAux7~ \"seven\"~\n"
            "PEGetNTables\n"
            "PEGetNSections\n"
            "PESetNthTableLocation 7 0 DW.MDB\n"
            "PESetNthTableLocation 7 1 DW.MDB\n"
            "PEGetSubreportInfo 100\n"
            "PEOpenSubreport Tasks 100\n"
            "PEGetNTables\n"
            "PESetNthTableLocation 8 0 DW.MDB\n"
            "PESetNthTableLocation 8 1 DW.MDB\n"
            "PEDiscardSavedData\n"
            "PESetSelectionFormula {Vehicles.Asset ID} = 'O''BRIEN'~\n"
            "PEGetSelectionFormula\n"
            "PESetNthSortField 0 {Vehicles.Asset ID}~ 1\n"
            "PEStartPrintJob 1\n"
            "PEClosePrintJob");
  EXPECT_EQ(waits_, 3) << "until the preview is closed";
}

TEST_F(ReportRun, FailuresAreShownAndMostOfThemLetTheRunGoOn) {
  engine_->failing = {"PEOpenPrintJob"};
  ExpectFault("PEOpenPrintJob");
  EXPECT_FALSE(dw::RunReport(options_));
  EXPECT_EQ(engine_->calls.back(), "PEOpenPrintJob dwr003.rpt") << "there is no job to close";

  engine_->failing = {"PEOutputToWindow",      "PEShowPrintControls", "PESetFormula",
                      "PEGetNTables",          "PEGetNSections",      "PEDiscardSavedData",
                      "PEGetSelectionFormula", "PESetNthSortField"};
  for (const char* call :
       {"PEOutputToWindow", "PEShowPrintControls", "PESetFormula", "PESetFormula", "PEGetNTables",
        "PEGetNSections", "PEDiscardSavedData", "PEGetSelectionFormula", "PESetNthSortField"})
    ExpectFault(call);
  EXPECT_TRUE(dw::RunReport(options_));
  EXPECT_EQ(engine_->calls.back(), "PEClosePrintJob");

  // Without the selection nothing is printed.
  engine_->failing = {"PESetSelectionFormula"};
  ExpectFault("PESetSelectionFormula");
  EXPECT_FALSE(dw::RunReport(options_));
  EXPECT_EQ(engine_->Joined("PEStart"), "PEStartPrintJob 1") << "of the run before";
  EXPECT_EQ(engine_->calls.back(), "PEClosePrintJob");

  engine_->failing = {"PEStartPrintJob"};
  engine_->looks = 5;
  ExpectBox("'Inventory Listing' could not be printed.");
  ExpectFault("PEStartPrintJob");
  EXPECT_FALSE(dw::RunReport(options_));
  EXPECT_EQ(waits_, 0);
}

TEST_F(ReportRun, ShortTextsAndThoseThatSayNoErrorAreNotShown) {
  const auto shown = [this](const std::string& text) {
    engine_->errorText = text;
    dw::ShowEngineError(7);
  };
  for (const char* text : {"", "8 chars.", "No error.", "No error. At all."}) shown(text);
  ExpectBox("9 chars..", Icon::Exclamation);
  shown("9 chars..");
  ExpectBox("No errors at all", Icon::Exclamation);
  shown("No errors at all");
}

TEST_F(ReportRun, SortListsOfBothKindsBecomeFields) {
  EXPECT_EQ(Sorted("[Asset ID],[Transaction Date]"),
            "PESetNthSortField 0 {Vehicles.Asset ID}~ 1\n"
            "PESetNthSortField 1 {Vehicles.Transaction Date}~ 1");
  EXPECT_EQ(Sorted(""), "");
  EXPECT_EQ(Sorted("{Vehicles.Asset ID} ASCENDING"), "") << "no definition has been chosen";
  EXPECT_EQ(Sorted("{Vehicles.Class ID} ASCENDING, {Divisions.Division ID} DESCENDING", 4),
            "PESetNthSortField 0 {Vehicles.Class ID}~ 1\n"
            "PESetNthSortField 1 {Divisions.Division ID}~ 0");
}

TEST_F(ReportRun, SectionsBreakOrHideAndSayWhenTheyCannot) {
  engine_->groups = 2;
  engine_->hidden = {5001};
  options_.sectionPageBreak = options_.summaryOnly = true;
  dw::ApplySectionOptions(7, options_);
  EXPECT_EQ(engine_->Joined(),
            "PEGetNGroups\n"
            "PEGetSectionFormat 5000\n"
            "PESetSectionFormat 5000 visible 1 newPageAfter 1\n"
            "PEGetSectionFormat 5001\n"
            "PEGetSectionFormat 4000\n"
            "PESetSectionFormat 4000 visible 0 newPageAfter 0");

  engine_->groups = 1;
  engine_->failing = {"PESetSectionFormat"};
  ExpectFault("PESetSectionFormat");
  ExpectBox("'Inventory Listing' could not set page break option.");
  ExpectBox("'Inventory Listing' could not set summary only option.");
  dw::ApplySectionOptions(7, options_);
  engine_->failing = {"PEGetSectionFormat"};
  ExpectFault("PEGetSectionFormat");
  ExpectBox("'Inventory Listing' could not get page break option.");
  ExpectBox("'Inventory Listing' could not get summary only option.");
  dw::ApplySectionOptions(7, options_);

  engine_->calls.clear();
  options_.summaryOnly = false;
  engine_->groups = 0;
  dw::ApplySectionOptions(7, options_);
  EXPECT_EQ(engine_->Joined(), "PEGetNGroups") << "nothing to break after";
}

TEST_F(ReportRun, PrintersAreChosenKeptAndRefused) {
  options_.output = dw::ReportOutput::Printer;
  const auto cancelled = [this] {
    ExpectBox("No Printer has been selected. Default Report Settings will be used.", Icon::None, "Cancelled");
    ExpectBox("Default or Previously Chosen Printer Will Be Used.", Icon::None, "Cancelled");
  };
  cancelled();
  dw::RunReport(options_);
  EXPECT_EQ(engine_->Joined("PESelect"), "") << "no printer was chosen";
  EXPECT_EQ(engine_->Joined("PESetPrintOptions"), "PESetPrintOptions 0 to 0, 1 collated");
  EXPECT_EQ(engine_->Joined("PEOutput"), "PEOutputToPrinter 1");
  EXPECT_EQ(dialog_->requests.back().flags, 64);
  EXPECT_EQ(dialog_->requests.back().choice.printer, "Office");

  engine_->calls.clear();
  dialog_->result = {
      .chosen = true,
      .choice = {.printer = "Shop", .paper = "A4", .pdfFile = "/tmp/x.pdf", .copies = 3, .collate = false},
      .firstPage = 2,
      .lastPage = 5};
  dw::RunReport(options_);
  EXPECT_EQ(engine_->Joined("PESelect"), "PESelectPrinter Shop\nPESelectPdfFile /tmp/x.pdf");
  EXPECT_EQ(engine_->Joined("PESetPrintOptions"), "PESetPrintOptions 2 to 5, 3");
  EXPECT_EQ(engine_->Joined("SetPrintSettings"),
            "SetPrintSettings TESTER Letter\nSetPrintSettings TESTER A4");

  // The printer stays after a Cancel, the file does not.
  engine_->calls.clear();
  dialog_->result = {};
  cancelled();
  dw::RunReport(options_);
  EXPECT_EQ(engine_->Joined("PESelect"), "PESelectPrinter Shop\nPESelectPdfFile");
  EXPECT_EQ(dialog_->requests.back().choice.copies, 1);

  dialog_->result.error = print::DialogError::PDERR_NODEVICES;
  ExpectBox("PDERR_NODEVICES", Icon::None, "Failure");
  ExpectBox("Default or Previously Chosen Printer Will Be Used.", Icon::None, "Cancelled");
  dw::RunReport(options_);

  const auto refused = [this](Answer answer) {
    screen_->Expect(
        "CRW Failed to Select Printer.\r\nFault of PESelectPrinter\r\nDo you want to continue with the "
        "Default Printer?",
        Icon::None, Buttons::YesNo, answer, "Printer Change Failed");
  };
  dialog_->result = {.chosen = true, .choice = {.printer = "Shop", .paper = "Letter"}};
  engine_->failing = {"PESelectPrinter"};
  refused(Answer::Yes);
  EXPECT_TRUE(dw::RunReport(options_));
  engine_->calls.clear();
  refused(Answer::No);
  EXPECT_FALSE(dw::RunReport(options_));
  EXPECT_EQ(engine_->Joined("PEStart"), "") << "nothing comes out of a printer that nobody wanted";
  EXPECT_EQ(engine_->calls.back(), "PEClosePrintJob");
}

TEST_F(ReportRun, OneFailureToReadTheDefaultPrinterIsReported) {
  dialog_->standard.reset();
  dialog_->result = {.chosen = true, .choice = {.printer = "Shop", .paper = "Letter"}};
  options_.output = dw::ReportOutput::Printer;
  ExpectBox("CRW Failed to Get Default Printer Information.", Icon::None, "Failure");
  EXPECT_TRUE(dw::RunReport(options_));
  EXPECT_TRUE(dw::RunReport(options_));
}

TEST_F(ReportRun, MailThatFailsSkipsTheTextsAndNoDestinationIsToldOnce) {
  options_.output = dw::ReportOutput::Mail;
  dw::RunReport(options_);
  EXPECT_EQ(engine_->Joined("PEExportTo"), "PEExportTo crxf_rtf u2dmapi");
  EXPECT_NE(engine_->Joined("PESetFormula"), "");
  engine_->calls.clear();
  engine_->failing = {"PEExportTo"};
  ExpectFault("PEExportTo");
  dw::RunReport(options_);
  EXPECT_EQ(engine_->Joined("PESetFormula") + engine_->Joined("PEGetNTables"), "");
  EXPECT_EQ(engine_->Joined("PEStart"), "PEStartPrintJob 1") << "the run goes on";

  engine_->calls.clear();
  options_.output = dw::ReportOutput::None;
  ExpectBox("Invalid Option Box checked.");
  dw::RunReport(options_);
  EXPECT_EQ(engine_->Joined("PEOutput") + engine_->Joined("PEExport"), "");
  EXPECT_EQ(engine_->Joined("PEStart"), "PEStartPrintJob 1");
}

TEST_F(ReportRun, TablesComeFromTheListOrFromTheFile) {
  const auto tables = [](const std::string& file, const std::string& primary) {
    std::vector<std::string> found;
    dw::GetCrystalTables(file, found, primary);
    std::string joined;
    for (const std::string& table : found) joined += table + ";";
    return joined;
  };
  EXPECT_EQ(tables("x.rpt", "[Maintenance Transactions], [Vehicles]"), "Maintenance Transactions;Vehicles;");
  EXPECT_EQ(engine_->Joined(), "");
  EXPECT_EQ(tables("x.rpt", "Vehicles"), "Maintenance Transactions;Vehicles;");
  EXPECT_EQ(engine_->calls.back(), "PEClosePrintJob");
  ExpectBox("INTERNAL ERROR: GetCrystalTables has no Report and SQL list to process.");
  EXPECT_EQ(tables("", "Vehicles"), "");
  engine_->failing = {"PEOpenPrintJob"};
  ExpectFault("PEOpenPrintJob");
  EXPECT_EQ(tables("x.rpt", "Vehicles"), "");

  const auto fields = dw::LoadTableFields("Divisions");
  EXPECT_EQ(fields.front(), "ID");
  EXPECT_NE(std::find(fields.begin(), fields.end(), "Division ID"), fields.end());
  ExpectBox("Internal Error: Unable to find the Asset Classes table.");
  EXPECT_TRUE(dw::LoadTableFields("Asset Classes").empty());
}

}  // namespace
