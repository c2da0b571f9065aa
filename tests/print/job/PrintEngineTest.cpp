#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "print/job/ReportFixture.h"
#include "robustness/FullDisk.h"
#include "support/SecondProcess.h"

namespace print::test {
namespace {

namespace files = std::filesystem;

const std::string kNul(1, '\0');

/// Three assets in two classes, and a definition with groups and a subreport.
class PrintEngine : public EngineTest {
 protected:
  PrintEngine() {
    for (const auto& [asset, group] : {std::pair("A-1", "X"), std::pair("A-2", "X"), std::pair("B-1", "Y")})
      fleet.AddAsset(asset, 1, {{"Class ID", group}, {"Description", "It's \"odd\""}});
    Write(kText);
  }

  void Write(const std::string& text) { std::ofstream(Path(), std::ios::binary) << text; }
  std::string Path() const { return directory.Path("test.rpt"); }
  int OpenTest() { return Open(Path(), fleet.Path()); }
  /// The text of one page.
  std::string Shown(int job) { return ShowText(job); }
  static bool Mentions(const std::string& text, const std::string& words) {
    return text.find(words) != std::string::npos;
  }

  static constexpr auto kText = R"(<?xml version="1.0" encoding="UTF-8"?>
<report name="Test" page="letter">
  <data>
    <table name="Vehicles" primary="yes"/>
    <table name="Inventory Classes" alias="Asset Classes"><join field="Class ID" to="Vehicles.Class ID"/></table>
    <order field="{Vehicles.Asset ID}" descending="yes"/>
  </data>
  <formula name="RptTitle1">"Own title"</formula>
  <formula name="SelectionDates">''</formula>
  <pageHeader><text value="{@RptTitle1}"/><text y="12pt" value="{@SelectionDates}"/></pageHeader>
  <group by="{Vehicles.Class ID}"><header><text value="'Class ' &amp; {Vehicles.Class ID}"/></header>
    <footer><text value="Count({Vehicles.ID}) &amp; ' of ' &amp; {Vehicles.Class ID}"/></footer></group>
  <detail><text width="100pt" value="{Vehicles.Asset ID}"/><text x="110pt" width="200pt" value="{Vehicles.Description}"/>
    <subreport name="Tasks" y="12pt"/></detail>
  <subreport name="Tasks" link="{Maintenance Schedule.Asset ID} = {Vehicles.Asset ID}">
    <data><table name="Maintenance Schedule"/></data>
    <detail><text value="{Maintenance Schedule.Description}"/></detail>
  </subreport>
</report>
)";

