#include "platform/controls/Later.h"

#include <QObject>
#include <utility>

namespace ui {

void Later(QObject& object, std::function<void()> work) {
  // A queued connection posts its call when the signal comes, and this object's end is one. The toolkit's own
  // calls for this are taken for leaks by the analyzer.
  QObject end;
  QObject::connect(&end, &QObject::destroyed, &object, std::move(work), Qt::QueuedConnection);
}

}  // namespace ui
