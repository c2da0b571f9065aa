// Printing through a printing system of the test's own: a scheduler on a socket in a temporary directory,
// whose printers write to files. The system's own service is neither needed nor touched.
#include <cups/cups.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "platform/print/job/CupsQueue.h"
#include "print/job/ReportFixture.h"

namespace print::test {
namespace {

namespace files = std::filesystem;

constexpr auto kScheduler = "/usr/sbin/cupsd";

/// Waits up to ten seconds.
template <class Condition>
bool Becomes(Condition condition) {
  for (int i = 0; i < 1000 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  return condition();
}

class Scheduler {
 public:
  Scheduler() {
    for (const char* name : {"etc/ppd", "cache", "state", "spool/tmp"}) files::create_directories(Path(name));
    const std::string root = Path("");
    // Filters run as another user.
    files::permissions(root, files::perms(0755));
    Write("files.conf", "ServerRoot " + root + "etc\nCacheDir " + root + "cache\nStateDir " + root +
                            "state\nRequestRoot " + root + "spool\nTempDir " + root +
                            "spool/tmp\nServerBin /usr/lib/cups\nDataDir /usr/share/cups\nAccessLog " + root +
                            "access.log\nErrorLog " + root + "error.log\nPageLog " + root +
                            "page.log\nFileDevice Yes\nSystemGroup root\n");
    Write("cupsd.conf", "Listen " + Path("socket") +
                            "\nBrowsing No\n<Location />\nOrder allow,deny\nAllow all\n</Location>\n<Policy "
                            "default>\n<Limit All>\nOrder allow,deny\nAllow all\n</Limit>\n</Policy>\n");
    Write("etc/printers.conf",
          "<DefaultPrinter Office>\nDeviceURI file:" + Path("office.out") +
              "\nState Idle\nAccepting Yes\n</DefaultPrinter>\n<Printer Closed>\nDeviceURI file:" +
              Path("closed.out") + "\nState Idle\nAccepting No\n</Printer>\n");
    // The filter puts what it was asked for in front of the document.
    Write("filter", "#!/bin/sh\nprintf '%s|%s|%s\\n' \"$3\" \"$4\" \"$5\"\ncat \"${6:--}\"\n");
    files::permissions(Path("filter"), files::perms(0755));
    Write("etc/ppd/Office.ppd", kPrinterDescription + "*cupsFilter2: \"application/pdf application/pdf 0 " +
                                    Path("filter") + "\"\n");
    process_ = fork();
    if (process_ == 0) {
      execl(kScheduler, kScheduler, "-f", "-c", Path("cupsd.conf").c_str(), "-s", Path("files.conf").c_str(),
            static_cast<char*>(nullptr));
      _exit(1);
    }
    cupsSetServer(Path("socket").c_str());
    started_ = Becomes([&] { return files::exists(Path("socket")); }) && Becomes([] {
                 cups_dest_t* printers = nullptr;
                 const int count = cupsGetDests(&printers);
                 cupsFreeDests(count, printers);
                 return count == 2;
               });
  }
  ~Scheduler() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
    cupsSetServer(nullptr);
  }
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  bool Started() const { return started_; }
  std::string Path(const std::string& name) const { return directory_.Path(name); }

 private:
  void Write(const std::string& name, const std::string& text) { std::ofstream(Path(name)) << text; }

  inline static const std::string kPrinterDescription =
      "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*FileVersion: \"1.0\"\n*LanguageVersion: English\n"
      "*LanguageEncoding: ISOLatin1\n*PCFileName: \"PDF.PPD\"\n*Manufacturer: \"Test\"\n*Product: "
      "\"(Test)\"\n"
      "*ModelName: \"Test\"\n*ShortNickName: \"Test\"\n*NickName: \"Test\"\n*PSVersion: \"(3010.000) 0\"\n"
      "*OpenUI *PageSize/Media Size: PickOne\n*DefaultPageSize: Letter\n*PageSize Letter/Letter: \"\"\n"
      "*PageSize A4/A4: \"\"\n*CloseUI: *PageSize\n*OpenUI *PageRegion: PickOne\n*DefaultPageRegion: Letter\n"
      "*PageRegion Letter/Letter: \"\"\n*PageRegion A4/A4: \"\"\n*CloseUI: *PageRegion\n"
      "*DefaultImageableArea: Letter\n*ImageableArea Letter/Letter: \"0 0 612 792\"\n"
      "*ImageableArea A4/A4: \"0 0 595 842\"\n*DefaultPaperDimension: Letter\n"
      "*PaperDimension Letter/Letter: \"612 792\"\n*PaperDimension A4/A4: \"595 842\"\n";

  ::test::TempDirectory directory_;
  pid_t process_ = -1;
  bool started_ = false;
};

class Printing : public EngineTest {
 protected:
  void SetUp() override {
    if (access(kScheduler, X_OK) != 0) GTEST_SKIP() << "There is no " << kScheduler << " to print with.";
    if (geteuid() != 0) GTEST_SKIP() << "Only root may start a printing system with a filter of its own.";
    scheduler_ = std::make_unique<Scheduler>();
    ASSERT_TRUE(scheduler_->Started()) << BytesOf(scheduler_->Path("error.log"));
    InstallPrinterQueue(MakeCupsQueue());
  }
  /// What the printer's file holds once it holds a whole document.
  std::string Printed() {
    std::string document;
    EXPECT_TRUE(Becomes([&] {
      document = BytesOf(scheduler_->Path("office.out"));
      return document.find("%%EOF") != std::string::npos;
    })) << BytesOf(scheduler_->Path("error.log"));
    return document;
  }

