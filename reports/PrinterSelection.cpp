#include "reports/PrinterSelection.h"

#include <optional>

#include "data/BrackenfelGlobals.h"
#include "platform/screen/Screen.h"
#include "platform/system/Settings.h"
#include "reports/PrintCalls.h"

namespace dw {
namespace {

constexpr const char* kA4 = "A4";
constexpr const char* kLetter = "Letter";

std::optional<CrystalPrintersClass>& Printers() {
  static std::optional<CrystalPrintersClass> printers;
  return printers;
}

}  // namespace

// The print dialog keeps it there.
bool ReportsOnA4() { return sys::GetSetting(kApplicationCode, "Printing", "Paper", kLetter) == kA4; }

CrystalPrintersClass& CrystalPrinters() {
  if (!Printers()) Printers().emplace();
  return *Printers();
}

void ForgetPrinters() { Printers().reset(); }

CrystalPrintersClass::CrystalPrintersClass() {
  if (const auto choice = print::CurrentPrintDialog().Default())
    choice_ = *choice;
  else
    screen::MessageBox("CRW Failed to Get Default Printer Information.", screen::Icon::None,
                       screen::Buttons::Ok, "Failure");
}

bool CrystalPrintersClass::SetupPrinter(int flags, ReportPrinterDialog& dialog) {
  choice_.paper = ReportsOnA4() ? kA4 : kLetter;
  const screen::Pointer pointer = screen::SetPointer(screen::Pointer::Normal);
  const print::PrintDialogResult result = print::CurrentPrintDialog().Show({flags, ParentHandle, choice_});
  screen::SetPointer(pointer);
  if (!result.chosen) {
    // A printer that was chosen before stays chosen; a file of that time is not written again.
    choice_.pdfFile.clear();
    if (result.error)
      screen::MessageBox(print::DialogErrorName(*result.error), screen::Icon::None, screen::Buttons::Ok,
                         "Failure");
    else
      screen::MessageBox("No Printer has been selected. Default Report Settings will be used.",
                         screen::Icon::None, screen::Buttons::Ok, "Cancelled");
    return false;
  }
  choice_ = result.choice;
  chosen_ = true;
  dialog = {result.firstPage, result.lastPage, choice_.copies, choice_.collate};
  // The next report is offered in one copy.
  choice_.copies = 1;
  const bool a4 = choice_.paper == kA4;
  Engine().SetPrintSettings({a4, CurrentUserName});
  return true;
}

bool CrystalPrintersClass::SelectPrinter(int job) {
  if (!chosen_) return true;
  if (Engine().PESelectPrinter(job, choice_.printer) && Engine().PESelectPdfFile(job, choice_.pdfFile))
    return true;
  return screen::MessageBox("CRW Failed to Select Printer.\r\n" + GetEngineErrorText(job) +
                                "\r\nDo you want to continue with the Default Printer?",
                            screen::Icon::None, screen::Buttons::YesNo,
                            "Printer Change Failed") == screen::Answer::Yes;
}

}  // namespace dw
