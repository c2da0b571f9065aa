#include "platform/controls/PictureView.h"

#include <QPainter>
#include <utility>

namespace ui {
namespace {

constexpr int kMargin = 3;

}  // namespace

PictureView::PictureView(const char* name) {
  setObjectName(QString::fromUtf8(name));
  setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Base);
  setAccessibleName("Picture");
}

QSize PictureView::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 40, fontMetrics().height() * 13};
}

QSize PictureView::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 16, fontMetrics().height() * 4};
}

void PictureView::Show(QImage image, const QSize& whole) {
  image_ = std::move(image);
  whole_ = whole;
  fitted_ = {};
  if (!image_.isNull())
    setAccessibleDescription(QString("%1 by %2 pixels").arg(whole.width()).arg(whole.height()));
  update();
}

void PictureView::ShowText(const std::string& text, bool quiet) {
  image_ = {};
  fitted_ = {};
  text_ = QString::fromStdString(text);
  quiet_ = quiet;
  setAccessibleDescription(text_);
  update();
}

QRect PictureView::Place() const { return contentsRect().adjusted(kMargin, kMargin, -kMargin, -kMargin); }

QSize PictureView::PlaceOnScreen() const {
  return (QSizeF(Place().size()) * devicePixelRatioF()).toSize().expandedTo(QSize(1, 1));
}

void PictureView::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);
  const QRect place = Place();
  if (place.isEmpty()) return;
  Prepare();
  QPainter painter(this);
  if (image_.isNull()) {
    painter.setPen(palette().color(quiet_ ? QPalette::PlaceholderText : QPalette::Text));
    painter.drawText(place, Qt::AlignCenter | Qt::TextWordWrap, text_);
    return;
  }
  QSize shown = whole_;
  if (shown.width() > place.width() || shown.height() > place.height())
    shown.scale(place.size(), Qt::KeepAspectRatio);
  shown = shown.expandedTo(QSize(1, 1));
  const qreal ratio = devicePixelRatioF();
  const QSize pixels = (QSizeF(shown) * ratio).toSize();
  if (fitted_.size() != pixels) {
    fitted_ = QPixmap::fromImage(image_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    fitted_.setDevicePixelRatio(ratio);
  }
  const QSizeF size = fitted_.deviceIndependentSize();
  painter.drawPixmap(QPointF(place.x() + (place.width() - size.width()) / 2,
                             place.y() + (place.height() - size.height()) / 2),
                     fitted_);
}

}  // namespace ui