  std::unique_ptr<Scheduler> scheduler_;
};

TEST_F(Printing, HandsOverDocumentAndOptions) {
  const ::test::SmallFleet fleet;
  const int job = Open(Definition("dwr011.rpt"), fleet.Path());
  EXPECT_TRUE(PESetFormula(job, "RptTitle1", "\"Readings of May\""));
  PEPrintOptions options;
  options.nReportCopies = 3;
  options.collate = false;
  EXPECT_TRUE(PESetPrintOptions(job, options));
  EXPECT_TRUE(PESelectPrinter(job, "Office"));
  EXPECT_TRUE(PEOutputToPrinter(job, 1));
  ASSERT_TRUE(PEStartPrintJob(job, true)) << Error(job);
  const std::string printed = Printed();
  const std::string ticket = printed.substr(0, printed.find('\n'));
  EXPECT_TRUE(ticket.starts_with("Readings of May|3|")) << ticket;
  EXPECT_NE(ticket.find("media=na_letter_8.5x11in"), std::string::npos) << ticket;
  EXPECT_NE(ticket.find("separate-documents-uncollated-copies"), std::string::npos) << ticket;
  EXPECT_TRUE(printed.substr(ticket.size() + 1).starts_with("%PDF-"));
}

TEST_F(Printing, TheDefaultPrinterTakesA4) {
  const ::test::SmallFleet fleet;
  SetPrintSettings({true, "TESTER"});
  const int job = Open(Definition("dwr011.rpt"), fleet.Path());
  EXPECT_TRUE(PEOutputToPrinter(job, 1));
  ASSERT_TRUE(PEStartPrintJob(job, true)) << Error(job);
  const std::string printed = Printed();
  EXPECT_NE(printed.find("|1|"), std::string::npos);
  EXPECT_NE(printed.find("media=iso_a4_210x297mm"), std::string::npos);
}

TEST_F(Printing, RefusalsAreToldInThePrintersWords) {
  const ::test::SmallFleet fleet;
  const int job = Open(Definition("dwr011.rpt"), fleet.Path());
  EXPECT_TRUE(PEOutputToPrinter(job, 1));
  EXPECT_TRUE(PESelectPrinter(job, "Closed"));
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_NE(Error(job).find("Closed"), std::string::npos) << Error(job);
  EXPECT_NE(Error(job).find("not accepting"), std::string::npos) << Error(job);
  // A printer that was deleted since it was chosen.
  EXPECT_TRUE(PESelectPrinter(job, "Gone"));
  EXPECT_FALSE(PEStartPrintJob(job, true));
  EXPECT_NE(Error(job).find("Gone"), std::string::npos) << Error(job);
  EXPECT_FALSE(files::exists(scheduler_->Path("office.out")));
}

}  // namespace
}  // namespace print::test
