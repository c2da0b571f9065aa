// The windows of an asset's picture: a file, a scan, and the picture itself.
#include <gtest/gtest.h>

#include <QApplication>
#include <QBuffer>
#include <QComboBox>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "data/BrackenfelGlobals.h"
#include "fleet/forms/PictureForms.h"
#include "fleet/forms/frmAssetPicture.h"
#include "fleet/forms/frmGetPictureFile.h"
#include "platform/controls/Later.h"
#include "platform/runtime/Clock.h"
#include "support/ScreenScript.h"
#include "support/SmallFleet.h"
#include "support/TestScanner.h"
#include "support/desktop/FormDriver.h"

namespace {

namespace fs = std::filesystem;
using screen::Icon;

QByteArray Picture(Qt::GlobalColor color, const char* format) {
  QImage image(40, 30, QImage::Format_RGB32);
  image.fill(color);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, format);
  return bytes;
}

/// A form that asks for pictures, as an asset's window does.
class Caller : public ui::Form, public dw::PictureCaller {
 public:
  Caller() : Form("Caller") { resize(200, 100); }
};

class PictureFormsTest : public testing::Test {
 protected:
  PictureFormsTest() {
    fs::create_directories(directory_.Path("Photos/Scans"));
    Write("truck.jpg", Picture(Qt::red, "jpg"));
    Write("van.BMP", Picture(Qt::blue, "bmp"));
    Write("notes.txt", "no picture");
    Write("broken.wmf", "no picture either");
  }
  void Write(const std::string& name, const QByteArray& bytes) {
    std::ofstream(Path(name), std::ios::binary).write(bytes.data(), bytes.size());
  }
  std::string Path(const std::string& name) const { return directory_.Path("Photos/" + name); }

  dw::frmGetPictureFile& OpenGet() {
    if (!caller_) caller_ = new Caller;
    caller_->ShowForm();
    dw::OpenGetPicture(*caller_, *caller_);
    auto& form = dynamic_cast<dw::frmGetPictureFile&>(test::Open("frmGetPictureFile"));
    form.directories.SetPath(directory_.Path("Photos"));
    form.TemporaryFilepath = Path("Scans");
    test::Settle();
    return form;
  }
  static void ClickFile(dw::frmGetPictureFile& form, const char* name) {
    QListWidgetItem* item = form.fileList.findItems(name, Qt::MatchExactly).value(0);
    ASSERT_NE(item, nullptr) << name;
    QTest::mouseClick(form.fileList.viewport(), Qt::LeftButton, {},
                      form.fileList.visualItemRect(item).center());
    test::Settle();
  }
  static bool IsOpen() { return ui::FindForm("frmGetPictureFile") != nullptr; }
  /// Answers the setup window of the scanner that the next click opens.
  static void AnswerSetup(const char* button) {
    ui::Later(*qApp, [button] {
      QWidget* dialog = QApplication::activeModalWidget();
      ASSERT_NE(dialog, nullptr);
      auto& resolution = test::Find<QComboBox>(*dialog, "cboResolution");
      resolution.setCurrentIndex(resolution.findData(75));
      test::Find<QPushButton>(*dialog, button).click();
    });
  }
  std::string Trace() const {
    std::ostringstream text;
    text << std::ifstream(fleet_.Path("GetPictureFile.log")).rdbuf();
    return text.str();
  }

  test::SmallFleet fleet_;
  test::TempDirectory directory_;
  rt::FixedClock clock_{rt::DateTime(2026, 3, 1, 14, 5, 9)};
  test::ScreenScript screen_;
  Caller* caller_ = nullptr;  ///< a form, so it is unloaded with the others
  test::FormsEnd end_;
};

TEST_F(PictureFormsTest, TabGoesThroughTheWindowAndStopsAtTheChosenScanSizeAlone) {
  auto& form = OpenGet();
  test::Enter(form, "Drive1");
  std::vector<std::string> stops;
  for (int i = 0; i < 9; ++i) {
    QWidget* focus = QApplication::focusWidget();
    ASSERT_NE(focus, nullptr);
    stops.push_back(focus->objectName().toStdString());
    test::Press(*focus, Qt::Key_Tab);
  }
  // Without a scanner "cmdScan" is out of use.
  const std::vector<std::string> inOrder = {"Drive1",   "Dir1",      "File1",     "optPage",  "chkPreview",
                                            "chkTrace", "cmdSelect", "cmdRemove", "cmdCancel"};
  EXPECT_EQ(stops, inOrder);
  EXPECT_TRUE(form.drives.hasFocus()) << "and round again";
}

