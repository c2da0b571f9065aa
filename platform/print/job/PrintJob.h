// The state of print jobs, and what all calls share.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/data/ReportQuery.h"
#include "platform/print/definition/DefinitionReader.h"
#include "platform/print/job/PrintEngine.h"
#include "platform/print/job/ReportRun.h"

namespace print {

/// What a section option changes of the definition.
struct SectionChange {
  bool visible = true;
  bool newPageAfter = false;
};

struct PrintJob {
  enum class Destination { None, Window, Printer, Mail };

  int number = 0;
  int parent = 0;         ///< of a subreport's job
  std::string subreport;  ///< its name
  std::string file;
  std::shared_ptr<const ReportDefinition> report;
  FormulaTexts formulas;
  std::string selection;
  std::vector<SortField> sort;
  std::vector<std::string> locations;  ///< the data file of each table; empty: not set
  std::map<std::string, std::string> subreportLocations;
  std::map<int, SectionChange> sections;
  Destination destination = Destination::None;
  std::string windowTitle;
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  bool controlsShown = true;
  PEPrintOptions printOptions;
  std::string printer;
  std::string pdfFile;
  std::shared_ptr<ReportRun> run;
  std::uintptr_t window = 0;
  std::string error;  ///< of the last failure; empty: none
};

/// The text of a call's argument: up to its first NUL, without blanks at its end.
std::string ArgumentText(std::string_view text);

/// Runs a call on a job. False, with the reason as the job's error, if there is no such job or the call
/// throws an rt::Error.
bool OnJob(int job, const std::function<void(PrintJob&)>& call);
/// Runs a call that needs no job; its error is that of job 0.
bool OnEngine(const std::function<void()>& call);
/// Adds a job and gives its number.
int AddJob(std::unique_ptr<PrintJob> job);
/// The text that PEGetErrorText gives for the job; null if there is no such job.
const std::string* ErrorOf(int job);
/// Keeps a text for PEGetHandleString.
int KeepText(std::string text);

/// Runs the report to its destination. Throws PrintError.
void StartRun(PrintJob& job);

}  // namespace print
