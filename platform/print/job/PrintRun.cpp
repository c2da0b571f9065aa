// Starting a job: its rows are read, its pages made and handed over.
#include <stdlib.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <regex>
#include <system_error>

#include "platform/print/job/PrintJob.h"
#include "platform/runtime/Clock.h"
#include "platform/runtime/Letters.h"

namespace print {
namespace {

namespace files = std::filesystem;

/// A definition that has a formula of this name shows there which dates the selection asks for.
constexpr auto kSelectionDates = "SelectionDates";
constexpr auto kMailPrefix = "drovewright-mail-";

/// The one file that all tables of the job and of its subreports lie in.
std::string DataFile(const PrintJob& job) {
  std::string file;
  std::string table;
  const auto take = [&](const std::string& location, const std::string& what) {
    if (location.empty()) throw PrintError("The report " + job.file + " has no location for " + what + ".");
    if (!file.empty() && location != file)
      throw PrintError("The report " + job.file + " reads " + table + " from " + file + " and " + what +
                       " from " + location + ", but one report reads one file.");
    file = location;
    table = what;
  };
  for (std::size_t i = 0; i < job.locations.size(); ++i)
    take(job.locations[i], "the table \"" + job.report->tables[i].name + "\"");
  for (const auto& [name, location] : job.subreportLocations)
    take(location, "the subreport \"" + name + "\"");
  return file;
}

BandDefinition& BandOf(ReportDefinition& report, int code) {
  const auto group = [&](int first) -> GroupDefinition& {
    return report.groups.at(static_cast<std::size_t>(code - first));
  };
  if (code == kReportHeaderSection) return report.reportHeader;
  if (code == kPageHeaderSection) return report.pageHeader;
  if (code == kPageFooterSection) return report.pageFooter;
  if (code == kReportFooterSection) return report.reportFooter;
  if (code == kDetailSection) return report.detail;
  return code >= kGroupFooterSection ? group(kGroupFooterSection).footer : group(kGroupHeaderSection).header;
}

/// A text formula without its quotes; empty for other formulas.
std::string PlainTitle(const FormulaTexts& formulas) {
  for (const auto& [name, text] : formulas) {
    if (!rt::EqualNoCase(name, "RptTitle1") || text.size() < 2 || text.front() != '"') continue;
    std::string title;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
      title += text[i];
      if (text[i] == '"') ++i;
    }
    return title;
  }
  return {};
}

/// "1/1/2026 to 6/30/2026": the dates of a selection that asks for a range of one field, in the form that
/// date ranges are written in: {Field} >= Date(y,m,d) and {Field} <= Date(y,m,d). Empty if there is no such
/// range.
std::string DatesOf(const std::string& selection) {
  static const std::regex limit(R"((\{[^}]*\})\s*(>=|<=)\s*Date\s*\(\s*(\d+)\s*,\s*(\d+)\s*,\s*(\d+)\s*\))",
                                std::regex::icase);
  std::string field;
  std::string from;
  std::string to;
  for (std::sregex_iterator found(selection.begin(), selection.end(), limit), end; found != end; ++found) {
    const std::smatch& match = *found;
    std::string& side = match[2].str() == ">=" ? from : to;
    if (!side.empty() || (!field.empty() && !rt::EqualNoCase(field, match[1].str()))) return {};
    field = match[1].str();
    side = match[4].str() + "/" + match[5].str() + "/" + match[3].str();
  }
  if (from.empty() && to.empty()) return {};
  if (to.empty()) return "From " + from;
  return from.empty() ? "Up to " + to : "From " + from + " to " + to;
}

/// The formulas of the run: those that were set, and what the definition asks to be told of the selection.
FormulaTexts FormulasOf(const PrintJob& job) {
  FormulaTexts formulas = job.formulas;
  const std::string dates = DatesOf(job.selection);
  for (const auto& [name, formula] : job.report->formulas)
    if (rt::EqualNoCase(name, kSelectionDates) && !dates.empty())
      formulas.try_emplace(name, "'" + dates + "'");
  return formulas;
}

std::shared_ptr<ReportRun> MakeRun(const PrintJob& job) {
  const std::string dataFile = DataFile(job);
  std::vector<std::string> sortFields;
  for (const SortField& field : job.sort) sortFields.push_back(field.name);
  const auto read = ReadDefinition(job.file, dataFile, FormulasOf(job), sortFields);
  auto report = std::make_shared<ReportDefinition>(*read);
  LayoutOptions options;
  options.paper = CurrentPrintSettings().a4 ? Paper::A4 : Paper::Letter;
  options.user = CurrentPrintSettings().user;
  options.printTime = rt::Now();
  options.title = PlainTitle(job.formulas);
  if (options.title.empty()) options.title = report->name;
  options.newPageAfterGroup.resize(report->groups.size());
  for (const auto& [code, change] : job.sections) {
    BandDefinition& band = BandOf(*report, code);
    band.visible = change.visible;
    band.newPageAfter = change.newPageAfter;
    if (code == kDetailSection) options.hideDetails = !change.visible;
    if (code >= kGroupFooterSection && code < kPageFooterSection)
      options.newPageAfterGroup[static_cast<std::size_t>(code - kGroupFooterSection)] = change.newPageAfter;
  }
  std::vector<std::string> warnings;
  auto rows = ReadReportRows(
      *report, {dataFile, job.selection, job.sort}, [](std::int64_t) { return true; }, &warnings);
  if (!rows) throw PrintError("The report " + job.file + " was canceled.");
  return std::make_shared<ReportRun>(std::move(report), std::move(rows), std::move(options),
                                     std::move(warnings));
}

/// Only characters that every file system takes.
std::string FileNameOf(const std::string& title) {
  constexpr std::size_t kLongest = 80;
  std::string name;
  for (const char c : title.substr(0, kLongest)) {
    const bool odd = static_cast<unsigned char>(c) < ' ' || std::strchr("/\\:*?\"<>|%", c) != nullptr;
    name += odd ? '-' : c;
  }
  if (title.size() > kLongest) {
    // The cut may have gone through a character.
    while (!name.empty() && rt::IsContinuation(title[name.size()])) name.pop_back();
  }
  while (!name.empty() && (name.back() == ' ' || name.back() == '.')) name.pop_back();
  return name.empty() || name.front() == '.' || name.front() == '-' ? "Report" + name : name;
}

/// The mail program opens the file when it likes, so it must outlive the job: those of yesterday are removed.
void RemoveOldMail(const files::path& directory) {
  std::error_code error;
  const auto old = files::file_time_type::clock::now() - std::chrono::hours(24);
  for (files::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().filename().string().rfind(kMailPrefix, 0) != 0) continue;
    std::error_code ignored;
    const auto changed = files::last_write_time(entry->path(), ignored);
    if (!ignored && changed < old) files::remove_all(entry->path(), ignored);
  }
}

