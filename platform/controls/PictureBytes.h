// Pictures in files and records: reading, limits, decoding.
#pragma once

#include <QImage>
#include <cstdint>
#include <string>

#include "platform/runtime/Value.h"

namespace ui {

/// The program refuses pictures that are larger than this.
inline constexpr std::int64_t kMostPictureBytes = 64LL * 1024 * 1024;
inline constexpr std::int64_t kMostPicturePixels = 100'000'000;

/// Reads a file's bytes as they are. Returns the reason of a failure as the end of a sentence: "it is larger
/// than 64 MB"; empty on success.
std::string ReadPictureFile(const std::string& path, rt::Binary& bytes);

struct DecodedPicture {
  QImage image;       ///< may have fewer pixels than the picture; empty on a fault
  QSize whole;        ///< the picture's own size, upright
  std::string fault;  ///< why it cannot be shown, as the end of a sentence
};
/// Decodes a picture with enough pixels for a place of this size, and not many more: a photo of many
/// megapixels is never in memory whole. Turns photos that were taken sideways upright.
DecodedPicture DecodePicture(const rt::Binary& bytes, const QSize& place);

}  // namespace ui
