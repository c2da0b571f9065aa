// Colors that people can read on their background.
#pragma once

#include <QColor>

namespace ui {

/// The least contrast of readable text.
inline constexpr double kReadable = 4.5;

/// The ratio of the lighter to the darker of two colors as the eye sees them: 1 for the same, 21 for black on
/// white.
double Contrast(const QColor& one, const QColor& other);
/// The color itself if it is readable on this background, else the nearest lighter or darker one that is.
QColor Readable(const QColor& color, const QColor& ground);

}  // namespace ui
