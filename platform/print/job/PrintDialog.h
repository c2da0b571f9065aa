// The print dialog as its callers see it. The desktop and the tests install their own.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace print {

/// Where the pages of a report go, and on what.
struct PrinterChoice {
  std::string printer = {};  ///< name of the queue; empty: the default printer
  std::string paper = {};    ///< "Letter" or "A4"
  std::string pdfFile = {};  ///< not empty: the pages go to this PDF file instead of to a printer
  int copies = 1;
  bool collate = true;
};

/// Why a print dialog could not be shown or did not get a printer's data. The names are shown to the user as
/// they are here, see DialogErrorName.
enum class DialogError {
  CDERR_FINDRESFAILURE,
  CDERR_INITIALIZATION,
  CDERR_LOADRESFAILURE,
  CDERR_LOADSTRFAILURE,
  CDERR_LOCKRESFAILURE,
  CDERR_MEMALLOCFAILURE,
  CDERR_MEMLOCKFAILURE,
  CDERR_NOHINSTANCE,
  CDERR_NOHOOK,
  CDERR_NOTEMPLATE,
  CDERR_REGISTERMSGFAIL,
  CDERR_STRUCTSIZE,
  PDERR_PRINTERCODES,
  PDERR_CREATEICFAILURE,
  PDERR_DEFAULTDIFFERENT,
  PDERR_DNDMMISMATCH,
  PDERR_GETDEVMODEFAIL,
  PDERR_INITFAILURE,
  PDERR_LOADDRVFAILURE,
  PDERR_NODEFAULTPRN,
  PDERR_NODEVICES,
  PDERR_PARSEFAILURE,
  PDERR_PRINTERNOTFOUND,
  PDERR_RETDEFFAILURE,
  PDERR_SETUPFAILURE,
};
/// "PDERR_NODEVICES" and so on.
const char* DialogErrorName(DialogError error);

/// What a print dialog is opened with.
struct PrintDialogRequest {
  int flags = 0;              ///< 64 offers everything of a PrinterChoice and the range of pages
  std::uintptr_t parent = 0;  ///< the window that it belongs to; 0 for none
  PrinterChoice choice;       ///< what is chosen at first
};

/// How a print dialog ended.
struct PrintDialogResult {
  bool chosen = false;                    ///< false: canceled, or it failed
  std::optional<DialogError> error = {};  ///< why it failed; nothing after a plain Cancel
  PrinterChoice choice = {};              ///< if chosen
  int firstPage = 0;                      ///< 0: from the first
  int lastPage = 0;                       ///< 0: to the last
};

/// Lets a person choose a printer, pages, copies and paper.
class PrintDialog {
 public:
  virtual ~PrintDialog() = default;
  /// The choice of somebody who never chose: the default printer, its paper as set for reports, one copy.
  /// Without any printer the name is empty. Nothing if the printing system cannot be asked.
  virtual std::optional<PrinterChoice> Default() = 0;
  /// Shows the dialog and waits for its end. Shows no other box: the caller tells the person of a failure.
  virtual PrintDialogResult Show(const PrintDialogRequest& request) = 0;
};

/// Returns what was installed before. Without a dialog, every choice fails with PDERR_INITFAILURE.
std::shared_ptr<PrintDialog> InstallPrintDialog(std::shared_ptr<PrintDialog> dialog);
/// The installed one, or one that fails.
PrintDialog& CurrentPrintDialog();

}  // namespace print
