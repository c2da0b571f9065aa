#include "platform/controls/PictureBytes.h"

#include <QBuffer>
#include <QImageReader>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace ui {
namespace {

namespace fs = std::filesystem;

/// The most pixels of one image in memory, however large its place on the screen is.
constexpr std::int64_t kMostDecodedPixels = 24'000'000;

std::int64_t Pixels(const QSize& size) { return static_cast<std::int64_t>(size.width()) * size.height(); }

QSize Part(const QSize& whole, int part) {
  return {(whole.width() + part - 1) / part, (whole.height() + part - 1) / part};
}

/// The largest power of two by which the picture can be divided and still fill its place. The common photo
/// format decodes fast at such sizes.
int PartFor(const QSize& whole, const QSize& place) {
  int part = 1;
  const QSize needed = whole.scaled(place, Qt::KeepAspectRatio);
  for (;;) {
    const QSize next = Part(whole, part * 2);
    const bool enough = next.width() >= needed.width() && next.height() >= needed.height();
    if (!enough && Pixels(Part(whole, part)) <= kMostDecodedPixels) return part;
    part *= 2;
  }
}

std::string Reason(int error) { return std::generic_category().message(error); }

}  // namespace

std::string ReadPictureFile(const std::string& path, rt::Binary& bytes) {
  bytes.clear();
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) return "there is no such file";
  if (!fs::is_regular_file(status)) return "it is no file";
  const auto size = fs::file_size(path, error);
  if (error) return Reason(error.value());
  if (size > static_cast<std::uintmax_t>(kMostPictureBytes)) return "it is larger than 64 MB";
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) return Reason(errno);
  bytes.resize(static_cast<std::size_t>(size));
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (file.gcount() == static_cast<std::streamsize>(bytes.size())) return {};
  bytes.clear();
  return "it cannot be read to its end";
}

DecodedPicture DecodePicture(const rt::Binary& bytes, const QSize& place) {
  DecodedPicture decoded;
  if (static_cast<std::int64_t>(bytes.size()) > kMostPictureBytes) {
    decoded.fault = "it is larger than 64 MB";
    return decoded;
  }
  QByteArray raw = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                           static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&raw);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  if (!reader.canRead()) {
    decoded.fault = "it is no picture of a kind that can be shown here";
    return decoded;
  }
  QSize stored = reader.size();
  if (Pixels(stored) > kMostPicturePixels) {
    decoded.fault = "it has more than 100 million pixels";
    return decoded;
  }
  if (!stored.isEmpty()) {
    const bool sideways = reader.transformation() & QImageIOHandler::TransformationRotate90;
    const int part = PartFor(stored, sideways ? place.transposed() : place);
    if (part > 1) reader.setScaledSize(Part(stored, part));
    decoded.whole = sideways ? stored.transposed() : stored;
  }
  decoded.image = reader.read();
  if (decoded.image.isNull()) decoded.fault = "it is damaged";
  if (stored.isEmpty()) decoded.whole = decoded.image.size();
  return decoded;
}

}  // namespace ui
