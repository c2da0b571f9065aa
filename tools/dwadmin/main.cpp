// dwadmin: the system's work from a console or a script.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>

#include "data/Application.h"
#include "data/BrackenfelGlobals.h"
#include "data/Version.h"
#include "platform/ado/Ado.h"
#include "platform/runtime/Error.h"
#include "platform/store/StoreError.h"
#include "platform/system/Machine.h"
#include "tools/dwadmin/Commands.h"

namespace {

constexpr int kDone = 0;
constexpr int kNotDone = 1;
constexpr int kEnded = 2;
constexpr int kUsage = 3;

constexpr const char* kFooter =
    "\nCommands that change data (post, unpost, compact) sign on as the program does: the user and the "
    "workstation\n"
    "must be on file and have access. The password is asked for at a terminal and read from the first line "
    "of\n"
    "standard input otherwise. Each leaves a row in the access log, which is closed when the command ends.\n"
    "\nMessages and progress go to standard error, results to standard output. If a question comes up and\n"
    "nobody is there to answer, the command takes the careful answer. SIGINT and SIGTERM end a posting run\n"
    "between two transactions.\n"
    "\nExit codes: 0 the work was done; 1 it was not, or not all of it, or check found differences; 2 the "
    "system\n"
    "ended the run; 3 the command line was not understood; 4 post came to its end, but transactions stay "
    "unposted.\n";

/// What the command line asks for.
struct Arguments {
  std::string data;
  bool json = false;
  bool csv = false;
  bool clear = false;
  bool all = false;
  std::int32_t transaction = 0;
  std::string asset;
  std::string source;
  dw::SignOnRequest signOn;
  dw::SampleRequest sample;
  dw::DueRequest due;
  dw::ReportRequest report;
  std::string definition;
  dw::CostSpan by = dw::CostSpan::Life;

  dw::Format Form() const { return json ? dw::Format::Json : dw::Format::Text; }
};

using Work = std::function<int(const dw::CommandScreen&)>;

/// The commands with their options; parsing leaves the chosen one in `work`.
class CommandLine {
 public:
  CommandLine() {
    app_.set_help_flag();
    app_.set_help_all_flag("-h,--help", "Explain all commands and end");
    app_.set_version_flag("--version", std::string("dwadmin ") + dw::kVersionText);
    app_.require_subcommand(1);
    app_.footer(kFooter);
    AddMakers();
    AddChangers();
    AddViewers();
    AddReports();
  }
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// Throws CLI::ParseError.
  void Parse(int argc, char** argv) { app_.parse(argc, argv); }
  int Tell(const CLI::ParseError& error) const { return app_.exit(error); }
  const std::string& Data() const { return arguments_.data; }
  const Work& Chosen() const { return work_; }

 private:
  CLI::App* Add(const char* name, const char* description, const Work& work) {
    CLI::App* command = app_.add_subcommand(name, description);
    command
        ->add_option("--data", arguments_.data, "Directory of the data files (default: beside the program)")
        ->type_name("DIR");
    command->callback([this, work] { work_ = work; });
    return command;
  }

  CLI::App* AddChanger(const char* name, const char* description, const Work& work) {
    CLI::App* command = Add(name, description, work);
    command->add_option("--user", arguments_.signOn.user, "User name to sign on with")
        ->type_name("NAME")
        ->required();
    command
        ->add_option("--workstation", arguments_.signOn.workstation,
                     "Workstation name (default: the one that the settings keep for this machine)")
        ->type_name("NAME");
    return command;
  }

  CLI::App* AddViewer(const char* name, const char* description, const Work& work) {
    CLI::App* command = Add(name, description, work);
    command->add_flag("--json", arguments_.json, "Write the result as JSON");
    return command;
  }

