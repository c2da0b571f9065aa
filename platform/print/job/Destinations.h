// What the engine needs of its surroundings to show, print and mail pages. The desktop and the tests install
// their own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/print/output/Outputs.h"
#include "platform/print/pages/PageStore.h"

namespace print {

/// A run whose pages may still grow.
class RunningReport {
 public:
  virtual ~RunningReport() = default;
  virtual const PageStore& Pages() const = 0;
  virtual void Cancel() = 0;
  /// The failure that ended the run early, or nothing.
  virtual std::string Failure() const = 0;
  virtual std::string Warnings() const = 0;
};

/// Shows pages to a person.
class Viewer {
 public:
  virtual ~Viewer() = default;
  /// Opens a window on the run and returns; never 0.
  virtual std::uintptr_t Open(std::shared_ptr<RunningReport> report, const std::string& title, int left,
                              int top, int width, int height) = 0;
  /// Whether the window is still open.
  virtual bool IsOpen(std::uintptr_t window) = 0;
  /// Closes the window if it is open.
  virtual void Close(std::uintptr_t window) = 0;
};

struct PrintTicket {
  std::string printer;  ///< empty: the default printer
  std::string title;
  int copies = 1;
  bool collate = true;
  std::string paper;    ///< "Letter" or "A4"
  std::string pdfFile;  ///< not empty: the pages go to this PDF file instead of to a printer
};

/// Hands a PDF file to a printer's queue.
class PrinterQueue {
 public:
  virtual ~PrinterQueue() = default;
  /// Throws PrintError with the queue's words.
  virtual void Print(const std::string& pdfFile, const PrintTicket& ticket) = 0;
};

/// Hands a file to the mail program of the desktop.
class Mailer {
 public:
  virtual ~Mailer() = default;
  /// Throws PrintError where no mail program is there.
  virtual void Send(const std::string& file, const std::string& subject) = 0;
};

/// Each returns what was installed before. Without a viewer, output to a window fails with a text.
std::shared_ptr<Viewer> InstallViewer(std::shared_ptr<Viewer> viewer);
std::shared_ptr<PrinterQueue> InstallPrinterQueue(std::shared_ptr<PrinterQueue> queue);
std::shared_ptr<Mailer> InstallMailer(std::shared_ptr<Mailer> mailer);
/// What is installed; null if nothing is.
const std::shared_ptr<Viewer>& CurrentViewer();
const std::shared_ptr<PrinterQueue>& CurrentPrinterQueue();
const std::shared_ptr<Mailer>& CurrentMailer();

/// Prints these pages: writes them to a temporary PDF file and hands that to the installed queue, or writes
/// them to the ticket's PDF file. All pages must be finished. Returns false if the progress was answered with
/// false. Throws PrintError with the reason; no temporary file is left.
bool PrintPages(const PageStore& pages, const PageRange& range, const PrintTicket& ticket,
                const OutputProgress& progress);

/// What runs take from the settings of the user: the paper, and the name that User() gives.
struct PrintSettings {
  bool a4 = false;
  std::string user;
};
void SetPrintSettings(const PrintSettings& settings);
const PrintSettings& CurrentPrintSettings();

}  // namespace print
