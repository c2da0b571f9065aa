#include "platform/print/job/PrintDialog.h"

#include <array>
#include <utility>

namespace print {
namespace {

constexpr std::array<const char*, 25> kNames{
    "CDERR_FINDRESFAILURE", "CDERR_INITIALIZATION",  "CDERR_LOADRESFAILURE",   "CDERR_LOADSTRFAILURE",
    "CDERR_LOCKRESFAILURE", "CDERR_MEMALLOCFAILURE", "CDERR_MEMLOCKFAILURE",   "CDERR_NOHINSTANCE",
    "CDERR_NOHOOK",         "CDERR_NOTEMPLATE",      "CDERR_REGISTERMSGFAIL",  "CDERR_STRUCTSIZE",
    "PDERR_PRINTERCODES",   "PDERR_CREATEICFAILURE", "PDERR_DEFAULTDIFFERENT", "PDERR_DNDMMISMATCH",
    "PDERR_GETDEVMODEFAIL", "PDERR_INITFAILURE",     "PDERR_LOADDRVFAILURE",   "PDERR_NODEFAULTPRN",
    "PDERR_NODEVICES",      "PDERR_PARSEFAILURE",    "PDERR_PRINTERNOTFOUND",  "PDERR_RETDEFFAILURE",
    "PDERR_SETUPFAILURE"};
static_assert(kNames.size() == static_cast<std::size_t>(DialogError::PDERR_SETUPFAILURE) + 1);

/// Where no dialog is installed, as on a console.
class NoDialog : public PrintDialog {
 public:
  std::optional<PrinterChoice> Default() override { return std::nullopt; }
  PrintDialogResult Show(const PrintDialogRequest&) override {
    PrintDialogResult result;
    result.error = DialogError::PDERR_INITFAILURE;
    return result;
  }
};

std::shared_ptr<PrintDialog>& Installed() {
  static std::shared_ptr<PrintDialog> dialog;
  return dialog;
}

}  // namespace

const char* DialogErrorName(DialogError error) { return kNames.at(static_cast<std::size_t>(error)); }

std::shared_ptr<PrintDialog> InstallPrintDialog(std::shared_ptr<PrintDialog> dialog) {
  return std::exchange(Installed(), std::move(dialog));
}

PrintDialog& CurrentPrintDialog() {
  static NoDialog none;
  return Installed() ? *Installed() : none;
}

}  // namespace print