  void AddMakers() {
    CLI::App* create = Add(
        "create",
        "Make a set of empty data files, with the user ADMIN, an administrator without a password, and one "
        "workstation. Existing files are never replaced.",
        [this](const auto&) { return dw::CreateFiles(dw::DataPath, arguments_.signOn.workstation); });
    create
        ->add_option("--workstation", arguments_.signOn.workstation,
                     "Name of the workstation (default: OFFICE)")
        ->type_name("NAME");

    CLI::App* sample =
        Add("sample", "Make a set of data files with a sample fleet. Existing files are never replaced.",
            [this](const auto&) { return dw::CreateSample(dw::DataPath, arguments_.sample); });
    constexpr int kMostAssets = 1000000;
    constexpr int kMostYears = 100;
    sample->add_option("--assets", arguments_.sample.assets, "Number of assets (default: 40)")
        ->type_name("N")
        ->check(CLI::Range(1, kMostAssets));
    sample->add_option("--years", arguments_.sample.years, "Years of history up to today (default: 2)")
        ->type_name("N")
        ->check(CLI::Range(1, kMostYears));
    sample->add_option("--seed", arguments_.sample.seed, "The same seed makes the same fleet (default: 1)")
        ->type_name("S");
  }

  void AddChangers() {
    CLI::App* post =
        AddChanger("post", "Post the transactions that wait into the cost tables.",
                   [this](const auto& s) { return dw::Post(arguments_.signOn, s, arguments_.clear); });
    post->add_flag("--clear", arguments_.clear,
                   "Empty the cost tables first and post every transaction again");

    CLI::App* unpost = AddChanger(
        "unpost", "Take one posted transaction out of the cost tables.",
        [this](const auto& s) { return dw::Unpost(arguments_.signOn, s, arguments_.transaction); });
    unpost->add_option("--transaction", arguments_.transaction, "Database ID of the transaction")
        ->type_name("ID")
        ->required();

    AddChanger("compact",
               "Rewrite each data file without the space of deleted records. Nobody may have it open.",
               [this](const auto& s) { return dw::Compact(arguments_.signOn, s); });
  }

  void AddViewers() {
    CLI::App* due =
        AddViewer("due", "Report the maintenance that falls due, for every asset in service or for one.",
                  [this](const auto&) { return dw::Due(arguments_.due, arguments_.Form()); });
    due->add_option("--by", arguments_.due.by, "Last day to look at, M/d/yyyy (default: today and 14 days)")
        ->type_name("DATE");
    due->add_option("--usage", arguments_.due.usage, "Miles to look ahead (default: 500)")->type_name("N");
    due->add_option("--asset", arguments_.due.asset, "One asset only; no log is written")->type_name("CODE");
    due->add_option("--log", arguments_.due.logDirectory,
                    "Directory for \"Maintenance Report.Log\" (default: beside the program)")
        ->type_name("DIR");

    CLI::App* costs = AddViewer("costs", "Show what assets have cost, as posted.", [this](const auto&) {
      return dw::Costs(arguments_.all ? "" : arguments_.asset, arguments_.by, arguments_.Form());
    });
    CLI::Option_group* which = costs->add_option_group("Assets");
    which->add_option("--asset", arguments_.asset, "One asset")->type_name("CODE");
    which->add_flag("--all", arguments_.all, "Every asset that has costs");
    which->require_option(1);
    const std::map<std::string, dw::CostSpan> spans{
        {"period", dw::CostSpan::Period}, {"year", dw::CostSpan::Year}, {"lifetime", dw::CostSpan::Life}};
    costs
        ->add_option("--by", arguments_.by,
                     "A row for each fiscal period, for each fiscal year or for the asset's "
                     "lifetime (default: lifetime)")
        ->type_name("period|year|lifetime")
        ->transform(CLI::Transformer(spans).description(""));

    AddViewer("who", "Show who has the data files open and which records they hold.",
              [this](const auto&) { return dw::Who(arguments_.Form()); });

    AddViewer("check",
              "Compare the data files with the catalogue and the cost tables with the posted transactions, "
              "and test "
              "the files' integrity.",
              [this](const auto&) { return dw::Check(arguments_.Form()); });

    CLI::App* table =
        AddViewer("export", "Write a table or a query as comma-separated values (RFC 4180) or as JSON.",
                  [this](const auto&) { return dw::Export(arguments_.source, arguments_.Form()); });
    table->add_option("source", arguments_.source, "Name of a table, or a SELECT of the system's dialect")
        ->type_name("TABLE|QUERY")
        ->required();
    table->add_flag("--csv", arguments_.csv, "Comma-separated values, as without it")->excludes("--json");
  }

