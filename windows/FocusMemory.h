// What had the focus last in a window, so that it gets it back when the window comes forward again.
#pragma once

#include <QObject>
#include <cstdint>
#include <vector>

class QWidget;

namespace dw {

class FocusMemory : public QObject {
 public:
  std::int16_t LastTabIndex = 0;  ///< the place of the stop that lost the focus last

  /// Puts the stops in the order of the Tab key and remembers from now on which of them lost the focus.
  void Follow(std::vector<QWidget*> stops);
  /// Takes a stop for the one that had the focus last; other widgets are ignored.
  void Note(const QWidget* widget);
  QWidget* LastStop() const;
  /// Gives the focus to the last stop, or to the next one that can take it in this window.
  void Restore(const QWidget& window);

 private:
  std::vector<QWidget*> stops_;
};

}  // namespace dw
