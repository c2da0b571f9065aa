#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/print/job/PrintDialog.h"
#include "reports/PrintCalls.h"

namespace test {

/// A report engine that prints nothing: it writes down each call, and answers as the test says. A NUL in a
/// text shows as "~".
class FakeEngine : public dw::PrintCalls {
 public:
  std::vector<std::string> calls;
  /// Calls that fail, by name; the error text then names the call.
  std::set<std::string> failing;
  std::string errorText = "No error.";  ///< of a failing call that has none of its own
  std::vector<std::string> tables{"Maintenance Transactions", "Vehicles"};
  int groups = 0;
  std::map<int, int> subreports;  ///< how many stand in a section
  int looks = 0;                  ///< how often a preview is still open when the run looks
  std::string fault;              ///< what the engine has against any selection
  dw::RowCount rows;              ///< what CountRows gives

  /// The calls from `first` on whose names begin with `part`, without the part; all calls without one.
  std::string Joined(const std::string& part = {}) const {
    std::string joined;
    for (const std::string& call : calls)
      if (call.starts_with(part)) joined += (joined.empty() ? "" : "\n") + call;
    return joined;
  }

  bool PEOpenEngine() override { return Note("PEOpenEngine"); }
  void PECloseEngine() override { Note("PECloseEngine"); }
  int PEOpenPrintJob(const std::string& file) override {
    const std::string bare = file.substr(file.find_last_of('/') + 1);
    return Note("PEOpenPrintJob", bare) ? 7 : 0;
  }
  bool PEClosePrintJob(int) override { return Note("PEClosePrintJob"); }
  bool PEDiscardSavedData(int) override { return Note("PEDiscardSavedData"); }
  bool PESetFormula(int, const std::string& name, const std::string& text) override {
    return Note("PESetFormula", name + " " + text);
  }
  bool PESetSelectionFormula(int, const std::string& text) override {
    return Note("PESetSelectionFormula", text);
  }
  bool PEGetSelectionFormula(int, int* handle, int* length) override {
    if (!Note("PEGetSelectionFormula")) return false;
    return Hand("the selection", handle, length);
  }
  bool PEGetHandleString(int handle, std::string* buffer) override {
    EXPECT_EQ(buffer->size(), texts_[handle].size()) << "as long as the engine has said";
    EXPECT_EQ(buffer->find_first_not_of(' '), std::string::npos) << "blanks at first";
    *buffer = texts_[handle];
    return true;
  }
  bool PESetNthSortField(int, int n, const std::string& name, int direction) override {
    return Note("PESetNthSortField", std::to_string(n) + " " + name + " " + std::to_string(direction));
  }
  int PEGetNTables(int) override { return Note("PEGetNTables") ? static_cast<int>(tables.size()) : -1; }
  bool PEGetNthTableLocation(int, int n, print::PETableLocation* location) override {
    location->Location = "/somewhere/DW.MDB/" + tables.at(static_cast<std::size_t>(n)) + '\0';
    return Note("PEGetNthTableLocation", std::to_string(n));
  }
  bool PESetNthTableLocation(int job, int n, const print::PETableLocation& location) override {
    return Note("PESetNthTableLocation", std::to_string(job) + " " + std::to_string(n) + " " +
                                             location.Location.substr(location.Location.rfind('/') + 1));
  }
  int PEGetNSections(int) override { return Note("PEGetNSections") ? 1 + groups : -1; }
  int PEGetSectionCode(int, int n) override { return n == 0 ? 4000 : 4999 + n; }
  int PEGetNGroups(int) override { return Note("PEGetNGroups") ? groups : -1; }
  bool PEGetSectionFormat(int, int section, print::PESectionOptions* options) override {
    if (!Note("PEGetSectionFormat", std::to_string(section))) return false;
    options->visible = hidden.contains(section) ? 0 : 1;
    return true;
  }
  bool PESetSectionFormat(int, int section, const print::PESectionOptions& options) override {
    return Note("PESetSectionFormat", std::to_string(section) + " visible " +
                                          std::to_string(options.visible) + " newPageAfter " +
                                          std::to_string(options.newPageAfter));
  }
  int PEGetNSubreportsInSection(int, int section) override { return subreports[section]; }
  int PEGetNthSubreportInSection(int, int, int n) override { return 100 + n; }
  bool PEGetSubreportInfo(int, int subreport, print::PESubreportInfo* info) override {
    info->name = "Tasks " + std::to_string(subreport);
    return Note("PEGetSubreportInfo", std::to_string(subreport));
  }
  int PEOpenSubreport(int, const std::string& name) override { return Note("PEOpenSubreport", name) ? 8 : 0; }
  bool PESetWindowOptions(int, const print::PEWindowOptions&) override { return Note("PESetWindowOptions"); }
  bool PEOutputToWindow(int, const std::string& title, int, int, int width, int height) override {
    EXPECT_TRUE(width > 0 && height > 0);
    return Note("PEOutputToWindow", title);
  }
  bool PEOutputToPrinter(int, int copies) override {
    return Note("PEOutputToPrinter", std::to_string(copies));
  }
  bool PEExportTo(int, const print::PEExportOptions& options) override {
    return Note("PEExportTo", options.formatDLLName + " " + options.destinationDLLName);
  }
  bool PESetPrintOptions(int, const print::PEPrintOptions& options) override {
    return Note("PESetPrintOptions",
                std::to_string(options.startPageN) + " to " + std::to_string(options.stopPageN) + ", " +
                    std::to_string(options.nReportCopies) + (options.collate ? " collated" : ""));
  }
  bool PESelectPrinter(int, const std::string& printer) override { return Note("PESelectPrinter", printer); }
  bool PESelectPdfFile(int, const std::string& path) override { return Note("PESelectPdfFile", path); }
  bool PEShowPrintControls(int, bool show) override { return Note("PEShowPrintControls", show ? "1" : "0"); }
  bool PEStartPrintJob(int, bool wait) override { return Note("PEStartPrintJob", wait ? "1" : "0"); }
  bool PEPrintControlsShowing(int, bool* showing) override {
    *showing = true;
    return true;
  }
  std::uintptr_t PEGetWindowHandle(int) override { return looks-- > 0 ? 1 : 0; }
  bool PEGetErrorText(int, int* handle, int* length) override {
    const std::string text = last_.empty() ? errorText : last_;
    last_.clear();
    return Hand(text, handle, length);
  }
  void SetPrintSettings(const print::PrintSettings& settings) override {
    Note("SetPrintSettings", settings.user + (settings.a4 ? " A4" : " Letter"));
  }
  std::string SelectionFault(const std::string&, const std::string& selection) override {
    asked.push_back(selection);
    return fault;
  }
  std::optional<dw::RowCount> CountRows(const std::string&, const std::string&) override { return rows; }

