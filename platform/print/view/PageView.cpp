#include "platform/print/view/PageView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/print/PrintError.h"

namespace print {
namespace {

constexpr double kUnit = kPoint;
/// The desk between and around pages, in pixels.
constexpr int kGap = 12;
constexpr double kLeastScale = 0.2;
constexpr double kLargestScale = 8;
constexpr double kZoomStep = 1.25;
/// Pictures of pages that are kept, in kilobytes.
constexpr int kPicturesKept = 96 * 1024;
/// Two texts whose baselines differ less, in points, are on one line.
constexpr double kSameLine = 0.6;
constexpr int kDegreesOfNotch = 120;

const QColor kHitColor(255, 240, 140);
const QColor kCurrentHitColor(255, 185, 80);
/// How much lighter than the color of a selection the marked text's ground is.
constexpr int kMarkLightness = 210;

/// The character boundary of a run that is nearest to this place.
int BoundaryAt(const TextRun& run, double x) {
  const auto after = std::lower_bound(run.edges.begin(), run.edges.end(), x);
  if (after == run.edges.begin()) return 0;
  if (after == run.edges.end()) return static_cast<int>(run.edges.size()) - 1;
  const auto before = after - 1;
  return static_cast<int>((x - *before < *after - x ? before : after) - run.edges.begin());
}

/// The run and the boundary inside it that a point means: on the line of the point the nearest text, between
/// lines the beginning of the next.
std::pair<int, int> TextAt(const std::vector<TextRun>& text, QPointF at) {
  int nearest = -1;
  double distance = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const QRectF box = text[i].Box();
    if (at.y() < box.top() || at.y() >= box.bottom()) continue;
    const double away = std::max({box.left() - at.x(), at.x() - box.right(), 0.0});
    if (nearest < 0 || away < distance) {
      nearest = static_cast<int>(i);
      distance = away;
    }
  }
  if (nearest >= 0) return {nearest, BoundaryAt(text[static_cast<std::size_t>(nearest)], at.x())};
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text[i].top > at.y()) return {static_cast<int>(i), 0};
  return {static_cast<int>(text.size()), 0};
}

}  // namespace

