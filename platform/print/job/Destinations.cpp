#include "platform/print/job/Destinations.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/print/PrintError.h"

namespace print {
namespace {

template <class Kind>
std::shared_ptr<Kind>& Installed() {
  static std::shared_ptr<Kind> installed;
  return installed;
}

template <class Kind>
std::shared_ptr<Kind> Install(std::shared_ptr<Kind> next) {
  std::swap(Installed<Kind>(), next);
  return next;
}

/// A file for the time of one call, that other users cannot read.
class PassingFile {
 public:
  PassingFile() : path_((std::filesystem::temp_directory_path() / "drovewright-XXXXXX.pdf").string()) {
    constexpr int kEnding = 4;
    const int file = mkstemps(path_.data(), kEnding);
    if (file < 0)
      throw PrintError("The temporary file " + path_ + " cannot be made: " + std::strerror(errno) + ".");
    close(file);
  }
  ~PassingFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  PassingFile(const PassingFile&) = delete;
  PassingFile& operator=(const PassingFile&) = delete;
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace

std::shared_ptr<Viewer> InstallViewer(std::shared_ptr<Viewer> viewer) { return Install(std::move(viewer)); }
std::shared_ptr<PrinterQueue> InstallPrinterQueue(std::shared_ptr<PrinterQueue> queue) {
  return Install(std::move(queue));
}
std::shared_ptr<Mailer> InstallMailer(std::shared_ptr<Mailer> mailer) { return Install(std::move(mailer)); }

namespace {

PrintSettings& Settings() {
  static PrintSettings settings;
  return settings;
}

}  // namespace

void SetPrintSettings(const PrintSettings& settings) { Settings() = settings; }
const PrintSettings& CurrentPrintSettings() { return Settings(); }

const std::shared_ptr<Viewer>& CurrentViewer() { return Installed<Viewer>(); }
const std::shared_ptr<PrinterQueue>& CurrentPrinterQueue() { return Installed<PrinterQueue>(); }
const std::shared_ptr<Mailer>& CurrentMailer() { return Installed<Mailer>(); }

bool PrintPages(const PageStore& pages, const PageRange& range, const PrintTicket& ticket,
                const OutputProgress& progress) {
  if (!ticket.pdfFile.empty()) return WriteOutput(pages, OutputFormat::Pdf, ticket.pdfFile, range, progress);
  // The queue may be replaced while the pages are being written.
  const std::shared_ptr<PrinterQueue> queue = CurrentPrinterQueue();
  if (!queue) throw PrintError("This program has no way to a printer.");
  const PassingFile file;
  if (!WriteOutput(pages, OutputFormat::Pdf, file.Path(), range, progress)) return false;
  queue->Print(file.Path(), ticket);
  return true;
}

}  // namespace print
