#include "windows/FocusMemory.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <utility>

namespace dw {

void FocusMemory::Follow(std::vector<QWidget*> stops) {
  stops_ = std::move(stops);
  for (std::size_t i = 1; i < stops_.size(); ++i) QWidget::setTabOrder(stops_[i - 1], stops_[i]);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget* earlier, QWidget*) { Note(earlier); });
}

void FocusMemory::Note(const QWidget* widget) {
  const auto stop = std::find(stops_.begin(), stops_.end(), widget);
  if (stop != stops_.end()) LastTabIndex = static_cast<std::int16_t>(stop - stops_.begin());
}

QWidget* FocusMemory::LastStop() const {
  const auto last = static_cast<std::size_t>(LastTabIndex);
  return last < stops_.size() ? stops_[last] : nullptr;
}

void FocusMemory::Restore(const QWidget& window) {
  for (std::size_t i = 0; i < stops_.size(); ++i) {
    QWidget* stop = stops_[(static_cast<std::size_t>(LastTabIndex) + i) % stops_.size()];
    if (!stop->isEnabled() || !stop->isVisibleTo(&window)) continue;
    stop->setFocus();
    return;
  }
}

}  // namespace dw