  ::test::SmallFleet fleet;
};

TEST_F(PrintEngine, OneRunFromOpenToClose) {
  const int job = OpenTest();
  EXPECT_EQ(Error(job), "No error.");
  EXPECT_TRUE(PEDiscardSavedData(job));
  PEWindowOptions options;
  EXPECT_TRUE(PESetWindowOptions(job, options));
  EXPECT_TRUE(PEOutputToWindow(job, "Costs" + kNul, 1, 2, 300, 200));
  EXPECT_TRUE(PEShowPrintControls(job, true));
  EXPECT_EQ(PEGetWindowHandle(job), 0U);
  EXPECT_TRUE(PEStartPrintJob(job, true));
  ASSERT_EQ(viewer->windows.size(), 1U);
  EXPECT_EQ(viewer->windows[0].title, "Costs");
  EXPECT_GE(viewer->windows[0].report->Pages().PageCount(), 1);
  EXPECT_NE(PEGetWindowHandle(job), 0U);
  bool showing = false;
  EXPECT_TRUE(PEPrintControlsShowing(job, &showing));
  EXPECT_TRUE(showing);
  viewer->windows[0].open = false;
  EXPECT_EQ(PEGetWindowHandle(job), 0U);
  EXPECT_TRUE(PEClosePrintJob(job));
  EXPECT_FALSE(PEClosePrintJob(job));
  EXPECT_EQ(Error(0), "There is no print job " + std::to_string(job) + ".");
}

TEST_F(PrintEngine, CallsNeedAnOpenEngineAndAJob) {
  PECloseEngine();
  EXPECT_EQ(PEOpenPrintJob(Path()), 0);
  EXPECT_TRUE(Mentions(Error(0), "not open")) << Error(0);
  EXPECT_TRUE(PEOpenEngine());
  EXPECT_EQ(PEGetNTables(77), -1);
  EXPECT_EQ(PEGetNSections(77), -1);
  EXPECT_EQ(PEGetNGroups(77), -1);
  EXPECT_FALSE(PESetFormula(77, "RptTitle1", "'x'"));
  EXPECT_FALSE(PEStartPrintJob(77, true));
  EXPECT_TRUE(Mentions(Error(77), "77"));
  std::string buffer(5, ' ');
  EXPECT_FALSE(PEGetHandleString(12345, &buffer));
}

TEST_F(PrintEngine, StructuresOfAnotherSizeAreRefused) {
  const int job = OpenTest();
  PEWindowOptions window;
  window.StructSize = 30;
  EXPECT_FALSE(PESetWindowOptions(job, window));
  EXPECT_TRUE(Mentions(Error(job), "30")) << Error(job);
  PEExportOptions exported;
  exported.StructSize = 0;
  EXPECT_FALSE(PEExportTo(job, exported));
  PESectionOptions section;
  section.StructSize = 0;
  EXPECT_FALSE(PEGetSectionFormat(job, kDetailSection, &section));
  EXPECT_FALSE(PESetSectionFormat(job, kDetailSection, section));
  PEPrintOptions print;
  print.StructSize = 0;
  EXPECT_FALSE(PESetPrintOptions(job, print));
  PETableLocation location;
  location.StructSize = 0;
  EXPECT_FALSE(PEGetNthTableLocation(job, 0, &location));
  EXPECT_FALSE(PESetNthTableLocation(job, 0, location));
  PESubreportInfo info;
  info.StructSize = 0;
  EXPECT_FALSE(PEGetSubreportInfo(job, 1, &info));
}

TEST_F(PrintEngine, TextsOfPeopleStandAsTheyTypedThem) {
  const int job = OpenTest();
  for (const std::string title : {"He said \"hi\"", "\" & User & \"", "100% {x} [y] <b> 'q'", "Größe – 車",
                                  "say \"\"x\"\"", "{@RptTitle1}", "\\n %s"}) {
    EXPECT_TRUE(PESetFormula(job, "RptTitle1" + kNul, "\"" + title + "\"" + kNul))
        << title << ": " << Error(job);
    EXPECT_TRUE(Mentions(Shown(job), title)) << Shown(job);
  }
  std::string longest(4000, 'w');
  EXPECT_TRUE(PESetFormula(job, "RptTitle1", "\"" + longest + "\"")) << Error(job);
  EXPECT_TRUE(PESetFormula(job, "RptTitle1", "'Up ' & Upper('per')"));
  EXPECT_TRUE(Mentions(Shown(job), "Up PER"));
  // A fault leaves the text that was set before.
  EXPECT_FALSE(PESetFormula(job, "RptTitle1", "'Up ' & "));
  EXPECT_TRUE(Mentions(Error(job), "RptTitle1")) << Error(job);
  EXPECT_TRUE(Mentions(Shown(job), "Up PER"));
  EXPECT_FALSE(PESetFormula(job, "RptTitle9", "'x'"));
  EXPECT_TRUE(Mentions(Error(job), "RptTitle9"));
  // Every report has the twelve texts, whether it shows them or not.
  for (const char* name : {"RptTitle2", "RptTitle4", "RptGenedBy", "RptAux1", "RptAux7"}) {
    EXPECT_TRUE(PESetFormula(job, name, "\"x\"")) << name;
  }
}

TEST_F(PrintEngine, SelectionsAreKeptAndReadBack) {
  const int job = OpenTest();
  EXPECT_TRUE(PESetSelectionFormula(job, "{Vehicles.Asset ID} = 'A-1'   " + kNul + "rest")) << Error(job);
  int handle = 0;
  int length = 0;
  EXPECT_TRUE(PEGetSelectionFormula(job, &handle, &length));
  EXPECT_EQ(Text(handle, length), "{Vehicles.Asset ID} = 'A-1'");
  std::string text = Shown(job);
  EXPECT_TRUE(Mentions(text, "A-1"));
  EXPECT_FALSE(Mentions(text, "A-2"));
  EXPECT_FALSE(PESetSelectionFormula(job, "{Vehicles.No Such} = 1"));
  EXPECT_TRUE(Mentions(Error(job), "No Such")) << Error(job);
  EXPECT_GE(Error(job).size(), 9U);
  EXPECT_TRUE(PEGetSelectionFormula(job, &handle, &length));
  EXPECT_EQ(Text(handle, length), "{Vehicles.Asset ID} = 'A-1'");
  EXPECT_TRUE(PESetSelectionFormula(job, kNul));
  EXPECT_TRUE(Mentions(Shown(job), "A-2"));
}

TEST_F(PrintEngine, DatesOfASelectionStandInTheHeading) {
  const int job = OpenTest();
  const auto with = [&](const std::string& selection) {
    EXPECT_TRUE(PESetSelectionFormula(job, selection)) << Error(job);
    return Shown(job);
  };
  EXPECT_TRUE(
      Mentions(with("{Vehicles.Entry Date} >= Date(2026,1,2) AND {Vehicles.Entry Date} <= Date(2026,12,31)"),
               "From 1/2/2026 to 12/31/2026"));
  EXPECT_TRUE(Mentions(with("{Vehicles.Entry Date} <= Date(2026,12,31)"), "Up to 12/31/2026"));
  // Limits of two fields are not a range.
  EXPECT_FALSE(
      Mentions(with("{Vehicles.Entry Date} >= Date(2026,1,2) AND {Vehicles.Purchase Date} <= Date(2026,2,3)"),
               "2026"));
}

TEST_F(PrintEngine, SortFieldsTakeTheirPlaceBehindTheGroups) {
  const int job = OpenTest();
  std::string text = Shown(job);
  EXPECT_LT(text.find("A-2"), text.find("A-1"));
  EXPECT_TRUE(PESetNthSortField(job, 0, "{Vehicles.Asset ID}" + kNul, 1));
  text = Shown(job);
  EXPECT_LT(text.find("A-1"), text.find("A-2"));
  EXPECT_LT(text.find("A-2"), text.find("B-1"));
  EXPECT_FALSE(PESetNthSortField(job, 2, "{Vehicles.Asset ID}", 1));
  EXPECT_FALSE(PESetNthSortField(job, 1, "{Vehicles.Asset ID}", 2));
  EXPECT_FALSE(PESetNthSortField(job, 1, "Asset ID", 1));
  EXPECT_FALSE(PESetNthSortField(job, 1, "{Divisions.Asset ID}", 1));
  EXPECT_TRUE(Mentions(Error(job), "Divisions")) << Error(job);
  EXPECT_FALSE(PESetNthSortField(job, 1, "{Vehicles.No Such}", 1));
  EXPECT_TRUE(Mentions(Error(job), "No Such")) << Error(job);
  EXPECT_TRUE(PESetNthSortField(job, 1, "{Inventory Classes.Description}   ", 1)) << Error(job);
}

TEST_F(PrintEngine, TablesTellAndTakeTheirPlace) {
  const int job = PEOpenPrintJob(Path());
  ASSERT_EQ(PEGetNTables(job), 2);
  PETableLocation location;
  EXPECT_TRUE(PEGetNthTableLocation(job, 1, &location));
  EXPECT_EQ(files::path(location.Location).filename(), "Inventory Classes");
  // Without a place for each table there is no run.
  location.Location = fleet.Path();
  EXPECT_TRUE(PESetNthTableLocation(job, 0, location));
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_TRUE(Mentions(Error(job), "Inventory Classes")) << Error(job);
  EXPECT_TRUE(PESetNthTableLocation(job, 1, location));
  EXPECT_TRUE(PEGetNthTableLocation(job, 0, &location));
  EXPECT_EQ(location.Location, fleet.Path() + "/Vehicles");
  location.Location = directory.Path("other.mdb");
  EXPECT_TRUE(PESetNthTableLocation(job, 1, location));
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_TRUE(Mentions(Error(job), "other.mdb")) << Error(job);
  location.Location = std::string(300, 'x');
  EXPECT_FALSE(PESetNthTableLocation(job, 0, location));
  EXPECT_FALSE(PESetNthTableLocation(job, 2, location));
  EXPECT_FALSE(PEGetNthTableLocation(job, -1, &location));
  location.Location = std::string(255, 'x');
  EXPECT_TRUE(PESetNthTableLocation(job, 0, location));
  EXPECT_TRUE(PEGetNthTableLocation(job, 0, &location));
  EXPECT_LE(location.Location.size(), 255U);
  EXPECT_TRUE(location.Location.ends_with("/Vehicles"));
}

TEST_F(PrintEngine, SectionsAndSubreports) {
  const int job = OpenTest();
  std::vector<int> codes;
  int subreports = 0;
  for (int i = 0; i < PEGetNSections(job); ++i) {
    codes.push_back(PEGetSectionCode(job, i));
    subreports += PEGetNSubreportsInSection(job, codes.back());
  }
  EXPECT_EQ(codes, (std::vector<int>{1000, 2000, 3000, 4000, 5000, 7000, 8000}));
  EXPECT_EQ(subreports, 1);
  EXPECT_EQ(PEGetNGroups(job), 1);
  EXPECT_EQ(PEGetSectionCode(job, 7), 0);
  EXPECT_EQ(PEGetNSubreportsInSection(job, 4001), -1);
  PESubreportInfo info;
  EXPECT_TRUE(PEGetSubreportInfo(job, PEGetNthSubreportInSection(job, kDetailSection, 0), &info));
  EXPECT_EQ(info.name, "Tasks");
  EXPECT_FALSE(PEGetSubreportInfo(job, 2, &info));
  EXPECT_EQ(PEGetNthSubreportInSection(job, kDetailSection, 1), 0);
  const int inner = PEOpenSubreport(job, "Tasks" + kNul);
  ASSERT_NE(inner, 0) << Error(job);
  EXPECT_EQ(PEGetNTables(inner), 1);
  EXPECT_FALSE(PEStartPrintJob(inner, true));
  PETableLocation location;
  location.Location = directory.Path("other.mdb");
  EXPECT_TRUE(PESetNthTableLocation(inner, 0, location));
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_TRUE(Mentions(Error(job), "Tasks")) << Error(job);
  location.Location = fleet.Path();
  EXPECT_TRUE(PESetNthTableLocation(inner, 0, location));
  EXPECT_TRUE(PEClosePrintJob(inner));
  fleet.Add("Maintenance Schedule", {{"Asset ID", "A-1"}, {"Description", "Check the oil"}});
  EXPECT_TRUE(Mentions(Shown(job), "Check the oil"));
  EXPECT_EQ(PEOpenSubreport(job, "Others"), 0);

  HideDetails(job);
  BreakAfterGroups(job);
  EXPECT_EQ(Show(job).PageCount(), 2);
  EXPECT_FALSE(Mentions(Shown(job), "A-1"));
  EXPECT_TRUE(Mentions(Shown(job), "2 of X"));
  PESectionOptions options;
  EXPECT_FALSE(PEGetSectionFormat(job, 5001, &options));
  EXPECT_TRUE(PEGetSectionFormat(job, 5000, &options));
  EXPECT_EQ(options.newPageAfter, 1);
  // A hidden footer is hidden, and so is a header.
  options.visible = 0;
  EXPECT_TRUE(PESetSectionFormat(job, 5000, options));
  EXPECT_FALSE(Mentions(Shown(job), "2 of X"));
}

TEST_F(PrintEngine, DefinitionsThatCannotBeUsed) {
  EXPECT_EQ(PEOpenPrintJob(directory.Path("none.rpt")), 0);
  EXPECT_TRUE(Mentions(Error(0), "none.rpt")) << Error(0);
  Write("<report name='x'>\n  <data><table name='Vehicles'/></data>\n  <detial/></report>");
  EXPECT_EQ(PEOpenPrintJob(Path()), 0);
  EXPECT_TRUE(Mentions(Error(0), "test.rpt, line 3, column 3")) << Error(0);
  Write(kText);
  const int held = open(Path().c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  EXPECT_EQ(PEOpenPrintJob(Path()), 0);
  EXPECT_TRUE(Mentions(Error(0), "held by another program")) << Error(0);
  flock(held, LOCK_UN);
  struct flock range = {};
  range.l_type = F_WRLCK;
  range.l_whence = SEEK_SET;
  ASSERT_EQ(fcntl(held, F_OFD_SETLK, &range), 0);
  EXPECT_EQ(PEOpenPrintJob(Path()), 0);
  EXPECT_TRUE(Mentions(Error(0), "held by another program")) << Error(0);
  close(held);
  EXPECT_NE(PEOpenPrintJob(Path()), 0);
}

TEST_F(PrintEngine, ADataFileThatVanishesIsAClearText) {
  const int job = OpenTest();
  files::rename(fleet.Path(), fleet.Path("AWAY.MDB"));
  EXPECT_TRUE(PEOutputToWindow(job, "x", 0, 0, 1, 1));
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_TRUE(Mentions(Error(job), "DW.MDB")) << Error(job);
  EXPECT_TRUE(viewer->windows.empty());
  std::ofstream(fleet.Path()) << std::string(100000, 'x');
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_TRUE(Mentions(Error(job), "DW.MDB")) << Error(job);
  files::rename(fleet.Path("AWAY.MDB"), fleet.Path());
  EXPECT_TRUE(PEStartPrintJob(job, true)) << Error(job);
}

TEST_F(PrintEngine, PrintsTheChosenPagesWithTheChosenCopies) {
  const int job = OpenTest();
  BreakAfterGroups(job);
  EXPECT_TRUE(PESelectPrinter(job, "Office" + kNul));
  PEPrintOptions options;
  options.startPageN = 2;
  options.nReportCopies = 3;
  options.collate = false;
  EXPECT_TRUE(PESetPrintOptions(job, options));
  EXPECT_TRUE(PEOutputToPrinter(job, 1));
  EXPECT_TRUE(PESetFormula(job, "RptTitle1", "\"The \"\" title\""));
  ASSERT_TRUE(PEStartPrintJob(job, true)) << Error(job);
  ASSERT_EQ(queue->tickets.size(), 1U);
  EXPECT_EQ(queue->tickets[0].printer, "Office");
  EXPECT_EQ(queue->tickets[0].copies, 3);
  EXPECT_FALSE(queue->tickets[0].collate);
  EXPECT_EQ(queue->tickets[0].paper, "Letter");
  EXPECT_EQ(queue->tickets[0].title, "The \"\" title");
  EXPECT_TRUE(queue->documents[0].starts_with("%PDF"));
  options.startPageN = 9;
  options.stopPageN = 0;
  EXPECT_TRUE(PESetPrintOptions(job, options));
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_TRUE(Mentions(Error(job), "2 pages")) << Error(job);
  options.stopPageN = 3;
  EXPECT_FALSE(PESetPrintOptions(job, options));
  EXPECT_FALSE(PEOutputToPrinter(job, 0));
  options.startPageN = options.stopPageN = 0;
  EXPECT_TRUE(PESetPrintOptions(job, options));
  queue->refusal = "The printer is on fire.";
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_EQ(Error(job), "The printer is on fire.");
  EXPECT_TRUE(PESelectPdfFile(job, directory.Path("out.pdf")));
  EXPECT_TRUE(PEStartPrintJob(job, true)) << Error(job);
  EXPECT_TRUE(BytesOf(directory.Path("out.pdf")).starts_with("%PDF"));
}

TEST_F(PrintEngine, MailsTheReportUnderItsTitle) {
  const files::path temporary = directory.Path("temporary");
  files::create_directory(temporary);
  setenv("TMPDIR", temporary.c_str(), 1);
  const int job = OpenTest();
  PEExportOptions options;
  options.formatDLLName = "crxf_rtf" + kNul;
  options.destinationDLLName = "u2dmapi";
  EXPECT_TRUE(PEExportTo(job, options));
  EXPECT_TRUE(PESetFormula(job, "RptTitle1", "\"Costs 1/2026: \"all\"\""));
  ASSERT_TRUE(PEStartPrintJob(job, true)) << Error(job);
  ASSERT_EQ(mailer->files.size(), 1U);
  EXPECT_EQ(mailer->subjects[0], "Costs 1/2026: \"all\"");
  EXPECT_EQ(files::path(mailer->files[0]).filename(), "Costs 1-2026- -all-.rtf");
  EXPECT_TRUE(mailer->documents[0].starts_with("{\\rtf"));
  EXPECT_TRUE(files::exists(mailer->files[0]));
  files::remove_all(files::path(mailer->files[0]).parent_path());
  // What cannot be sent is not left behind.
  mailer->refuses = true;
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_EQ(Error(job), "There is no mail program.");
  EXPECT_TRUE(files::is_empty(temporary));
  unsetenv("TMPDIR");
  options.formatDLLName = "crxf_pdf";
  EXPECT_FALSE(PEExportTo(job, options));
  options.formatDLLName = "crxf_rtf";
  options.destinationDLLName = "u2ddisk";
  EXPECT_FALSE(PEExportTo(job, options));
}

TEST_F(PrintEngine, AFullTemporaryDiskIsAClearText) {
  const files::path temporary = directory.Path("temporary");
  files::create_directory(temporary);
  std::mt19937 dice(1);
  fleet.AddTransactions(3000, [&](int number, ::test::Row& row) {
    std::string notes;
    for (int i = 0; i < 40; ++i) notes += static_cast<char>('a' + dice() % 26);
    row.emplace_back("Notes", notes);
    return std::string(number % 2 == 0 ? "A-1" : "B-1");
  });
  // A process of its own, whose files cannot grow beyond 50 KB.
  ::test::SecondProcess other([&](auto& channel) {
    setenv("TMPDIR", temporary.c_str(), 1);
    const int job = Open(Definition("dwr006.rpt"), fleet.Path());
    const ::test::Disk disk(::test::DiskKind::FileLimit, temporary);
    const rlimit limit{50'000, 50'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    PEOutputToPrinter(job, 1);
    const bool printed = PEStartPrintJob(job, true);
    channel.Say(printed ? "printed" : Error(job));
    channel.Say(files::is_empty(temporary) ? "nothing left" : "files left");
  });
  const std::string told = other.Talk().Hear();
  EXPECT_TRUE(Mentions(told, "temporary")) << told;
  EXPECT_EQ(other.Talk().Hear(), "nothing left");
}

TEST_F(PrintEngine, WithoutAWindowSystemThereIsNoWindow) {
  InstallViewer(nullptr);
  const int job = OpenTest();
  EXPECT_FALSE(PEOutputToWindow(job, "x", 0, 0, 1, 1));
  EXPECT_TRUE(Mentions(Error(job), "window"));
  // The default is the printer then.
  EXPECT_TRUE(PEStartPrintJob(job, true)) << Error(job);
  EXPECT_EQ(queue->tickets.size(), 1U);
  InstallPrinterQueue(nullptr);
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_TRUE(Mentions(Error(job), "printer"));
}

TEST_F(PrintEngine, APreviewOutlivesItsJob) {
  const int job = OpenTest();
  Show(job);
  const std::shared_ptr<RunningReport> report = viewer->windows.back().report;
  EXPECT_TRUE(PEClosePrintJob(job));
  EXPECT_FALSE(viewer->windows.back().open);
  EXPECT_EQ(report->Pages().Read(0).number, 1);
  PECloseEngine();
  EXPECT_EQ(report->Pages().PageCount(), 1);
}

}  // namespace
}  // namespace print::test
