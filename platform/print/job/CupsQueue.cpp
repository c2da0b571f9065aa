#include "platform/print/job/CupsQueue.h"

#include <cups/cups.h>

#include "platform/print/PrintError.h"

namespace print {
namespace {

/// The options of one printout, as the printing system takes them.
class Options {
 public:
  Options() = default;
  ~Options() { cupsFreeOptions(count_, options_); }
  Options(const Options&) = delete;
  Options& operator=(const Options&) = delete;
  void Add(const char* name, const std::string& value) {
    count_ = cupsAddOption(name, value.c_str(), count_, &options_);
  }
  int Count() const { return count_; }
  cups_option_t* Get() const { return options_; }

 private:
  int count_ = 0;
  cups_option_t* options_ = nullptr;
};

/// A queue as the printing system knows it now.
class Queue {
 public:
  explicit Queue(const std::string& name)
      : found_(cupsGetNamedDest(CUPS_HTTP_DEFAULT, name.empty() ? nullptr : name.c_str(), nullptr)) {}
  ~Queue() {
    if (found_ != nullptr) cupsFreeDests(1, found_);
  }
  Queue(const Queue&) = delete;
  Queue& operator=(const Queue&) = delete;
  cups_dest_t* Get() const { return found_; }

 private:
  cups_dest_t* found_;
};

/// What the printing system last said, as a sentence.
std::string LastWords() {
  const char* words = cupsLastErrorString();
  return words != nullptr && *words != '\0' ? words : "It gives no reason.";
}

class CupsQueue : public PrinterQueue {
 public:
  void Print(const std::string& pdfFile, const PrintTicket& ticket) override {
    const Queue queue(ticket.printer);
    if (queue.Get() == nullptr) {
      if (ticket.printer.empty()) throw PrintError("There is no default printer. " + LastWords());
      throw PrintError("The printer \"" + ticket.printer + "\" is not there. " + LastWords());
    }
    Options options;
    for (int i = 0; i < queue.Get()->num_options; ++i)
      options.Add(queue.Get()->options[i].name, queue.Get()->options[i].value);
    options.Add("copies", std::to_string(ticket.copies));
    options.Add("multiple-document-handling", ticket.collate ? "separate-documents-collated-copies"
                                                             : "separate-documents-uncollated-copies");
    options.Add("Collate", ticket.collate ? "True" : "False");
    if (ticket.paper == "A4") options.Add("media", "iso_a4_210x297mm");
    if (ticket.paper == "Letter") options.Add("media", "na_letter_8.5x11in");
    const int job = cupsPrintFile(queue.Get()->name, pdfFile.c_str(), ticket.title.c_str(), options.Count(),
                                  options.Get());
    if (job == 0)
      throw PrintError("The printer \"" + std::string(queue.Get()->name) +
                       "\" did not take the report: " + LastWords());
  }
};

}  // namespace

std::shared_ptr<PrinterQueue> MakeCupsQueue() { return std::make_shared<CupsQueue>(); }

}  // namespace print
