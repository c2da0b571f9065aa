#include "reports/ReportRun.h"

#include "data/BrackenfelGlobals.h"
#include "platform/screen/Screen.h"
#include "reports/DWGlobals.h"
#include "reports/PrintCalls.h"

namespace dw {
namespace {

/// Reads the selection back: a check that the engine has taken it.
void ReadSelectionBack(int job) {
  int handle = 0, length = 0;
  if (!Engine().PEGetSelectionFormula(job, &handle, &length)) {
    ShowEngineError(job);
    return;
  }
  std::string text(static_cast<std::size_t>(length < 0 ? 0 : length), ' ');
  if (!Engine().PEGetHandleString(handle, &text)) ShowEngineError(job);
}

bool IsPreviewed(int job) {
  bool showing = false;
  return Engine().PEPrintControlsShowing(job, &showing) && Engine().PEGetWindowHandle(job) != 0;
}

/// The calls between the opened job and the closed one.
bool RunJob(int job, ReportOptions& options) {
  if (!SetOutputAndFormulas(job, options)) return false;
  if (!Engine().PEDiscardSavedData(job)) ShowEngineError(job);
  if (!Engine().PESetSelectionFormula(job, RptSelection + '\0')) {
    ShowEngineError(job);
    return false;
  }
  ReadSelectionBack(job);
  ApplySortFields(job);
  ApplySectionOptions(job, options);
  if (!Engine().PEStartPrintJob(job, true)) {
    screen::MessageBox("'" + RptTitle + "' could not be printed.");
    ShowEngineError(job);
    return false;
  }
  if (options.output == ReportOutput::Screen)
    while (IsPreviewed(job))
      if (!options.whilePreviewed || !options.whilePreviewed()) break;
  return true;
}

}  // namespace

bool RunReport(const ReportOptions& asked) {
  ReportOptions options = asked;
  Engine().SetPrintSettings({options.a4, CurrentUserName});
  const int job = Engine().PEOpenPrintJob(RptFile);
  if (job == 0) {
    ShowEngineError(0);
    return false;
  }
  const bool run = RunJob(job, options);
  Engine().PEClosePrintJob(job);
  return run;
}

}  // namespace dw
