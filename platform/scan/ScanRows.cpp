#include "platform/scan/ScanRows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <system_error>

namespace sys {
namespace {

using Samples = ScanPass::Samples;

/// The sample at a position of the row, as 8 bits.
std::uint8_t Sample(const ScanPass& pass, const std::uint8_t* row, std::size_t place) {
  if (pass.bits == 1) return (row[place / 8] >> (7 - place % 8)) & 1 ? 0 : 255;
  if (pass.bits == 8) return row[place];
  return row[2 * place + (std::endian::native == std::endian::little ? 1 : 0)];
}

std::size_t SamplesPerPixel(const ScanPass& pass) { return pass.samples == Samples::RedGreenBlue ? 3 : 1; }

/// A number with its lowest byte first, as in the file.
template <std::size_t bytes>
void Put(std::string& text, std::uint32_t number) {
  for (std::size_t i = 0; i < bytes; ++i) text += static_cast<char>(number >> (8 * i) & 0xFF);
}

}  // namespace

bool IsKnown(const ScanPass& pass) {
  const bool bits = pass.bits == 8 || pass.bits == 16 || (pass.bits == 1 && pass.samples == Samples::Gray);
  if (!bits || pass.width < 1) return false;
  const auto samples = static_cast<std::size_t>(pass.width) * SamplesPerPixel(pass);
  return pass.bytesPerRow >= (samples * static_cast<std::size_t>(pass.bits) + 7) / 8;
}

void AddRow(const ScanPass& pass, const std::uint8_t* row, int y, ScannedPicture& picture) {
  picture.width = pass.width;
  const std::size_t width = static_cast<std::size_t>(pass.width);
  const std::size_t start = static_cast<std::size_t>(y) * width * 3;
  if (picture.pixels.size() < start + width * 3) picture.pixels.resize(start + width * 3);
  picture.height = std::max(picture.height, y + 1);
  std::uint8_t* pixel = &picture.pixels[start];
  for (std::size_t x = 0; x < width; ++x, pixel += 3) {
    switch (pass.samples) {
      case Samples::Gray:
        pixel[0] = pixel[1] = pixel[2] = Sample(pass, row, x);
        break;
      case Samples::RedGreenBlue:
        for (std::size_t color = 0; color < 3; ++color) pixel[color] = Sample(pass, row, 3 * x + color);
        break;
      case Samples::Red:
        pixel[0] = Sample(pass, row, x);
        break;
      case Samples::Green:
        pixel[1] = Sample(pass, row, x);
        break;
      case Samples::Blue:
        pixel[2] = Sample(pass, row, x);
        break;
    }
  }
}

void WriteBmp(const std::string& path, const ScannedPicture& picture) {
  constexpr std::uint32_t kHeads = 14 + 40;
  const auto width = static_cast<std::uint32_t>(picture.width);
  const auto height = static_cast<std::uint32_t>(picture.height);
  const std::uint32_t rowBytes = (width * 3 + 3) / 4 * 4;
  const auto dotsPerMetre = static_cast<std::uint32_t>(std::lround(picture.dotsPerInch / 0.0254));

  std::string head = "BM";
  Put<4>(head, kHeads + rowBytes * height);
  Put<4>(head, 0);
  Put<4>(head, kHeads);
  Put<4>(head, 40);
  Put<4>(head, width);
  Put<4>(head, height);
  Put<2>(head, 1);   // planes
  Put<2>(head, 24);  // bits for each pixel
  Put<4>(head, 0);   // not compressed
  Put<4>(head, rowBytes * height);
  Put<4>(head, dotsPerMetre);
  Put<4>(head, dotsPerMetre);
  Put<4>(head, 0);
  Put<4>(head, 0);

  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << head;
  // The file begins with the bottom row.
  std::string row(rowBytes, '\0');
  for (std::size_t y = height; y-- > 0 && file;) {
    const std::uint8_t* pixel = &picture.pixels[y * width * 3];
    for (std::size_t x = 0; x < std::size_t{width} * 3; x += 3)
      for (std::size_t color = 0; color < 3; ++color)
        row[x + color] = static_cast<char>(pixel[x + 2 - color]);
    file << row;
  }
  file.close();
  if (!file)
    throw ScanError("'" + path + "' cannot be written: " + std::generic_category().message(errno) + ".");
}

}  // namespace sys
