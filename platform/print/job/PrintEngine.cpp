#include "platform/print/job/PrintEngine.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/print/job/PrintJob.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

void CheckSize(std::uint16_t given, std::uint16_t expected, const char* structure) {
  if (given == expected) return;
  throw PrintError(std::string(structure) + " has the StructSize " + std::to_string(given) + " instead of " +
                   std::to_string(expected) + ".");
}

void CheckNumber(int n, std::size_t count, const char* what) {
  if (n >= 0 && static_cast<std::size_t>(n) < count) return;
  throw PrintError("There is no " + std::string(what) + " " + std::to_string(n) + "; the report has " +
                   std::to_string(count) + ".");
}

/// Refuses a definition file that cannot be read, or that another program is just writing.
void CheckReadable(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0)
    throw PrintError("The report definition " + path + " cannot be opened: " + std::strerror(errno) + ".");
  struct flock range = {};
  range.l_type = F_RDLCK;
  range.l_whence = SEEK_SET;
  const bool ranges = fcntl(file, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
  const bool whole = flock(file, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(file);
  if (ranges || whole)
    throw PrintError("The report definition " + path +
                     " is held by another program. Try again when it is closed.");
}

struct Section {
  int code = 0;
  const BandDefinition* band = nullptr;
};

std::vector<Section> SectionsOf(const ReportDefinition& report) {
  std::vector<Section> sections{{kReportHeaderSection, &report.reportHeader},
                                {kPageHeaderSection, &report.pageHeader}};
  const int groups = static_cast<int>(report.groups.size());
  for (int i = 0; i < groups; ++i)
    sections.push_back({kGroupHeaderSection + i, &report.groups[static_cast<std::size_t>(i)].header});
  sections.push_back({kDetailSection, &report.detail});
  for (int i = 0; i < groups; ++i)
    sections.push_back({kGroupFooterSection + i, &report.groups[static_cast<std::size_t>(i)].footer});
  sections.push_back({kPageFooterSection, &report.pageFooter});
  sections.push_back({kReportFooterSection, &report.reportFooter});
  return sections;
}

const BandDefinition& SectionBand(const PrintJob& job, int code) {
  for (const Section& section : SectionsOf(*job.report))
    if (section.code == code) return *section.band;
  throw PrintError("The report " + job.file + " has no section " + std::to_string(code) + ".");
}

std::vector<std::string> SubreportsIn(const BandDefinition& band) {
  std::vector<std::string> names;
  for (const ItemDefinition& item : band.items)
    if (item.kind == ItemDefinition::Kind::Subreport) names.push_back(item.subreport);
  return names;
}

/// The place of a subreport by its name.
std::size_t SubreportPlace(const PrintJob& job, const std::string& name) {
  const auto& all = job.report->subreports;
  for (std::size_t i = 0; i < all.size(); ++i)
    if (rt::EqualNoCase(all[i].name, name)) return i;
  throw PrintError("The report " + job.file + " has no subreport \"" + name + "\".");
}

/// What a person typed between quotes becomes a text of the formula language as it stands.
std::string LiteralAsTyped(const std::string& text) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return text;
  std::string literal = "\"";
  for (const char c : text.substr(1, text.size() - 2)) {
    literal += c;
    if (c == '"') literal += '"';
  }
  return literal + '"';
}

const std::string& DataFileOf(const PrintJob& job) {
  static const std::string none;
  return job.locations.empty() ? none : job.locations.front();
}

}  // namespace

int PEOpenPrintJob(const std::string& reportFile) {
  int number = 0;
  OnEngine([&] {
    auto job = std::make_unique<PrintJob>();
    job->file = ArgumentText(reportFile);
    CheckReadable(job->file);
    job->report = ReadDefinition(job->file);
    job->locations.resize(job->report->tables.size());
    number = AddJob(std::move(job));
  });
  return number;
}

bool PEDiscardSavedData(int job) {
  // Definitions hold no rows; each run reads them anew.
  return OnJob(job, [](PrintJob& print) { print.run.reset(); });
}

bool PESetFormula(int job, const std::string& name, const std::string& text) {
  return OnJob(job, [&](PrintJob& print) {
    FormulaTexts formulas = print.formulas;
    const std::string wanted = ArgumentText(name);
    const auto& all = print.report->formulas;
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const auto& formula) { return rt::EqualNoCase(formula.first, wanted); });
    if (found == all.end())
      throw PrintError("The report " + print.file + " has no formula \"" + wanted + "\".");
    formulas[found->first] = LiteralAsTyped(text.substr(0, text.find('\0')));
    ReadDefinition(print.file, "", formulas);
    print.formulas = std::move(formulas);
  });
}

bool PESetSelectionFormula(int job, const std::string& text) {
  return OnJob(job, [&](PrintJob& print) {
    const std::string selection = ArgumentText(text);
    // As long as no table has a place there is nothing to hold the selection against.
    if (!selection.empty() && !DataFileOf(print).empty()) {
      const std::string fault = SelectionFault(*print.report, DataFileOf(print), selection);
      if (!fault.empty()) throw PrintError(fault);
    }
    print.selection = selection;
  });
}