PageView::PageView(QWidget* parent) : QAbstractScrollArea(parent), drawn_(kPicturesKept) {
  setObjectName("pages");
  setAccessibleName("Pages");
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(QFrame::NoFrame);
  viewport()->setCursor(Qt::IBeamCursor);
  viewport()->setBackgroundRole(QPalette::Dark);
  // Fitting the width must not depend on whether a bar is needed, or the two would chase each other.
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

void PageView::Show(const PageStore* store) {
  store_ = store;
  pages_ = 0;
  shownPage_ = -1;
  drawn_.clear();
  hits_.clear();
  hit_ = -1;
  markStart_.reset();
  markEnd_.reset();
  verticalScrollBar()->setValue(0);
  Refresh();
}

void PageView::Refresh() {
  const int pages = store_ ? store_->PageCount() : 0;
  const bool first = pages_ == 0 && pages > 0;
  pages_ = pages;
  for (const int page : drawn_.keys())
    if (!drawn_.object(page)->complete) drawn_.remove(page);
  Arrange();
  if (first) verticalScrollBar()->setValue(0);
  viewport()->update();
  Changed();
}

int PageView::Columns() const { return twoPages_ && pages_ > 1 ? 2 : 1; }
int PageView::Rows() const { return (pages_ + Columns() - 1) / Columns(); }

QSize PageView::PageSize() const {
  if (!store_) return {1, 1};
  const ReportFacts& facts = store_->Facts();
  return {std::max(1, static_cast<int>(std::lround(facts.pageWidth / kUnit * scale_))),
          std::max(1, static_cast<int>(std::lround(facts.pageHeight / kUnit * scale_)))};
}

QRect PageView::PageBox(int page) const {
  const QSize size = PageSize();
  const int columns = Columns();
  const int width = columns * size.width() + (columns - 1) * kGap;
  const int left = std::max(kGap, (viewport()->width() - width) / 2) - horizontalScrollBar()->value() +
                   page % columns * (size.width() + kGap);
  const int top = kGap + page / columns * (size.height() + kGap) - verticalScrollBar()->value();
  return {QPoint(left, top), size};
}

void PageView::Arrange() {
  if (!store_) return;
  const ReportFacts& facts = store_->Facts();
  const double width = std::max(1.0, facts.pageWidth / kUnit);
  const double height = std::max(1.0, facts.pageHeight / kUnit);
  const int columns = Columns();
  double scale = scale_;
  const double across = (viewport()->width() - (columns + 1) * kGap) / (width * columns);
  if (zoom_ == Zoom::FitWidth) scale = across;
  if (zoom_ == Zoom::FitPage) scale = std::min(across, (viewport()->height() - 2 * kGap) / height);
  scale = std::clamp(scale, kLeastScale, kLargestScale);
  if (scale != scale_) {
    scale_ = scale;
    drawn_.clear();
  }
  const QSize size = PageSize();
  verticalScrollBar()->setPageStep(viewport()->height());
  verticalScrollBar()->setSingleStep(std::max(16, viewport()->height() / 12));
  verticalScrollBar()->setRange(0,
                                std::max(0, Rows() * (size.height() + kGap) + kGap - viewport()->height()));
  horizontalScrollBar()->setPageStep(viewport()->width());
  horizontalScrollBar()->setSingleStep(40);
  horizontalScrollBar()->setRange(0,
                                  std::max(0, columns * (size.width() + kGap) + kGap - viewport()->width()));
}

void PageView::KeepPlace(const std::function<void()>& change) {
  const int page = CurrentPage();
  const QRect before = PageBox(page);
  const double down = static_cast<double>(kGap - before.top()) / before.height();
  change();
  Arrange();
  const QRect after = PageBox(page);
  verticalScrollBar()->setValue(verticalScrollBar()->value() + after.top() - kGap +
                                static_cast<int>(std::lround(down * after.height())));
  viewport()->update();
  Changed();
}

int PageView::CurrentPage() const {
  if (pages_ == 0) return 0;
  const int step = PageSize().height() + kGap;
  const int row = (verticalScrollBar()->value() + viewport()->height() / 2) / step;
  return std::clamp(row * Columns(), 0, pages_ - 1);
}

void PageView::GoTo(int page, Length top) {
  if (pages_ == 0) return;
  page = std::clamp(page, 0, pages_ - 1);
  const QRect box = PageBox(page);
  verticalScrollBar()->setValue(verticalScrollBar()->value() + box.top() - kGap +
                                static_cast<int>(top / kUnit * scale_));
}

void PageView::SetZoom(Zoom zoom, double pixelsPerPoint) {
  KeepPlace([&] {
    zoom_ = zoom;
    if (zoom == Zoom::Fixed && pixelsPerPoint > 0) {
      scale_ = std::clamp(pixelsPerPoint, kLeastScale, kLargestScale);
      drawn_.clear();
    }
  });
}

void PageView::ZoomIn() { StepZoom(1); }
void PageView::ZoomOut() { StepZoom(-1); }
void PageView::StepZoom(int direction) {
  SetZoom(Zoom::Fixed, direction > 0 ? scale_ * kZoomStep : scale_ / kZoomStep);
}

void PageView::SetTwoPages(bool two) {
  KeepPlace([&] { twoPages_ = two; });
}

PageView::Drawn* PageView::DrawnPage(int page) {
  if (Drawn* known = drawn_.object(page)) return known;
  auto* drawn = new Drawn;
  const QSize size = PageSize();
  const double ratio = devicePixelRatioF();
  drawn->picture = QPixmap(size * ratio);
  drawn->picture.setDevicePixelRatio(ratio);
  drawn->picture.fill(Qt::white);
  QPainter painter(&drawn->picture);
  try {
    const Page read = store_->Read(page);
    drawn->text = TextOf(read, *store_);
    for (const PlacedBand& band : read.bands)
      for (const Cell& cell : band.cells)
        if (cell.slot >= 0 && !store_->Slot(cell.slot)) drawn->complete = false;
    DrawPage(painter, read, drawn->text, scale_);
  } catch (const PrintError& error) {
    painter.setPen(Qt::black);
    painter.drawText(QRect(QPoint(0, 0), size), Qt::AlignCenter | Qt::TextWordWrap,
                     QString::fromStdString(error.what()));
  }
  painter.end();
  const int kilobytes = drawn->picture.width() * drawn->picture.height() / 256;
  // A picture that is too large for the cache would be deleted at once.
  drawn_.insert(page, drawn, std::clamp(kilobytes, 1, kPicturesKept / 3));
  return drawn;
}

void PageView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  painter.fillRect(event->rect(), palette().color(QPalette::Dark));
  if (pages_ == 0) return;
  const QSize size = PageSize();
  const int firstRow = std::max(0, (verticalScrollBar()->value() - kGap) / (size.height() + kGap));
  QColor marked = palette().color(QPalette::Highlight);
  marked.setHsl(marked.hslHue(), marked.hslSaturation(), kMarkLightness);
  for (int page = firstRow * Columns(); page < pages_; ++page) {
    const QRect box = PageBox(page);
    if (box.top() > event->rect().bottom()) break;
    if (!box.intersects(event->rect())) continue;
    const Drawn* drawn = DrawnPage(page);
    painter.fillRect(box.translated(3, 3), QColor(0, 0, 0, 60));
    painter.drawPixmap(box.topLeft(), drawn->picture);
    // The text stays as dark as it is.
    painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    const auto shade = [&](const Mark& mark, const QColor& color) {
      if (mark.run >= static_cast<int>(drawn->text.size())) return;
      const QRectF part = drawn->text[static_cast<std::size_t>(mark.run)].Part(mark.first, mark.last);
      painter.fillRect(QRectF(box.left() + part.left() * scale_, box.top() + part.top() * scale_,
                              part.width() * scale_, part.height() * scale_),
                       color);
    };
    const auto hit = std::lower_bound(hits_.begin(), hits_.end(), page,
                                      [](const Mark& one, int sought) { return one.page < sought; });
    for (auto one = hit; one != hits_.end() && one->page == page; ++one)
      shade(*one, one - hits_.begin() == hit_ ? kCurrentHitColor : kHitColor);
    for (const Mark& mark : MarkedOn(page, drawn->text)) shade(mark, marked);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  }
  if (hasFocus()) {
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
  }
}

