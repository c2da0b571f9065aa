// Draws finished pages on the screen, at the same advances as on paper.
#pragma once

#include <QRectF>
#include <vector>

#include "platform/print/pages/PageStore.h"

class QImage;
class QPainter;

namespace print {

/// One line of text on a page, with the place of each character: what drawing, searching and marking share.
struct TextRun {
  QString text;
  TextStyle style;
  /// The left edge of each character and the right edge of the last one, in points from the page's left edge.
  /// A character outside the basic plane has two equal edges.
  std::vector<double> edges;
  double top = 0;       ///< in points
  double baseline = 0;  ///< in points
  double height = 0;    ///< in points

  QRectF Box() const;
  /// The part from character `first` up to but without `last`.
  QRectF Part(int first, int last) const;
};

/// All text of a page, in the order of reading: bands from the top, cells of one line from the left. Slots
/// that are still empty show an ellipsis.
std::vector<TextRun> TextOf(const Page& page, const PageStore& store);

/// Draws the page with its upper left corner at the painter's origin, on white. `scale` is pixels for each
/// point.
void DrawPage(QPainter& painter, const Page& page, const std::vector<TextRun>& text, double scale);

/// The page as a picture of this width in real pixels.
QImage PagePicture(const Page& page, const PageStore& store, int width);

}  // namespace print
