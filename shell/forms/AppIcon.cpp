#include "shell/forms/AppIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace dw {
namespace {

const QColor kTop(62, 128, 142);
const QColor kBottom(32, 84, 98);
const QColor kBox(244, 236, 216);
const QColor kStripe(216, 156, 52);
const QColor kCab(226, 168, 60);
const QColor kGlass(58, 92, 104);
const QColor kTyre(30, 34, 40);
const QColor kRim(206, 212, 214);
const QColor kRoad(22, 60, 72);

/// Everything is drawn on a square of 64 units. Small icons omit the details that would blur.
void Paint(QPainter& painter, bool small) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  QLinearGradient ground(0, 2, 0, 62);
  ground.setColorAt(0, kTop);
  ground.setColorAt(1, kBottom);
  QPainterPath square;
  square.addRoundedRect(QRectF(2, 2, 60, 60), 13, 13);
  painter.fillPath(square, ground);
  painter.setClipPath(square);
  painter.fillRect(QRectF(0, 49, 64, 15), kRoad);
  if (!small)
    for (const double x : {8.0, 28.0, 48.0}) painter.fillRect(QRectF(x, 54.6, 9, 2.2), kStripe);
  painter.setClipping(false);

  painter.setBrush(kBox);
  painter.drawRoundedRect(QRectF(7, 19, 32, 25), 2, 2);
  if (!small) painter.fillRect(QRectF(7, 31, 32, 3.6), kStripe);
  QPainterPath cab(QPointF(41, 44));
  cab.lineTo(41, 26);
  cab.lineTo(48, 26);
  cab.quadTo(50.4, 26, 51.4, 28);
  cab.lineTo(54.4, 34.4);
  cab.quadTo(57.6, 35.4, 57.6, 38.4);
  cab.lineTo(57.6, 44);
  cab.closeSubpath();
  painter.fillPath(cab, kCab);
  painter.setBrush(kGlass);
  painter.drawPolygon(QPolygonF({{44, 35}, {44, 29}, {48.4, 29}, {51.2, 35}}));
  painter.fillRect(QRectF(7, 42, 50.6, 3.4), kTyre);
  for (const double x : {17.0, 48.0}) {
    painter.setBrush(kTyre);
    painter.drawEllipse(QPointF(x, 45.4), 6.4, 6.4);
    painter.setBrush(kRim);
    painter.drawEllipse(QPointF(x, 45.4), small ? 2.4 : 3, small ? 2.4 : 3);
  }
}

}  // namespace

QIcon ApplicationIcon() {
  constexpr int kUnits = 64;
  constexpr int kSmall = 24;
  QIcon icon;
  for (const int size : {16, 20, 24, 32, 48, 64, 128, 256}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.scale(static_cast<double>(size) / kUnits, static_cast<double>(size) / kUnits);
    Paint(painter, size <= kSmall);
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace dw