  void AddReports() {
    CLI::App* report = AddViewer("report",
                                 "Make a report, list the reports (report list), or look for faults in a "
                                 "definition file (report check "
                                 "FILE.rpt).",
                                 [this](const auto&) { return Report(); });
    report->add_option("what", arguments_.report.number, "Number of the report, \"list\" or \"check\"")
        ->type_name("NUMBER|list|check")
        ->required();
    report->add_option("file", arguments_.definition, "Definition file to check")->type_name("FILE");
    report
        ->add_option("--from", arguments_.report.from,
                     "First day, M/d/yyyy, of reports with dates (default: as the program offers it)")
        ->type_name("DATE");
    report->add_option("--to", arguments_.report.to, "Last day (default: today)")->type_name("DATE");
    report->add_option("--asset", arguments_.report.asset, "One asset only; for report 006")
        ->type_name("CODE");
    report
        ->add_option("--select", arguments_.report.select,
                     "A stored select and sort definition of the report's table, in addition to the dates")
        ->type_name("NAME");
    report->add_flag("--summary", arguments_.report.summary, "Sums without the rows");
    report
        ->add_option("--paper", arguments_.report.paper,
                     "Paper (default: what the print dialog was last set to)")
        ->type_name("letter|a4")
        ->check(CLI::IsMember({"letter", "a4"}).description(""));
    report
        ->add_option(
            "--out", arguments_.report.out,
            "File for the pages, whose ending chooses the format: .pdf, .rtf, .xlsx, .csv, .html, .txt; "
            "- is standard output (default)")
        ->type_name("FILE");
    report
        ->add_option("--format", arguments_.report.format,
                     "Format, whatever the ending (default on standard output: text)")
        ->type_name("text|csv|html|pdf|rtf|xlsx")
        ->check(CLI::IsMember({"text", "csv", "html", "pdf", "rtf", "xlsx"}).description(""));
    report->add_option("--user", arguments_.report.user, "Name that the report shows (default: your login)")
        ->type_name("NAME");
  }

  int Report() {
    const std::string& what = arguments_.report.number;
    if (what == "list") return dw::ListReports(arguments_.Form());
    const bool check = what == "check";
    if (check == arguments_.definition.empty()) {
      std::cerr
          << (check ? "report check: name the definition file.\n"
                    : "report: only check takes a definition file; --out names the file for the pages.\n");
      return kUsage;
    }
    if (check) return dw::CheckReport(arguments_.definition);
    return dw::MakeReport(arguments_.report);
  }

  CLI::App app_{"dwadmin works with the data files of Drovewright from a console or a script.", "dwadmin"};
  Arguments arguments_;
  Work work_;
};

int NotDone(std::string text) {
  dw::Progress::BreakLine();
  // Lines of messages end in CR alone.
  std::replace(text.begin(), text.end(), '\r', '\n');
  if (!text.empty()) std::cerr << text << std::endl;
  return kNotDone;
}

int NotDone(int number, const char* text) {
  return NotDone("Error # " + std::to_string(number) + ": " + text);
}

/// Runs the command and turns whatever ends it into an exit code.
int Run(const Work& work) {
  const auto screen = std::make_shared<dw::CommandScreen>();
  screen::Install(screen);
  dw::InstallConsoleLocator();
  try {
    const int code = work(*screen);
    std::cout.flush();
    if (!std::cout) return NotDone("The result could not be written.");
    // If a failure was reported and the command went on, not all of its work was done.
    return code == kDone && screen->Complaints() > 0 ? kNotDone : code;
  } catch (const dw::FileMissing&) {
    return kNotDone;
  } catch (const dw::Interrupted& interrupted) {
    return NotDone(interrupted.what());
  } catch (const dw::ApplicationEnd&) {
    dw::Progress::BreakLine();
    return kEnded;
  } catch (const dw::NotDone& refusal) {
    return NotDone(refusal.what());
  } catch (const rt::Error& error) {
    return NotDone(error.Number(), error.what());
  } catch (const std::exception& error) {
    return NotDone("Error: " + std::string(error.what()));
  }
}

}  // namespace

int main(int argc, char** argv) {
  // If the reader of the output has gone, the program must still sign off before it ends.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    CommandLine line;
    try {
      line.Parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return line.Tell(error) == 0 ? kDone : kUsage;
    }
    dw::UseDataDirectory(line.Data().empty() ? sys::ProgramDirectory() : line.Data());
    return Run(line.Chosen());
  } catch (const std::exception& error) {
    return NotDone("Error: " + std::string(error.what()));
  }
}
