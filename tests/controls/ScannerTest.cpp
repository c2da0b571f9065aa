// Tests the rows of devices, and scans with the drivers' own device for tests.
#include "platform/scan/Scanner.h"

#include <gtest/gtest.h>

#include <QImage>
#include <chrono>
#include <thread>

#include "platform/scan/ScanRows.h"
#include "support/SecondProcess.h"
#include "support/TempDirectory.h"
#include "support/TestScanner.h"
#if __has_include(<sane/sane.h>)
#include "platform/scan/SaneDevice.h"
#endif

namespace {

using Samples = sys::ScanPass::Samples;
using Pixels = std::vector<std::uint8_t>;

TEST(ScanRowsTest, RowsOfAllKindsBecomePixels) {
  sys::ScannedPicture lines;
  const std::uint8_t black[] = {0b01000000};
  sys::AddRow({Samples::Gray, 1, 3, 1}, black, 0, lines);
  EXPECT_EQ(lines.pixels, (Pixels{255, 255, 255, 0, 0, 0, 255, 255, 255}));

  sys::ScannedPicture deep;
  const std::uint16_t samples[] = {0x1122, 0x3344, 0xFF00};
  sys::AddRow({Samples::RedGreenBlue, 16, 1, 6}, reinterpret_cast<const std::uint8_t*>(samples), 0, deep);
  EXPECT_EQ(deep.pixels, (Pixels{0x11, 0x33, 0xFF}));

  sys::ScannedPicture passes;
  const std::uint8_t row[] = {7, 8, 0};
  for (const Samples color : {Samples::Red, Samples::Green, Samples::Blue})
    for (int y = 0; y < 2; ++y) sys::AddRow({color, 8, 2, 3}, row, y, passes);
  EXPECT_EQ(passes.height, 2);
  EXPECT_EQ(passes.pixels, (Pixels{7, 7, 7, 8, 8, 8, 7, 7, 7, 8, 8, 8}));

  EXPECT_FALSE(sys::IsKnown({Samples::Gray, 8, 10, 9})) << "rows that are too short for their pixels";
  EXPECT_FALSE(sys::IsKnown({Samples::RedGreenBlue, 1, 8, 3}));
}

TEST(ScanRowsTest, ABmpFileHoldsThePixels) {
  const test::TempDirectory directory;
  sys::ScannedPicture picture;
  picture.dotsPerInch = 150;
  const std::uint8_t row[] = {250, 0, 0, 0, 250, 0, 0, 0, 250};

  sys::AddRow({Samples::RedGreenBlue, 8, 3, 9}, row, 0, picture);
  sys::WriteBmp(directory.Path("a.bmp"), picture);
  const QImage read(QString::fromStdString(directory.Path("a.bmp")));
  ASSERT_EQ(read.size(), QSize(3, 1));
  EXPECT_EQ(read.pixelColor(0, 0), QColor(250, 0, 0));
  EXPECT_EQ(read.pixelColor(2, 0), QColor(0, 0, 250));
  EXPECT_NEAR(read.dotsPerMeterX(), 5906, 1);
  EXPECT_THROW(sys::WriteBmp(directory.Path("gone/a.bmp"), picture), sys::ScanError);
}

class Display : public sys::ScanDisplay {
 public:
  void ShowScan(const sys::ScannedPicture& soFar, int) override { rows_ = soFar.height; }
  int rows_ = 0;
};

class ScannerTest : public testing::Test {
 protected:
  /// The scan as it is in the file.
  QImage Scan(sys::ScanSize size, sys::ScanSetupQuestion question = {}) {
    const auto scanner = sys::MakeScanner();
    scanner->Reset();
    scanner->Size = size;
    scanner->Open();
    scanner->ScanTo = sys::kScanToFileAndDisplay;
    scanner->Image = directory_.Path("scan.bmp");
    scanner->DestImageControl = &display_;
    scanner->ShowSetupBeforeScan = question != nullptr;
    scanner->onSetup = std::move(question);
    EXPECT_TRUE(scanner->StartScan());
    scanner->CloseScanner();
    return QImage(QString::fromStdString(directory_.Path("scan.bmp")));
  }
  /// Why a scan fails.
  std::string Failure() {
    try {
      Scan(sys::ScanSize::Paper);
    } catch (const sys::ScanError& error) {
      return error.what();
    }
    return "none";
  }