bool PEGetSelectionFormula(int job, int* textHandle, int* textLength) {
  return OnJob(job, [&](PrintJob& print) {
    *textLength = static_cast<int>(print.selection.size());
    *textHandle = KeepText(print.selection);
  });
}

bool PESetNthSortField(int job, int n, const std::string& name, int direction) {
  return OnJob(job, [&](PrintJob& print) {
    if (n < 0 || static_cast<std::size_t>(n) > print.sort.size())
      throw PrintError("Sort field " + std::to_string(n) + " is set before those in front of it.");
    if (direction != 0 && direction != 1)
      throw PrintError("The direction of a sort is 1 or 0, not " + std::to_string(direction) + ".");
    const std::string field = ArgumentText(name);
    if (field.size() < 3 || field.front() != '{' || field.back() != '}')
      throw PrintError("The sort field \"" + field + "\" does not have the form {Table.Field}.");
    ReadDefinition(print.file, DataFileOf(print), print.formulas, {field});
    if (static_cast<std::size_t>(n) == print.sort.size()) print.sort.emplace_back();
    print.sort[static_cast<std::size_t>(n)] = {field, direction == 0};
  });
}

int PEGetNTables(int job) {
  int count = -1;
  OnJob(job, [&](PrintJob& print) { count = static_cast<int>(print.report->tables.size()); });
  return count;
}

bool PEGetNthTableLocation(int job, int n, PETableLocation* location) {
  return OnJob(job, [&](PrintJob& print) {
    CheckSize(location->StructSize, PETableLocation::kSize, "PETableLocation");
    CheckNumber(n, print.report->tables.size(), "table");
    const auto place = static_cast<std::size_t>(n);
    const std::string& set = print.locations[place];
    std::string path = (set.empty() ? print.file : set) + "/" + print.report->tables[place].name;
    // Where the path is too long for the structure, its end counts: the name of the table.
    constexpr std::size_t kLongest = PETableLocation::kLocationSize - 1;
    if (path.size() > kLongest) {
      path.erase(0, path.size() - kLongest);
      while (!path.empty() && rt::IsContinuation(path.front())) path.erase(0, 1);
    }
    location->Location = path;
  });
}

bool PESetNthTableLocation(int job, int n, const PETableLocation& location) {
  return OnJob(job, [&](PrintJob& print) {
    CheckSize(location.StructSize, PETableLocation::kSize, "PETableLocation");
    CheckNumber(n, print.report->tables.size(), "table");
    const std::string path = ArgumentText(location.Location);
    const std::string& table = print.report->tables[static_cast<std::size_t>(n)].name;
    if (path.empty()) throw PrintError("The location of the table \"" + table + "\" is empty.");
    if (path.size() >= PETableLocation::kLocationSize)
      throw PrintError("The location of the table \"" + table + "\" is longer than 255 characters: " + path);
    print.locations[static_cast<std::size_t>(n)] = path;
    if (print.parent == 0) return;
    OnJob(print.parent, [&](PrintJob& parent) { parent.subreportLocations[print.subreport] = path; });
  });
}

int PEGetNSections(int job) {
  int count = -1;
  OnJob(job, [&](PrintJob& print) { count = static_cast<int>(SectionsOf(*print.report).size()); });
  return count;
}

int PEGetSectionCode(int job, int n) {
  int code = 0;
  OnJob(job, [&](PrintJob& print) {
    const auto sections = SectionsOf(*print.report);
    CheckNumber(n, sections.size(), "section");
    code = sections[static_cast<std::size_t>(n)].code;
  });
  return code;
}

int PEGetNGroups(int job) {
  int count = -1;
  OnJob(job, [&](PrintJob& print) { count = static_cast<int>(print.report->groups.size()); });
  return count;
}

bool PEGetSectionFormat(int job, int sectionCode, PESectionOptions* options) {
  return OnJob(job, [&](PrintJob& print) {
    CheckSize(options->StructSize, PESectionOptions::kSize, "PESectionOptions");
    const BandDefinition& band = SectionBand(print, sectionCode);
    const auto changed = print.sections.find(sectionCode);
    const bool set = changed != print.sections.end();
    options->visible = (set ? changed->second.visible : band.visible) ? 1 : 0;
    options->newPageAfter = (set ? changed->second.newPageAfter : band.newPageAfter) ? 1 : 0;
  });
}

bool PESetSectionFormat(int job, int sectionCode, const PESectionOptions& options) {
  return OnJob(job, [&](PrintJob& print) {
    CheckSize(options.StructSize, PESectionOptions::kSize, "PESectionOptions");
    SectionBand(print, sectionCode);
    print.sections[sectionCode] = {options.visible != 0, options.newPageAfter != 0};
  });
}

int PEGetNSubreportsInSection(int job, int sectionCode) {
  int count = -1;
  OnJob(job, [&](PrintJob& print) {
    count = static_cast<int>(SubreportsIn(SectionBand(print, sectionCode)).size());
  });
  return count;
}

