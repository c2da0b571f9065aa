// Reports on the console: the same run as that of the windows, with files as its destination.
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

#include "data/BrackenfelGlobals.h"
#include "data/GenericADO.h"
#include "data/GenericDAO.h"
#include "data/GenericTools.h"
#include "platform/print/PrintError.h"
#include "platform/print/definition/DefinitionReader.h"
#include "platform/print/job/Destinations.h"
#include "platform/print/output/Outputs.h"
#include "platform/runtime/Clock.h"
#include "reports/DWGlobals.h"
#include "reports/DateRange.h"
#include "reports/EntryForm.h"
#include "reports/PrintEngineCalls.h"
#include "reports/ReportRun.h"
#include "reports/ReportTable.h"
#include "reports/SelectAndSort.h"
#include "tools/dwadmin/Commands.h"
#include "tools/dwadmin/Output.h"

namespace dw {
namespace {

constexpr auto kLook = std::chrono::milliseconds(10);

/// In place of a window: keeps the run until its pages are written.
class PageKeeper : public print::Viewer {
 public:
  std::uintptr_t Open(std::shared_ptr<print::RunningReport> report, const std::string&, int, int, int,
                      int) override {
    report_ = std::move(report);
    open_ = true;
    return 1;
  }
  bool IsOpen(std::uintptr_t) override { return open_; }
  void Close(std::uintptr_t) override { open_ = false; }
  const std::shared_ptr<print::RunningReport>& Report() const { return report_; }

 private:
  std::shared_ptr<print::RunningReport> report_;
  bool open_ = false;
};

/// Where the pages go to.
struct Target {
  std::string path;
  print::OutputFormat format = print::OutputFormat::Text;
};

Target TargetOf(const ReportRequest& request) {
  Target target{request.out.empty() ? "-" : request.out, print::OutputFormat::Text};
  if (!request.format.empty()) {
    // But for one, the names of formats are endings.
    target.format = *print::FormatOfEnding("pages." + (request.format == "text" ? "txt" : request.format));
  } else if (target.path != "-") {
    const auto format = print::FormatOfEnding(target.path);
    if (!format)
      throw NotDone("The ending of '" + target.path +
                    "' names no format. Use .pdf, .rtf, .xlsx, .csv, .html or .txt, or --format.");
    target.format = *format;
  }
  return target;
}

rt::DateTime DateOf(const std::string& typed, const char* option) {
  const auto date = rt::ParseDate(typed);
  if (!date) throw NotDone(std::string("The date '") + typed + "' of " + option + " is not a valid date.");
  return *date;
}

std::string Dates(const ReportEntry& report, const ReportRequest& request) {
  const DateRangeReport& range = DateRangeOf(report.dateForm);
  const rt::DateTime from = request.from.empty() ? DefaultStart(range) : DateOf(request.from, "--from");
  const rt::DateTime to = request.to.empty() ? rt::Today() : DateOf(request.to, "--to");
  return DateRangeSelection(range, from, to, request.asset);
}

/// The definition with this name for the report. Throws NotDone if there is none, or more than one.
std::int32_t DefinitionCalled(const std::string& name, const ReportEntry& report) {
  RequireFile("DW_SANDS.MDB");
  AdoConnectionPtr connection;
  if (!AdoOpenConnection(connection, SandsConnect, false)) throw NotDone();
  AdoRecordsetPtr rows = AdoOpenRecordset(
      connection, "SELECT [ID] FROM [Select and Sort Queries] WHERE [Description] = '" + QuoteSQL(name) +
                      "' AND [Primary Table] = '" + QuoteSQL(report.primaryTable) + "'");
  if (!rows) throw NotDone();
  const std::int64_t count = rows->RecordCount();
  if (count == 0)
    throw NotDone("There is no select and sort definition '" + name + "' for report " +
                  std::string(report.number) + ".");
  if (count > 1)
    throw NotDone(std::to_string(count) + " select and sort definitions for report " +
                  std::string(report.number) + " are called '" + name + "'.");
  const std::int32_t id = rows->Get("ID").AsLong();
  CloseObject(rows);
  CloseObject(connection);
  return id;
}

/// Joins the dates of a report and a stored selection.
std::string Both(const std::string& dates, const std::string& selection) {
  if (dates.empty() || selection.empty()) return dates + selection;
  return "(" + dates + ") AND (" + selection + ")";
}

void SetLaunch(const ReportEntry& report, const ReportRequest& request, ReportOptions& options) {
  const bool dated = report.route == ReportRoute::DateRange;
  if (!dated && !(request.from + request.to).empty())
    throw NotDone("Report " + std::string(report.number) + " has no dates.");
  if (report.number != "006" && !request.asset.empty())
    throw NotDone("Only report 006 can be made for one asset.");
  RptQueryID = 0;
  if (report.route == ReportRoute::EntryForm) {
    if (!PrepareEntryForm()) throw NotDone();
  } else {
    SetReportGlobals(report, dated ? Dates(report, request) : std::string());
  }
  if (request.select.empty()) return;
  const std::string own = RptSelection;
  if (!UseDefinition(DefinitionCalled(request.select, report), RptPrimaryTable)) throw NotDone();
  RptSelection = Both(own, RptSelection);
  options.titles[2] = request.select;
}

/// Lets the engine run the report and writes its pages.
class ConsoleRun {
 public:
  ConsoleRun(Target target, const ReportRequest& request) : target_(std::move(target)) {
    options_.summaryOnly = request.summary;
    options_.a4 = request.paper.empty() ? ReportsOnA4() : request.paper == "a4";
    options_.window = {0, 0, 1, 1};
    options_.whilePreviewed = [this] { return Look(); };
    print::InstallViewer(keeper_);
    InstallPrintCalls(PrintEngineCalls());
  }
  ~ConsoleRun() {
    InstallPrintCalls(nullptr);
    print::InstallViewer(nullptr);
  }
  ConsoleRun(const ConsoleRun&) = delete;
  ConsoleRun& operator=(const ConsoleRun&) = delete;

