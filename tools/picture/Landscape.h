// The land behind the road: sky, hills, trees, the depot, and the road itself.
#pragma once

#include <QPainter>

namespace picture {

/// The size that everything is drawn for.
inline constexpr int kWidth = 1600;
inline constexpr int kHeight = 1000;

/// The height at which the wheels of the two lanes touch the road, from the top.
inline constexpr double kFarLane = 742;
inline constexpr double kNearLane = 872;

void DrawSky(QPainter& painter);
void DrawHills(QPainter& painter);
/// Fields, the side road, trees and the depot in the middle distance.
void DrawMiddle(QPainter& painter);
void DrawRoad(QPainter& painter);
/// Grass before the road.
void DrawForeground(QPainter& painter);

}  // namespace picture