void PageView::resizeEvent(QResizeEvent*) {
  KeepPlace([] {});
}

void PageView::scrollContentsBy(int, int) {
  viewport()->update();
  Changed();
}

void PageView::Changed() {
  if (changed) changed();
}

void PageView::Scroll(int pixels) { verticalScrollBar()->setValue(verticalScrollBar()->value() + pixels); }

void PageView::keyPressEvent(QKeyEvent* event) {
  const int step = verticalScrollBar()->singleStep();
  const int leaf = std::max(step, viewport()->height() - step);
  const bool whole = PageSize().height() <= viewport()->height();
  switch (event->key()) {
    case Qt::Key_PageDown:
      if (whole || event->modifiers() & Qt::ControlModifier) {
        GoTo(CurrentPage() + Columns());
      } else {
        Scroll(leaf);
      }
      break;
    case Qt::Key_PageUp:
      if (whole || event->modifiers() & Qt::ControlModifier) {
        GoTo(CurrentPage() - Columns());
      } else {
        Scroll(-leaf);
      }
      break;
    case Qt::Key_Space:
      Scroll(event->modifiers() & Qt::ShiftModifier ? -leaf : leaf);
      break;
    case Qt::Key_Home:
      verticalScrollBar()->setValue(0);
      break;
    case Qt::Key_End:
      verticalScrollBar()->setValue(verticalScrollBar()->maximum());
      break;
    case Qt::Key_Down:
      Scroll(step);
      break;
    case Qt::Key_Up:
      Scroll(-step);
      break;
    case Qt::Key_Left:
      horizontalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepSub);
      break;
    case Qt::Key_Right:
      horizontalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd);
      break;
    default:
      QAbstractScrollArea::keyPressEvent(event);
  }
}

void PageView::wheelEvent(QWheelEvent* event) {
  if (!(event->modifiers() & Qt::ControlModifier)) {
    QAbstractScrollArea::wheelEvent(event);
    return;
  }
  const double notches = static_cast<double>(event->angleDelta().y()) / kDegreesOfNotch;
  if (notches != 0) SetZoom(Zoom::Fixed, scale_ * std::pow(kZoomStep, notches));
  event->accept();
}

PageView::Spot PageView::SpotAt(QPoint point) const {
  Spot nearest;
  int distance = -1;
  const int middle = CurrentPage();
  const int reach = 2 * Columns() + viewport()->height() / std::max(1, PageSize().height());
  for (int page = std::max(0, middle - reach); page < std::min(pages_, middle + reach + 1); ++page) {
    const QRect box = PageBox(page);
    const int away = std::max({box.left() - point.x(), point.x() - box.right(), 0}) +
                     std::max({box.top() - point.y(), point.y() - box.bottom(), 0});
    if (distance >= 0 && away >= distance) continue;
    distance = away;
    nearest = {page, QPointF((point.x() - box.left()) / scale_, (point.y() - box.top()) / scale_)};
  }
  return nearest;
}

