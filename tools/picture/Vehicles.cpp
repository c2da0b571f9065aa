#include "tools/picture/Vehicles.h"

#include <QPainterPath>
#include <QPolygonF>
#include <initializer_list>

namespace picture {
namespace {

const QColor kTyre(38, 41, 46);
const QColor kRim(188, 194, 196);
const QColor kHub(104, 112, 118);
const QColor kGlass(158, 194, 204);
const QColor kDark(54, 58, 64);
const QColor kHeadlight(255, 240, 190);
const QColor kTaillight(196, 62, 48);

void Polygon(QPainter& painter, const QColor& color, std::initializer_list<QPointF> points) {
  painter.setBrush(color);
  painter.drawPolygon(QPolygonF(QList<QPointF>(points)));
}

void Box(QPainter& painter, const QColor& color, double x, double top, double width, double height,
         double radius = 0) {
  painter.setBrush(color);
  painter.drawRoundedRect(QRectF(x, top, width, height), radius, radius);
}

void Wheel(QPainter& painter, double x, double radius) {
  painter.setBrush(kTyre);
  painter.drawEllipse(QPointF(x, -radius), radius, radius);
  painter.setBrush(kRim);
  painter.drawEllipse(QPointF(x, -radius), radius * 0.56, radius * 0.56);
  painter.setBrush(kHub);
  painter.drawEllipse(QPointF(x, -radius), radius * 0.24, radius * 0.24);
}

/// The dark opening above a wheel.
void Arch(QPainter& painter, double x, double radius) {
  painter.setBrush(kDark);
  painter.drawChord(QRectF(x - radius * 1.22, -radius * 2.22, radius * 2.44, radius * 2.44), 0, 180 * 16);
}

/// A window with a streak of light.
void Glass(QPainter& painter, const QPolygonF& pane) {
  painter.save();
  painter.setBrush(kGlass);
  painter.drawPolygon(pane);
  QPainterPath clip;
  clip.addPolygon(pane);
  painter.setClipPath(clip, Qt::IntersectClip);
  const QRectF box = pane.boundingRect();
  Polygon(painter, QColor(255, 255, 255, 80),
          {{box.left() + box.width() * 0.2, box.bottom()},
           {box.left() + box.width() * 0.55, box.top()},
           {box.left() + box.width() * 0.8, box.top()},
           {box.left() + box.width() * 0.45, box.bottom()}});
  painter.restore();
}

void Glass(QPainter& painter, double x, double top, double width, double height) {
  Glass(painter, QPolygonF(QRectF(x, top, width, height)));
}

/// The lower part of a body in a darker shade.
void Shade(QPainter& painter, const QPainterPath& body, const QColor& color, double from) {
  painter.save();
  painter.setClipRect(QRectF(-50, from, 1000, 300), Qt::IntersectClip);
  painter.fillPath(body, color.darker(118));
  painter.restore();
}

}  // namespace

void DrawPickup(QPainter& painter) {
  const QColor color(170, 76, 56);
  QPainterPath body(QPointF(2, -34));
  body.lineTo(0, -80);
  body.lineTo(122, -82);
  body.lineTo(138, -122);
  body.quadTo(142, -129, 152, -129);
  body.lineTo(206, -129);
  body.quadTo(214, -129, 220, -123);
  body.lineTo(252, -86);
  body.lineTo(308, -78);
  body.quadTo(324, -74, 326, -60);
  body.lineTo(327, -34);
  body.closeSubpath();
  painter.fillPath(body, color);
  Shade(painter, body, color, -56);
  Box(painter, color.darker(130), 0, -83, 124, 5, 2);
  Glass(painter, QPolygonF({{136, -88}, {148, -119}, {178, -119}, {178, -88}}));
  Glass(painter, QPolygonF({{184, -88}, {184, -119}, {208, -119}, {236, -88}}));
  painter.fillRect(QRectF(180, -84, 1.6, 44), color.darker(150));
  painter.fillRect(QRectF(126, -84, 1.6, 44), color.darker(150));
  painter.fillRect(QRectF(188, -76, 14, 3.4), color.darker(160));
  Box(painter, kDark, -5, -42, 12, 12, 3);
  Box(painter, kDark, 318, -42, 14, 12, 3);
  Box(painter, kTaillight, 0, -72, 7, 18, 2);
  Box(painter, kHeadlight, 315, -70, 9, 12, 3);
  for (const double x : {68.0, 262.0}) {
    Arch(painter, x, 29);
    Wheel(painter, x, 29);
  }
}

void DrawSemitrailer(QPainter& painter) {
  const QColor cab(44, 106, 120);
  const QColor box(236, 227, 206);
  // The trailer.
  Box(painter, kDark, 10, -74, 560, 14);
  Box(painter, box, 0, -244, 486, 174, 4);
  Box(painter, box.darker(112), 0, -92, 486, 22, 2);
  painter.fillRect(QRectF(0, -176, 486, 26), cab);
  painter.fillRect(QRectF(0, -146, 486, 7), QColor(214, 152, 52));
  for (int x = 48; x < 480; x += 48) painter.fillRect(QRectF(x, -242, 1.4, 170), QColor(0, 0, 0, 22));
  Box(painter, kDark.lighter(130), 300, -62, 8, 42);
  Box(painter, kTaillight, 0, -86, 6, 12, 1);
  // The tractor.
  Box(painter, kDark, 478, -62, 196, 22, 4);
  Box(painter, QColor(170, 176, 178), 502, -62, 58, 26, 10);
  QPainterPath body(QPointF(506, -52));
  body.lineTo(506, -226);
  body.quadTo(510, -240, 524, -240);
  body.lineTo(560, -234);
  body.quadTo(570, -230, 576, -220);
  body.lineTo(598, -150);
  body.lineTo(662, -138);
  body.quadTo(682, -132, 684, -112);
  body.lineTo(684, -52);
  body.closeSubpath();
  painter.fillPath(body, cab);
  Shade(painter, body, cab, -96);
  Glass(painter, QPolygonF({{536, -150}, {536, -206}, {562, -206}, {580, -150}}));
  painter.fillRect(QRectF(528, -214, 1.8, 148), cab.darker(140));
  painter.fillRect(QRectF(596, -150, 1.8, 84), cab.darker(140));
  painter.fillRect(QRectF(536, -136, 14, 4), cab.darker(160));
  Box(painter, QColor(150, 156, 158), 492, -252, 9, 190, 4);
  for (int y = -128; y < -84; y += 9) painter.fillRect(QRectF(668, y, 15, 4), cab.darker(140));
  Box(painter, kHeadlight, 672, -80, 12, 16, 3);
  Box(painter, kDark, 668, -56, 22, 20, 4);
  Arch(painter, 626, 37);
  for (const double x : {58.0, 136.0, 420.0, 498.0}) Wheel(painter, x, 35);
  Wheel(painter, 626, 37);
}

void DrawGrader(QPainter& painter) {
  const QColor color(218, 158, 48);
  // The blade and what carries it.
  painter.setPen(QPen(kDark, 8, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(QPointF(300, -124), QPointF(338, -52));
  painter.drawLine(QPointF(486, -92), QPointF(352, -60));
  painter.setPen(QPen(QColor(150, 156, 158), 5, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(QPointF(322, -150), QPointF(346, -60));
  painter.setPen(Qt::NoPen);
  Box(painter, color.darker(125), 306, -66, 92, 12, 6);
  QPainterPath blade(QPointF(322, -60));
  blade.quadTo(302, -34, 328, -6);
  blade.lineTo(384, -6);
  blade.quadTo(360, -34, 378, -60);
  blade.closeSubpath();
  painter.fillPath(blade, QColor(126, 134, 138));
  painter.fillRect(QRectF(328, -10, 56, 5), QColor(176, 184, 186));
  // The frame, from the cab over the blade to the front axle.
  QPainterPath frame(QPointF(236, -112));
  frame.lineTo(262, -146);
  frame.quadTo(360, -186, 452, -142);
  frame.quadTo(498, -118, 514, -92);
  frame.lineTo(510, -58);
  frame.lineTo(478, -58);
  frame.lineTo(470, -92);
  frame.quadTo(440, -130, 372, -140);
  frame.quadTo(310, -144, 262, -88);
  frame.closeSubpath();
  painter.fillPath(frame, color);
  // The engine.
  QPainterPath engine(QPointF(8, -72));
  engine.lineTo(4, -126);
  engine.quadTo(6, -142, 22, -144);
  engine.lineTo(176, -156);
  engine.lineTo(184, -72);
  engine.closeSubpath();
  painter.fillPath(engine, color);
  Shade(painter, engine, color, -96);
  for (int i = 0; i < 6; ++i) painter.fillRect(QRectF(22 + i * 11, -132, 5, 30), color.darker(150));
  Box(painter, kDark, 92, -186, 9, 38, 3);
  // The cab.
  Box(painter, color.darker(115), 172, -118, 96, 50, 4);
  Box(painter, kDark, 170, -234, 96, 10, 4);
  Box(painter, color.darker(108), 176, -226, 7, 112);
  Box(painter, color.darker(108), 254, -226, 7, 112);
  Glass(painter, 184, -224, 32, 92);
  Glass(painter, 221, -224, 32, 106);
  painter.fillRect(QRectF(217, -224, 3.4, 106), color.darker(140));
  Box(painter, QColor(240, 150, 50), 206, -246, 14, 12, 4);
  Box(painter, kDark, 20, -76, 220, 16, 6);
  Box(painter, kHeadlight, 500, -106, 10, 12, 3);
  for (const double x : {72.0, 172.0}) Wheel(painter, x, 45);
  Wheel(painter, 494, 42);
}

void DrawBus(QPainter& painter) {
  const QColor color(226, 174, 62);
  QPainterPath body(QPointF(0, -40));
  body.lineTo(0, -182);
  body.quadTo(2, -200, 20, -202);
  body.lineTo(414, -202);
  body.quadTo(428, -201, 432, -188);
  body.lineTo(446, -122);
  body.lineTo(496, -112);
  body.quadTo(514, -108, 516, -88);
  body.lineTo(516, -40);
  body.closeSubpath();
  painter.fillPath(body, color);
  Shade(painter, body, color, -70);
  for (const double y : {-112.0, -86.0}) painter.fillRect(QRectF(0, y, 440, 4), kDark);
  for (int i = 0; i < 8; ++i) Glass(painter, 16 + i * 44.0, -180, 36, 48);
  Glass(painter, QPolygonF({{404, -126}, {404, -184}, {420, -184}, {434, -126}}));
  Box(painter, kDark, 366, -184, 32, 142, 2);
  Glass(painter, 369, -180, 12, 130);
  Glass(painter, 383, -180, 12, 130);
  Box(painter, kHeadlight, 504, -84, 10, 14, 3);
  Box(painter, kTaillight, 0, -76, 6, 14, 2);
  Box(painter, kDark, -5, -50, 12, 14, 3);
  Box(painter, kDark, 508, -50, 14, 14, 3);
  for (const double x : {108.0, 464.0}) {
    Arch(painter, x, 34);
    Wheel(painter, x, 34);
  }
}

void DrawVan(QPainter& painter) {
  const QColor color(222, 226, 222);
  QPainterPath body(QPointF(0, -36));
  body.lineTo(0, -150);
  body.quadTo(2, -164, 16, -166);
  body.lineTo(196, -166);
  body.quadTo(210, -165, 218, -154);
  body.lineTo(252, -102);
  body.lineTo(286, -90);
  body.quadTo(298, -86, 298, -72);
  body.lineTo(298, -36);
  body.closeSubpath();
  painter.fillPath(body, color);
  Shade(painter, body, color, -60);
  painter.fillRect(QRectF(0, -104, 150, 16), QColor(44, 106, 120));
  Glass(painter, QPolygonF({{166, -104}, {166, -150}, {200, -150}, {232, -104}}));
  painter.fillRect(QRectF(156, -156, 1.6, 112), color.darker(135));
  Box(painter, kHeadlight, 287, -76, 10, 12, 3);
  Box(painter, kTaillight, 0, -84, 6, 16, 2);
  Box(painter, kDark, 290, -46, 12, 12, 3);
  for (const double x : {62.0, 242.0}) {
    Arch(painter, x, 29);
    Wheel(painter, x, 29);
  }
}

}  // namespace picture
