// Lengths, places, colors and styles on paper.
#pragma once

#include <cstdint>
#include <string>

namespace print {

/// A length in hundredths of a point (an inch has 7,200). Whole numbers, so that the same report breaks its
/// pages at the same rows on every machine.
using Length = std::int32_t;

constexpr Length kPoint = 100;
constexpr Length kInch = 72 * kPoint;

/// A rectangle; left and top count from the upper left corner of whatever holds it.
struct Box {
  Length left = 0;
  Length top = 0;
  Length width = 0;
  Length height = 0;
  friend bool operator==(const Box&, const Box&) = default;
};

struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  friend bool operator==(const Color&, const Color&) = default;
};

enum class Align { Left, Center, Right };

/// The fonts that every installation has: Liberation Sans in four cuts and Liberation Mono.
enum class FontFace { Sans, SansBold, SansItalic, SansBoldItalic, Mono };

struct TextStyle {
  FontFace face = FontFace::Sans;
  Length size = 9 * kPoint;
  Color color;
  friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

}  // namespace print