  ReportOptions& Options() { return options_; }
  int Go() {
    WatchSignals();
    options_.titles[0] = RptTitle;
    if (!Engine().PEOpenEngine()) throw NotDone("Crystal Reports print engine is not available.");
    RunReport(options_);
    Engine().PECloseEngine();
    if (failure_) std::rethrow_exception(failure_);
    return written_ ? 0 : 1;
  }

 private:
  /// Called while the run goes on; false once its pages are written or it has failed.
  bool Look() {
    try {
      const auto& report = keeper_->Report();
      StopIfAsked();
      if (const std::string failure = report->Failure(); !failure.empty()) throw NotDone(failure);
      const int pages = report->Pages().PageCount();
      if (!report->Pages().Finished()) {
        if (pages > 0 && pages % kPagesBetween == 0) progress_.Stage(std::to_string(pages) + " pages");
        std::this_thread::sleep_for(kLook);
        return true;
      }
      if (const std::string warnings = report->Warnings(); !warnings.empty()) {
        Progress::BreakLine();
        std::cerr << warnings << std::endl;
      }
      written_ = print::WriteOutput(report->Pages(), target_.format, target_.path, {}, [](int, int) {
        StopIfAsked();
        return true;
      });
      if (written_ && target_.path != "-") {
        Progress::BreakLine();
        std::cerr << pages << (pages == 1 ? " page" : " pages") << " written to " << target_.path
                  << std::endl;
      }
    } catch (...) {
      // The engine's call comes back first.
      failure_ = std::current_exception();
      if (keeper_->Report()) keeper_->Report()->Cancel();
    }
    return false;
  }

  static constexpr int kPagesBetween = 100;
  Target target_;
  ReportOptions options_;
  std::shared_ptr<PageKeeper> keeper_ = std::make_shared<PageKeeper>();
  Progress progress_;
  std::exception_ptr failure_;
  bool written_ = false;
};

std::string ParametersOf(const ReportEntry& report) {
  if (report.route != ReportRoute::DateRange) return {};
  return report.number == "006" ? "--from --to --asset" : "--from --to";
}

}  // namespace

int ListReports(Format format) {
  ResultTable table{{"Number", "Title", "Options", "Primary Table"}, {}};
  for (const ReportEntry& report : ReportTable())
    table.rows.push_back({std::string(report.number), std::string(report.title), ParametersOf(report),
                          std::string(report.primaryTable)});
  if (format == Format::Json) {
    table.WriteJson(std::cout);
    std::cout << '\n';
  } else {
    table.WriteText(std::cout);
  }
  return 0;
}

int CheckReport(const std::string& definitionFile) {
  if (!FileExists(definitionFile)) throw NotDone("There is no file '" + definitionFile + "'.");
  const auto faults = print::CheckDefinition(definitionFile, FileExists(DataFile) ? DataFile : std::string());
  for (const print::DefinitionFault& fault : faults) std::cout << fault.Shown() << '\n';
  if (faults.empty()) std::cerr << "No faults." << std::endl;
  return faults.empty() ? 0 : 1;
}

int MakeReport(const ReportRequest& request) {
  const ReportEntry* report = FindReport(request.number);
  if (!report) throw NotDone("There is no report '" + request.number + "'. See dwadmin report list.");
  const Target target = TargetOf(request);
  RequireFile("DW.MDB");
  const char* login = std::getenv("USER");
  CurrentUserName = !request.user.empty() ? request.user : login ? login : "";
  ConsoleRun run(target, request);
  SetLaunch(*report, request, run.Options());
  return run.Go();
}

}  // namespace dw
