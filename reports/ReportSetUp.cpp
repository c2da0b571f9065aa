// What a run sets in its job before it starts: destination, formulas, tables, order and sections.
#include <algorithm>

#include "data/BrackenfelGlobals.h"
#include "data/GenericTools.h"
#include "platform/runtime/Text.h"
#include "platform/screen/Screen.h"
#include "reports/DWGlobals.h"
#include "reports/PrintCalls.h"
#include "reports/ReportRun.h"

namespace dw {
namespace {

/// Texts for the engine end with a NUL of their own.
std::string Ended(const std::string& text) { return text + '\0'; }

/// Shows the engine's error after a failed call. Returns what the call returned.
bool Checked(int job, bool done) {
  if (!done) ShowEngineError(job);
  return done;
}

void SetText(int job, const std::string& formula, const std::string& text) {
  Checked(job, Engine().PESetFormula(job, Ended(formula), Ended(FormulaText(text))));
}

/// False if the job has no destination now and gets no formulas.
bool SetMail(int job) {
  print::PEExportOptions mail;
  mail.formatDLLName = "crxf_rtf";
  mail.destinationDLLName = "u2dmapi";
  return Checked(job, Engine().PEExportTo(job, mail));
}

void SetWindow(int job, const WindowPlace& place) {
  print::PEWindowOptions window;
  window.hasGroupTree = true;
  window.hasSearchButton = true;
  Engine().PESetWindowOptions(job, window);
  Checked(job, Engine().PEOutputToWindow(job, RptTitle, place.left, place.top, place.width, place.height));
  Checked(job, Engine().PEShowPrintControls(job, true));
}

/// Lets all tables of a job be read from the main file.
void LocateTables(int job, int tables) {
  print::PETableLocation location;
  location.Location = DataFile;
  for (int n = 0; n < tables; ++n) Checked(job, Engine().PESetNthTableLocation(job, n, location));
}

void LocateSubreport(int job, int section, int n) {
  const int subreport = Engine().PEGetNthSubreportInSection(job, section, n);
  print::PESubreportInfo info;
  if (!Checked(job, Engine().PEGetSubreportInfo(job, subreport, &info))) return;
  const int inner = Engine().PEOpenSubreport(job, info.name);
  if (!Checked(job, inner != 0)) return;
  const int tables = Engine().PEGetNTables(inner);
  if (Checked(inner, tables != -1)) LocateTables(inner, tables);
}

/// "'Inventory Listing' could not …", in a plain box.
void ReportRefusal(const char* what) { screen::MessageBox("'" + RptTitle + "' could not " + what); }

void BreakAfterGroups(int job) {
  const int groups = Engine().PEGetNGroups(job);
  for (int n = 0; n < groups; ++n) {
    const int section = print::kGroupFooterSection + n;
    print::PESectionOptions options;
    options.visible = 0;
    if (!Engine().PEGetSectionFormat(job, section, &options)) {
      ShowEngineError(job);
      ReportRefusal("get page break option.");
    }
    if (options.visible == 0) continue;
    options.newPageAfter = 1;
    if (!Engine().PESetSectionFormat(job, section, options)) {
      ShowEngineError(job);
      ReportRefusal("set page break option.");
    }
  }
}

void HideDetails(int job) {
  print::PESectionOptions options;
  if (!Engine().PEGetSectionFormat(job, print::kDetailSection, &options))
    ReportRefusal("get summary only option.");
  options.visible = 0;
  if (!Engine().PESetSectionFormat(job, print::kDetailSection, options))
    ReportRefusal("set summary only option.");
}

}  // namespace

std::string FormulaText(const std::string& text) { return '"' + text + '"'; }

bool SelectOutputPrinter(int job, ReportOptions& options) {
  CrystalPrintersClass& printers = CrystalPrinters();
  printers.ParentHandle = options.parent;
  if (!printers.SetupPrinter(kPrinterFlags, options.printer))
    screen::MessageBox("Default or Previously Chosen Printer Will Be Used.", screen::Icon::None,
                       screen::Buttons::Ok, "Cancelled");
  if (!printers.SelPrt(job)) return false;
  print::PEPrintOptions print;
  print.startPageN = options.printer.FromPage;
  print.stopPageN = options.printer.ToPage;
  print.nReportCopies = options.printer.Copies;
  print.collate = options.printer.Collate;
  Checked(job, Engine().PESetPrintOptions(job, print));
  return true;
}

bool SetOutputAndFormulas(int job, ReportOptions& options) {
  switch (options.output) {
    case ReportOutput::Screen:
      SetWindow(job, options.window);
      break;
    case ReportOutput::Printer:
      if (!SelectOutputPrinter(job, options)) return false;
      Checked(job, Engine().PEOutputToPrinter(job, 1));
      break;
    case ReportOutput::Mail:
      if (!SetMail(job)) return true;
      break;
    case ReportOutput::None:
      screen::MessageBox("Invalid Option Box checked.");
      break;
  }
  for (std::size_t i = 0; i < options.titles.size(); ++i)
    if (!options.titles[i].empty()) SetText(job, "RptTitle" + std::to_string(i + 1), options.titles[i]);
  SetText(job, "RptGenedBy", CurrentUserName);
  for (std::size_t i = 0; i < options.aux.size(); ++i)
    if (!options.aux[i].empty()) SetText(job, "RptAux" + std::to_string(i + 1), options.aux[i]);

  const int tables = Engine().PEGetNTables(job);
  Checked(job, tables != -1);
  const int sections = Engine().PEGetNSections(job);
  Checked(job, sections != -1);
  LocateTables(job, tables);
  for (int n = 0; n < sections; ++n) {
    const int section = Engine().PEGetSectionCode(job, n);
    const int subreports = Engine().PEGetNSubreportsInSection(job, section);
    for (int inner = 0; inner < subreports; ++inner) LocateSubreport(job, section, inner);
  }
  return true;
}

void ApplySortFields(int job) {
  // A list with a "." can only come from a stored definition.
  if (RptQueryID == 0 && RptSort.find('.') != std::string::npos) return;
  constexpr std::size_t kAscending = 11;   // " ASCENDING" and the brace behind it
  constexpr std::size_t kDescending = 12;  // " DESCENDING" and the brace behind it
  std::string rest = RptSort;
  for (int counter = 0; !rest.empty(); ++counter) {
    const std::size_t comma = rest.find(',');
    std::string field = rt::Trim(rest.substr(0, comma));
    rest = comma == std::string::npos ? std::string() : rest.substr(comma + 1);
    if (RptQueryID != 0)
      field = "{" + (field.empty() ? field : field.substr(1)) + "}";
    else
      field = "{" + StripBrackets(RptPrimaryTable) + "." + StripBrackets(field) + "}";
    int direction = 1;
    if (field.find(" ASCENDING") != std::string::npos) {
      field.resize(field.size() - kAscending);
    } else if (field.find(" DESCENDING") != std::string::npos) {
      field.resize(field.size() - kDescending);
      direction = 0;
    }
    Checked(job, Engine().PESetNthSortField(job, counter, Ended(field), direction));
  }
}

void ApplySectionOptions(int job, const ReportOptions& options) {
  if (options.sectionPageBreak) BreakAfterGroups(job);
  if (options.summaryOnly) HideDetails(job);
}

}  // namespace dw