TEST_F(PictureFormsTest, AFileIsHandedOverByItsClickAlready) {
  auto& form = OpenGet();
  EXPECT_EQ(form.windowTitle(), "Get Picture File");
  EXPECT_EQ(form.fileList.count(), 3) << "pictures only, whatever the case of their endings";
  EXPECT_FALSE(form.scanButton.isEnabled());
  EXPECT_FALSE(form.scanImage.isVisible());

  test::Enter(form, "File1");
  screen_->Expect("Select a file name before clicking the Select button.", Icon::Information);
  test::Press(form.fileList, Qt::Key_Return);
  EXPECT_TRUE(form.fileList.hasFocus());
  EXPECT_EQ(caller_->Photo(), "") << "the focus alone does not choose";

  ClickFile(form, "truck.jpg");
  EXPECT_EQ(caller_->Photo(), Path("truck.jpg"));
  EXPECT_TRUE(form.preview.HasPicture());
  test::Press(form.fileList, Qt::Key_Down);
  EXPECT_EQ(caller_->Photo(), Path("van.BMP"));
  test::Click(form, "cmdSelect");
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(caller_->Photo(), Path("van.BMP"));
  EXPECT_EQ(ui::ActiveForm(), caller_);
  EXPECT_FALSE(caller_->RemovePhoto());
  EXPECT_TRUE(fs::exists(Path("van.BMP")));

  test::Click(OpenGet(), "cmdRemove");
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(caller_->RemovePhoto());
}

TEST_F(PictureFormsTest, AFileThatIsNoPictureKeepsTheWindowUntilItsCallerGoes) {
  auto& form = OpenGet();
  ClickFile(form, "broken.wmf");
  EXPECT_FALSE(form.preview.HasPicture());
  EXPECT_TRUE(form.preview.accessibleDescription().startsWith("This file cannot be used as a picture: "));
  screen_->ExpectPart("broken.wmf' cannot be used as a picture: ", Icon::Exclamation);
  test::Click(form, "cmdSelect");
  EXPECT_TRUE(IsOpen());
  form.directories.SetPath(Path("Scans"));
  EXPECT_EQ(form.preview.accessibleDescription().toStdString(), "No picture");
  caller_->Unload();
  test::Settle();
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(fs::exists(Path("broken.wmf")));
}

TEST_F(PictureFormsTest, CancelDeletesTheFileThatWasClicked) {
  auto* form = &OpenGet();
  test::Press(*form, Qt::Key_Escape);
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(fs::exists(Path("truck.jpg")));
  form = &OpenGet();
  ClickFile(*form, "truck.jpg");
  test::Click(*form, "cmdCancel");
  EXPECT_FALSE(IsOpen());
  EXPECT_FALSE(fs::exists(Path("truck.jpg")));
  EXPECT_EQ(caller_->Photo(), "");
  // Closing the window by its frame does not cancel: the choice stays.
  form = &OpenGet();
  ClickFile(*form, "van.BMP");
  form->close();
  test::Settle();
  EXPECT_EQ(caller_->Photo(), Path("van.BMP"));
  EXPECT_TRUE(fs::exists(Path("van.BMP")));
}

TEST_F(PictureFormsTest, AScanIsHandedOverWithATraceOfItsSteps) {
  const test::TestScanner device;
  if (!device.Installed()) GTEST_SKIP() << "no test device on this machine";
  auto* form = &OpenGet();
  EXPECT_TRUE(form->scanImage.isVisible());
  form->TemporaryFilename = "Truck7";
  form->makeTrace.setChecked(true);
  test::Click(*form, "cmdScan");
  EXPECT_FALSE(IsOpen());
  const std::string bmp = Path("Scans/truck7.bmp"), jpeg = Path("Scans/truck7.jpg");
  EXPECT_EQ(caller_->Photo(), bmp);
  EXPECT_GT(QImage(QString::fromStdString(bmp)).width(), 1000);
  const std::string begin = "Clicked Scan option 3/1/2026 2:05:09 PM\r\nFile path of '" + Path("Scans/") +
                            "' has been provided\r\nFile name of '" + Path("Scans/Truck7.bmp") +
                            "' has been provided\r\nRetrieved destination file name of '" + bmp +
                            "'\r\nRemoved any previously existing " + bmp + " and " + jpeg +
                            " files.\r\nOpening Scanner.\r\nSetting ScanTo property.\r\n"
                            "Setting Image property.\r\nSetting DestImageControl property.\r\n"
                            "Setting ShowSetupBeforeScan property.\r\nCalling StartScan\r\n"
                            "Calling CloseScanner\r\nSaving Picture to " +
                            bmp + "\r\n";
  EXPECT_EQ(Trace(), begin + "No JPG conversion requested\r\nScanned image has been accepted\r\n");

  form = &OpenGet();
  form->TemporaryFilename = "Truck7";
  form->ReturnJPG = true;
  form->makeTrace.setChecked(true);
  test::Click(*form, "cmdScan");
  EXPECT_EQ(caller_->Photo(), jpeg);
  EXPECT_FALSE(fs::exists(bmp));
  EXPECT_GT(QImage(QString::fromStdString(jpeg)).width(), 1000);
  EXPECT_EQ(Trace(), begin + "Converting " + bmp + " to JPEG Format\r\nSaving " + jpeg +
                         " in JPG Format\r\nScan successfully saved. Delete original BMP file\r\n"
                         "Scanned image has been accepted\r\n");
  // Cancel deletes a scan that the caller has not taken yet.
  test::Click(OpenGet(), "cmdCancel");
  EXPECT_TRUE(fs::is_empty(Path("Scans")));
}

