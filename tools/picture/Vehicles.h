// The vehicles of the picture, from the side, heading right. Each has its wheels on the line y = 0 and its
// tail at x = 0; the painter decides where that is, how large it is and which way it heads.
#pragma once

#include <QPainter>

namespace picture {

void DrawPickup(QPainter& painter);
void DrawSemitrailer(QPainter& painter);
void DrawGrader(QPainter& painter);
void DrawBus(QPainter& painter);
void DrawVan(QPainter& painter);

/// How long they are, for mirroring.
inline constexpr double kPickupLength = 330;
inline constexpr double kSemitrailerLength = 690;
inline constexpr double kGraderLength = 540;
inline constexpr double kBusLength = 520;
inline constexpr double kVanLength = 300;

}  // namespace picture