  test::TempDirectory directory_;
  Display display_;
};

TEST_F(ScannerTest, WithoutADeviceNoneIsAvailable) {
  EXPECT_FALSE(sys::MakeScanner()->Available());
  EXPECT_EQ(Failure(), "No scanner was found.");
}

TEST_F(ScannerTest, TheSizeSetsTheAreaAndTheResolution) {
  const test::TestScanner device;
  if (!device.Installed()) GTEST_SKIP() << "no test device on this machine";
  // 86 by 54 mm at 300 dots per inch; the device cuts the sheet to its 200 mm.
  const QImage card = Scan(sys::ScanSize::CreditCard);
  EXPECT_NEAR(card.width(), 1016, 12);
  EXPECT_NEAR(card.height(), 638, 12);
  EXPECT_EQ(display_.rows_, card.height());
  const QImage sheet = Scan(sys::ScanSize::Paper);
  EXPECT_NEAR(sheet.width(), 1181, 12);
  EXPECT_NEAR(sheet.height(), 1181, 12);
  EXPECT_FALSE(sheet.isGrayscale());

  const QImage chosen = Scan(sys::ScanSize::Paper, [](sys::ScanSetup& setup) {
    EXPECT_EQ(setup.resolutions, (std::vector<int>{75, 100, 150, 200, 300}))
        << "at 600, the picture would be too large for a record";
    EXPECT_EQ(setup.mode, "Color");
    setup.resolution = 75;
    setup.mode = "Gray";
    return true;
  });
  EXPECT_NEAR(chosen.width(), 591, 6);
  EXPECT_TRUE(chosen.isGrayscale());
}

TEST_F(ScannerTest, DevicesOfOtherKindsAndDevicesInTrouble) {
  if (const test::TestScanner device; !device.Installed()) GTEST_SKIP() << "no test device on this machine";
  QImage usual;
  {
    const test::TestScanner device;
    usual = Scan(sys::ScanSize::Paper);
  }
  {
    const test::TestScanner device("three-pass true\nthree-pass-order GBR\n");
    EXPECT_EQ(Scan(sys::ScanSize::Paper), usual);
  }
  {
    const test::TestScanner device("hand-scanner true\n");
    EXPECT_GT(Scan(sys::ScanSize::Paper).height(), 100) << "its height is known only at the end";
  }
  {
    const test::TestScanner device("read-status-code \"SANE_STATUS_JAMMED\"\n");
    EXPECT_EQ(Failure(), "Document feeder jammed.");
  }
}

#if __has_include(<sane/sane.h>)

/// A driver whose scan jams and whose end waits for a thread that never ends.
sys::SaneLibrary Hanging() {
  sys::SaneLibrary library;
  library.open = [](SANE_String_Const, SANE_Handle*) { return SANE_STATUS_GOOD; };
  library.close = [](SANE_Handle) { ADD_FAILURE() << "it would wait once more"; };
  library.getOptionDescriptor = [](SANE_Handle, SANE_Int) -> const SANE_Option_Descriptor* {
    return nullptr;
  };
  library.controlOption = [](SANE_Handle, SANE_Int, SANE_Action, void*, SANE_Int*) {
    return SANE_STATUS_UNSUPPORTED;
  };
  library.start = [](SANE_Handle) { return SANE_STATUS_JAMMED; };
  library.strstatus = [](SANE_Status) -> SANE_String_Const { return "Jammed"; };
  library.cancel = [](SANE_Handle) { std::this_thread::sleep_for(std::chrono::minutes(10)); };
  return library;
}

TEST(Scanner, ADriverThatNeverComesBackFromItsEndIsLeftAlone) {
  const sys::SaneLibrary library = Hanging();
  // The driver stays in its process, so the scan has a process of its own.
  test::SecondProcess scans([&](test::SecondProcess::Channel& channel) {
    std::string words = "read";
    try {
      sys::SaneDevice device(library, "any");
      device.Read(nullptr);
    } catch (const sys::ScanError& error) {
      words = error.what();
    }
    channel.Say(words + (sys::SaneDevice::DriverHangs() ? ", hangs" : ""));
    channel.Hear();
  });
  EXPECT_EQ(scans.Talk().Hear(), "Jammed., hangs");
}

#endif

}  // namespace
