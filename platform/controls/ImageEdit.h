// The scan as it comes in, and the files that become of it.
#pragma once

#include <QImage>
#include <string>

#include "platform/controls/PictureView.h"
#include "platform/scan/Scanner.h"

namespace ui {

/// Shows a scan while it is being made, and keeps a picture for saving. The functions give why they could not
/// do it, as a sentence; empty when done.
class ImageEdit : public PictureView, public sys::ScanDisplay {
 public:
  explicit ImageEdit(const char* name);

  void ShowScan(const sys::ScannedPicture& soFar, int rows) override;
  std::string SetImage(const std::string& path);
  /// Saves as a BMP file; what stood there before stays until the new file is whole.
  std::string SaveBmp(const std::string& path);
  void ClearDisplay();

 private:
  QImage picture_;
};

/// Turns a picture file into one of another kind. The functions give what ImageEdit's give.
class PictureConverter {
 public:
  std::string Load(const std::string& path);
  /// `quality` from 0 to 100.
  std::string SaveJpeg(const std::string& path, int quality);

 private:
  QImage picture_;
};

}  // namespace ui
