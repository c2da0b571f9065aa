// dwpicture: draws the picture of the main window, a fleet on its road, as a bitmap of 24 bits.
#include <QImage>
#include <QPainter>
#include <cstdio>

#include "tools/picture/Landscape.h"
#include "tools/picture/Vehicles.h"

namespace picture {
namespace {

/// Draws a vehicle on the road: its tail, or its nose when it heads left, is at `x`.
void Place(QPainter& painter, void (*draw)(QPainter&), double x, double ground, double scale, bool left,
           double length) {
  painter.save();
  painter.translate(x, ground);
  painter.scale(scale, scale);
  if (left) {
    painter.translate(length, 0);
    painter.scale(-1, 1);
  }
  painter.setPen(Qt::NoPen);
  QRadialGradient shadow(QPointF(0, 0), 1);
  shadow.setColorAt(0, QColor(20, 24, 30, 120));
  shadow.setColorAt(0.75, QColor(20, 24, 30, 90));
  shadow.setColorAt(1, QColor(20, 24, 30, 0));
  painter.save();
  painter.translate(length / 2, 2);
  painter.scale(length * 0.55, 13);
  painter.setBrush(shadow);
  painter.drawEllipse(QPointF(0, 0), 1, 1);
  painter.restore();
  draw(painter);
  painter.restore();
}

QImage Draw() {
  QImage image(kWidth, kHeight, QImage::Format_RGB32);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  DrawSky(painter);
  DrawHills(painter);
  DrawMiddle(painter);
  DrawRoad(painter);
  Place(painter, DrawBus, 500, kFarLane, 0.56, true, kBusLength);
  Place(painter, DrawVan, 836, kFarLane, 0.54, true, kVanLength);
  Place(painter, DrawGrader, 56, kNearLane, 0.77, false, kGraderLength);
  Place(painter, DrawPickup, 620, kNearLane, 0.77, false, kPickupLength);
  Place(painter, DrawSemitrailer, 1016, kNearLane, 0.77, false, kSemitrailerLength);
  DrawForeground(painter);
  return image.convertToFormat(QImage::Format_RGB888);
}

}  // namespace
}  // namespace picture

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "Usage: dwpicture FILE\n");
    return 2;
  }
  const QString file = QString::fromLocal8Bit(argv[1]);
  // The format is explicit, so that a file of any name is a bitmap; only the ending .png means a PNG.
  const char* format = file.endsWith(".png", Qt::CaseInsensitive) ? "PNG" : "BMP";
  if (picture::Draw().save(file, format)) return 0;
  std::fprintf(stderr, "dwpicture: cannot write %s\n", argv[1]);
  return 1;
}
