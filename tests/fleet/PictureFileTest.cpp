#include "fleet/PictureFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "data/BrackenfelGlobals.h"
#include "platform/system/Machine.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;
using screen::Icon;

class PictureFileTest : public testing::Test {
 protected:
  PictureFileTest() {
    fs::create_directory(directory_.Path("Data"));
    fs::create_directory(directory_.Path("Scans"));
    dw::SetDataPath(directory_.Path("Data"));
  }
  std::string Log() const {
    std::ostringstream text;
    text << std::ifstream(directory_.Path("Data/GetPictureFile.log")).rdbuf();
    return text.str();
  }
  static void Touch(const std::string& path) { std::ofstream(path) << "x"; }

  test::TempDirectory directory_;
  test::ScreenScript screen_;
};

TEST_F(PictureFileTest, ATraceReplacesTheOneBeforeAndIsWrittenOnlyWhenWanted) {
  dw::ScanTrace off(false);
  off.Line("never");
  EXPECT_FALSE(fs::exists(directory_.Path("Data/GetPictureFile.log")));
  for (const char* scan : {"first", "second"}) {
    dw::ScanTrace trace(true);
    trace.Line(scan);
    EXPECT_EQ(Log(), std::string(scan) + "\r\n") << "each line is in the file at once";
    trace.Line("step");
  }
  EXPECT_EQ(Log(), "second\r\nstep\r\n");

  dw::SetDataPath(directory_.Path("Gone"));
  dw::ScanTrace trace(true);
  screen_->ExpectPart("GetPictureFile.log': No such file or directory.\rThe scan goes on without",
                      Icon::Exclamation);
  trace.Line("told once");
  trace.Line("and not again");
}

TEST_F(PictureFileTest, AScanUnderAGivenNameReplacesTheEarlierOne) {
  const std::string folder = directory_.Path("Scans");
  Touch(folder + "/truck.bmp");
  Touch(folder + "/truck.jpg");
  Touch(folder + "/other.jpg");
  dw::ScanTrace trace(true);
  const auto files = dw::PrepareScanFiles(folder, "Truck", trace);
  ASSERT_TRUE(files);
  EXPECT_EQ(files->bmp, folder + "/truck.bmp")
      << "the file's name in small letters, the directory's unchanged";
  EXPECT_EQ(files->jpeg, folder + "/truck.jpg");
  EXPECT_FALSE(fs::exists(files->bmp));
  EXPECT_FALSE(fs::exists(files->jpeg));
  EXPECT_TRUE(fs::exists(folder + "/other.jpg"));
  EXPECT_EQ(Log(), "File path of '" + folder + "/' has been provided\r\n" +  //
                       "File name of '" + folder + "/Truck.bmp' has been provided\r\n" +
                       "Retrieved destination file name of '" + folder + "/truck.bmp'\r\n" +
                       "Removed any previously existing " + files->bmp + " and " + files->jpeg +
                       " files.\r\n");
}

TEST_F(PictureFileTest, WithoutANameTheSystemGivesOne) {
  const std::string folder = directory_.Path("Scans/");
  dw::ScanTrace trace(true);
  const auto files = dw::PrepareScanFiles(folder, "", trace);
  ASSERT_TRUE(files);
  EXPECT_TRUE(files->bmp.starts_with(folder + "scn")) << files->bmp;
  EXPECT_TRUE(files->bmp.ends_with(".bmp"));
  EXPECT_EQ(files->jpeg, files->bmp.substr(0, files->bmp.size() - 3) + "jpg");
  EXPECT_TRUE(fs::is_empty(folder)) << "only a name, no file";
  EXPECT_NE(Log().find("Retrieving temporary file path\r\nRetrieved destination file name of '" + folder),
            std::string::npos);

  dw::ScanTrace off(false);
  EXPECT_EQ(dw::PrepareScanFiles("", "Truck", off)->bmp, sys::ProgramDirectory() + "/truck.bmp");
  screen_->Expect("Unable to get file name to store scanned image.", Icon::Critical);
  EXPECT_FALSE(dw::PrepareScanFiles(directory_.Path("Gone"), "", trace));
}

}  // namespace
