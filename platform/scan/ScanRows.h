// Converts the rows that devices send to pixels, and pixels to a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/scan/Scanner.h"

namespace sys {

/// The rows of one pass of a device.
struct ScanPass {
  enum class Samples { Gray, RedGreenBlue, Red, Green, Blue };
  Samples samples = Samples::Gray;
  int bits = 8;  ///< of each sample: 1 (gray only, a set bit is black), 8, or 16 in the machine's byte order
  int width = 0;
  std::size_t bytesPerRow = 0;
};

/// Whether this system can put rows of this kind into a picture.
bool IsKnown(const ScanPass& pass);
/// Puts one row of a pass into the picture, which grows as needed.
void AddRow(const ScanPass& pass, const std::uint8_t* row, int y, ScannedPicture& picture);

/// Writes a picture as a BMP file with 24 bits for each pixel. Throws ScanError.
void WriteBmp(const std::string& path, const ScannedPicture& picture);

}  // namespace sys
