#include "platform/controls/Contrast.h"

#include <algorithm>
#include <cmath>

namespace ui {
namespace {

/// Relative luminance of an sRGB color.
double Luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

}  // namespace

double Contrast(const QColor& one, const QColor& other) {
  // The list makes minmax return values; of two arguments it would return references to what is gone.
  const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

QColor Readable(const QColor& color, const QColor& ground) {
  constexpr double kMiddle = 0.18;  // black and white have equal contrast to it
  constexpr int kSteps = 20;
  const int end = Luminance(ground) < kMiddle ? 255 : 0;
  for (int step = 0; step < kSteps; ++step) {
    const auto towards = [&](int part) { return part + (end - part) * step / kSteps; };
    const QColor tried(towards(color.red()), towards(color.green()), towards(color.blue()));
    if (Contrast(tried, ground) >= kReadable) return tried;
  }
  return {end, end, end};
}

}  // namespace ui
