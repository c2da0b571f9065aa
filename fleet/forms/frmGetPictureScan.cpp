// How frmGetPictureFile scans.
#include <utility>

#include "fleet/forms/frmGetPictureFile.h"
#include "platform/controls/ScanSetupDialog.h"
#include "platform/runtime/Clock.h"
#include "platform/screen/Screen.h"
#include "platform/system/Files.h"

namespace dw {
namespace {

/// Ends the scan with a sentence from saving or converting.
void Demand(const std::string& fault) {
  if (!fault.empty()) throw sys::ScanError(fault);
}

}  // namespace

void frmGetPictureFile::Scan() {
  const auto enable = [this](bool on) {
    for (QPushButton* button : {&cancelButton, &selectButton, &scanButton}) button->setEnabled(on);
  };
  enable(false);
  scanning_ = true;
  ScanTrace trace(makeTrace.isChecked());
  bool done = false;
  {
    const screen::Hourglass hourglass;
    trace.Line("Clicked Scan option " + rt::GeneralDate(rt::Now()));
    done = ScanPicture(trace);
  }
  scanning_ = false;
  enable(true);
  if (!done) {
    scanButton.setFocus();
    return;
  }
  trace.Line("Scanned image has been accepted");
  Unload();
}

bool frmGetPictureFile::ScanPicture(ScanTrace& trace) {
  const auto files = PrepareScanFiles(TemporaryFilepath, TemporaryFilename, trace);
  // Without a name another try makes no sense, and the window closes.
  if (!files) return true;
  try {
    if (!RunScanner(files->bmp, trace)) return false;
    const std::string path = SaveScan(*files, trace);
    preview.ShowFile(path);
    return true;
  } catch (const sys::ScanError& error) {
    trace.Line(std::string("Scan failed: ") + error.what());
    ImgScan1->CloseScanner();
    scanImage.ClearDisplay();
    for (const std::string& half : {files->bmp, files->jpeg}) sys::DeleteFile(half);
    const screen::Pointer pointer = screen::SetPointer(screen::Pointer::Normal);
    screen::MessageBox(std::string("Unable to scan the picture.\r") + error.what(), screen::Icon::Critical);
    screen::SetPointer(pointer);
    return false;
  }
}

sys::ScanSize frmGetPictureFile::Size() const {
  if (camera.isChecked()) return sys::ScanSize::Camera;
  return creditCard.isChecked() ? sys::ScanSize::CreditCard : sys::ScanSize::Paper;
}

bool frmGetPictureFile::RunScanner(const std::string& bmp, ScanTrace& trace) {
  sys::Scanner& scanner = *ImgScan1;
  scanner.Reset();
  scanner.Size = Size();
  trace.Line("Opening Scanner.");
  scanner.Open();
  trace.Line("Setting ScanTo property.");
  scanner.ScanTo = sys::kScanToFileAndDisplay;
  trace.Line("Setting Image property.");
  scanner.Image = bmp;
  trace.Line("Setting DestImageControl property.");
  scanner.DestImageControl = &scanImage;
  trace.Line("Setting ShowSetupBeforeScan property.");
  scanner.ShowSetupBeforeScan = setUpBeforeScan.isChecked();
  scanner.onSetup = [this](sys::ScanSetup& setup) {
    const screen::Pointer pointer = screen::SetPointer(screen::Pointer::Normal);
    const bool wanted = ui::AskScanSetup(this, setup);
    screen::SetPointer(pointer);
    return wanted;
  };
  trace.Line("Calling StartScan");
  const bool scanned = scanner.StartScan();
  trace.Line("Calling CloseScanner");
  scanner.CloseScanner();
  if (!scanned) trace.Line("Scan was cancelled");
  return scanned;
}

std::string frmGetPictureFile::SaveScan(const ScanFiles& files, ScanTrace& trace) {
  trace.Line("Saving Picture to " + files.bmp);
  Demand(scanImage.SetImage(ImgScan1->Image));
  Demand(scanImage.SaveBmp(files.bmp));
  scanImage.ClearDisplay();
  if (!ReturnJPG) {
    trace.Line("No JPG conversion requested");
    SetPhoto(files.bmp);
    return files.bmp;
  }
  trace.Line("Converting " + files.bmp + " to JPEG Format");
  Demand(converter.Load(files.bmp));
  trace.Line("Saving " + files.jpeg + " in JPG Format");
  Demand(converter.SaveJpeg(files.jpeg, 100));
  trace.Line("Scan successfully saved. Delete original BMP file");
  SetPhoto(files.jpeg);
  sys::DeleteFile(files.bmp);
  return files.jpeg;
}

}  // namespace dw
