// The report engine's calls as a run makes them, behind one interface, so that a run can be followed call by
// call. See platform/print/job/PrintEngine.h for what each call does.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/print/job/Destinations.h"
#include "platform/print/job/PrintEngine.h"

namespace dw {

/// A count of rows.
struct RowCount {
  std::int64_t rows = 0;
  bool all = true;  ///< false: there may be more
};

/// Every call fails; an engine overrides them all.
class PrintCalls {
 public:
  virtual ~PrintCalls() = default;

  virtual bool PEOpenEngine() { return false; }
  virtual void PECloseEngine() {}
  virtual int PEOpenPrintJob(const std::string&) { return 0; }
  virtual bool PEClosePrintJob(int) { return false; }
  virtual bool PEDiscardSavedData(int) { return false; }

  virtual bool PESetFormula(int, const std::string&, const std::string&) { return false; }
  virtual bool PESetSelectionFormula(int, const std::string&) { return false; }
  virtual bool PEGetSelectionFormula(int, int*, int*) { return false; }
  virtual bool PEGetHandleString(int, std::string*) { return false; }
  virtual bool PESetNthSortField(int, int, const std::string&, int) { return false; }

  virtual int PEGetNTables(int) { return -1; }
  virtual bool PEGetNthTableLocation(int, int, print::PETableLocation*) { return false; }
  virtual bool PESetNthTableLocation(int, int, const print::PETableLocation&) { return false; }

  virtual int PEGetNSections(int) { return -1; }
  virtual int PEGetSectionCode(int, int) { return 0; }
  virtual int PEGetNGroups(int) { return -1; }
  virtual bool PEGetSectionFormat(int, int, print::PESectionOptions*) { return false; }
  virtual bool PESetSectionFormat(int, int, const print::PESectionOptions&) { return false; }
  virtual int PEGetNSubreportsInSection(int, int) { return -1; }
  virtual int PEGetNthSubreportInSection(int, int, int) { return 0; }
  virtual bool PEGetSubreportInfo(int, int, print::PESubreportInfo*) { return false; }
  virtual int PEOpenSubreport(int, const std::string&) { return 0; }

  virtual bool PESetWindowOptions(int, const print::PEWindowOptions&) { return false; }
  virtual bool PEOutputToWindow(int, const std::string&, int, int, int, int) { return false; }
  virtual bool PEOutputToPrinter(int, int) { return false; }
  virtual bool PEExportTo(int, const print::PEExportOptions&) { return false; }
  virtual bool PESetPrintOptions(int, const print::PEPrintOptions&) { return false; }
  virtual bool PESelectPrinter(int, const std::string&) { return false; }
  virtual bool PESelectPdfFile(int, const std::string&) { return false; }
  virtual bool PEShowPrintControls(int, bool) { return false; }

  virtual bool PEStartPrintJob(int, bool) { return false; }
  virtual bool PEPrintControlsShowing(int, bool*) { return false; }
  virtual std::uintptr_t PEGetWindowHandle(int) { return 0; }
  virtual bool PEGetErrorText(int, int*, int*) { return false; }

  virtual void SetPrintSettings(const print::PrintSettings&) {}

  /// Why the engine would not take this selection for a definition file; empty if it would.
  virtual std::string SelectionFault(const std::string&, const std::string&) { return {}; }
  /// How many rows of the main file a definition file has with this selection. Counts for about
  /// kCountMilliseconds, because others cannot write meanwhile. Nothing if no engine is there. Throws
  /// print::PrintError.
  virtual std::optional<RowCount> CountRows(const std::string&, const std::string&) { return std::nullopt; }
  static constexpr int kCountMilliseconds = 40;
};

/// Returns what was installed before. Without an engine, no report can be opened.
std::shared_ptr<PrintCalls> InstallPrintCalls(std::shared_ptr<PrintCalls> calls);
/// The installed engine, or one whose calls fail.
PrintCalls& Engine();

/// The text of a job's last failure, of the engine's for job 0; empty if there is none to be had.
std::string GetEngineErrorText(int job);
/// Shows that text in an exclamation box, unless it is shorter than nine characters or begins with
/// "No error.".
void ShowEngineError(int job);

}  // namespace dw
