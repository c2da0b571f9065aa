// One run of a report: the engine's calls from the opened job to the closed one.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "reports/PrinterSelection.h"

namespace dw {

/// Where a run goes to.
enum class ReportOutput { None, Screen, Printer, Mail };

/// A place on the screen, in pixels.
struct WindowPlace {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

/// What a run asks for besides the globals of its launch.
struct ReportOptions {
  ReportOutput output = ReportOutput::Screen;
  std::array<std::string, 4> titles;  ///< an empty one leaves the definition's own text
  std::array<std::string, 7> aux;     ///< likewise
  bool summaryOnly = false;
  bool sectionPageBreak = false;  ///< a new page after each group
  bool a4 = false;
  WindowPlace window;         ///< of the preview
  std::uintptr_t parent = 0;  ///< the window that the print dialog belongs to
  ReportPrinterDialog printer;
  /// Called again and again while a preview is open, for as long as it returns true; lets events run and
  /// waits a little.
  std::function<bool()> whilePreviewed;
};

/// Runs the report of RptFile with RptTitle, RptPrimaryTable, RptSelection and RptSort. The engine must be
/// open. Every failure is shown. Returns when the report is printed or sent, or its preview is closed. True
/// if the engine has run it.
bool RunReport(const ReportOptions& options);

/// The steps of a run.

/// The destination, the text formulas, and the main file as the place of all tables. False if the user does
/// not want to print after all. May change `options.printer`.
bool SetOutputAndFormulas(int job, ReportOptions& options);
/// Asks for a printer. False if the user does not want to print after all.
bool SelectOutputPrinter(int job, ReportOptions& options);
/// The order of the rows, from RptSort.
void ApplySortFields(int job);
/// The new page after each group, and the summary without details.
void ApplySectionOptions(int job, const ReportOptions& options);

/// A text as a formula: between double quotes. Those inside stay as they are; the engine knows that the outer
/// ones are the ends.
std::string FormulaText(const std::string& text);

}  // namespace dw
