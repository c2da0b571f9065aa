// Colors that can be read on their ground.
#pragma once

#include <QColor>

namespace ui {

/// What readable text has at least.
inline constexpr double kReadable = 4.5;

/// The ratio of the lighter to the darker of two colors as the eye sees them: 1 for the same, 21 for black on
/// white.
double Contrast(const QColor& one, const QColor& other);
/// The color itself where it can be read on this ground, else the nearest lighter or darker one that can.
QColor Readable(const QColor& color, const QColor& ground);

}  // namespace ui