TEST_F(PictureFormsTest, AScanThatIsNotMadeKeepsTheWindow) {
  const test::TestScanner device;
  if (!device.Installed()) GTEST_SKIP() << "no test device on this machine";
  auto* form = &OpenGet();
  test::Click(*form, "optCam");
  EXPECT_TRUE(form->setUpBeforeScan.isChecked());
  test::Click(*form, "optPage");
  EXPECT_FALSE(form->setUpBeforeScan.isChecked());
  form->setUpBeforeScan.setChecked(true);
  AnswerSetup("CancelButton");
  test::Click(*form, "cmdScan");
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(caller_->Photo(), "");
  EXPECT_TRUE(form->scanButton.isEnabled() && form->cancelButton.isEnabled() &&
              form->selectButton.isEnabled());
  AnswerSetup("OKButton");
  test::Click(*form, "cmdScan");
  EXPECT_FALSE(IsOpen());
  EXPECT_NEAR(QImage(QString::fromStdString(caller_->Photo())).width(), 591, 6);

  // A device with a fault.
  fs::remove(caller_->Photo());
  caller_->SetPhoto("");
  const test::TestScanner jammed("read-status-code \"SANE_STATUS_JAMMED\"\n");
  form = &OpenGet();
  form->makeTrace.setChecked(true);
  screen_->Expect("Unable to scan the picture.\rDocument feeder jammed.", Icon::Critical);
  test::Click(*form, "cmdScan");
  ASSERT_TRUE(IsOpen());
  EXPECT_TRUE(Trace().ends_with("Calling StartScan\r\nScan failed: Document feeder jammed.\r\n"));
  EXPECT_EQ(caller_->Photo(), "");
  EXPECT_TRUE(fs::is_empty(Path("Scans")));
  // Without a file name there is no scan, and the window closes.
  form->TemporaryFilepath = Path("gone");
  screen_->Expect("Unable to get file name to store scanned image.", Icon::Critical);
  test::Click(*form, "cmdScan");
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(screen_->CurrentPointer(), screen::Pointer::Normal);
}

TEST_F(PictureFormsTest, TheStoredPictureIsShown) {
  const auto stored = [&](Qt::GlobalColor color) {
    const QByteArray bytes = Picture(color, "bmp");
    return rt::Value(rt::Binary(bytes.begin(), bytes.end()));
  };
  const std::int32_t none = fleet_.AddAsset("NONE");
  const std::int32_t red = fleet_.AddAsset("RED", 1, {{"Photograph", stored(Qt::red)}});
  const std::int32_t blue = fleet_.AddAsset("BLUE", 1, {{"Photograph", stored(Qt::blue)}});
  screen_->Expect("No photograph available.  ", Icon::Information);
  dw::OpenAssetPicture(none);
  EXPECT_EQ(ui::FindForm("frmAssetPicture"), nullptr);

  const auto centre = [] {
    const QImage shown = test::Open("frmAssetPicture").grab().toImage();
    return shown.pixelColor(shown.rect().center());
  };
  dw::OpenAssetPicture(red);
  EXPECT_EQ(test::Open("frmAssetPicture").windowTitle(), "Picture of Asset");
  EXPECT_EQ(centre(), QColor(Qt::red));
  dw::OpenAssetPicture(blue);
  test::Settle();
  EXPECT_EQ(centre(), QColor(Qt::blue)) << "the open window shows the asset that was asked for last";
  test::Press(test::Open("frmAssetPicture"), Qt::Key_Escape);
  EXPECT_EQ(ui::FindForm("frmAssetPicture"), nullptr);
  EXPECT_EQ(fleet_.Ask("SELECT COUNT(*) FROM Vehicles WHERE Photograph IS NOT NULL"), "2");
}

}  // namespace