int PEGetNthSubreportInSection(int job, int sectionCode, int n) {
  int handle = 0;
  OnJob(job, [&](PrintJob& print) {
    const auto names = SubreportsIn(SectionBand(print, sectionCode));
    CheckNumber(n, names.size(), "subreport");
    handle = static_cast<int>(SubreportPlace(print, names[static_cast<std::size_t>(n)])) + 1;
  });
  return handle;
}

bool PEGetSubreportInfo(int job, int subreport, PESubreportInfo* info) {
  return OnJob(job, [&](PrintJob& print) {
    CheckSize(info->StructSize, PESubreportInfo::kSize, "PESubreportInfo");
    CheckNumber(subreport - 1, print.report->subreports.size(), "subreport");
    info->name = print.report->subreports[static_cast<std::size_t>(subreport - 1)].name;
  });
}

int PEOpenSubreport(int job, const std::string& name) {
  int number = 0;
  OnJob(job, [&](PrintJob& print) {
    const SubreportDefinition& inner = print.report->subreports[SubreportPlace(print, ArgumentText(name))];
    auto opened = std::make_unique<PrintJob>();
    opened->parent = print.number;
    opened->subreport = inner.name;
    opened->file = print.file;
    opened->report = inner.report;
    opened->locations.resize(inner.report->tables.size());
    number = AddJob(std::move(opened));
  });
  return number;
}

bool PESetWindowOptions(int job, const PEWindowOptions& options) {
  return OnJob(job,
               [&](PrintJob&) { CheckSize(options.StructSize, PEWindowOptions::kSize, "PEWindowOptions"); });
}

bool PEOutputToWindow(int job, const std::string& title, int left, int top, int width, int height) {
  return OnJob(job, [&](PrintJob& print) {
    if (!CurrentViewer()) throw PrintError("This program cannot show a report in a window.");
    print.destination = PrintJob::Destination::Window;
    print.windowTitle = ArgumentText(title);
    print.left = left;
    print.top = top;
    print.width = width;
    print.height = height;
  });
}

bool PEOutputToPrinter(int job, int copies) {
  return OnJob(job, [&](PrintJob& print) {
    if (copies < 1)
      throw PrintError("A report is printed at least once, not " + std::to_string(copies) + " times.");
    print.destination = PrintJob::Destination::Printer;
    // Copies that the print options asked for already stand.
    print.printOptions.nReportCopies = std::max(print.printOptions.nReportCopies, copies);
  });
}

bool PEExportTo(int job, const PEExportOptions& options) {
  return OnJob(job, [&](PrintJob& print) {
    CheckSize(options.StructSize, PEExportOptions::kSize, "PEExportOptions");
    const std::string format = ArgumentText(options.formatDLLName);
    const std::string destination = ArgumentText(options.destinationDLLName);
    if (!rt::EqualNoCase(format, "crxf_rtf"))
      throw PrintError("There is no export format \"" + format + "\".");
    if (!rt::EqualNoCase(destination, "u2dmapi"))
      throw PrintError("There is no export destination \"" + destination + "\".");
    print.destination = PrintJob::Destination::Mail;
  });
}

bool PESetPrintOptions(int job, const PEPrintOptions& options) {
  return OnJob(job, [&](PrintJob& print) {
    CheckSize(options.StructSize, PEPrintOptions::kSize, "PEPrintOptions");
    if (options.startPageN < 0 || options.stopPageN < 0)
      throw PrintError("Page numbers of a printout are not negative.");
    if (options.stopPageN != 0 && options.stopPageN < options.startPageN)
      throw PrintError("The last page of the printout, " + std::to_string(options.stopPageN) +
                       ", comes before its first, " + std::to_string(options.startPageN) + ".");
    print.printOptions = options;
    print.printOptions.nReportCopies = std::max(1, options.nReportCopies);
  });
}

bool PESelectPrinter(int job, const std::string& printer) {
  return OnJob(job, [&](PrintJob& print) { print.printer = ArgumentText(printer); });
}

bool PESelectPdfFile(int job, const std::string& path) {
  return OnJob(job, [&](PrintJob& print) { print.pdfFile = path.substr(0, path.find('\0')); });
}

bool PEShowPrintControls(int job, bool show) {
  return OnJob(job, [&](PrintJob& print) { print.controlsShown = show; });
}

bool PEPrintControlsShowing(int job, bool* showing) {
  return OnJob(job, [&](PrintJob& print) {
    const std::shared_ptr<Viewer>& viewer = CurrentViewer();
    *showing = print.controlsShown && print.window != 0 && viewer && viewer->IsOpen(print.window);
  });
}

std::uintptr_t PEGetWindowHandle(int job) {
  std::uintptr_t window = 0;
  OnJob(job, [&](PrintJob& print) {
    const std::shared_ptr<Viewer>& viewer = CurrentViewer();
    if (print.window != 0 && viewer && viewer->IsOpen(print.window)) window = print.window;
  });
  return window;
}

bool PEStartPrintJob(int job, bool) {
  return OnJob(job, [](PrintJob& print) { StartRun(print); });
}

}  // namespace print
