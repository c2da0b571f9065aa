#include "platform/print/view/PagePainter.h"

#include <QGlyphRun>
#include <QImage>
#include <QPainter>
#include <QRawFont>
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "platform/print/fonts/Fonts.h"

namespace print {
namespace {

constexpr double kUnit = kPoint;
/// A page whose total of pages is not known yet reads "Page 3 of …".
constexpr const char* kUnknown = "…";
constexpr int kFaces = 5;
/// Fonts are kept for the sizes of a few zooms.
constexpr std::size_t kFontsKept = 64;

QColor ToColor(Color color) { return QColor(color.red, color.green, color.blue); }

QRawFont& FontAt(FontFace face, double pixels) {
  static std::map<std::pair<int, int>, QRawFont> fonts;
  if (fonts.size() > kFontsKept) fonts.clear();
  QRawFont& font = fonts[{static_cast<int>(face), static_cast<int>(std::lround(pixels * 64))}];
  if (!font.isValid())
    font = QRawFont(QString::fromStdString(FontFile(face)), pixels, QFont::PreferNoHinting);
  return font;
}

/// The advances at the design size: what the widths on paper are computed from.
struct DesignAdvances {
  QRawFont font;
  double unitsPerEm = 1;
  std::array<double, 128> ascii{};
};

const DesignAdvances& Design(FontFace face) {
  static std::array<DesignAdvances, kFaces> designs;
  DesignAdvances& design = designs[static_cast<std::size_t>(face)];
  if (!design.font.isValid()) {
    const double size = FontAt(face, 100).unitsPerEm();
    design.font = QRawFont(QString::fromStdString(FontFile(face)), size, QFont::PreferNoHinting);
    design.unitsPerEm = size;
    for (std::size_t letter = 0; letter < design.ascii.size(); ++letter) {
      const QVector<quint32> glyphs =
          design.font.glyphIndexesForString(QString(QChar(static_cast<char16_t>(letter))));
      const QVector<QPointF> advances =
          design.font.advancesForGlyphIndexes(glyphs, QRawFont::SeparateAdvances);
      design.ascii[letter] = advances.isEmpty() ? 0 : advances.front().x();
    }
  }
  return design;
}

/// Paper shows '?' for a character that the font lacks, and so does the screen.
QString Drawable(const QString& text, const QRawFont& font) {
  QString drawable;
  drawable.reserve(text.size());
  for (int i = 0; i < text.size(); ++i) {
    const QChar letter = text[i];
    if (letter.unicode() < 128) {
      drawable += letter;
    } else if (letter.isHighSurrogate() && i + 1 < text.size()) {
      const char32_t code = QChar::surrogateToUcs4(letter, text[i + 1]);
      ++i;
      drawable += font.supportsCharacter(code) ? QString::fromUcs4(&code, 1) : QString('?');
    } else {
      drawable += font.supportsCharacter(letter) ? letter : QChar('?');
    }
  }
  return drawable;
}

double AdvanceOf(const DesignAdvances& design, const QString& character) {
  const QVector<QPointF> advances = design.font.advancesForGlyphIndexes(
      design.font.glyphIndexesForString(character), QRawFont::SeparateAdvances);
  double advance = 0;
  for (const QPointF& one : advances) advance += one.x();
  return advance;
}

std::vector<double> Edges(const QString& text, const TextStyle& style, double left) {
  const DesignAdvances& design = Design(style.face);
  const double size = style.size / kUnit / design.unitsPerEm;
  std::vector<double> edges;
  edges.reserve(static_cast<std::size_t>(text.size()) + 1);
  double place = left;
  for (int i = 0; i < text.size(); ++i) {
    edges.push_back(place);
    const char16_t letter = text[i].unicode();
    if (letter < 128) {
      place += design.ascii[letter] * size;
    } else if (text[i].isHighSurrogate() && i + 1 < text.size()) {
      edges.push_back(place);
      place += AdvanceOf(design, text.mid(i, 2)) * size;
      ++i;
    } else {
      place += AdvanceOf(design, text.mid(i, 1)) * size;
    }
  }
  edges.push_back(place);
  return edges;
}

TextRun RunOf(const Cell& cell, const std::string& line, Length top) {
  TextRun run;
  run.style = cell.style;
  run.text = Drawable(QString::fromStdString(line), Design(cell.style.face).font);
  Length left = cell.box.left;
  if (cell.align != Align::Left) {
    const Length spare = cell.box.width - TextWidth(cell.style, line);
    left += cell.align == Align::Right ? spare : spare / 2;
  }
  run.edges = Edges(run.text, run.style, left / kUnit);
  run.top = top / kUnit;
  run.height = LineHeight(cell.style) / kUnit;
  run.baseline = (top + Ascent(cell.style)) / kUnit;
  return run;
}

void DrawRun(QPainter& painter, const TextRun& run, double scale) {
  if (run.text.isEmpty()) return;
  QRawFont& font = FontAt(run.style.face, run.style.size / kUnit * scale);
  const QVector<quint32> glyphs = font.glyphIndexesForString(run.text);
  QVector<QPointF> places;
  places.reserve(glyphs.size());
  for (int i = 0, edge = 0; i < glyphs.size(); ++i, ++edge) {
    if (edge < run.text.size() && run.text[edge].isLowSurrogate()) ++edge;
    places.append(QPointF(run.edges[static_cast<std::size_t>(edge)] * scale, 0));
  }
  QGlyphRun drawn;
  drawn.setRawFont(font);
  drawn.setGlyphIndexes(glyphs);
  drawn.setPositions(places);
  painter.setPen(ToColor(run.style.color));
  painter.drawGlyphRun(QPointF(0, run.baseline * scale), drawn);
}

/// A thin rule stays at least one pixel thick.
QRectF OnScreen(const Box& box, double scale) {
  const double pixel = scale / kUnit;
  return {box.left * pixel, box.top * pixel, std::max(1.0, box.width * pixel),
          std::max(1.0, box.height * pixel)};
}

}  // namespace

QRectF TextRun::Box() const { return Part(0, static_cast<int>(text.size())); }

QRectF TextRun::Part(int first, int last) const {
  const double left = edges[static_cast<std::size_t>(first)];
  return {left, top, edges[static_cast<std::size_t>(last)] - left, height};
}

std::vector<TextRun> TextOf(const Page& page, const PageStore& store) {
  std::vector<TextRun> runs;
  for (const PlacedBand& band : page.bands) {
    const std::size_t first = runs.size();
    for (const Cell& cell : band.cells) {
      Length top = cell.box.top;
      if (cell.slot >= 0) {
        const std::optional<SlotValue> value = store.Slot(cell.slot);
        runs.push_back(RunOf(cell, value ? value->text : kUnknown, top));
        continue;
      }
      for (const std::string& line : cell.lines) {
        if (!line.empty()) runs.push_back(RunOf(cell, line, top));
        top += LineHeight(cell.style);
      }
    }
    std::stable_sort(runs.begin() + static_cast<std::ptrdiff_t>(first), runs.end(),
                     [](const TextRun& one, const TextRun& other) {
                       return std::pair(one.baseline, one.edges.front()) <
                              std::pair(other.baseline, other.edges.front());
                     });
  }
  return runs;
}

void DrawPage(QPainter& painter, const Page& page, const std::vector<TextRun>& text, double scale) {
  painter.fillRect(OnScreen({0, 0, page.width, page.height}, scale), Qt::white);
  painter.setRenderHint(QPainter::TextAntialiasing);
  for (const PlacedBand& band : page.bands) {
    for (const Rule& rule : band.rules) painter.fillRect(OnScreen(rule.box, scale), ToColor(rule.color));
  }
  for (const TextRun& run : text) DrawRun(painter, run, scale);
}

QImage PagePicture(const Page& page, const PageStore& store, int width) {
  const double scale = width * kUnit / std::max<Length>(1, page.width);
  QImage picture(std::max(1, width), std::max(1, static_cast<int>(std::lround(page.height / kUnit * scale))),
                 QImage::Format_RGB32);
  picture.fill(Qt::white);
  QPainter painter(&picture);
  DrawPage(painter, page, TextOf(page, store), scale);
  return picture;
}

}  // namespace print
