#include "platform/print/output/OutputFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "platform/print/PrintError.h"
#include "platform/print/output/Outputs.h"
#include "print/SampleReport.h"
#include "robustness/FullDisk.h"
#include "support/Apart.h"
#include "support/TempDirectory.h"

namespace print {
namespace {

namespace fs = std::filesystem;

constexpr OutputFormat kFormats[] = {OutputFormat::Text, OutputFormat::Pdf, OutputFormat::Csv,
                                     OutputFormat::Html, OutputFormat::Rtf, OutputFormat::Spreadsheet};

int FilesIn(const std::string& directory) {
  return static_cast<int>(std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

std::string FailureOf(const PageStore& pages, OutputFormat format, const std::string& path) {
  try {
    WriteOutput(pages, format, path, {}, {});
  } catch (const PrintError& error) {
    return error.what();
  }
  return "written";
}

/// A report of many different rows, so that no format makes it small.
const PageStore& LongReport(test::SampleReport& report) {
  test::RandomPages random(21);
  for (int row = 0; row < 3000; ++row)
    report.Row(rt::DateTime(2026, 1, 1), std::to_string(random.Number(0, 1 << 30)), random.Number(0, 1 << 30),
               "1.5", "$1.50");
  return report.Finish();
}

TEST(OutputFile, ReplacesAFileOnlyWhenTheNewOneIsWhole) {
  const test::TempDirectory directory;
  const std::string path = directory.Path("out");
  test::SampleReport report;
  const PageStore& pages = LongReport(report);
  for (const OutputFormat format : kFormats) {
    std::ofstream(path) << "earlier";
    chmod(path.c_str(), 0640);
    int calls = 0;
    EXPECT_FALSE(WriteOutput(pages, format, path, {}, [&](int page, int count) {
      EXPECT_EQ(count, pages.PageCount());
      EXPECT_EQ(page, ++calls);
      return page < 5;
    }));
    EXPECT_EQ(calls, 5);
    EXPECT_EQ(test::ReadFile(path), "earlier");
    EXPECT_EQ(FilesIn(directory.Path()), 1);
    EXPECT_TRUE(WriteOutput(pages, format, path, {}, {}));
    EXPECT_GT(fs::file_size(path), 10000U);
    struct stat state {};
    stat(path.c_str(), &state);
    EXPECT_EQ(state.st_mode & 07777U, 0640U);
    EXPECT_EQ(FilesIn(directory.Path()), 1);
  }
}

TEST(OutputFile, FollowsLinksAndKeepsDevices) {
  const test::TempDirectory directory;
  fs::create_directory(directory.Path("deep"));
  fs::create_symlink("deep/real.txt", directory.Path("link.txt"));
  test::SampleReport report;
  const PageStore& pages = report.Finish();
  WriteOutput(pages, OutputFormat::Text, directory.Path("link.txt"), {}, {});
  EXPECT_TRUE(fs::is_symlink(directory.Path("link.txt")));
  EXPECT_GT(fs::file_size(directory.Path("deep/real.txt")), 0U);
  fs::create_symlink("/dev/null", directory.Path("null.txt"));
  WriteOutput(pages, OutputFormat::Text, directory.Path("null.txt"), {}, {});
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(OutputFile, SaysWhyItCannotBeWritten) {
  const test::TempDirectory directory;
  test::SampleReport report;
  const PageStore& pages = report.Finish();
  for (const OutputFormat format : kFormats) {
    EXPECT_EQ(FailureOf(pages, format, directory.Path("no/such/a.pdf")),
              "'" + directory.Path("no/such/a.pdf") + "' cannot be written: there is no such folder.");
    EXPECT_EQ(FailureOf(pages, format, directory.Path()),
              "'" + directory.Path() + "' cannot be written: it is a folder.");
  }
  // Root may write everywhere, so somebody else tries.
  EXPECT_EQ(
      test::RunApart([&] {
        std::ofstream(directory.Path("kept")) << "earlier";
        chmod(directory.Path("kept").c_str(), 0444);
        chmod(directory.Path().c_str(), 0777);
        if (geteuid() == 0 && setuid(65534) != 0) return std::string("no other user");
        return FailureOf(pages, OutputFormat::Text, directory.Path("kept")) + "\n" +
               FailureOf(pages, OutputFormat::Text, "/usr/a.txt");
      }),
      "'" + directory.Path("kept") +
          "' cannot be written: permission denied.\n'/usr/a.txt' cannot be written: permission denied.");
}

/// Every format onto a disk that is full: an error in words, the earlier file, nothing besides.
std::string OntoAFullDisk(test::DiskKind kind, const std::string& directory) {
  test::Faults faults;
  test::SampleReport report;
  const PageStore& pages = LongReport(report);
  const std::string path = directory + "/out";
  test::Disk disk(kind, directory);
  for (const OutputFormat format : kFormats) {
    std::ofstream(path) << "earlier";
    disk.Fill(path, 9000);
    const std::string name = "format " + std::to_string(static_cast<int>(format));
    // A limit of files hits the spreadsheet's temporary files first.
    const std::string failure = FailureOf(pages, format, path);
    if (!failure.ends_with(" cannot be written: the disk is full.") &&
        !failure.starts_with("The temporary files of the spreadsheet cannot be written in "))
      faults.Add(name + ": " + failure);
    if (!failure.ends_with("the disk is full.")) faults.Add(name + ": " + failure);
    disk.Free();
    faults.Equal(test::ReadFile(path), std::string("earlier"), name);
    faults.Equal(FilesIn(directory), 1, name + " files");
    faults.Equal(FailureOf(pages, format, path), std::string("written"), name);
    fs::remove(path);
  }
  return faults.Text();
}

TEST(OutputFile, LeavesNothingOnAFullDisk) {
  const test::TempDirectory directory;
  EXPECT_EQ(test::RunApart([&] { return OntoAFullDisk(test::DiskKind::FileLimit, directory.Path()); }), "");
}

TEST(OutputFile, LeavesNothingOnASmallDisk) {
  const test::TempDirectory directory;
  const std::string refused = test::RunApart([&] { return test::Disk::Mount(directory.Path()); });
  if (!refused.empty()) GTEST_SKIP() << "No disk can be mounted here: " << refused;
  EXPECT_EQ(test::RunApart([&] { return OntoAFullDisk(test::DiskKind::SmallDisk, directory.Path()); }), "");
}

TEST(OutputFile, StandardOutputGetsTheWholeOrNothing) {
  const test::TempDirectory directory;
  test::SampleReport report;
  test::FillSample(report);
  const PageStore& pages = report.Finish();
  const auto written = [&](int pagesUntilCancel) {
    return test::RunApart([&] {
      const int out = open(directory.Path("out").c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
      dup2(out, STDOUT_FILENO);
      WriteOutput(pages, OutputFormat::Text, "-", {}, [&](int page, int) { return page < pagesUntilCancel; });
      return test::ReadFile(directory.Path("out"));
    });
  };
  EXPECT_EQ(written(99), test::ReadFile(std::string(DROVEWRIGHT_PRINT_CASES) + "/sample-report.txt"));
  EXPECT_EQ(written(2), "");
}

}  // namespace
}  // namespace print