  std::set<int> hidden;            ///< sections that are not visible
  std::vector<std::string> asked;  ///< the selections that SelectionFault was asked about

 private:
  bool Note(const std::string& call, std::string arguments = {}) {
    for (char& c : arguments)
      if (c == '\0') c = '~';
    calls.push_back(arguments.empty() ? call : call + " " + arguments);
    const bool fails = failing.contains(call);
    if (fails) last_ = "Fault of " + call;
    return !fails;
  }
  bool Hand(const std::string& text, int* handle, int* length) {
    texts_.push_back(text);
    *handle = static_cast<int>(texts_.size()) - 1;
    *length = static_cast<int>(text.size());
    return true;
  }

  struct Texts : std::vector<std::string> {
    std::string& operator[](int n) { return at(static_cast<std::size_t>(n)); }
  };
  Texts texts_;
  std::string last_;
};

/// Installs a fake engine for as long as it lives.
class EngineScript {
 public:
  EngineScript() : earlier_(dw::InstallPrintCalls(engine_)) {}
  ~EngineScript() { dw::InstallPrintCalls(earlier_); }
  EngineScript(const EngineScript&) = delete;
  EngineScript& operator=(const EngineScript&) = delete;
  FakeEngine* operator->() { return engine_.get(); }

 private:
  std::shared_ptr<FakeEngine> engine_ = std::make_shared<FakeEngine>();
  std::shared_ptr<dw::PrintCalls> earlier_;
};

/// A print dialog that ends as the test says.
class FakePrintDialog : public print::PrintDialog {
 public:
  std::optional<print::PrinterChoice> standard = print::PrinterChoice{.printer = "Office", .paper = "Letter"};
  print::PrintDialogResult result;
  std::vector<print::PrintDialogRequest> requests;

  std::optional<print::PrinterChoice> Default() override { return standard; }
  print::PrintDialogResult Show(const print::PrintDialogRequest& request) override {
    requests.push_back(request);
    return result;
  }
};

}  // namespace test
