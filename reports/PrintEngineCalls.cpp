#include "reports/PrintEngineCalls.h"

#include <chrono>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "platform/print/PrintError.h"
#include "platform/print/data/ReportQuery.h"
#include "platform/print/definition/DefinitionReader.h"

namespace dw {
namespace {

using std::string;

class EngineCalls : public PrintCalls {
 public:
  bool PEOpenEngine() override { return print::PEOpenEngine(); }
  void PECloseEngine() override { print::PECloseEngine(); }
  int PEOpenPrintJob(const string& file) override { return print::PEOpenPrintJob(file); }
  bool PEClosePrintJob(int job) override { return print::PEClosePrintJob(job); }
  bool PEDiscardSavedData(int job) override { return print::PEDiscardSavedData(job); }
  bool PESetFormula(int job, const string& name, const string& text) override {
    return print::PESetFormula(job, name, text);
  }
  bool PESetSelectionFormula(int job, const string& text) override {
    return print::PESetSelectionFormula(job, text);
  }
  bool PEGetSelectionFormula(int job, int* handle, int* length) override {
    return print::PEGetSelectionFormula(job, handle, length);
  }
  bool PEGetHandleString(int handle, string* buffer) override {
    return print::PEGetHandleString(handle, buffer);
  }
  bool PESetNthSortField(int job, int n, const string& name, int direction) override {
    return print::PESetNthSortField(job, n, name, direction);
  }
  int PEGetNTables(int job) override { return print::PEGetNTables(job); }
  bool PEGetNthTableLocation(int job, int n, print::PETableLocation* location) override {
    return print::PEGetNthTableLocation(job, n, location);
  }
  bool PESetNthTableLocation(int job, int n, const print::PETableLocation& location) override {
    return print::PESetNthTableLocation(job, n, location);
  }
  int PEGetNSections(int job) override { return print::PEGetNSections(job); }
  int PEGetSectionCode(int job, int n) override { return print::PEGetSectionCode(job, n); }
  int PEGetNGroups(int job) override { return print::PEGetNGroups(job); }
  bool PEGetSectionFormat(int job, int section, print::PESectionOptions* options) override {
    return print::PEGetSectionFormat(job, section, options);
  }
  bool PESetSectionFormat(int job, int section, const print::PESectionOptions& options) override {
    return print::PESetSectionFormat(job, section, options);
  }
  int PEGetNSubreportsInSection(int job, int section) override {
    return print::PEGetNSubreportsInSection(job, section);
  }
  int PEGetNthSubreportInSection(int job, int section, int n) override {
    return print::PEGetNthSubreportInSection(job, section, n);
  }
  bool PEGetSubreportInfo(int job, int subreport, print::PESubreportInfo* info) override {
    return print::PEGetSubreportInfo(job, subreport, info);
  }
  int PEOpenSubreport(int job, const string& name) override { return print::PEOpenSubreport(job, name); }
  bool PESetWindowOptions(int job, const print::PEWindowOptions& options) override {
    return print::PESetWindowOptions(job, options);
  }
  bool PEOutputToWindow(int job, const string& title, int left, int top, int width, int height) override {
    return print::PEOutputToWindow(job, title, left, top, width, height);
  }
  bool PEOutputToPrinter(int job, int copies) override { return print::PEOutputToPrinter(job, copies); }
  bool PEExportTo(int job, const print::PEExportOptions& options) override {
    return print::PEExportTo(job, options);
  }
  bool PESetPrintOptions(int job, const print::PEPrintOptions& options) override {
    return print::PESetPrintOptions(job, options);
  }
  bool PESelectPrinter(int job, const string& printer) override {
    return print::PESelectPrinter(job, printer);
  }
  bool PESelectPdfFile(int job, const string& path) override { return print::PESelectPdfFile(job, path); }
  bool PEShowPrintControls(int job, bool show) override { return print::PEShowPrintControls(job, show); }
  bool PEStartPrintJob(int job, bool wait) override { return print::PEStartPrintJob(job, wait); }
  bool PEPrintControlsShowing(int job, bool* showing) override {
    return print::PEPrintControlsShowing(job, showing);
  }
  std::uintptr_t PEGetWindowHandle(int job) override { return print::PEGetWindowHandle(job); }
  bool PEGetErrorText(int job, int* handle, int* length) override {
    return print::PEGetErrorText(job, handle, length);
  }
  void SetPrintSettings(const print::PrintSettings& settings) override { print::SetPrintSettings(settings); }

  string SelectionFault(const string& file, const string& selection) override {
    try {
      return print::SelectionFault(*print::ReadDefinition(file, DataFile), DataFile, selection);
    } catch (const print::PrintError& error) {
      return error.what();
    }
  }
  std::optional<RowCount> CountRows(const string& file, const string& selection) override {
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(kCountMilliseconds);
    std::vector<string> warnings;
    std::int64_t seen = 0;
    const auto rows = print::ReadReportRows(
        *print::ReadDefinition(file, DataFile), {.dataFile = DataFile, .selection = selection, .sort = {}},
        [&](std::int64_t read) {
          seen = read;
          return std::chrono::steady_clock::now() < until;
        },
        &warnings);
    return rows ? RowCount{rows->rows.Count(), true} : RowCount{seen, false};
  }
};

}  // namespace

std::shared_ptr<PrintCalls> PrintEngineCalls() { return std::make_shared<EngineCalls>(); }

}  // namespace dw