std::vector<Mark> PageView::MarkedOn(int page, const std::vector<TextRun>& text) const {
  std::vector<Mark> marks;
  if (!markStart_ || !markEnd_) return marks;
  Spot from = *markStart_;
  Spot to = *markEnd_;
  if (from.page > to.page) std::swap(from, to);
  if (page < from.page || page > to.page) return marks;
  if (markColumn_) {
    // A column has the same sides on every page that it goes over.
    const double left = std::min(from.at.x(), to.at.x());
    const double right = std::max(from.at.x(), to.at.x());
    const bool one = from.page == to.page;
    const double top = page > from.page ? 0 : one ? std::min(from.at.y(), to.at.y()) : from.at.y();
    const double bottom = page < to.page ? 1e9 : one ? std::max(from.at.y(), to.at.y()) : to.at.y();
    for (std::size_t i = 0; i < text.size(); ++i) {
      const TextRun& run = text[i];
      if (run.top + run.height <= top || run.top >= bottom) continue;
      const int first = BoundaryAt(run, left);
      const int last = BoundaryAt(run, right);
      if (first < last) marks.push_back({page, static_cast<int>(i), first, last});
    }
    return marks;
  }
  std::pair<int, int> first{0, 0};
  std::pair<int, int> last{static_cast<int>(text.size()), 0};
  if (page == from.page) first = TextAt(text, from.at);
  if (page == to.page) last = TextAt(text, to.at);
  if (last < first) std::swap(first, last);
  for (int i = first.first; i <= last.first && i < static_cast<int>(text.size()); ++i) {
    const int begin = i == first.first ? first.second : 0;
    const int end =
        i == last.first ? last.second : static_cast<int>(text[static_cast<std::size_t>(i)].text.size());
    if (begin < end) marks.push_back({page, i, begin, end});
  }
  return marks;
}

QString PageView::MarkedText() const {
  if (!store_ || !markStart_ || !markEnd_) return {};
  QString all;
  const int first = std::min(markStart_->page, markEnd_->page);
  const int last = std::min(std::max(markStart_->page, markEnd_->page), pages_ - 1);
  for (int page = first; page <= last; ++page) {
    const std::vector<TextRun> text = TextOf(store_->Read(page), *store_);
    double baseline = -1;
    for (const Mark& mark : MarkedOn(page, text)) {
      const TextRun& run = text[static_cast<std::size_t>(mark.run)];
      if (!all.isEmpty()) all += baseline >= 0 && std::abs(run.baseline - baseline) < kSameLine ? '\t' : '\n';
      all += run.text.mid(mark.first, mark.last - mark.first);
      baseline = run.baseline;
    }
  }
  return all;
}

void PageView::MarkAll() {
  if (pages_ == 0) return;
  markColumn_ = false;
  markStart_ = Spot{0, QPointF(0, -1)};
  markEnd_ = Spot{pages_ - 1, QPointF(1e9, 1e9)};
  viewport()->update();
  Changed();
}

void PageView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || pages_ == 0) return;
  marking_ = true;
  markColumn_ = event->modifiers() & Qt::AltModifier;
  markStart_ = markEnd_ = SpotAt(event->pos());
  viewport()->update();
  Changed();
}

void PageView::mouseMoveEvent(QMouseEvent* event) {
  if (!marking_) return;
  // Beyond the edge the marking goes on into the next page.
  if (event->pos().y() < 0) Scroll(event->pos().y());
  if (event->pos().y() > viewport()->height()) Scroll(event->pos().y() - viewport()->height());
  markEnd_ = SpotAt(event->pos());
  viewport()->update();
}

void PageView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  marking_ = false;
  Changed();
}

bool PageView::event(QEvent* event) {
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ScreenChangeInternal) drawn_.clear();
  return QAbstractScrollArea::event(event);
}

void PageView::ShowHits(std::vector<Mark> hits, int current) {
  hits_ = std::move(hits);
  hit_ = current;
  if (current >= 0 && current < static_cast<int>(hits_.size())) {
    const Mark& mark = hits_[static_cast<std::size_t>(current)];
    const Drawn* drawn = DrawnPage(mark.page);
    if (mark.run < static_cast<int>(drawn->text.size())) {
      const QRectF part = drawn->text[static_cast<std::size_t>(mark.run)].Part(mark.first, mark.last);
      const QRect box = PageBox(mark.page);
      const QRectF shown(box.left() + part.left() * scale_, box.top() + part.top() * scale_,
                         part.width() * scale_, part.height() * scale_);
      if (!QRectF(viewport()->rect()).contains(shown)) {
        Scroll(static_cast<int>(shown.center().y()) - viewport()->height() / 2);
        const int right = static_cast<int>(shown.right());
        if (right > viewport()->width() || shown.left() < 0)
          horizontalScrollBar()->setValue(horizontalScrollBar()->value() + right - viewport()->width() +
                                          2 * kGap);
      }
    }
  }
  viewport()->update();
}

}  // namespace print
