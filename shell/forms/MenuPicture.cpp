#include "shell/forms/MenuPicture.h"

#include <QPainter>

namespace dw {

MenuPicture::MenuPicture() { setAttribute(Qt::WA_OpaquePaintEvent); }

void MenuPicture::Load(const std::string& path) {
  picture_ = QPixmap(QString::fromStdString(path));
  fitted_ = {};
  update();
}

void MenuPicture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (picture_.isNull()) {
    painter.fillRect(rect(), palette().color(QPalette::Window));
    return;
  }
  const qreal ratio = devicePixelRatioF();
  const QSize place = (QSizeF(size()) * ratio).toSize();
  const QSize covering = picture_.size().scaled(place, Qt::KeepAspectRatioByExpanding);
  if (fitted_.size() != covering || fitted_.devicePixelRatio() != ratio) {
    fitted_ = picture_.scaled(covering, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    fitted_.setDevicePixelRatio(ratio);
  }
  const QSizeF shown = fitted_.deviceIndependentSize();
  painter.drawPixmap(QPointF((width() - shown.width()) / 2, (height() - shown.height()) / 2), fitted_);
}

}  // namespace dw
