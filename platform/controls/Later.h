// Work that waits until control is back in the event loop.
#pragma once

#include <functional>

class QObject;

namespace ui {

/// Runs the work once, after all events that are queued already, unless the object is destroyed before.
/// Nothing catches an error in the work.
void Later(QObject& object, std::function<void()> work);

}  // namespace ui