void Mail(const ReportRun& run) {
  const std::shared_ptr<Mailer>& mailer = CurrentMailer();
  if (!mailer) throw PrintError("This program has no way to a mail program.");
  const files::path temporary = files::temp_directory_path();
  RemoveOldMail(temporary);
  std::string directory = (temporary / (std::string(kMailPrefix) + "XXXXXX")).string();
  if (mkdtemp(directory.data()) == nullptr)
    throw PrintError("The temporary directory " + directory + " cannot be made: " + std::strerror(errno) +
                     ".");
  try {
    const std::string title = run.Pages().Facts().title;
    const std::string file = (files::path(directory) / (FileNameOf(title) + ".rtf")).string();
    WriteOutput(run.Pages(), OutputFormat::Rtf, file, {}, {});
    mailer->Send(file, title);
  } catch (...) {
    std::error_code ignored;
    files::remove_all(directory, ignored);
    throw;
  }
}

void Print(const PrintJob& job) {
  const PEPrintOptions& options = job.printOptions;
  const int pages = job.run->Pages().PageCount();
  const PageRange range{std::max(1, options.startPageN), options.stopPageN};
  if (range.first > pages)
    throw PrintError("The printout begins with page " + std::to_string(range.first) +
                     ", but the report has " + std::to_string(pages) + (pages == 1 ? " page." : " pages."));
  PrintTicket ticket;
  ticket.printer = job.printer;
  ticket.title = job.run->Pages().Facts().title;
  ticket.copies = std::max(1, options.nReportCopies);
  ticket.collate = options.collate;
  ticket.paper = CurrentPrintSettings().a4 ? "A4" : "Letter";
  ticket.pdfFile = job.pdfFile;
  PrintPages(job.run->Pages(), range, ticket, {});
}

}  // namespace

void StartRun(PrintJob& job) {
  if (job.parent != 0) throw PrintError("The subreport \"" + job.subreport + "\" runs with its report only.");
  job.run = MakeRun(job);
  const bool toWindow = job.destination == PrintJob::Destination::Window ||
                        (job.destination == PrintJob::Destination::None && CurrentViewer());
  if (toWindow) {
    const std::shared_ptr<Viewer>& viewer = CurrentViewer();
    if (!viewer) throw PrintError("This program cannot show a report in a window.");
    job.run->WaitForFirstPage();
    if (job.run->Pages().PageCount() == 0 && !job.run->Failure().empty())
      throw PrintError(job.run->Failure());
    const std::string title = job.windowTitle.empty() ? job.run->Pages().Facts().title : job.windowTitle;
    job.window = viewer->Open(job.run, title, job.left, job.top, job.width, job.height);
    return;
  }
  job.run->WaitForEnd();
  const std::string failure = job.run->Failure();
  if (!failure.empty()) throw PrintError(failure);
  if (job.destination == PrintJob::Destination::Mail) {
    Mail(*job.run);
  } else {
    Print(job);
  }
}

}  // namespace print
