// Runs reports through the calls of the engine and catches what they show, print and mail.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/print/PrintError.h"
#include "platform/print/job/Destinations.h"
#include "platform/print/job/PrintEngine.h"
#include "support/SmallFleet.h"
#include "support/TempDirectory.h"

namespace print::test {

/// Windows that exist in name only.
class TestViewer : public Viewer {
 public:
  struct Window {
    std::shared_ptr<RunningReport> report;
    std::string title;
    bool open = true;
  };
  std::vector<Window> windows;

  std::uintptr_t Open(std::shared_ptr<RunningReport> report, const std::string& title, int, int, int,
                      int) override {
    windows.push_back({std::move(report), title, true});
    return windows.size();
  }
  bool IsOpen(std::uintptr_t window) override { return windows.at(window - 1).open; }
  void Close(std::uintptr_t window) override { windows.at(window - 1).open = false; }
};

inline std::string BytesOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// Keeps what was printed; refuses with the words in `refusal` if there are any.
class TestQueue : public PrinterQueue {
 public:
  std::vector<PrintTicket> tickets;
  std::vector<std::string> documents;
  std::string refusal;

  void Print(const std::string& pdfFile, const PrintTicket& ticket) override {
    if (!refusal.empty()) throw PrintError(refusal);
    tickets.push_back(ticket);
    documents.push_back(BytesOf(pdfFile));
  }
};

class TestMailer : public Mailer {
 public:
  std::vector<std::string> files;
  std::vector<std::string> subjects;
  std::vector<std::string> documents;
  bool refuses = false;

  void Send(const std::string& file, const std::string& subject) override {
    if (refuses) throw PrintError("There is no mail program.");
    files.push_back(file);
    subjects.push_back(subject);
    documents.push_back(BytesOf(file));
  }
};

/// A definition that the program is delivered with.
inline std::string Definition(const std::string& name) {
  return std::string(DROVEWRIGHT_PRINT_CASES) + "/../../../reports/definitions/" + name;
}

/// An open engine with windows, a printer and a mail program of its own.
class EngineTest : public testing::Test {
 protected:
  EngineTest() {
    earlierViewer_ = InstallViewer(viewer);
    earlierQueue_ = InstallPrinterQueue(queue);
    earlierMailer_ = InstallMailer(mailer);
    SetPrintSettings({false, "TESTER"});
    EXPECT_TRUE(PEOpenEngine());
  }
  ~EngineTest() override {
    PECloseEngine();
    InstallViewer(earlierViewer_);
    InstallPrinterQueue(earlierQueue_);
    InstallMailer(earlierMailer_);
    SetPrintSettings({});
  }

  static std::string Text(int handle, int length) {
    std::string text(static_cast<std::size_t>(length), ' ');
    EXPECT_TRUE(PEGetHandleString(handle, &text));
    return text;
  }
  static std::string Error(int job) {
    int handle = 0;
    int length = 0;
    PEGetErrorText(job, &handle, &length);
    return Text(handle, length);
  }
  /// A job on a definition whose tables all lie in the data file.
  static int Open(const std::string& definition, const std::string& dataFile) {
    const int job = PEOpenPrintJob(definition);
    EXPECT_NE(job, 0) << Error(0);
    PETableLocation location;
    location.Location = dataFile + std::string(1, '\0');
    for (int i = 0; i < PEGetNTables(job); ++i) {
      EXPECT_TRUE(PESetNthTableLocation(job, i, location));
    }
    return job;
  }
  static void HideDetails(int job) {
    PESectionOptions options;
    EXPECT_TRUE(PEGetSectionFormat(job, kDetailSection, &options));
    options.visible = 0;
    EXPECT_TRUE(PESetSectionFormat(job, kDetailSection, options));
  }
  static void BreakAfterGroups(int job) {
    for (int i = 0; i < PEGetNGroups(job); ++i) {
      PESectionOptions options;
      EXPECT_TRUE(PEGetSectionFormat(job, kGroupFooterSection + i, &options));
      options.newPageAfter = 1;
      EXPECT_TRUE(PESetSectionFormat(job, kGroupFooterSection + i, options));
    }
  }
  /// Shows the job in a window and gives all of its pages.
  const PageStore& Show(int job) {
    EXPECT_TRUE(PEOutputToWindow(job, "Window", 0, 0, 100, 100));
    EXPECT_TRUE(PEStartPrintJob(job, true)) << Error(job);
    const RunningReport& report = *viewer->windows.back().report;
    while (!report.Pages().Finished()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(report.Failure(), "");
    EXPECT_EQ(report.Warnings(), "");
    return report.Pages();
  }
  /// The pages as text.
  std::string ShowText(int job) {
    WriteOutput(Show(job), OutputFormat::Text, directory.Path("report.txt"), {}, {});
    return BytesOf(directory.Path("report.txt"));
  }

  ::test::TempDirectory directory;
  std::shared_ptr<TestViewer> viewer = std::make_shared<TestViewer>();
  std::shared_ptr<TestQueue> queue = std::make_shared<TestQueue>();
  std::shared_ptr<TestMailer> mailer = std::make_shared<TestMailer>();

 private:
  std::shared_ptr<Viewer> earlierViewer_;
  std::shared_ptr<PrinterQueue> earlierQueue_;
  std::shared_ptr<Mailer> earlierMailer_;
};

}  // namespace print::test
