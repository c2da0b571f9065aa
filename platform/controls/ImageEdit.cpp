#include "platform/controls/ImageEdit.h"

#include <QCoreApplication>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>
#include <algorithm>
#include <utility>

namespace ui {
namespace {

std::string Read(const std::string& path, QImage& picture) {
  QFile file(QFile::decodeName(path.c_str()));
  std::string reason;
  if (!file.open(QIODevice::ReadOnly)) {
    reason = file.errorString().toStdString();
  } else {
    QImageReader reader(&file);
    picture = reader.read();
    if (!picture.isNull()) return {};
    reason = reader.errorString().toStdString();
  }
  picture = {};
  return "'" + path + "' cannot be read: " + reason + ".";
}

std::string Write(const std::string& path, const QImage& picture, const char* format, int quality) {
  QSaveFile file(QFile::decodeName(path.c_str()));
  QString reason;
  if (!file.open(QIODevice::WriteOnly)) {
    reason = file.errorString();
  } else {
    QImageWriter writer(&file, format);
    writer.setQuality(quality);
    if (!writer.write(picture))
      reason = writer.errorString();
    else if (!file.commit())
      reason = file.errorString();
    else
      return {};
  }
  return "'" + path + "' cannot be written: " + reason.toStdString() + ".";
}

}  // namespace

ImageEdit::ImageEdit(const char* name) : PictureView(name) {
  setAccessibleName("Scan");
  ClearDisplay();
}

void ImageEdit::ShowScan(const sys::ScannedPicture& soFar, int rows) {
  const QImage rowsSoFar(soFar.pixels.data(), soFar.width, soFar.height, soFar.width * 3,
                         QImage::Format_RGB888);
  const int height = std::max(soFar.height, rows);
  const QSize part = QSize(soFar.width, height).scaled(PlaceOnScreen(), Qt::KeepAspectRatio);
  QImage image(part.expandedTo(QSize(1, 1)), QImage::Format_RGB32);
  image.fill(palette().color(QPalette::Base));
  QPainter painter(&image);
  painter.drawImage(QRectF(0, 0, image.width(), 1.0 * image.height() * soFar.height / height), rowsSoFar);
  painter.end();
  Show(std::move(image), {soFar.width, height});
  // The window shows the progress but takes no input: the scan ends before anything else starts.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

std::string ImageEdit::SetImage(const std::string& path) {
  std::string fault = Read(path, picture_);
  if (fault.empty())
    Show(picture_, picture_.size());
  else
    ClearDisplay();
  return fault;
}

std::string ImageEdit::SaveBmp(const std::string& path) { return Write(path, picture_, "bmp", -1); }

void ImageEdit::ClearDisplay() {
  picture_ = {};
  ShowText("No scan", true);
}

std::string PictureConverter::Load(const std::string& path) { return Read(path, picture_); }

std::string PictureConverter::SaveJpeg(const std::string& path, int quality) {
  return Write(path, picture_, "jpg", quality);
}

}  // namespace ui
