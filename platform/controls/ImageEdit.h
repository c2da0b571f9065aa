// Shows a scan as it comes in, and saves it to files.
#pragma once

#include <QImage>
#include <string>

#include "platform/controls/PictureView.h"
#include "platform/scan/Scanner.h"

namespace ui {

/// Shows a scan while it is made, and keeps a picture for saving. The functions return the reason of a
/// failure as a sentence; empty on success.
class ImageEdit : public PictureView, public sys::ScanDisplay {
 public:
  explicit ImageEdit(const char* name);

  void ShowScan(const sys::ScannedPicture& soFar, int rows) override;
  std::string SetImage(const std::string& path);
  /// Saves as a BMP file; an earlier file stays until the new one is whole.
  std::string SaveBmp(const std::string& path);
  void ClearDisplay();

 private:
  QImage picture_;
};

/// Converts a picture file to another kind. The functions return the reason of a failure as ImageEdit's do.
class PictureConverter {
 public:
  std::string Load(const std::string& path);
  /// `quality` from 0 to 100.
  std::string SaveJpeg(const std::string& path, int quality);

 private:
  QImage picture_;
};

}  // namespace ui
