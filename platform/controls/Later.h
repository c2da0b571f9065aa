// Work that waits until control is back in the event loop.
#pragma once

#include <functional>

class QObject;

namespace ui {

/// Runs the work once, behind what is queued already; not at all when the object is gone by then. An error in
/// it is one that nothing catches.
void Later(QObject& object, std::function<void()> work);

}  // namespace ui
