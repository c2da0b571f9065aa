// Remembers which field of a window had the focus last, and returns it there when the window comes forward
// again.
#pragma once

#include <QObject>
#include <cstdint>
#include <vector>

class QWidget;

namespace dw {

class FocusMemory : public QObject {
 public:
  std::int16_t LastTabIndex = 0;  ///< the position of the stop that lost the focus last

  /// Puts the stops in the order of the Tab key and from now on remembers which of them lost the focus.
  void Follow(std::vector<QWidget*> stops);
  /// Treats a stop as the one that had the focus last; ignores other widgets.
  void Note(const QWidget* widget);
  QWidget* LastStop() const;
  /// Sets the focus on the last stop, or on the next one that can take it in this window.
  void Restore(const QWidget& window);

 private:
  std::vector<QWidget*> stops_;
};

}  // namespace dw
