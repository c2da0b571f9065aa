#include "platform/controls/Later.h"

#include <QObject>
#include <utility>

namespace ui {

void Later(QObject& object, std::function<void()> work) {
  // A queued connection posts its call when the signal comes, and the end of this object is such a signal.
  // The toolkit's own calls for this look like leaks to the analyzer.
  QObject end;
  QObject::connect(&end, &QObject::destroyed, &object, std::move(work), Qt::QueuedConnection);
}

}  // namespace ui
