// The choice of a printer for a run.
#pragma once

#include <cstdint>
#include <string>

#include "platform/print/job/PrintDialog.h"

namespace dw {

/// The values of the print dialog that belong to one run.
struct ReportPrinterDialog {
  int FromPage = 0;  ///< 0: from the first
  int ToPage = 0;    ///< 0: to the last
  int Copies = 1;
  bool Collate = true;
};

/// The flags of the print dialog: a printer with everything that belongs to it.
inline constexpr int kPrinterFlags = 64;

/// Keeps the printer that was chosen last, for the life of the program.
class CrystalPrintersClass {
 public:
  /// Reads the default printer; a failure is reported.
  CrystalPrintersClass();

  std::uintptr_t ParentHandle = 0;  ///< the window that the dialog belongs to

  /// Shows the print dialog. False if the user canceled or it failed, which has been reported: the printer
  /// stays as it was. `dialog` gets the pages and copies.
  bool SetupPrinter(int flags, ReportPrinterDialog& dialog);
  /// Gives the printer that was chosen last to the engine's job; without a choice the engine uses its
  /// default printer. False if the engine does not take it and the user does not want to
  /// go on with the default printer.
  bool SelectPrinter(int job);
  /// The same under its short name.
  bool SelPrt(int job) { return SelectPrinter(job); }

 private:
  print::PrinterChoice choice_;
  bool chosen_ = false;  ///< a person has chosen a printer
};

/// The one object of the program, made at its first use.
CrystalPrintersClass& CrystalPrinters();
/// For tests: the next use reads the default printer again.
void ForgetPrinters();

/// The paper that reports are laid out for, as the settings of this user keep it.
bool ReportsOnA4();

}  // namespace dw
