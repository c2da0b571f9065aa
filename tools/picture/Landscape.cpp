#include "tools/picture/Landscape.h"

#include <QLinearGradient>
#include <QPainterPath>
#include <QPolygonF>
#include <QRadialGradient>
#include <cmath>
#include <random>

namespace picture {
namespace {

constexpr double kHorizon = 560;
constexpr double kRoadTop = 694;
constexpr double kRoadBottom = 908;

/// A line of hills: a sum of slow waves.
struct Ridge {
  double height;  ///< of its middle, from the top
  double swing;   ///< how far it rises and falls
  double wave;    ///< length of the slowest wave
  double phase;
  double roughness;  ///< weight of the quick waves
  QColor top;
  QColor bottom;
};

double RidgeAt(const Ridge& ridge, double x) {
  const double t = x / ridge.wave * 2 * M_PI + ridge.phase;
  return ridge.height -
         ridge.swing * (0.6 * std::sin(t) + 0.3 * std::sin(2.3 * t + 1.1) +
                        ridge.roughness * (0.12 * std::sin(6.1 * t + 0.4) + 0.04 * std::sin(13.7 * t + 2.2)));
}

void DrawRidge(QPainter& painter, const Ridge& ridge) {
  QPainterPath path(QPointF(0, kHeight));
  for (int x = 0; x <= kWidth; x += 4) path.lineTo(x, RidgeAt(ridge, x));
  path.lineTo(kWidth, kHeight);
  path.closeSubpath();
  QLinearGradient color(0, ridge.height - ridge.swing, 0, ridge.height + 130);
  color.setColorAt(0, ridge.top);
  color.setColorAt(1, ridge.bottom);
  painter.fillPath(path, color);
}

void DrawCloud(QPainter& painter, double x, double y, double size) {
  painter.save();
  painter.translate(x, y);
  painter.scale(size, size);
  QPainterPath cloud;
  cloud.setFillRule(Qt::WindingFill);
  cloud.addRoundedRect(QRectF(-90, -12, 180, 24), 12, 12);
  cloud.addEllipse(QPointF(-34, -12), 34, 24);
  cloud.addEllipse(QPointF(16, -18), 40, 30);
  cloud.addEllipse(QPointF(54, -8), 26, 18);
  painter.fillPath(cloud.simplified(), QColor(255, 246, 230, 70));
  painter.restore();
}

void DrawPoplar(QPainter& painter, double x, double ground, double height, const QColor& color) {
  const double width = height * 0.24;
  painter.fillRect(QRectF(x - 2, ground - height * 0.18, 4, height * 0.18), QColor(74, 62, 54));
  QPainterPath crown(QPointF(x, ground - height));
  crown.cubicTo(x + width * 0.75, ground - height * 0.7, x + width * 0.6, ground - height * 0.12, x,
                ground - height * 0.1);
  crown.cubicTo(x - width * 0.6, ground - height * 0.12, x - width * 0.75, ground - height * 0.7, x,
                ground - height);
  painter.fillPath(crown, color);
  painter.setClipRect(QRectF(x, ground - height, width, height));
  painter.fillPath(crown, color.darker(114));
  painter.setClipping(false);
}

void DrawRoundTree(QPainter& painter, double x, double ground, double height, const QColor& color) {
  painter.fillRect(QRectF(x - 3, ground - height * 0.4, 6, height * 0.4), QColor(74, 62, 54));
  painter.setBrush(color.darker(112));
  painter.drawEllipse(QPointF(x + height * 0.1, ground - height * 0.58), height * 0.3, height * 0.28);
  painter.setBrush(color);
  painter.drawEllipse(QPointF(x - height * 0.1, ground - height * 0.62), height * 0.3, height * 0.3);
  painter.setBrush(color.lighter(110));
  painter.drawEllipse(QPointF(x - height * 0.16, ground - height * 0.7), height * 0.16, height * 0.14);
}

void DrawBay(QPainter& painter, double x, double ground, bool open) {
  const QRectF door(x, ground - 56, 62, 56);
  painter.fillRect(door.adjusted(-4, -4, 4, 0), QColor(105, 88, 76));
  painter.fillRect(door, open ? QColor(52, 54, 60) : QColor(150, 166, 168));
  if (open) {
    painter.fillRect(QRectF(x, ground - 56, 62, 9), QColor(150, 166, 168));
    painter.setBrush(QColor(168, 78, 58));
    painter.drawRoundedRect(QRectF(x + 12, ground - 34, 38, 28), 5, 5);
    painter.fillRect(QRectF(x + 17, ground - 30, 28, 10), QColor(176, 204, 210));
    painter.fillRect(QRectF(x + 14, ground - 7, 8, 7), QColor(34, 36, 40));
    painter.fillRect(QRectF(x + 40, ground - 7, 8, 7), QColor(34, 36, 40));
    return;
  }
  for (int line = 1; line < 5; ++line)
    painter.fillRect(QRectF(x, ground - 56 + line * 11.2, 62, 1.4), QColor(118, 134, 138));
  painter.fillRect(QRectF(x + 9, ground - 41, 44, 8), QColor(206, 222, 224));
}

void DrawDepot(QPainter& painter, double x, double ground) {
  const QColor wall(214, 199, 172);
  painter.fillRect(QRectF(x, ground - 84, 400, 84), wall);
  painter.fillRect(QRectF(x, ground - 84, 400, 10), wall.darker(110));
  QPolygonF roof;
  roof << QPointF(x - 14, ground - 82) << QPointF(x + 26, ground - 116) << QPointF(x + 374, ground - 116)
       << QPointF(x + 414, ground - 82);
  painter.setBrush(QColor(122, 86, 72));
  painter.drawPolygon(roof);
  painter.fillRect(QRectF(x - 14, ground - 84, 428, 4), QColor(94, 66, 56));
  for (int bay = 0; bay < 4; ++bay) DrawBay(painter, x + 22 + bay * 80, ground, bay == 2);
  // The office at the end, with a lit window and a door.
  painter.fillRect(QRectF(x + 346, ground - 50, 22, 50), QColor(88, 104, 112));
  painter.fillRect(QRectF(x + 376, ground - 52, 18, 20), QColor(255, 226, 158));
  // The pumps under their roof.
  painter.fillRect(QRectF(x + 470, ground - 70, 96, 8), QColor(47, 104, 116));
  painter.fillRect(QRectF(x + 484, ground - 62, 4, 62), QColor(120, 124, 126));
  painter.fillRect(QRectF(x + 548, ground - 62, 4, 62), QColor(120, 124, 126));
  painter.setBrush(QColor(176, 78, 58));
  painter.drawRoundedRect(QRectF(x + 502, ground - 34, 14, 34), 3, 3);
  painter.drawRoundedRect(QRectF(x + 524, ground - 34, 14, 34), 3, 3);
  painter.fillRect(QRectF(x + 504, ground - 30, 10, 8), QColor(232, 236, 232));
  painter.fillRect(QRectF(x + 526, ground - 30, 10, 8), QColor(232, 236, 232));
}

}  // namespace

void DrawSky(QPainter& painter) {
  QLinearGradient sky(0, 0, 0, kHorizon);
  sky.setColorAt(0, QColor(62, 96, 124));
  sky.setColorAt(0.45, QColor(126, 160, 172));
  sky.setColorAt(0.8, QColor(222, 205, 176));
  sky.setColorAt(1, QColor(240, 210, 164));
  painter.fillRect(0, 0, kWidth, kHeight, sky);

  const QPointF sun(1130, 372);
  QRadialGradient glow(sun, 430);
  glow.setColorAt(0, QColor(255, 238, 196, 190));
  glow.setColorAt(0.35, QColor(255, 226, 170, 80));
  glow.setColorAt(1, QColor(255, 220, 160, 0));
  painter.fillRect(0, 0, kWidth, kHeight, glow);
  painter.setBrush(QColor(255, 241, 208));
  painter.drawEllipse(sun, 46, 46);

  DrawCloud(painter, 250, 170, 1.5);
  DrawCloud(painter, 640, 96, 1.1);
  DrawCloud(painter, 860, 236, 0.8);
  DrawCloud(painter, 1420, 150, 1.35);
}

void DrawHills(QPainter& painter) {
  DrawRidge(painter, {420, 74, 980, 0.7, 1.0, QColor(138, 158, 166), QColor(196, 190, 172)});
  DrawRidge(painter, {478, 58, 760, 2.4, 0.9, QColor(110, 138, 142), QColor(170, 174, 150)});
  DrawRidge(painter, {534, 40, 900, 4.0, 0.6, QColor(98, 128, 112), QColor(140, 152, 116)});
  DrawRidge(painter, {578, 30, 1300, 1.2, 0.3, QColor(112, 140, 98), QColor(134, 150, 96)});
}

void DrawMiddle(QPainter& painter) {
  const Ridge field{624, 16, 1700, 3.4, 0.2, QColor(134, 154, 92), QColor(118, 138, 80)};
  DrawRidge(painter, field);
  // A ripe field, and furrows that run to the horizon.
  QPainterPath ripe(QPointF(60, 668));
  ripe.quadTo(240, 616, 520, 622);
  ripe.quadTo(640, 640, 600, 700);
  ripe.lineTo(20, 700);
  ripe.closeSubpath();
  painter.fillPath(ripe, QColor(204, 176, 104));
  painter.setPen(QPen(QColor(180, 152, 84), 2));
  for (int i = 0; i < 9; ++i)
    painter.drawLine(QPointF(120 + i * 58, 694), QPointF(230 + i * 36, 634 - (i > 2 ? 4 : 0)));
  painter.setPen(Qt::NoPen);

  // The side road winds down from the hills.
  QPainterPath side(QPointF(796, 590));
  side.cubicTo(838, 602, 690, 608, 716, 626);
  side.cubicTo(752, 648, 640, 660, 662, 704);
  side.lineTo(752, 704);
  side.cubicTo(708, 664, 802, 644, 748, 624);
  side.cubicTo(722, 612, 852, 604, 801, 590);
  side.closeSubpath();
  painter.fillPath(side, QColor(198, 186, 160));

  const QColor dark(70, 102, 82);
  const QColor fresh(98, 128, 78);
  for (int i = 0; i < 9; ++i)
    DrawPoplar(painter, 812 + i * 22, 640 - i * 2.2, 92 - i * 4, i % 2 ? dark : dark.lighter(108));
  DrawDepot(painter, 1020, 690);
  DrawRoundTree(painter, 986, 692, 84, fresh);
  DrawRoundTree(painter, 1590, 690, 110, fresh.darker(106));
  DrawRoundTree(painter, 40, 684, 104, fresh);
  DrawRoundTree(painter, 104, 690, 78, dark.lighter(112));
}

void DrawRoad(QPainter& painter) {
  QLinearGradient verge(0, kRoadTop - 8, 0, kHeight);
  verge.setColorAt(0, QColor(124, 142, 86));
  verge.setColorAt(1, QColor(86, 112, 66));
  painter.fillRect(QRectF(0, kRoadTop - 2, kWidth, kHeight - kRoadTop + 2), verge);
  painter.fillRect(QRectF(0, kRoadTop + 4, kWidth, kRoadBottom - kRoadTop), QColor(168, 158, 136));
  QLinearGradient asphalt(0, kRoadTop, 0, kRoadBottom);
  asphalt.setColorAt(0, QColor(92, 98, 104));
  asphalt.setColorAt(1, QColor(74, 80, 88));
  painter.fillRect(QRectF(0, kRoadTop + 12, kWidth, kRoadBottom - kRoadTop - 16), asphalt);
  const QColor paint(226, 222, 206);
  painter.fillRect(QRectF(0, kRoadTop + 20, kWidth, 3), paint);
  painter.fillRect(QRectF(0, kRoadBottom - 14, kWidth, 5), paint);
  for (int x = -30; x < kWidth; x += 120) {
    QPolygonF dash;
    dash << QPointF(x, 788) << QPointF(x + 58, 788) << QPointF(x + 55, 794) << QPointF(x - 4, 794);
    painter.setBrush(QColor(224, 190, 104));
    painter.drawPolygon(dash);
  }
}

void DrawForeground(QPainter& painter) {
  std::mt19937 dice(20260);  // the same meadow each time
  const auto throwDice = [&](double from, double to) {
    return from + (to - from) * static_cast<double>(dice()) / static_cast<double>(std::mt19937::max());
  };
  for (int x = 90; x < kWidth; x += 210) {
    painter.fillRect(QRectF(x, kRoadBottom - 16, 8, 46), QColor(232, 230, 220));
    painter.fillRect(QRectF(x, kRoadBottom - 6, 8, 9), QColor(176, 78, 58));
  }
  for (int i = 0; i < 520; ++i) {
    const double x = throwDice(-10, kWidth);
    const double y = throwDice(kRoadBottom + 20, kHeight + 14);
    const double height = 8 + (y - kRoadBottom) * 0.2;
    const double lean = throwDice(-5, 5);
    QPainterPath blade(QPointF(x - 2.4, y));
    blade.quadTo(x + lean * 0.3, y - height * 0.6, x + lean, y - height);
    blade.quadTo(x + lean * 0.4 + 2, y - height * 0.5, x + 2.4, y);
    painter.fillPath(blade, QColor(78, 106, 60).lighter(static_cast<int>(throwDice(88, 128))));
  }
  for (int i = 0; i < 60; ++i) {
    const double x = throwDice(0, kWidth);
    const double y = throwDice(kRoadBottom + 26, kHeight - 6);
    painter.setBrush(i % 3 == 0 ? QColor(236, 204, 110) : QColor(240, 236, 220));
    painter.drawEllipse(QPointF(x, y), 2.6, 2.2);
  }
}

}  // namespace picture
